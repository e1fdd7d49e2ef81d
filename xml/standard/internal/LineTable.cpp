#include "xml/standard/internal/LineTable.h"

#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <limits>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Xml {

namespace {

constexpr std::size_t kBlockBytes = 64;

int toInt(std::int64_t number) {
    return static_cast<int>(std::min<std::int64_t>(number, std::numeric_limits<int>::max()));
}

#ifdef __SSE2__
// A block of a text, in the registers that it takes.
class Block {
public:
    explicit Block(const char* from) : a(part(from, 0)), b(part(from, 1)), c(part(from, 2)), d(part(from, 3)) {}

    // Whether all are ASCII, and none is a line feed or a carriage return.
    bool isPlain() const {
        return _mm_movemask_epi8(
                   _mm_or_si128(_mm_or_si128(special(a), special(b)), _mm_or_si128(special(c), special(d)))) == 0;
    }
    bool isAscii() const { return _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d))) == 0; }
    std::uint64_t all(char wanted) const {
        const __m128i like = _mm_set1_epi8(wanted);
        return joined(_mm_cmpeq_epi8(a, like), _mm_cmpeq_epi8(b, like), _mm_cmpeq_epi8(c, like),
                      _mm_cmpeq_epi8(d, like));
    }
    // Those that are not the first of a character.
    std::uint64_t later() const {
        const __m128i begin = _mm_set1_epi8(static_cast<char>(0xC0));
        return joined(_mm_cmplt_epi8(a, begin), _mm_cmplt_epi8(b, begin), _mm_cmplt_epi8(c, begin),
                      _mm_cmplt_epi8(d, begin));
    }

private:
    static __m128i part(const char* from, int number) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from) + number);
    }
    static __m128i special(__m128i bytes) {
        const __m128i lineFeeds = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'));
        return _mm_or_si128(bytes, _mm_or_si128(lineFeeds, _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r'))));
    }
    static std::uint64_t mask(__m128i found) { return static_cast<unsigned>(_mm_movemask_epi8(found)); }
    static std::uint64_t joined(__m128i first, __m128i second, __m128i third, __m128i fourth) {
        return (mask(first) | mask(second) << 16) | (mask(third) << 32 | mask(fourth) << 48);
    }

    __m128i a, b, c, d;
};
#else
class Block {
public:
    explicit Block(const char* from) : bytes(from) {}
    bool isPlain() const { return false; }
    bool isAscii() const { return false; }
    std::uint64_t all(char c) const {
        return maskOf([c](char byte) { return byte == c; });
    }
    std::uint64_t later() const {
        return maskOf([](char byte) { return Utf8::goesOn(byte); });
    }

private:
    template <class Is>
    std::uint64_t maskOf(Is is) const {
        std::uint64_t mask = 0;
        for (std::size_t i = 0; i < kBlockBytes; ++i) mask |= std::uint64_t{is(bytes[i])} << i;
        return mask;
    }

    const char* bytes;
};
#endif

// Without a call, as the builtin would be on the oldest processors.
std::uint32_t bitCount(std::uint64_t mask) {
    mask -= mask >> 1 & 0x5555555555555555;
    mask = (mask & 0x3333333333333333) + (mask >> 2 & 0x3333333333333333);
    mask = (mask + (mask >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<std::uint32_t>(mask * 0x0101010101010101 >> 56);
}

}  // namespace

LineTable::LineTable(std::string_view text, std::int64_t itsShift) : shift(itsShift) {
    static_assert(kBlock == kBlockBytes);
    constexpr std::size_t kUsualLine = 32;
    begins.reserve(text.size() / kUsualLine);
    std::size_t from = 0;
    for (; text.size() - from > kBlock; from += kBlock) add(text.data() + from, from, text[from + kBlock] == '\n');
    char last[kBlock] = {};
    text.copy(last, kBlock, from);
    add(last, from, false);
}

[[gnu::always_inline]] inline void LineTable::add(const char* bytes, std::size_t from, bool endsBeforeLineFeed) {
    const Block block(bytes);
    if (block.isPlain()) return;
    if (!block.isAscii()) {
        const Mask later = block.later();
        if (later != 0) wide.push_back({later, static_cast<Number>(from / kBlock), laterCount});
        laterCount += bitCount(later);
    }
    Mask ends = block.all('\n');
    if (const Mask returns = block.all('\r'); returns != 0)
        ends |= returns & ~(ends >> 1 | Mask{endsBeforeLineFeed} << (kBlock - 1));
    for (; ends != 0; ends &= ends - 1)
        begins.push_back(static_cast<Number>(from + static_cast<std::size_t>(__builtin_ctzll(ends)) + 1));
}

// How many bytes before there are not the first of a character.
LineTable::Number LineTable::laterBefore(Number at) const {
    const Number number = at / Number{kBlock};
    const auto block = std::lower_bound(wide.begin(), wide.end(), number,
                                        [](const WideBlock& one, Number wanted) { return one.number < wanted; });
    if (block == wide.end()) return laterCount;
    if (block->number != number) return block->before;
    return block->before + bitCount(block->later & ((Mask{1} << at % kBlock) - 1));
}

Place LineTable::of(std::int64_t offset) const {
    const auto at = static_cast<Number>(offset - shift);
    const auto next = std::upper_bound(begins.begin(), begins.end(), at);
    const Number begin = next == begins.begin() ? 0 : next[-1];
    const std::int64_t line = next - begins.begin();
    const std::int64_t column = std::int64_t{at} - begin - (laterBefore(at) - laterBefore(begin));
    return {offset, toInt(line + 1), toInt(column + 1)};
}

}  // namespace Xml
