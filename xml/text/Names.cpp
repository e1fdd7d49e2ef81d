#include "xml/text/Names.h"

#include "xml/text/internal/ByteClasses.h"
#include <algorithm>

namespace Xml {

namespace {

bool isNameRange(const char* text, std::size_t length) {
    return length > 0 && ByteClass::is(text[0], ByteClass::kNameStart) &&
           std::all_of(text + 1, text + length, [](char c) { return ByteClass::is(c, ByteClass::kNameChar); });
}

}  // namespace

bool isWhite(char c) { return ByteClass::is(c, ByteClass::kWhite); }

bool isLetter(char c) { return ByteClass::is(c, ByteClass::kLetter); }

bool isDigit(char c) { return ByteClass::is(c, ByteClass::kDigit); }

bool isNameChar(char c) { return ByteClass::is(c, ByteClass::kNameChar); }

bool isName(const char* text, int length) { return length > 0 && isNameRange(text, static_cast<std::size_t>(length)); }

bool isName(const std::string& text) { return isNameRange(text.data(), text.size()); }

}  // namespace Xml
