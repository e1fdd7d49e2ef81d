#pragma once

#include "xml/text/internal/ShortRuns.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Copies of runs that are written as they are, which most texts and values are: without control characters, and without
// what has to be a reference there.
namespace Xml::PlainRuns {

enum class Kind : std::uint8_t {
    Text = 1,   // '&', '<' and '>' are references; tabs and line feeds stand as they are
    Lines = 2,  // the same, but line feeds are to be looked at
    Value = 4,  // '&', '<' and '"' are references, as tabs and line feeds
};

// Whether bytes that are not ASCII are looked at, or are known to be right.
enum class Beyond : std::uint8_t { LookedAt, Trusted };

constexpr unsigned bitOf(Kind kind, Beyond beyond) {
    return static_cast<unsigned>(kind) << (beyond == Beyond::Trusted ? 4 : 0);
}

constexpr std::array<std::uint8_t, 256> makeTable() {
    constexpr auto kText = static_cast<unsigned>(Kind::Text) | static_cast<unsigned>(Kind::Lines);
    constexpr auto kValue = static_cast<unsigned>(Kind::Value);
    std::array<std::uint8_t, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        const auto c = static_cast<char>(static_cast<unsigned char>(byte));
        unsigned special = byte < 0x20 || c == '&' || c == '<' ? kText | kValue : 0;
        if (c == '>') special = kText;
        if (c == '"') special = kValue;
        if (c == '\t') special = kValue;
        if (c == '\n') special = kValue | static_cast<unsigned>(Kind::Lines);
        table[byte] = static_cast<std::uint8_t>(byte < 0x80 ? special | special << 4 : kText | kValue);
    }
    return table;
}

inline constexpr std::array<std::uint8_t, 256> kSpecial = makeTable();

template <Kind Of, Beyond Others>
inline bool isSpecial(char c) {
    return (kSpecial[static_cast<unsigned char>(c)] & bitOf(Of, Others)) != 0;
}

#ifdef __SSE2__
// A bit for each of sixteen bytes, the first in the lowest place. As signed numbers all bytes that are not ASCII are
// below the blank. '<' and '>' differ in one bit.
template <Kind Of, Beyond Others>
inline unsigned specialsAmong(__m128i bytes) {
    const auto are = [](__m128i these, char c) { return _mm_cmpeq_epi8(these, _mm_set1_epi8(c)); };
    __m128i below;
    if constexpr (Others == Beyond::Trusted) {
        below = are(_mm_max_epu8(bytes, _mm_set1_epi8(0x1F)), 0x1F);
    } else {
        below = _mm_cmplt_epi8(bytes, _mm_set1_epi8(' '));
    }
    if constexpr (Of == Kind::Value) {
        const __m128i marks = _mm_or_si128(_mm_or_si128(are(bytes, '<'), are(bytes, '&')), are(bytes, '"'));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(below, marks)));
    } else {
        const __m128i angles = are(_mm_or_si128(bytes, _mm_set1_epi8('<' ^ '>')), '>');
        const __m128i tabs = are(bytes, '\t');
        const __m128i white = Of == Kind::Lines ? tabs : _mm_or_si128(tabs, are(bytes, '\n'));
        const __m128i marks = _mm_or_si128(angles, are(bytes, '&'));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(_mm_andnot_si128(white, below), marks)));
    }
}
#endif

// The first special byte, `to` without one.
template <Kind Of, Beyond Others>
inline const char* end(const char* from, const char* to) {
#ifdef __SSE2__
    for (; to - from >= 16; from += 16) {
        const unsigned marks = specialsAmong<Of, Others>(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
        if (marks != 0) return from + __builtin_ctz(marks);
    }
#endif
    while (from != to && !isSpecial<Of, Others>(*from)) ++from;
    return from;
}

// Copies a run that has no special byte, and returns the end of the copy. Null where it has one; what has been copied
// is of no use then.
template <Kind Of, Beyond Others>
inline char* copy(char* to, std::string_view run) {
    const char* const from = run.data();
    const std::size_t size = run.size();
#ifdef __SSE2__
    if (size >= 16) {
        const char* at = from;
        const char* const last = from + size - 16;
        for (;;) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
            if (specialsAmong<Of, Others>(bytes) != 0) return nullptr;
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + (at - from)), bytes);
            if (at == last) return to + size;
            at = last - at > 16 ? at + 16 : last;
        }
    }
    if (size >= 4) {
        const auto from8 = [from](std::size_t at) { return ShortRuns::unitAt<std::int64_t>(from + at); };
        const auto from4 = [from](std::size_t at) { return ShortRuns::unitAt<std::int32_t>(from + at); };
        if (size >= 8) {
            if (specialsAmong<Of, Others>(_mm_set_epi64x(from8(size - 8), from8(0))) != 0) return nullptr;
            ShortRuns::copyEnds<std::uint64_t>(to, from, size);
        } else {
            const std::int32_t first = from4(0);
            const std::int32_t second = from4(size - 4);
            if (specialsAmong<Of, Others>(_mm_set_epi32(first, first, second, first)) != 0) return nullptr;
            ShortRuns::copyEnds<std::uint32_t>(to, from, size);
        }
        return to + size;
    }
#endif
    if (end<Of, Others>(from, from + size) != from + size) return nullptr;
    return ShortRuns::copy(to, run);
}

// The same for a padded run.
template <Kind Of, Beyond Others>
inline char* copyPadded(char* to, std::string_view run) {
#ifdef __SSE2__
    static_assert(sizeof(__m128i) == ShortRuns::kPadded);
    if (run.size() <= ShortRuns::kPadded) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(run.data()));
        const unsigned after = ~0U << run.size();
        if ((specialsAmong<Of, Others>(bytes) & ~after) != 0) return nullptr;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
        return to + run.size();
    }
#endif
    return copy<Of, Others>(to, run);
}

}  // namespace Xml::PlainRuns
