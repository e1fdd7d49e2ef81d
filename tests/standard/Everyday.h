#pragma once

#include <string>
#include <vector>

// Documents as they are met every day, by their names in tests/standard/everyday/.
namespace Xml::test {

std::vector<std::string> everydayFiles();
std::string everydayPath(const std::string& file);
std::string everydayText(const std::string& file);

// Each place of `from` in the text, in turn.
std::string replaced(std::string text, const std::string& from, const std::string& to);

}  // namespace Xml::test
