#include "xml/standard/internal/Places.h"

#include <algorithm>
#include <cstddef>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Xml {

namespace {

constexpr std::ptrdiff_t kAtOnce = 16;

// A bit for each byte of a few, the first in the lowest place.
struct Marks {
    unsigned feeds = 0;
    unsigned returns = 0;
    unsigned starts = 0;  // of characters
    unsigned wide = 0;    // starts of characters above U+FFFF
};

Marks marksOf(const char* bytes, std::ptrdiff_t count) {
    Marks marks;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const unsigned bit = 1U << i;
        if (byte == '\n') marks.feeds |= bit;
        if (byte == '\r') marks.returns |= bit;
        if ((byte & 0xC0) != 0x80) marks.starts |= bit;
        if (byte >= 0xF0) marks.wide |= bit;
    }
    return marks;
}

#ifdef __SSE2__
// The same for sixteen bytes, of which the first `count` are wanted.
Marks marksOfBlock(const char* bytes, std::ptrdiff_t count) {
    const unsigned wanted = (1U << count) - 1;
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const auto marks = [wanted](__m128i found) { return static_cast<unsigned>(_mm_movemask_epi8(found)) & wanted; };
    const auto are = [&](char c) { return marks(_mm_cmpeq_epi8(block, _mm_set1_epi8(c))); };
    // As signed numbers, bytes that go on with a character are the lowest, and those from 0xF0 on the last below zero.
    const unsigned goOn = marks(_mm_cmplt_epi8(block, _mm_set1_epi8(static_cast<char>(0xC0))));
    const unsigned high = marks(_mm_cmpgt_epi8(block, _mm_set1_epi8(static_cast<char>(0xEF)))) & marks(block);
    return {are('\n'), are('\r'), ~goOn & wanted, high};
}
#endif

// Mostly there is none, or one.
std::int64_t countOf(unsigned bits) {
    if ((bits & (bits - 1)) == 0) return bits != 0 ? 1 : 0;
    return __builtin_popcount(bits);
}

void endLine(TextPlace& place) {
    ++place.line;
    place.column = 1;
}

}  // namespace

const TextPlace& Places::at(std::int64_t offset, std::string_view held, std::int64_t from) {
    if (offset < last.place.offset) last = beginning;
    if (offset != last.place.offset) goTo(offset, held, from);
    if (!last.afterReturn) return last.place;
    const auto next = static_cast<std::size_t>(offset - from);
    if (next != held.size() && held[next] == '\n') return last.place;
    answer = last.place;
    endLine(answer);
    return answer;
}

void Places::forget(std::int64_t offset, std::string_view held, std::int64_t from) {
    at(offset, held, from);
    beginning = last;
}

void Places::goTo(std::int64_t offset, std::string_view held, std::int64_t from) {
    TextPlace& place = last.place;
    bool afterReturn = last.afterReturn;
    const char* at = held.data() + (place.offset - from);
    const char* const to = held.data() + (offset - from);
    while (at != to) {
        if (afterReturn && *at != '\n') endLine(place);
        const std::ptrdiff_t count = std::min(to - at, kAtOnce);
#ifdef __SSE2__
        const bool isBlock = held.data() + held.size() - at >= kAtOnce;
        const Marks marks = isBlock ? marksOfBlock(at, count) : marksOf(at, count);
#else
        const Marks marks = marksOf(at, count);
#endif
        const bool isAscii = marks.starts == (1U << count) - 1;
        const std::int64_t characters = isAscii ? count : __builtin_popcount(marks.starts);
        place.characters += characters;
        if (marks.wide != 0) place.wide += countOf(marks.wide);
        if ((marks.feeds | marks.returns) == 0) {
            place.column += characters;
            afterReturn = false;
        } else {
            // A CR ends a line unless an LF follows, and the last one has to wait for what follows.
            const unsigned lastReturn = marks.returns & 1U << (count - 1);
            const unsigned ends = marks.feeds | (marks.returns & ~(marks.feeds >> 1) & ~lastReturn);
            if (ends == 0) {
                place.column += characters;
            } else {
                const int lastEnd = 31 - __builtin_clz(ends);
                place.line += countOf(ends);
                place.column = isAscii ? count - lastEnd : 1 + __builtin_popcount(marks.starts >> lastEnd >> 1);
            }
            afterReturn = lastReturn != 0;
        }
        at += count;
    }
    place.offset = offset;
    last.afterReturn = afterReturn;
}

}  // namespace Xml
