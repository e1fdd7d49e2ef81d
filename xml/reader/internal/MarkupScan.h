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

// The same; sets `hasReturn` where there is a CR among the white space.
inline const char* whiteEnd(const char* from, const char* to, bool& hasReturn) {
    return from == to || !isWhite(*from) ? from : Scan::endOfWhite(from, to, hasReturn);
}

inline const char* nameEnd(const char* from, const char* to) { return Scan::endOf<ByteClass::kNameChar>(from, to); }

// The end of a value, or the first '&' or CR in it.
inline const char* plainValueEnd(const char* from, const char* to, char quote) {
    return quote == '"' ? Scan::findNear<'"', '&', '\r'>(from, to) : Scan::findNear<'\'', '&', '\r'>(from, to);
}

}  // namespace Xml::MarkupScan
