#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Several bytes at a time.
namespace Xml::Words {

// Eight bytes, the first of them in the lowest place.
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

// As many bytes as a word has, or fewer, and zeros after them. Put together in registers: a word that is loaded from
// where its bytes were just stored one by one waits for them.
inline Word wordOf(const char* bytes, std::size_t size) {
    if (size >= sizeof(Word)) return wordAt(bytes);
    Word word = 0;
    for (std::size_t i = size; i > 0; --i) word = word << 8 | static_cast<unsigned char>(bytes[i - 1]);
    return word;
}

// All bits of so many bytes, of a word's at most.
inline Word maskOf(std::size_t size) { return size >= sizeof(Word) ? ~Word{0} : (Word{1} << 8 * size) - 1; }

// Copies at least 16 bytes. Mostly they are not many more.
inline void copyLong(char* to, const char* from, std::size_t size) {
    constexpr std::size_t kStep = 16;
    constexpr std::size_t kFew = 64;
    if (size > kFew) {
        std::memcpy(to, from, size);
        return;
    }
    const std::size_t last = size - kStep;
    for (std::size_t at = 0; at < last; at += kStep) std::memcpy(to + at, from + at, kStep);
    std::memcpy(to + last, from + last, kStep);
}

// Which of the bytes of a block are one of these: a bit for each, the first in the lowest place.
#ifdef __SSE2__
constexpr std::ptrdiff_t kBlockSize = 16;

template <char... These>
inline unsigned marksOf(const char* block) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    __m128i found = _mm_setzero_si128();
    ((found = _mm_or_si128(found, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(These)))), ...);
    return static_cast<unsigned>(_mm_movemask_epi8(found));
}
#else
constexpr std::ptrdiff_t kBlockSize = 1;

template <char... These>
inline unsigned marksOf(const char* block) {
    return ((*block == These) || ...) ? 1 : 0;
}
#endif

}  // namespace Xml::Words
