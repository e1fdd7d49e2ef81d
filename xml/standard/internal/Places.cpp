#include "xml/standard/internal/Places.h"

#include "xml/text/internal/Utf8.h"
#include "xml/text/internal/Words.h"
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
    unsigned beyondAscii = 0;
    unsigned goOn = 0;  // of those, bytes at which no character begins
    unsigned wide = 0;  // at which one above U+FFFF does

    bool isPlain() const { return (feeds | returns | beyondAscii) == 0; }
};

Marks marksOf(const char* bytes, std::ptrdiff_t count) {
    Marks marks;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const unsigned bit = 1U << i;
        if (bytes[i] == '\n') marks.feeds |= bit;
        if (bytes[i] == '\r') marks.returns |= bit;
        if (!Utf8::isAscii(bytes[i])) marks.beyondAscii |= bit;
        if (Utf8::goesOn(bytes[i])) marks.goOn |= bit;
        if (static_cast<unsigned char>(bytes[i]) >= 0xF0) marks.wide |= bit;
    }
    return marks;
}

#ifdef __SSE2__
// The same for sixteen bytes, of which the first `count` are wanted.
Marks marksOfBlock(const char* bytes, std::ptrdiff_t count) {
    const unsigned wanted = (1U << count) - 1;
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const auto marks = [wanted](__m128i found) { return static_cast<unsigned>(_mm_movemask_epi8(found)) & wanted; };
    const __m128i feeds = _mm_cmpeq_epi8(block, _mm_set1_epi8('\n'));
    const __m128i returns = _mm_cmpeq_epi8(block, _mm_set1_epi8('\r'));
    if (marks(_mm_or_si128(_mm_or_si128(feeds, returns), block)) == 0) return {};
    const __m128i goOn = _mm_cmplt_epi8(block, _mm_set1_epi8(static_cast<char>(0xC0)));
    const __m128i wide = _mm_cmpeq_epi8(_mm_max_epu8(block, _mm_set1_epi8(static_cast<char>(0xF0))), block);
    return {marks(feeds), marks(returns), marks(block), marks(goOn), marks(wide)};
}
#endif

void endLine(TextPosition& place) {
    ++place.line;
    place.column = 1;
}

// Counts the bytes, and returns whether the last is a CR that has to wait for what follows.
bool pass(TextPosition& place, std::ptrdiff_t count, const Marks& marks) {
    const unsigned starts = ((1U << count) - 1) & ~marks.goOn;
    place.wide += Words::bitCount(marks.wide);
    const unsigned lastReturn = marks.returns & 1U << (count - 1);
    // A CR ends a line unless an LF follows.
    const unsigned ends = marks.feeds | (marks.returns & ~(marks.feeds >> 1) & ~lastReturn);
    unsigned inLine = starts;
    if (ends != 0) {
        const int lastEnd = 31 - __builtin_clz(ends);
        place.line += Words::bitCount(ends);
        place.column = 1;
        inLine = inLine >> lastEnd >> 1;
    }
    place.column += Words::bitCount(inLine);
    place.characters += Words::bitCount(starts);
    return lastReturn != 0;
}

}  // namespace

const TextPosition& Places::at(std::int64_t offset, std::string_view held, std::int64_t from) {
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
    TextPosition& place = last.place;
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
        if (marks.isPlain()) {
            place.column += count;
            place.characters += count;
            afterReturn = false;
        } else {
            afterReturn = pass(place, count, marks);
        }
        at += count;
    }
    place.offset = offset;
    last.afterReturn = afterReturn;
}

}  // namespace Xml
