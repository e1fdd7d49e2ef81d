#pragma once

#include "orvsys/Uni16.h"
#include <functional>
#include <string>
#include <vector>

namespace Xml::test {

// 16-bit text as UTF-8 and back, for tables and messages.
std::string narrow(const OrvSys::Uni16String& text);
OrvSys::Uni16String wide(const std::string& text);

std::string repeated(const std::string& text, int count);
OrvSys::Uni16String repeated(const OrvSys::Uni16String& text, int count);

// The pieces for 0 to count - 1, one after the other.
std::string pieces(int count, const std::function<std::string(int)>& piece);

// Documents of elements that are the same, but for one in which a byte is another one: whole ones, and such that end
// with it.
std::vector<std::string> documentsOfSimilarTags();

}  // namespace Xml::test
