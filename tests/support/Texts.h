#pragma once

#include "orvsys/Uni16.h"
#include <functional>
#include <string>

// Texts put together from many pieces.
namespace Xml::test {

std::string repeated(const std::string& text, int count);
OrvSys::Uni16String repeated(const OrvSys::Uni16String& text, int count);

// The pieces for 0 to count - 1, one behind the other.
std::string pieces(int count, const std::function<std::string(int)>& piece);

}  // namespace Xml::test
