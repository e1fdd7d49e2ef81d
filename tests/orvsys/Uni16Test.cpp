#include "orvsys/Uni16.h"
#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace {

using OrvSys::PlatformCStringToUni16Char;
using OrvSys::Uni16CharCompare;
using OrvSys::Uni16CharGetLength;
using OrvSys::Uni16CharPartialCompare;
using OrvSys::Uni16CharPartialFindCharacter;
using OrvSys::Uni16CharToPlatformCString;
using OrvSys::Uni16String;
using OrvSys::UTF8ToUni16Char;

static_assert(std::is_convertible_v<decltype(u"//item"), Uni16String>, "a literal is accepted wherever a path is");

constexpr char32_t kLastCodePoint = 0x10FFFF;

bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// UTF-8 written in the plainest way: the bits of the code point, six a byte from the right.
std::string naiveUtf8(char32_t c) {
    std::string tail;
    const std::size_t byteCount = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    for (std::size_t i = 1; i < byteCount; ++i) {
        tail.insert(tail.begin(), static_cast<char>(0x80 + c % 64));
        c /= 64;
    }
    const char32_t leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    return static_cast<char>(leads[byteCount] + c) + tail;
}

Uni16String naiveUtf16(char32_t c) {
    if (c < 0x10000) return Uni16String(1, static_cast<char16_t>(c));
    const char32_t rest = c - 0x10000;
    return Uni16String{static_cast<char16_t>(0xD800 + rest / 0x400), static_cast<char16_t>(0xDC00 + rest % 0x400)};
}

// Takes a sequence for well formed when encoding what it seems to mean gives the same bytes again.
Uni16String naiveDecode(const std::string& bytes) {
    Uni16String result;
    std::size_t i = 0;
    while (i < bytes.size()) {
        std::size_t used = 0;
        for (std::size_t n = 1; n <= 4 && i + n <= bytes.size() && used == 0; ++n) {
            char32_t c = static_cast<unsigned char>(bytes[i]);
            if (n > 1) c %= char32_t(1) << (7 - n);
            for (std::size_t k = 1; k < n; ++k) c = c * 64 + static_cast<unsigned char>(bytes[i + k]) % 64;
            if (c > kLastCodePoint || isSurrogate(c) || naiveUtf8(c) != bytes.substr(i, n)) continue;
            result += naiveUtf16(c);
            used = n;
        }
        if (used == 0) result += u'\xFFFD';
        i += std::max<std::size_t>(used, 1);
    }
    return result;
}

TEST(Uni16Test, EveryCodePointGoesBothWaysUnchanged) {
    std::string allBytes;
    Uni16String allUnits;
    std::size_t differences = 0;
    for (char32_t c = 0; c <= kLastCodePoint; ++c) {
        if (isSurrogate(c)) continue;
        const std::string bytes = naiveUtf8(c);
        const Uni16String units = naiveUtf16(c);
        if (UTF8ToUni16Char(bytes) != units || Uni16CharToPlatformCString(units) != bytes) {
            ADD_FAILURE() << "code point " << static_cast<unsigned long>(c);
            if (++differences == 10) break;
        }
        allBytes += bytes;
        allUnits += units;
    }
    EXPECT_EQ(allUnits.size(), (0x10000u - 0x800u) + 2u * 0x100000u);
    EXPECT_TRUE(UTF8ToUni16Char(allBytes) == allUnits);
    EXPECT_TRUE(Uni16CharToPlatformCString(allUnits) == allBytes);
}

