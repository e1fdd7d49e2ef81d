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

unsigned lineEndsAmong(__m128i bytes) {
    const auto are = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(are('\n'), are('\r'))));
}
#endif

// The first byte that is not ASCII, or a line feed or carriage return.
const char* plainEnd(const char* from, const char* to) {
#ifdef __SSE2__
    for (; to - from >= kAtOnce; from += kAtOnce) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const unsigned others = lineEndsAmong(bytes) | static_cast<unsigned>(_mm_movemask_epi8(bytes));
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

const LineRun& LineRuns::run(std::int64_t offset) {
    if (offset < now.from) {
        now.from = now.to = now.lineBegin = 0;
        lines = now.line = 1;
    }
    while (now.to < offset) {
        pass(offset);
        lookAhead();
    }
    return now;
}

// What ends the run, as far as the offset: the next one begins after it. Between CR and LF it is still the same line.
void LineRuns::pass(std::int64_t offset) {
    const char* const at = text.data() + now.to;
    const bool isLast = static_cast<std::size_t>(now.to) + 1 == text.size();
    if (*at == '\n' || (*at == '\r' && (isLast || at[1] != '\n'))) {
        now.from = now.lineBegin = now.to + 1;
        now.line = static_cast<int>(std::min(++lines, kMost));
    } else if (*at == '\r' || !passCharacters(at, offset - now.to)) {
        const std::ptrdiff_t size = Utf8::at(at).size;
        now.from = now.to + size;
        now.lineBegin += size - 1;
    }
}

// So many bytes, as far as no line ends in them and some of each sixteen are not ASCII. False: one is passed at a time.
bool LineRuns::passCharacters(const char* from, std::ptrdiff_t count) {
    const char* at = from;
#ifdef __SSE2__
    const char* const end = text.data() + text.size();
    while (at != from + count && end - at >= kAtOnce) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        std::ptrdiff_t taken = std::min(from + count - at, kAtOnce);
        if (const unsigned ends = lineEndsAmong(bytes)) taken = std::min<std::ptrdiff_t>(taken, __builtin_ctz(ends));
        const auto marks = [taken](__m128i found) {
            return static_cast<unsigned>(_mm_movemask_epi8(found)) & ((1U << taken) - 1);
        };
        if (marks(bytes) == 0) break;
        now.lineBegin += Words::bitCount(marks(_mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(0xC0)))));
        at += taken;
    }
    for (; at != from + count && Utf8::goesOn(*at); ++at) ++now.lineBegin;  // the last character is whole
#else
    static_cast<void>(count);
#endif
    now.from = now.to + (at - from);
    return at != from;
}

// Not as far as the line goes, which may be long, and nothing more may be asked. Columns stay within what they may be:
// from the largest on all are the same.
void LineRuns::lookAhead() {
    constexpr std::size_t kMostAhead = 1024;
    const std::string_view rest = text.substr(static_cast<std::size_t>(now.from), kMostAhead);
    now.to = now.from + (plainEnd(rest.data(), rest.data() + rest.size()) - rest.data());
    if (now.to - now.lineBegin < kMost) return;
    now.lineBegin = now.from - (kMost - 1);
    now.to = now.from;
}

}  // namespace Xml
