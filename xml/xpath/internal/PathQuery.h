#pragma once

#include "xml/xpath/XPath.h"
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

class Object;

// Asks by a path in UTF-8, from one node, once. The language is that of XPath, but for this:
//
// - Names are those of XML 1.0.
// - In a literal its quote is written twice. It must be closed, and nothing may follow it.
// - All of the path is read before it is evaluated: what is wrong is found whatever the tree holds.
// - A predicate must ask for something of the node: one of literals, numbers and paths from the document alone is
//   wrong.
// - A tree without document is asked as if its top element were the root of one, which is no result.

// What is wrong with a path.
struct PathFault {
    std::size_t place;  // in bytes, from the beginning of the path
    XPath::ErrorCode code;
    std::string text;  // one line
};

struct PathAnswer {
    std::optional<PathFault> fault;   // nothing else then
    std::vector<Object*> nodes;       // each once, in the order of discovery
    std::vector<std::string> values;  // strings and numbers as text, where the results are no nodes
};

PathAnswer answerPath(Object& from, std::string_view path);

}  // namespace Xml
