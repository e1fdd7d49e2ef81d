#pragma once

#include "xml/stream/internal/Scan.h"
#include "xml/text/internal/ByteClasses.h"

// What ordinary markup is made of, and where it ends in a run of bytes [from, to).
namespace Xml::MarkupScan {

inline bool isQuote(char c) { return c == '"' || c == '\''; }
inline bool isNameStart(char c) { return ByteClass::is(c, ByteClass::kNameStart); }
inline bool isWhite(char c) { return ByteClass::is(c, ByteClass::kWhite); }

inline const char* whiteEnd(const char* from, const char* to) {
    return from == to || !isWhite(*from) ? from : Scan::endOfAny<' ', '\t', '\n', '\r'>(from + 1, to);
}

inline const char* nameEnd(const char* from, const char* to) { return Scan::endOf<ByteClass::kNameChar>(from, to); }

// The end of a value, or its first '&'.
inline const char* plainValueEnd(const char* from, const char* to, char quote) {
    return quote == '"' ? Scan::findNear<'"', '&'>(from, to) : Scan::findNear<'\'', '&'>(from, to);
}

}  // namespace Xml::MarkupScan
