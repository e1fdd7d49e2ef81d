#pragma once

#include "xml/text/internal/ByteClasses.h"
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// Where something ends in a run of bytes [from, to): a name, white space, a value, a text. Nothing outside the run is
// looked at. Knows no language: what is looked for is said by its bytes or by their class.
namespace Xml::Scan {

// The first byte that is of none of the classes, `to` where all are.
template <std::uint8_t Classes>
inline const char* endOf(const char* from, const char* to) {
    for (; to - from >= 8; from += 8) {
        if (!ByteClass::is(from[0], Classes)) return from;
        if (!ByteClass::is(from[1], Classes)) return from + 1;
        if (!ByteClass::is(from[2], Classes)) return from + 2;
        if (!ByteClass::is(from[3], Classes)) return from + 3;
        if (!ByteClass::is(from[4], Classes)) return from + 4;
        if (!ByteClass::is(from[5], Classes)) return from + 5;
        if (!ByteClass::is(from[6], Classes)) return from + 6;
        if (!ByteClass::is(from[7], Classes)) return from + 7;
    }
    while (from != to && ByteClass::is(*from, Classes)) ++from;
    return from;
}

// The first `wanted`, null without one.
inline const char* find(const char* from, const char* to, char wanted) {
    return static_cast<const char*>(std::memchr(from, wanted, static_cast<std::size_t>(to - from)));
}

// Eight bytes at a time, the first of them in the lowest place.
using Word = std::uint64_t;
constexpr std::ptrdiff_t kWordSize = sizeof(Word);

inline Word wordAt(const char* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    word = __builtin_bswap64(word);
#endif
    return word;
}

constexpr Word repeated(unsigned char byte) { return Word{0x0101010101010101} * byte; }

// Marks the bytes that are 0, and perhaps some after the first of them.
constexpr Word marksOfZeros(Word word) { return (word - repeated(0x01)) & ~word & repeated(0x80); }

// The place of the first byte that is not 0; there must be one.
inline int firstMarked(Word marks) { return __builtin_ctzll(marks) / 8; }

// As endOf, for runs that repeat one byte many times, as indentation does.
template <std::uint8_t Classes>
inline const char* endOfRepeated(const char* from, const char* to) {
    while (to - from >= kWordSize) {
        if (!ByteClass::is(*from, Classes)) return from;
        const Word others = wordAt(from) ^ repeated(static_cast<unsigned char>(*from));
        from += others != 0 ? firstMarked(others) : kWordSize;
    }
    while (from != to && ByteClass::is(*from, Classes)) ++from;
    return from;
}

// The first byte that is A or B, `to` without one. Mostly it is within a few words; what is further away is looked for
// with find(). A and B differ in one bit, which is left out of the comparison.
template <char A, char B>
inline const char* findEither(const char* from, const char* to) {
    constexpr auto kBit = static_cast<unsigned char>(A ^ B);
    static_assert(kBit != 0 && (kBit & (kBit - 1)) == 0);
    constexpr Word kOthers = repeated(static_cast<unsigned char>(~kBit));
    constexpr Word kWanted = repeated(static_cast<unsigned char>(A & ~kBit));
    const char* const nearEnd = to - from > 4 * kWordSize ? from + 4 * kWordSize : to;
    for (; nearEnd - from >= kWordSize; from += kWordSize) {
        const Word marks = marksOfZeros((wordAt(from) & kOthers) ^ kWanted);
        if (marks != 0) return from + firstMarked(marks);
    }
    while (from != nearEnd && *from != A && *from != B) ++from;
    if (from != nearEnd || from == to) return from;
    const char* const firstA = find(from, to, A);
    const char* const end = firstA != nullptr ? firstA : to;
    const char* const firstB = find(from, end, B);
    return firstB != nullptr ? firstB : end;
}

// Whether both have the same bytes there.
template <class Unit>
inline bool isSame(const char* a, const char* b) {
    Unit first;
    Unit second;
    std::memcpy(&first, a, sizeof first);
    std::memcpy(&second, b, sizeof second);
    return first == second;
}

// Whether the run begins with the text. For short texts.
inline bool startsWith(const char* from, const char* to, std::string_view text) {
    std::size_t left = text.size();
    if (static_cast<std::size_t>(to - from) < left) return false;
    const char* expected = text.data();
    const auto skip = [&](std::size_t count) {
        from += count;
        expected += count;
    };
    for (; left >= sizeof(Word); left -= sizeof(Word)) {
        if (!isSame<Word>(from, expected)) return false;
        skip(sizeof(Word));
    }
    if ((left & 4) != 0) {
        if (!isSame<std::uint32_t>(from, expected)) return false;
        skip(4);
    }
    if ((left & 2) != 0) {
        if (!isSame<std::uint16_t>(from, expected)) return false;
        skip(2);
    }
    return (left & 1) == 0 || *from == *expected;
}

}  // namespace Xml::Scan
