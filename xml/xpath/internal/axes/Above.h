#pragma once

#include "xml/xpath/internal/axes/Taker.h"

namespace Xml {

// The axes that lead upwards. What two context nodes both reach is all above a node, so a climb ends where another one
// went on from. tests/xpath/AxesTest.cpp and the model tests hold them.

void takeParents(const NodeList& from, Taker& taker);

// Of each context node the outermost first.
void takeAncestors(const NodeList& from, Taker& taker);
void takeAncestorsOrSelf(const NodeList& from, Taker& taker);

}  // namespace Xml
