#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Several bytes at a time.
namespace Xml::Words {

// Eight bytes, the first of them in the lowest place.
using Word = std::uint64_t;
constexpr std::ptrdiff_t kWordSize = sizeof(Word);

// So many bytes as a number, the first of them in the lowest place.
template <class Number>
Number numberAt(const char* bytes) {
    Number number = 0;
    std::memcpy(&number, bytes, sizeof number);
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    Number reversed = 0;
    for (std::size_t i = 0; i < sizeof number; ++i) reversed = reversed << 8 | (number >> 8 * i & 0xFF);
    number = reversed;
#endif
    return number;
}

inline Word wordAt(const char* bytes) { return numberAt<Word>(bytes); }

// As many bytes as a word has, or fewer, and zeros after them. Put together in registers: a word that is loaded from
// where its bytes were just stored one by one waits for them.
inline Word wordOf(const char* bytes, std::size_t size) {
    if (size >= sizeof(Word)) return wordAt(bytes);
    if (size >= 4) {
        const auto half = [bytes](std::size_t at) { return Word{numberAt<std::uint32_t>(bytes + at)}; };
        return half(0) | half(size - 4) << 8 * (size - 4);
    }
    if (size == 0) return 0;
    const auto byte = [bytes](std::size_t at) { return Word{static_cast<unsigned char>(bytes[at])} << 8 * at; };
    return byte(0) | byte(size / 2) | byte(size - 1);
}

// Puts the bytes of a word there.
inline void putWord(Word word, char* bytes) {
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    word = __builtin_bswap64(word);
#endif
    std::memcpy(bytes, &word, sizeof word);
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

// Sets so many bytes to zero, a few hundred at most. Step by step: of a loop or a memset the compiler makes one
// instruction of the processor here, which takes longer to begin than all of the steps.
constexpr std::size_t kClearStep = 16;
template <std::size_t... Steps>
inline void clearInSteps(char* bytes, std::index_sequence<Steps...>) {
    static constexpr char kZeros[kClearStep] = {};
    (std::memcpy(bytes + Steps * kClearStep, kZeros, kClearStep), ...);
}
template <std::size_t Size>
inline void clear(char* bytes) {
    static_assert(Size % kClearStep == 0, "it consists of whole steps");
    clearInSteps(bytes, std::make_index_sequence<Size / kClearStep>());
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

// How many of the lowest sixteen bits are set; the others are not. Mostly it is one, or all of the lowest.
inline int bitCount(unsigned bits) {
    if ((bits & (bits + 1)) == 0) return bits != 0 ? 32 - __builtin_clz(bits) : 0;
    if ((bits & (bits - 1)) == 0) return 1;
    bits -= bits >> 1 & 0x5555;
    bits = (bits & 0x3333) + (bits >> 2 & 0x3333);
    bits = (bits + (bits >> 4)) & 0x0F0F;
    return static_cast<int>((bits + (bits >> 8)) & 0x1F);
}

}  // namespace Xml::Words
