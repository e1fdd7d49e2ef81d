#include "xml/text/internal/Utf8.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Xml::Utf8 {

namespace {

// What may follow the first byte of a character of several bytes.
struct Sequence {
    int more;              // how many bytes; 0 where the byte begins no character
    unsigned char lowest;  // the first of them is within these two, the others are any that go on
    unsigned char highest;
};

Sequence sequenceOf(unsigned char lead) {
    if (lead < 0xC2) return {0, 0, 0};  // 0xC0 and 0xC1 would begin longer forms of ASCII
    if (lead < 0xE0) return {1, 0x80, 0xBF};
    if (lead == 0xE0) return {2, 0xA0, 0xBF};  // not the longer forms
    if (lead == 0xED) return {2, 0x80, 0x9F};  // no surrogates
    if (lead < 0xF0) return {2, 0x80, 0xBF};
    if (lead == 0xF0) return {3, 0x90, 0xBF};  // not the longer forms
    if (lead < 0xF4) return {3, 0x80, 0xBF};
    if (lead == 0xF4) return {3, 0x80, 0x8F};  // nothing above U+10FFFF
    return {0, 0, 0};
}

bool isOddControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

class Check {
public:
    Check(const char* from, const char* end) : at(from), to(end) {}

    Checked run() {
        while (ending == Ending::Whole) {
            passAscii();
            if (at == to) break;
            while (ending == Ending::Whole && at != to && !isAscii(*at)) passCharacter();
        }
        return {at, ending, badSize, !hasOthers};
    }

private:
    void passAscii() {
#ifdef __SSE2__
        constexpr std::ptrdiff_t kAtOnce = 16;
        __m128i odd = _mm_setzero_si128();
        for (; to - at >= kAtOnce; at += kAtOnce) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
            const auto are = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
            const __m128i white = _mm_or_si128(_mm_or_si128(are('\t'), are('\n')), are('\r'));
            // As signed numbers, bytes that are not ASCII are below the controls.
            const __m128i oddHere = _mm_andnot_si128(white, _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20)));
            const auto others = static_cast<unsigned>(_mm_movemask_epi8(bytes));
            if (others != 0) {
                const int ascii = __builtin_ctz(others);
                const auto oddMarks = static_cast<unsigned>(_mm_movemask_epi8(oddHere));
                if ((oddMarks & ((1U << ascii) - 1)) != 0) hasOthers = true;
                at += ascii;
                break;
            }
            odd = _mm_or_si128(odd, oddHere);
        }
        if (_mm_movemask_epi8(odd) != 0) hasOthers = true;
#endif
        for (; at != to && isAscii(*at); ++at) {
            if (isOddControl(*at)) hasOthers = true;
        }
    }

    void passCharacter() {
        const auto byte = [this](std::ptrdiff_t i) { return static_cast<unsigned char>(at[i]); };
        const Sequence sequence = sequenceOf(byte(0));
        std::ptrdiff_t size = 1;
        if (sequence.more == 0) return stop(Ending::IllFormed, size);
        for (; size <= sequence.more; ++size) {
            if (size == to - at) return stop(Ending::Incomplete, 0);
            const bool fits = size == 1 ? byte(1) >= sequence.lowest && byte(1) <= sequence.highest : goesOn(at[size]);
            if (!fits) return stop(Ending::IllFormed, size + 1);
        }
        if (byte(0) == 0xEF && byte(1) == 0xBF && byte(2) >= 0xBE) hasOthers = true;
        at += size;
    }

    void stop(Ending how, std::ptrdiff_t bad) {
        ending = how;
        badSize = bad;
    }

    const char* at;
    const char* const to;
    Ending ending = Ending::Whole;
    std::ptrdiff_t badSize = 0;
    bool hasOthers = false;
};

}  // namespace

Checked check(const char* from, const char* to) { return Check(from, to).run(); }

}  // namespace Xml::Utf8
