#include "xml/text/internal/Escape.h"

#include <array>
#include <cstddef>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Xml {

namespace {

constexpr std::array<bool, 256> makeTable() {
    std::array<bool, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte)
        table[byte] = byte == '\n' || !referenceFor(static_cast<char>(byte)).empty();
    return table;
}

constexpr std::array<bool, 256> kSpecial = makeTable();

}  // namespace

const char* findSpecial(const char* from, const char* end) {
#ifdef __SSE2__
    // Sixteen bytes at a time; '<' and '>' differ in one bit.
    constexpr std::ptrdiff_t kAtOnce = 16;
    for (; end - from >= kAtOnce; from += kAtOnce) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const auto are = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
        const __m128i angles = _mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8('<' ^ '>')), _mm_set1_epi8('>'));
        const __m128i quotes = _mm_or_si128(are('"'), are('\''));
        const __m128i others = _mm_or_si128(are('&'), are('\n'));
        const int found = _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(angles, quotes), others));
        if (found != 0) return from + __builtin_ctz(static_cast<unsigned>(found));
    }
#endif
    while (from != end && !kSpecial[static_cast<unsigned char>(*from)]) ++from;
    return from;
}

void appendEscaped(std::string& result, std::string_view text) {
    const char* done = text.data();
    const char* const end = done + text.size();
    for (const char* at = done;; ++at) {
        at = findSpecial(at, end);
        if (at == end) break;
        const std::string_view reference = referenceFor(*at);
        if (reference.empty()) continue;
        result.append(done, at).append(reference);
        done = at + 1;
    }
    result.append(done, end);
}

}  // namespace Xml
