#pragma once

#include "xml/text/internal/Words.h"
#include <array>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Where a run of characters ends in valid UTF-8 [from, to): at one of the bytes that are looked for, or at a character
// that XML does not allow. One pass checks the characters and finds the end.
namespace Xml::Runs {

inline bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n'; }

// The first byte of U+FFFE and U+FFFF; most characters that begin so are others.
inline constexpr char kRare = '\xEF';

inline bool isNoncharacter(const char* at) {
    return *at == kRare && at[1] == '\xBF' && static_cast<unsigned char>(at[2]) >= 0xBE;
}

#ifdef __SSE2__
// Which of sixteen bytes are one of these, a control character or kRare: a bit for each, the first in the lowest place.
template <char... Stops>
inline unsigned marksOf(const char* block) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    const auto are = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    const __m128i low = _mm_cmpeq_epi8(_mm_max_epu8(bytes, _mm_set1_epi8(0x1F)), _mm_set1_epi8(0x1F));
    __m128i found = _mm_andnot_si128(_mm_or_si128(are('\t'), are('\n')), low);
    found = _mm_or_si128(found, are(kRare));
    ((found = _mm_or_si128(found, are(Stops))), ...);
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}
#endif

// The first byte that is one of these, a control character or kRare; `to` without one. A CR counts as a control.
template <char... Stops>
inline const char* find(const char* from, const char* to) {
#ifdef __SSE2__
    for (; to - from >= Words::kBlockSize; from += Words::kBlockSize) {
        const unsigned marks = marksOf<Stops...>(from);
        if (marks != 0) return from + __builtin_ctz(marks);
    }
#endif
    while (from != to && !isControl(*from) && *from != kRare && ((*from != Stops) && ...)) ++from;
    return from;
}

// The same where tabs and line ends are looked for as well: one comparison finds them all.
#ifdef __SSE2__
template <char... Stops>
inline unsigned marksInLine(const char* block) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    const auto are = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    __m128i found = _mm_cmpeq_epi8(_mm_max_epu8(bytes, _mm_set1_epi8(0x1F)), _mm_set1_epi8(0x1F));
    ((found = _mm_or_si128(found, are(Stops))), ...);
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}
#endif

template <char... Stops>
inline const char* findInLine(const char* from, const char* to) {
#ifdef __SSE2__
    for (; to - from >= Words::kBlockSize; from += Words::kBlockSize) {
        const unsigned marks = marksInLine<Stops...>(from);
        if (marks != 0) return from + __builtin_ctz(marks);
    }
#endif
    while (from != to && static_cast<unsigned char>(*from) >= 0x20 && ((*from != Stops) && ...)) ++from;
    return from;
}

// The first one among 32 bytes, or where they end.
template <char... Stops>
[[gnu::always_inline]] inline const char* findShort(const char* from) {
#ifdef __SSE2__
    unsigned marks = marksOf<Stops...>(from);
    if (marks == 0) {
        from += Words::kBlockSize;
        marks = marksOf<Stops...>(from) | 1U << Words::kBlockSize;
    }
    return from + static_cast<unsigned>(__builtin_ctz(marks));
#else
    return find<Stops...>(from, from + 32);
#endif
}

// As findInLine, for what mostly ends within a few bytes.
template <char... Stops>
[[gnu::always_inline]] inline const char* findNearInLine(const char* from, const char* to) {
#ifdef __SSE2__
    if (to - from >= Words::kBlockSize) {
        const unsigned marks = marksInLine<Stops...>(from);
        if (marks != 0) return from + static_cast<unsigned>(__builtin_ctz(marks));
        from += Words::kBlockSize;
    }
#endif
    return findInLine<Stops...>(from, to);
}

struct Run {
    const char* end;
    bool hasReturn;  // a CR that is not looked for
};

// `end` is at one of Stops, at a character that is not allowed, or at `to`.
template <char... Stops>
inline Run of(const char* from, const char* to) {
    bool hasReturn = false;
    for (;;) {
        from = find<Stops...>(from, to);
        if (from == to || ((*from == Stops) || ...)) return {from, hasReturn};
        if (*from == '\r') {
            hasReturn = true;
            ++from;
        } else if (*from == kRare && !isNoncharacter(from)) {
            from += 3;
        } else {
            return {from, hasReturn};
        }
    }
}

}  // namespace Xml::Runs
