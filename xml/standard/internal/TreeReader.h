#pragma once

#include "xml/standard/Problem.h"
#include "xml/standard/ReadOptions.h"
#include "xml/standard/internal/SourceText.h"
#include <memory>

namespace Xml {

class Document;

// Reads a source into a document. Null when something is wrong with it: `problem` is what comes first then, also where
// the bytes stop being text; it does not have the name of the source.
std::unique_ptr<Document> readTree(SourceText& source, const ReadOptions& options, Problem& problem);

}  // namespace Xml
