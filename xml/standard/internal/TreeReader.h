#pragma once

#include "xml/standard/Read.h"
#include <memory>
#include <string_view>

namespace Xml {

// Reads valid UTF-8, without a byte order mark, into a document. Null when something is wrong with it, which `problem`
// says then; its offset is in the text. Of a text that is not whole nothing may be wrong as far as it goes: null, and
// `problem` has no text.
std::unique_ptr<Document> readTree(std::string_view text, bool isWhole, const ReadOptions& options, Problem& problem);

}  // namespace Xml
