#pragma once

#include <cstddef>
#include <string>

// Characters as UTF-8. Well-formed is what the Unicode standard says: the shortest form of each character, no
// surrogates, nothing above U+10FFFF.
namespace Xml::Utf8 {

struct Character {
    char32_t value;
    std::ptrdiff_t size;  // in bytes
};

inline bool isAscii(char byte) { return (static_cast<unsigned char>(byte) & 0x80) == 0; }

// Whether the byte goes on with a character that began earlier.
inline bool goesOn(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// The character that begins there, in well-formed text.
inline Character at(const char* from) {
    const auto byte = [from](int i) { return static_cast<char32_t>(static_cast<unsigned char>(from[i])); };
    const auto low = [byte](int i) { return byte(i) & 0x3F; };
    const char32_t lead = byte(0);
    if (lead < 0x80) return {lead, 1};
    if (lead < 0xE0) return {(lead & 0x1F) << 6 | low(1), 2};
    if (lead < 0xF0) return {(lead & 0x0F) << 12 | low(1) << 6 | low(2), 3};
    return {(lead & 0x07) << 18 | low(1) << 12 | low(2) << 6 | low(3), 4};
}

// Writes a character, at most four bytes, and returns their end. It is neither a surrogate nor above U+10FFFF.
inline char* put(char* to, char32_t c) {
    const auto byte = [&to](char32_t value) { *to++ = static_cast<char>(static_cast<unsigned char>(value)); };
    const auto rest = [&](int shift) { byte(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        rest(0);
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        rest(6);
        rest(0);
    } else {
        byte(0xF0 | c >> 18);
        rest(12);
        rest(6);
        rest(0);
    }
    return to;
}

inline void append(std::string& to, char32_t c) {
    char bytes[4];
    to.append(bytes, put(bytes, c));
}

enum class Ending : unsigned char { Whole, Incomplete, IllFormed };

struct WellFormed {
    const char* end;  // up to there the bytes are whole, well-formed characters
    Ending ending;    // Incomplete: what follows, up to the end of the bytes, may be the beginning of a character
    std::ptrdiff_t badSize;  // where it is ill-formed: how many bytes show that, the first wrong one the last of them
};

// Checks bytes, many at a time.
WellFormed checkForm(const char* from, const char* to);

struct Checked : WellFormed {
    bool onlyChars;  // none of the characters is one that XML forbids: U+FFFE, U+FFFF, a control character below
                     // U+0020 other than tab, line feed, carriage return
};

// The same with a look at which characters they are.
Checked check(const char* from, const char* to);

}  // namespace Xml::Utf8
