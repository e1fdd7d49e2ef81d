#pragma once

#include "xml/xpath/internal/axes/Taker.h"

namespace Xml {

// The axis of all that comes before a node in the document, without its ancestors. What two context nodes both reach is
// a run from the document's beginning, so it is enough to remember how far that was taken. Without a document nothing
// precedes. tests/xpath/AxesTest.cpp and the model tests hold it.
void takePreceding(const NodeList& from, Document* document, Taker& taker);

}  // namespace Xml
