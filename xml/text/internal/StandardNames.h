#pragma once

#include "xml/text/internal/ByteClasses.h"
#include "xml/text/internal/Utf8.h"
#include <optional>
#include <string_view>

// The classes of characters and names of XML 1.0 (Fifth Edition) and Namespaces in XML 1.0. Text is well-formed UTF-8,
// and what points into it points to where a character begins.
namespace Xml::StandardNames {

bool isChar(char32_t c);       // [2] Char
bool isNameStart(char32_t c);  // [4] NameStartChar
bool isNameChar(char32_t c);   // [4a] NameChar

// nmtokenEnd from a character on that is not ASCII.
const char* nmtokenEndBeyondAscii(const char* from, const char* to);

// The end of the longest [7] Nmtoken that begins at `from`; `from` itself where none does. In ASCII the classes are
// those of the byte table.
inline const char* nmtokenEnd(const char* from, const char* to) {
    from = ByteClass::endOf<ByteClass::kNameChar>(from, to);
    return from == to || Utf8::isAscii(*from) ? from : nmtokenEndBeyondAscii(from, to);
}

// The same for a [5] Name.
inline const char* nameEnd(const char* from, const char* to) {
    if (from == to) return from;
    const bool starts =
        Utf8::isAscii(*from) ? ByteClass::is(*from, ByteClass::kNameStart) : isNameStart(Utf8::at(from).value);
    return starts ? nmtokenEnd(from, to) : from;
}

// The first character that is none of XML's, `to` where all are.
const char* charsEnd(const char* from, const char* to);

// The character that a reference of that name, "#65" or "#x41", stands for; 0 where it is none of XML's.
char32_t referencedChar(std::string_view name);

bool isName(std::string_view text);
bool isNmtoken(std::string_view text);
bool isNCName(std::string_view text);  // Namespaces [4] NCName: a Name without colon

struct QName {
    std::string_view prefix;  // empty without one
    std::string_view local;
};

// Namespaces [7] QName: an NCName, or two with a colon between them. Nothing where the text is no such name.
std::optional<QName> qNameOf(std::string_view text);

// The same for a text that is a Name: only what stands beside a colon is looked at.
std::optional<QName> qNameOfName(std::string_view name);

}  // namespace Xml::StandardNames
