#include "xml/standard/internal/LineRuns.h"

#include "xml/text/internal/Utf8.h"
#include "xml/text/internal/Words.h"
#include <algorithm>
#include <cstddef>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Xml {

namespace {

bool isPlain(char c) { return Utf8::isAscii(c) && c != '\n' && c != '\r'; }

#ifdef __SSE2__
constexpr std::ptrdiff_t kAtOnce = 16;

__m128i bytesAt(const char* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }

unsigned marksOf(__m128i found) { return static_cast<unsigned>(_mm_movemask_epi8(found)); }

__m128i lineEndsAmong(__m128i bytes) {
    const auto are = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    return _mm_or_si128(are('\n'), are('\r'));
}

// Those that are not the first of a character.
__m128i laterAmong(__m128i bytes) { return _mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(0xC0))); }
#endif

// The first byte that is not ASCII, or a line feed or carriage return.
const char* plainEnd(const char* from, const char* to) {
#ifdef __SSE2__
    for (; to - from >= kAtOnce; from += kAtOnce) {
        const __m128i bytes = bytesAt(from);
        const unsigned others = marksOf(_mm_or_si128(lineEndsAmong(bytes), bytes));
        if (others != 0) return from + __builtin_ctz(others);
    }
#endif
    while (from != to && isPlain(*from)) ++from;
    return from;
}

}  // namespace

LineRuns::LineRuns(std::string_view itsText, std::int64_t shift) : text(itsText) {
    now.shift = shift;
    now.to = 0;
}

// What ends the run, as far as the offset: the next one begins after it. Between CR and LF it is still the same line.
void LineRuns::passOther(std::int64_t offset) {
    const char* const at = text.data() + now.to;
    if (*at != '\r') {
        now.from = now.to + passCharacters(at, offset - now.to);
    } else if (at + 1 != text.data() + text.size() && at[1] == '\n') {
        now.from = now.to + 1;
    } else {
        beginLine();
    }
}

// After the byte that ends the run.
[[gnu::always_inline]] inline void LineRuns::beginLine() {
    now.from = now.lineBegin = now.to + 1;
    if (now.line < kMost) ++now.line;
}

// How many of so many bytes stand before the end of the line; those of one character count as one in it.
[[gnu::always_inline]] inline std::ptrdiff_t LineRuns::passCharacters(const char* from, std::ptrdiff_t count) {
    const char* at = from;
    const char* const to = from + count;
#ifdef __SSE2__
    const char* const end = text.data() + text.size();
    for (unsigned ends = 0; at != to && ends == 0 && end - at >= kAtOnce;) {
        const __m128i bytes = bytesAt(at);
        ends = marksOf(lineEndsAmong(bytes));
        std::ptrdiff_t taken = std::min(to - at, kAtOnce);
        if (ends != 0) taken = std::min<std::ptrdiff_t>(taken, __builtin_ctz(ends));
        now.lineBegin += Words::bitCount(marksOf(laterAmong(bytes)) & ((1U << taken) - 1));
        at += taken;
    }
#endif
    for (; at != to && *at != '\n' && *at != '\r'; ++at) now.lineBegin += Utf8::goesOn(*at) ? 1 : 0;
    return at - from;
}

// Not as far as the line goes, which may be long, and nothing more may be asked. Columns stay within what they may be:
// from the largest on all are the same.
[[gnu::always_inline]] inline void LineRuns::lookAhead() {
    constexpr std::ptrdiff_t kMostAhead = 1024;
    const char* const from = text.data() + now.from;
    const char* const end = text.data() + text.size();
    now.to = now.from + (plainEnd(from, end - from > kMostAhead ? from + kMostAhead : end) - from);
    if (now.to - now.lineBegin < kMost) return;
    now.lineBegin = now.from - (kMost - 1);
    now.to = now.from;
}

const LineRun& LineRuns::run(std::int64_t offset) {
    if (offset < now.from) {
        now.from = now.to = now.lineBegin = 0;
        now.line = 1;
    }
    while (now.to < offset) {
        if (text[static_cast<std::size_t>(now.to)] == '\n') {
            beginLine();
        } else {
            passOther(offset);
        }
        lookAhead();
    }
    return now;
}

}  // namespace Xml
