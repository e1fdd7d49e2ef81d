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

// With or without a look at which characters they are.
template <bool LooksAtChars>
class Check {
public:
    Check(const char* from, const char* end) : at(from), to(end) {}

    Checked run() {
        while (ending == Ending::Whole) {
            passAscii();
            if (at == to) break;
#ifdef __SSE2__
            passBlocks();
#endif
            while (ending == Ending::Whole && at != to && !isAscii(*at)) passCharacter();
        }
        return {{at, ending, badSize}, !hasOthers};
    }

private:
    void passAscii() {
#ifdef __SSE2__
        if (!passAsciiBlocks()) return;
#endif
        for (; at != to && isAscii(*at); ++at) {
            if (LooksAtChars && isOddControl(*at)) hasOthers = true;
        }
    }

#ifdef __SSE2__
    static constexpr std::ptrdiff_t kBlockSize = 16;
    static __m128i load(const char* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }

    // Controls aside from white space; what is not ASCII counts as well.
    static __m128i oddAmong(__m128i bytes) {
        const auto are = [&bytes](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
        const __m128i white = _mm_or_si128(_mm_or_si128(are('\t'), are('\n')), are('\r'));
        // As signed numbers, bytes that are not ASCII are below the controls.
        return _mm_andnot_si128(white, _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20)));
    }

    // As far as whole blocks are ASCII, and up to the first byte that is not; false at that.
    bool passAsciiBlocks() {
        constexpr std::ptrdiff_t kAtOnce = 4 * kBlockSize;
        for (; to - at >= kAtOnce; at += kAtOnce) {
            const __m128i first = load(at), second = load(at + 16), third = load(at + 32), fourth = load(at + 48);
            const auto either = [&](const auto& of) {
                return _mm_or_si128(_mm_or_si128(of(first), of(second)), _mm_or_si128(of(third), of(fourth)));
            };
            if (_mm_movemask_epi8(either([](__m128i block) { return block; })) != 0) break;
            if (LooksAtChars && _mm_movemask_epi8(either(oddAmong)) != 0) hasOthers = true;
        }
        for (; to - at >= kBlockSize; at += kBlockSize) {
            const __m128i bytes = load(at);
            const auto others = static_cast<unsigned>(_mm_movemask_epi8(bytes));
            const int ascii = others != 0 ? __builtin_ctz(others) : static_cast<int>(kBlockSize);
            if (LooksAtChars) {
                const auto odd = static_cast<unsigned>(_mm_movemask_epi8(oddAmong(bytes)));
                if ((odd & ((1U << ascii) - 1)) != 0) hasOthers = true;
            }
            if (others == 0) continue;
            at += ascii;
            return false;
        }
        return true;
    }

    // From the beginning of a character on, sixteen bytes at a time as long as they are well-formed and some of them
    // not ASCII. Each byte is looked at together with the three before it, so that nothing depends on where characters
    // begin. It ends where a character begins; one that the last bytes cut off is left.
    void passBlocks() {
        if (to - at < kBlockSize) return;
        const __m128i first = load(at);
        if (!passBlock(first, _mm_slli_si128(first, 1), _mm_slli_si128(first, 2), _mm_slli_si128(first, 3))) return;
        for (at += kBlockSize; to - at >= kBlockSize; at += kBlockSize) {
            const __m128i bytes = load(at);
            // After a whole character ASCII is passed faster.
            if (isAscii(at[-1]) && _mm_movemask_epi8(bytes) == 0) return;
            if (!passBlock(bytes, load(at - 1), load(at - 2), load(at - 3))) break;
        }
        const char* lead = at - 1;
        while (goesOn(*lead)) --lead;
        if (!isAscii(*lead) && at - lead <= sequenceOf(static_cast<unsigned char>(*lead)).more) at = lead;
    }

    // Sixteen bytes, and those that stand one, two and three places before each. False: they are not well-formed.
    //
    // Each byte after the first ones of its character goes on, and no other does. The rest of the rules is about few
    // bytes, which most blocks do not have.
    [[gnu::always_inline]] bool passBlock(__m128i bytes, __m128i before1, __m128i before2, __m128i before3) {
        const auto all = [](int byte) { return _mm_set1_epi8(static_cast<char>(byte)); };
        const auto atLeast = [&all](__m128i some, int byte) { return _mm_subs_epu8(some, all(byte - 1)); };  // not 0
        const auto either = [](__m128i a, __m128i b) { return _mm_or_si128(a, b); };

        const __m128i afterLead =
            either(atLeast(before1, 0xC0), either(atLeast(before2, 0xE0), atLeast(before3, 0xF0)));
        const __m128i isAlone = _mm_cmpeq_epi8(afterLead, _mm_setzero_si128());
        // One of the two, each in its place.
        const __m128i rightOnes = _mm_xor_si128(isAlone, _mm_cmplt_epi8(bytes, all(0xC0)));
        if (_mm_movemask_epi8(rightOnes) != 0xFFFF) return false;

        const __m128i highest = _mm_max_epu8(bytes, before1);
        __m128i isRare = _mm_cmpeq_epi8(_mm_max_epu8(highest, all(0xF0)), highest);
        isRare = either(isRare, _mm_cmpeq_epi8(_mm_and_si128(bytes, all(0xFE)), all(0xC0)));
        isRare = either(isRare, either(_mm_cmpeq_epi8(before1, all(0xE0)), _mm_cmpeq_epi8(before1, all(0xED))));
        isRare = either(isRare, _mm_cmpeq_epi8(before2, all(0xEF)));
        isRare = either(isRare, _mm_cmpeq_epi8(_mm_max_epu8(bytes, all(0x1F)), all(0x1F)));
        return _mm_movemask_epi8(isRare) == 0 || passRare(bytes, before1, before2);
    }

    // The same for a block with bytes that some rule is about, where those that go on are in their places.
    bool passRare(__m128i bytes, __m128i before1, __m128i before2) {
        const auto all = [](int byte) { return _mm_set1_epi8(static_cast<char>(byte)); };
        const auto pair = [&](int lead, __m128i second) {
            return _mm_and_si128(_mm_cmpeq_epi8(before1, all(lead)), second);
        };
        const auto below = [&](int byte) { return _mm_cmplt_epi8(bytes, all(byte)); };  // of bytes that go on
        const auto either = [](__m128i a, __m128i b) { return _mm_or_si128(a, b); };

        __m128i wrong = _mm_cmpeq_epi8(_mm_and_si128(bytes, all(0xFE)), all(0xC0));
        wrong = either(wrong, pair(0xE0, below(0xA0)));
        wrong = either(wrong, _mm_andnot_si128(below(0xA0), _mm_cmpeq_epi8(before1, all(0xED))));
        wrong = either(wrong, pair(0xF0, below(0x90)));
        wrong = either(wrong, _mm_andnot_si128(below(0x90), _mm_cmpeq_epi8(before1, all(0xF4))));
        wrong = either(wrong, _mm_cmpeq_epi8(_mm_max_epu8(bytes, all(0xF5)), bytes));
        if (_mm_movemask_epi8(wrong) != 0) return false;
        if (LooksAtChars) noteOthers(bytes, before1, before2);
        return true;
    }

    void noteOthers(__m128i bytes, __m128i before1, __m128i before2) {
        const auto all = [](int byte) { return _mm_set1_epi8(static_cast<char>(byte)); };
        const auto either = [](__m128i a, __m128i b) { return _mm_or_si128(a, b); };

        const auto are = [&](int byte) { return _mm_cmpeq_epi8(bytes, all(byte)); };
        const __m128i white = either(either(are('\t'), are('\n')), are('\r'));
        const __m128i isControl = _mm_cmpeq_epi8(_mm_max_epu8(bytes, all(0x1F)), all(0x1F));
        const __m128i isHighest = _mm_cmpeq_epi8(_mm_max_epu8(bytes, all(0xBE)), bytes);
        const __m128i isNone = _mm_and_si128(_mm_and_si128(_mm_cmpeq_epi8(before2, all(0xEF)), isHighest),
                                             _mm_cmpeq_epi8(before1, all(0xBF)));
        if (_mm_movemask_epi8(either(_mm_andnot_si128(white, isControl), isNone)) != 0) hasOthers = true;
    }
#endif

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
        if (LooksAtChars && byte(0) == 0xEF && byte(1) == 0xBF && byte(2) >= 0xBE) hasOthers = true;
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

Checked check(const char* from, const char* to) { return Check<true>(from, to).run(); }

WellFormed checkForm(const char* from, const char* to) { return Check<false>(from, to).run(); }

}  // namespace Xml::Utf8
