#pragma once

#include "xml/text/internal/ByteClasses.h"
#include "xml/text/internal/Words.h"
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// Where something ends in a run of bytes [from, to): a name, white space, a value, a text. Nothing outside the run is
// looked at. Knows no language: what is looked for is said by its bytes or by their class.
namespace Xml::Scan {

using ByteClass::endOf;

// The first `wanted`, null without one.
inline const char* find(const char* from, const char* to, char wanted) {
    return static_cast<const char*>(std::memchr(from, wanted, static_cast<std::size_t>(to - from)));
}

using Words::kBlockSize;
using Words::kWordSize;
using Words::marksOf;
using Words::Word;
using Words::wordAt;

// The first byte that is one of these (or, Not, none of these), `to` without one.
template <bool Not, char... These>
inline const char* findFirst(const char* from, const char* to) {
    constexpr unsigned kAll = (1U << kBlockSize) - 1;
    for (; to - from >= kBlockSize; from += kBlockSize) {
        const unsigned marks = marksOf<These...>(from) ^ (Not ? kAll : 0U);
        if (marks != 0) return from + __builtin_ctz(marks);
    }
    while (from != to && ((*from == These) || ...) == Not) ++from;
    return from;
}

template <char... These>
inline const char* findAny(const char* from, const char* to) {
    return findFirst<false, These...>(from, to);
}
template <char... These>
inline const char* endOfAny(const char* from, const char* to) {
    return findFirst<true, These...>(from, to);
}

// The end of white space; sets `hasReturn` where there is a CR in it.
inline const char* endOfWhite(const char* from, const char* to, bool& hasReturn) {
    const char* const first = endOfAny<' ', '\t', '\n'>(from, to);
    if (first == to || *first != '\r') return first;
    hasReturn = true;
    return endOfAny<' ', '\t', '\n', '\r'>(first, to);
}

// As findAny, for what is not within the first bytes. What is further away is looked for with find().
template <char... These>
[[gnu::noinline]] const char* findFurther(const char* from, const char* to) {
    constexpr std::ptrdiff_t kNear = 64;
    const char* const nearEnd = to - from > kNear ? from + kNear : to;
    const char* const near = findAny<These...>(from, nearEnd);
    if (near != nearEnd || near == to) return near;
    const char* first = to;
    const auto look = [&](char wanted) {
        if (const char* const found = find(near, first, wanted)) first = found;
    };
    (look(These), ...);
    return first;
}

// The same. Mostly it is within a few bytes: only these are looked at in line.
template <char... These>
[[gnu::always_inline]] inline const char* findNear(const char* from, const char* to) {
    if (to - from < 2 * kBlockSize) return findFurther<These...>(from, to);
    unsigned marks = marksOf<These...>(from);
    if (marks != 0) return from + __builtin_ctz(marks);
    from += kBlockSize;
    marks = marksOf<These...>(from);
    return marks != 0 ? from + __builtin_ctz(marks) : findFurther<These...>(from + kBlockSize, to);
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
