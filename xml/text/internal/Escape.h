#pragma once

#include <string>
#include <string_view>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Bytes to references: the five characters that are never written as they stand.
namespace Xml {

// "&lt;" for '<', and so on; empty for all other bytes.
constexpr std::string_view referenceFor(char c) {
    switch (c) {
    case '&': return "&amp;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    case '"': return "&quot;";
    case '\'': return "&apos;";
    default: return {};
    }
}

// "lt" for '<', and so on; empty for all other bytes.
constexpr std::string_view standardNameFor(char c) {
    const std::string_view reference = referenceFor(c);
    return reference.empty() ? reference : reference.substr(1, reference.size() - 2);
}

#ifdef __SSE2__
// A bit for each of sixteen bytes, the first in the lowest place: whether it is one of the five or a line feed. '<' and
// '>' differ in one bit.
inline unsigned specialsAmong(__m128i bytes) {
    const auto are = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    const __m128i angles = _mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8('<' ^ '>')), _mm_set1_epi8('>'));
    const __m128i quotes = _mm_or_si128(are('"'), are('\''));
    const __m128i others = _mm_or_si128(are('&'), are('\n'));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(_mm_or_si128(angles, quotes), others)));
}
#endif

// The first byte that is one of the five or a line feed; `end` where there is none.
const char* findSpecial(const char* from, const char* end);

// Whether the text has a byte that is written as a reference.
inline bool needsEscaping(std::string_view text) { return text.find_first_of("&<>\"'") != std::string_view::npos; }

// Appends `text` with each of the five as its reference, and what stands between them in runs.
void appendEscaped(std::string& result, std::string_view text);

}  // namespace Xml
