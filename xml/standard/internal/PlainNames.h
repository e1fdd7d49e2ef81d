#pragma once

#include "xml/text/internal/ByteClasses.h"
#include "xml/text/internal/Words.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Names of ASCII without a colon, as most are.
namespace Xml::PlainNames {

constexpr std::uint8_t kStart = 1;
constexpr std::uint8_t kGoesOn = 2;

constexpr std::array<std::uint8_t, 256> makeTable() {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::uint8_t classes = i == ':' ? 0 : ByteClass::kTable[i];
        if ((classes & ByteClass::kNameStart) != 0) table[i] = kStart;
        if ((classes & ByteClass::kNameChar) != 0) table[i] = static_cast<std::uint8_t>(table[i] | kGoesOn);
    }
    return table;
}

inline constexpr std::array<std::uint8_t, 256> kTable = makeTable();

inline bool is(char c, std::uint8_t wanted) { return (kTable[static_cast<unsigned char>(c)] & wanted) != 0; }

#ifdef __SSE2__
// Which of sixteen bytes no such name has: a bit for each, the first in the lowest place. As signed numbers bytes that
// are not ASCII are below all others; what is added puts the end of a range at the end of the numbers.
inline unsigned othersAmong(__m128i bytes) {
    const auto upTo = [](__m128i these, char last, int count) {
        const __m128i moved = _mm_add_epi8(these, _mm_set1_epi8(static_cast<char>(0x7F - last)));
        return _mm_cmpgt_epi8(moved, _mm_set1_epi8(static_cast<char>(0x7F - count)));
    };
    const auto are = [bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    const __m128i letters = upTo(_mm_or_si128(bytes, _mm_set1_epi8(0x20)), 'z', 26);
    const __m128i marks = _mm_andnot_si128(are('/'), upTo(bytes, '9', '9' - '-' + 1));  // '-', '.' and digits
    const __m128i all = _mm_or_si128(_mm_or_si128(letters, marks), are('_'));
    return static_cast<unsigned>(_mm_movemask_epi8(all)) ^ 0xFFFFU;
}
#endif

[[gnu::noinline]] inline const char* endOfRest(const char* from, const char* to) {
    while (from != to && is(*from, kGoesOn)) ++from;
    return from;
}

// Where the name ends that begins there, as its first byte says. What ends it may be what makes it another name: a
// colon, or what is not ASCII. Mostly it is short: only a few bytes are looked at in line.
[[gnu::always_inline]] inline const char* endAfterStart(const char* from, const char* to) {
#ifdef __SSE2__
    if (to - from >= Words::kBlockSize) {
        const unsigned others = othersAmong(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
        if (others != 0) return from + static_cast<unsigned>(__builtin_ctz(others));
        from += Words::kBlockSize;
    }
#endif
    return endOfRest(from, to);
}

// Names of one tag. One that was there before is always noticed, and a few that were not are taken for such.
class Seen {
public:
    // The name is not empty.
    void add(std::string_view name) {
        const auto byte = [name](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(name[i])); };
        const auto size = static_cast<unsigned>(name.size());
        const std::uint64_t bit = std::uint64_t{1} << ((byte(0) + 5 * byte(name.size() - 1) + 11 * size) % 64);
        isTwice |= (bits & bit) != 0;
        bits |= bit;
    }
    bool maybeTwice() const { return isTwice; }

private:
    std::uint64_t bits = 0;
    bool isTwice = false;
};

}  // namespace Xml::PlainNames
