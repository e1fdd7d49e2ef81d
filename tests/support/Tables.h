#pragma once

#include <string>
#include <vector>

namespace Xml::test {

// Without spaces at its ends.
std::string trimmed(const std::string& text);

// The cells of a row of a table in Markdown, trimmed. A bar with a backslash before it is one in a cell.
std::vector<std::string> cellsOf(const std::string& line);

}  // namespace Xml::test
