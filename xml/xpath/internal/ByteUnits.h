#pragma once

#include "xml/xpath/internal/Characters.h"
#include <string>

// A path in UTF-8, read as 16-bit text: one unit for each byte, so that places in both are the same. ASCII is itself.
// Bytes of other characters, which stand in names and literals only, are the upper bytes of units whose low byte, by
// which units are judged, is a letter.
namespace Xml::ByteUnits {

constexpr OrvSys::uni16char kLetter = u'a';

// A unit that stands for no byte.
constexpr OrvSys::uni16char kNothing = 0x0100 | kLetter;

// A byte as part of a name or a literal, whatever it would mean as itself.
constexpr OrvSys::uni16char quoted(char byte) {
    return static_cast<OrvSys::uni16char>(static_cast<unsigned char>(byte) << 8 | kLetter);
}

inline std::string bytesOf(Unit begin, Unit end) {
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(end - begin));
    for (; begin != end; ++begin) {
        if (*begin != kNothing) bytes += static_cast<char>(*begin < 0x80 ? *begin : *begin >> 8);
    }
    return bytes;
}

}  // namespace Xml::ByteUnits
