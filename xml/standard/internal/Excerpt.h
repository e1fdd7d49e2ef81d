#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// What a message shows of a document: nothing that would move the cursor of a terminal, and nothing endless.
namespace Xml {

// Control characters, those that separate lines and paragraphs, and those that change the direction of what stands
// after them: a line that has one may be read as another one.
bool isControl(char32_t c);

// The text with U+FFFD in the place of each control character, and of each byte that is no UTF-8.
std::string visible(std::string_view text);

// The same, and of words of more than 80 characters the beginning and the end only.
std::string messageLine(std::string_view text);

// The line of the text, which is UTF-8, that the character at `at` stands in, and below it a caret under that. At most
// 160 characters of the line; tabs are repeated, control characters are U+FFFD.
std::string excerptOf(std::string_view text, std::size_t at);

}  // namespace Xml
