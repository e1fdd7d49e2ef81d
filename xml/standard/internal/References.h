#pragma once

#include <string_view>

// References as they stand in a text.
namespace Xml::References {

// The one that the text begins with, whatever it refers to; its '&' alone where it is none.
std::string_view first(std::string_view text);

// Whether it is one to a character.
inline bool isToCharacter(std::string_view reference) { return reference.substr(0, 2) == "&#"; }

// What one to a character stands for: "&#65;" or "&#x41;". 0 for any other, and where XML has no such character.
char32_t characterOf(std::string_view reference);

}  // namespace Xml::References
