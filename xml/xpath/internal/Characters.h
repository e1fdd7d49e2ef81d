#pragma once

#include "orvsys/Uni16.h"
#include <cstring>

namespace Xml {

// The classes of characters that paths are made of. A unit is judged by its low byte alone, so that U+0120 counts as a
// blank and U+0141 as a letter.
constexpr char lowByte(OrvSys::uni16char unit) { return static_cast<char>(unit & 0xFF); }

inline bool IsWhiteSpace(char c) { return c == '\t' || c == '\n' || c == '\r' || c == ' '; }
inline bool IsWhiteSpace(OrvSys::uni16char unit) { return IsWhiteSpace(lowByte(unit)); }

inline bool IsBeginLiteral(OrvSys::uni16char unit) { return lowByte(unit) == '\'' || lowByte(unit) == '"'; }

constexpr bool isFirstNCChar(OrvSys::uni16char unit) {
    const char c = lowByte(unit);
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

// Looked up, since it is asked of nearly every unit several times over.
struct NCChars {
    constexpr NCChars() {
        for (OrvSys::uni16char c = 0; c < 0x100; ++c)
            are[c] = isFirstNCChar(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    }
    bool are[0x100] = {};
};
inline bool isNCChar(OrvSys::uni16char unit) {
    static constexpr NCChars kNCChars;
    return kNCChars.are[unit & 0xFF];
}

using Unit = const OrvSys::uni16char*;

// The place after the characters of names that stand there; some of them may not begin a name.
inline Unit afterNCChars(Unit at, Unit end) {
    while (at != end && isNCChar(*at)) ++at;
    return at;
}

// Moves `at` after the name that begins there; false, and `at` unmoved, where none does.
inline bool skipNCName(Unit& at, Unit end) {
    if (at == end || !isFirstNCChar(*at)) return false;
    at = afterNCChars(at, end);
    return true;
}

// Reads a name with an optional prefix: "item", "xs:item". False, and nothing changed, where none begins. A colon
// without a name after it is left where it is.
bool GetQName(Unit& at, Unit end, OrvSys::Uni16String& name);

// Moves `at` after "@" or "attribute::"; false, and `at` unmoved, where neither stands there.
bool IsAttributeAxis(Unit& at, Unit end);

// Whether 16-bit text begins with, or is, that ASCII text.
inline bool startsWith(Unit begin, Unit end, const char* text) {
    for (; *text != '\0'; ++begin, ++text) {
        if (begin == end || *begin != static_cast<unsigned char>(*text)) return false;
    }
    return true;
}
inline bool equals(Unit begin, Unit end, const char* text) {
    return static_cast<std::size_t>(end - begin) == std::strlen(text) && startsWith(begin, end, text);
}

}  // namespace Xml