TEST(Uni16Test, EachByteOutsideAWellFormedSequenceBecomesOneReplacementCharacter) {
    const struct {
        const char* name;
        std::string bytes;
        Uni16String units;
    } kCases[] = {
        {"nothing", "", u""},
        {"plain", "item", u"item"},
        {"two, three and four bytes", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"\u00E9\u20AC\U0001F600"},
        {"zero byte is a character", std::string("a\0b", 3), Uni16String(u"a\0b", 3)},
        {"byte order mark is a character", "\xEF\xBB\xBFx", u"\uFEFFx"},
        {"lone continuation byte", "a\x80z", u"a\uFFFDz"},
        {"overlong in two bytes", "\xC0\xAF", u"\uFFFD\uFFFD"},
        {"overlong in two bytes, last", "\xC1\xBF", u"\uFFFD\uFFFD"},
        {"overlong in three bytes", "\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
        {"first of three bytes", "\xE0\xA0\x80", u"\u0800"},
        {"overlong in four bytes", "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"first of four bytes", "\xF0\x90\x80\x80", u"\U00010000"},
        {"last before the surrogates", "\xED\x9F\xBF", u"\uD7FF"},
        {"encoded high surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"encoded surrogate pair", "\xED\xA0\xBD\xED\xB8\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"first behind the surrogates", "\xEE\x80\x80", u"\uE000"},
        {"last code point", "\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
        {"above the last code point", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"lead byte that none has", "\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"bytes that never occur", "\xFE\xFF", u"\uFFFD\uFFFD"},
        {"cut short at the end", "a\xE2\x82", u"a\uFFFD\uFFFD"},
        {"cut short by a character", "\xF0\x9F\x98z", u"\uFFFD\uFFFD\uFFFDz"},
        {"cut short by a sequence", "\xE2\xC3\xA9", u"\uFFFD\u00E9"},
        {"one continuation byte too many", "\xC3\xA9\xA9", u"\u00E9\uFFFD"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(UTF8ToUni16Char(c.bytes), c.units);
        if (c.bytes.find('\0') == std::string::npos) {
            EXPECT_EQ(PlatformCStringToUni16Char(c.bytes.c_str()), c.units);
        }
    }
}

TEST(Uni16Test, DecodesEveryMixOfTellingBytesAsTheNaiveDecoderDoes) {
    const unsigned char kTelling[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2,
                                      0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF3, 0xF4, 0xF5, 0xFF};
    std::string bytes(4, '\0');
    std::size_t differences = 0;
    for (const auto a : kTelling) {
        for (const auto b : kTelling) {
            for (const auto c : kTelling) {
                for (const auto d : kTelling) {
                    bytes = {static_cast<char>(a), static_cast<char>(b), static_cast<char>(c), static_cast<char>(d)};
                    if (UTF8ToUni16Char(bytes) == naiveDecode(bytes)) continue;
                    ADD_FAILURE() << std::hex << int(a) << ' ' << int(b) << ' ' << int(c) << ' ' << int(d);
                    ASSERT_LT(++differences, 10u);
                }
            }
        }
    }
}

TEST(Uni16Test, ALoneSurrogateIsNarrowedToTheReplacementCharacter) {
    const struct {
        const char* name;
        Uni16String units;
        std::string bytes;
    } kCases[] = {
        {"nothing", u"", ""},
        {"zero is a character", Uni16String(u"a\0b", 3), std::string("a\0b", 3)},
        {"pair", {0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
        {"first pair", {0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
        {"last pair", {0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
        {"high at the end", {u'a', 0xD83D}, "a\xEF\xBF\xBD"},
        {"high before a character", {0xD83D, u'z'}, "\xEF\xBF\xBDz"},
        {"low alone", {0xDE00, u'z'}, "\xEF\xBF\xBDz"},
        {"low at the end", {u'a', 0xDFFF}, "a\xEF\xBF\xBD"},
        {"pair the wrong way round", {0xDE00, 0xD83D}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"high before a pair", {0xD83D, 0xD83D, 0xDE00}, "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
        {"pair before a low", {0xD83D, 0xDE00, 0xDE00}, "\xF0\x9F\x98\x80\xEF\xBF\xBD"},
        {"last before and first behind the surrogates", {0xD7FF, 0xE000}, "\xED\x9F\xBF\xEE\x80\x80"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Uni16CharToPlatformCString(c.units), c.bytes);
    }
}

TEST(Uni16Test, APlatformStringEndsAtItsZeroByte) {
    EXPECT_EQ(PlatformCStringToUni16Char("12.500000"), u"12.500000");
    EXPECT_EQ(PlatformCStringToUni16Char("ab\0cd"), u"ab");
    EXPECT_EQ(PlatformCStringToUni16Char(""), u"");
    EXPECT_EQ(PlatformCStringToUni16Char(nullptr), u"");
}

TEST(Uni16Test, LengthCountsUnitsBeforeTheZero) {
    EXPECT_EQ(Uni16CharGetLength(u""), 0u);
    EXPECT_EQ(Uni16CharGetLength(u"axis::node()"), 12u);
    EXPECT_EQ(Uni16CharGetLength(u"\U0001F600"), 2u);
    EXPECT_EQ(Uni16CharGetLength(u"ab\0cd"), 2u);
    EXPECT_EQ(Uni16CharGetLength(nullptr), 0u);
}

TEST(Uni16Test, ComparesByUnitValueAndPutsAPrefixFirst) {
    const struct {
        const char* name;
        Uni16String a, b;
        int order;
    } kCases[] = {
        {"both empty", u"", u"", 0},
        {"equal", u"item", u"item", 0},
        {"empty first", u"", u"a", -1},
        {"prefix first", u"item", u"items", -1},
        {"prefix first, with a zero behind", u"a", Uni16String(u"a\0", 2), -1},
        {"capital first", u"B", u"a", -1},
        {"far apart", u"\u0001", u"\uFFFF", -1},
        {"high byte decides", u"\u01FF", u"\u0200", -1},
        {"difference behind a zero", Uni16String(u"a\0b", 3), Uni16String(u"a\0c", 3), -1},
        {"by unit, not by code point", u"\U0001F600", u"\uFFFD", -1},
        {"first difference decides", u"abz", u"aca", -1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Uni16CharCompare(c.a, c.b), c.order);
        EXPECT_EQ(Uni16CharCompare(c.b, c.a), -c.order);
    }
}

TEST(Uni16Test, PartialCompareLooksAtTheGivenNumberOfUnitsAlone) {
    const struct {
        const char* name;
        Uni16String a, b;
        std::size_t units;
        int order;
    } kCases[] = {
        {"none", u"a", u"b", 0, 0},
        {"equal so far", u"childX", u"childY", 5, 0},
        {"difference in the last", u"childX", u"childY", 6, -1},
        {"difference before the last", u"chiAd", u"chiBa", 5, -1},
        {"by unit value", u"\u01FF", u"\u0200", 1, -1},
        {"difference behind a zero", Uni16String(u"a\0b", 3), Uni16String(u"a\0c", 3), 3, -1},
        {"stops at the first difference", u"ab", u"abc", 100, -1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Uni16CharPartialCompare(c.a.c_str(), c.b.c_str(), c.units), c.order);
        EXPECT_EQ(Uni16CharPartialCompare(c.b.c_str(), c.a.c_str(), c.units), -c.order);
    }
    EXPECT_EQ(Uni16CharPartialCompare(nullptr, nullptr, 0), 0);
}

TEST(Uni16Test, PartialFindGivesTheFirstPlaceAmongTheGivenUnits) {
    const std::ptrdiff_t kAbsent = -1;
    const struct {
        const char* name;
        Uni16String text;
        std::size_t units;
        char16_t wanted;
        std::ptrdiff_t place;
    } kCases[] = {
        {"at the start", u"/a/b", 4, u'/', 0},
        {"the first of two", u"a/b/c", 5, u'/', 1},
        {"the last unit", u"ab/", 3, u'/', 2},
        {"just behind the units", u"ab/", 2, u'/', kAbsent},
        {"absent", u"abc", 3, u'/', kAbsent},
        {"no units", u"abc", 0, u'a', kAbsent},
        {"zero inside", Uni16String(u"a\0b", 3), 3, u'\0', 1},
        {"behind a zero", Uni16String(u"a\0b", 3), 3, u'b', 2},
        {"same low byte, other high byte", u"\u2F2F\u002F", 2, u'/', 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const char16_t* found = Uni16CharPartialFindCharacter(c.text.data(), c.units, c.wanted);
        EXPECT_EQ(found == nullptr ? kAbsent : found - c.text.data(), c.place);
    }
    EXPECT_EQ(Uni16CharPartialFindCharacter(nullptr, 0, u'a'), nullptr);
}

}  // namespace
