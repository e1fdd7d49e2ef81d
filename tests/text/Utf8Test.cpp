#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

namespace Utf8 = Xml::Utf8;
using Utf8::Ending;

constexpr char32_t kLast = 0x10FFFF;
bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

std::string textOf(char32_t c) {
    std::string text;
    Utf8::append(text, c);
    return text;
}

struct NaiveChecked {
    std::size_t end;
    Ending ending;
    std::size_t badSize;
    bool onlyChars;
};

// The value that bytes would have as a character of that many bytes, by the plain arithmetic of UTF-8; -1 where the
// bytes do not have its form.
long valueOf(const std::string& bytes) {
    const auto bits = [&](std::size_t i) { return static_cast<long>(static_cast<unsigned char>(bytes[i])); };
    const long lead = bits(0);
    long value = -1;
    const std::size_t size = bytes.size();
    if (size == 1 && lead < 0x80) value = lead;
    if (size == 2 && lead >= 0xC0 && lead < 0xE0) value = lead - 0xC0;
    if (size == 3 && lead >= 0xE0 && lead < 0xF0) value = lead - 0xE0;
    if (size == 4 && lead >= 0xF0 && lead < 0xF8) value = lead - 0xF0;
    for (std::size_t i = 1; i < size && value >= 0; ++i)
        value = bits(i) >= 0x80 && bits(i) < 0xC0 ? value * 64 + bits(i) - 0x80 : -1;
    return value;
}

bool isCharacter(const std::string& bytes) {
    const long value = valueOf(bytes);
    constexpr long kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    return value >= kLeast[bytes.size()] && value <= static_cast<long>(kLast) && (value < 0xD800 || value > 0xDFFF);
}

// Whether some bytes after these make a character: those at the edges of what may follow are tried in every place.
bool mayBecomeCharacter(const std::string& bytes) {
    if (isCharacter(bytes)) return true;
    const bool isForm = (bytes[0] & 0xC0) == 0xC0 && std::all_of(bytes.begin() + 1, bytes.end(), Utf8::goesOn);
    if (bytes.size() >= 4 || !isForm) return false;
    for (const char next : {'\x80', '\x8F', '\x90', '\x9F', '\xA0', '\xBF'}) {
        if (mayBecomeCharacter(bytes + next)) return true;
    }
    return false;
}

NaiveChecked naiveCheck(const std::string& text) {
    std::size_t at = 0;
    bool onlyChars = true;
    while (at < text.size()) {
        std::size_t size = 1;
        while (at + size <= text.size() && !isCharacter(text.substr(at, size))) {
            if (!mayBecomeCharacter(text.substr(at, size))) return {at, Ending::IllFormed, size, onlyChars};
            ++size;
        }
        if (at + size > text.size()) return {at, Ending::Incomplete, 0, onlyChars};
        const long value = valueOf(text.substr(at, size));
        if ((value < 0x20 && value != 9 && value != 10 && value != 13) || value == 0xFFFE || value == 0xFFFF)
            onlyChars = false;
        at += size;
    }
    return {at, Ending::Whole, 0, onlyChars};
}

// Over bytes in memory of just their size, so that the address sanitizer sees any read beside them.
void expectAsNaive(const std::string& text) {
    const auto bytes = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(bytes.get() + 1, text.data(), text.size());
    const char* const from = bytes.get() + 1;
    const auto checked = Utf8::check(from, from + text.size());
    const auto naive = naiveCheck(text);
    ASSERT_EQ(checked.end - from, static_cast<std::ptrdiff_t>(naive.end)) << testing::PrintToString(text);
    ASSERT_EQ(checked.ending, naive.ending) << testing::PrintToString(text);
    ASSERT_EQ(checked.badSize, static_cast<std::ptrdiff_t>(naive.badSize)) << testing::PrintToString(text);
    ASSERT_EQ(checked.onlyChars, naive.onlyChars) << testing::PrintToString(text);
    const Utf8::WellFormed form = Utf8::checkForm(from, from + text.size());
    ASSERT_EQ(form.end, checked.end) << testing::PrintToString(text);
    ASSERT_EQ(form.ending, checked.ending) << testing::PrintToString(text);
    ASSERT_EQ(form.badSize, checked.badSize) << testing::PrintToString(text);
}

TEST(Utf8Test, WritesAndReadsEveryCharacter) {
    for (char32_t c = 0; c <= kLast; ++c) {
        if (isSurrogate(c)) continue;
        const std::string text = textOf(c);
        ASSERT_TRUE(isCharacter(text)) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(valueOf(text), static_cast<long>(c));
        ASSERT_EQ(Utf8::at(text.data()).value, c);
        ASSERT_EQ(Utf8::at(text.data()).size, static_cast<std::ptrdiff_t>(text.size()));
        const auto checked = Utf8::check(text.data(), text.data() + text.size());
        ASSERT_EQ(checked.ending, Ending::Whole) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(checked.end, text.data() + text.size());
    }
}

TEST(Utf8Test, KnowsAllPairsOfBytesAndWhatFollowsThem) {
    std::string text;
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            if (first < 0x80 && second < 0x80) continue;
            text = {static_cast<char>(first), static_cast<char>(second)};
            expectAsNaive(text);
            for (const int third : {0x41, 0x7F, 0x80, 0x90, 0xBE, 0xBF, 0xC0}) {
                expectAsNaive(text + static_cast<char>(third));
                for (const int fourth : {0x41, 0x80, 0xBF, 0xC0})
                    expectAsNaive(text + static_cast<char>(third) + static_cast<char>(fourth));
            }
        }
    }
}

// Bytes at the edges of every class, within text that is not ASCII, over the places where a block of sixteen ends.
TEST(Utf8Test, ChecksThreeBytesAmongOtherCharactersWhereverTheyStand) {
    const unsigned char kEdges[] = {0x1F, 0x41, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBE, 0xBF, 0xC0, 0xC1, 0xC2,
                                    0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF3, 0xF4, 0xF5, 0xFF};
    int illFormed = 0;
    for (const std::string before : {"€€€€", "€€€€a", "€€€€ä", "€€€€€", "€€€€😀"}) {
        for (const std::string after : {"€€€€€€", "\x80€€€€€€"}) {
            for (const auto first : kEdges) {
                for (const auto second : kEdges) {
                    for (const auto third : kEdges) {
                        const std::string bytes = {static_cast<char>(first), static_cast<char>(second),
                                                   static_cast<char>(third)};
                        const std::string text = before + bytes + after;
                        ASSERT_NO_FATAL_FAILURE(expectAsNaive(text));
                        if (Utf8::check(text.data(), text.data() + text.size()).ending == Ending::IllFormed)
                            ++illFormed;
                    }
                }
            }
        }
    }
    EXPECT_GE(illFormed, 100000);
}

TEST(Utf8Test, SaysWhereAndHowBytesAreIllFormed) {
    const struct {
        const char* what;
        std::string text;
        std::size_t end;
        Ending ending;
        std::size_t badSize;
    } kCases[] = {
        {"nothing", "", 0, Ending::Whole, 0},
        {"a longer form of /", "a\xC0\xAF", 1, Ending::IllFormed, 1},
        {"a longer form of three bytes", "a\xE0\x80\xAF", 1, Ending::IllFormed, 2},
        {"a longer form of four bytes", "a\xF0\x80\x80\xAF", 1, Ending::IllFormed, 2},
        {"a surrogate", "ab\xED\xA0\x80", 2, Ending::IllFormed, 2},
        {"above the last", "\xF4\x90\x80\x80", 0, Ending::IllFormed, 2},
        {"a lead that never stands", "\xF5\x80\x80\x80", 0, Ending::IllFormed, 1},
        {"goes on without a lead", "\x80", 0, Ending::IllFormed, 1},
        {"another character within", "\xC3(", 0, Ending::IllFormed, 2},
        {"another character at the third", "\xE2\x82<", 0, Ending::IllFormed, 3},
        {"another character at the fourth", "\xF0\x9F\x98 ", 0, Ending::IllFormed, 4},
        {"incomplete of two", "a\xC3", 1, Ending::Incomplete, 0},
        {"incomplete of three", "a\xE2\x82", 1, Ending::Incomplete, 0},
        {"incomplete of four", "a\xF0\x9F\x98", 1, Ending::Incomplete, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        const char* const from = c.text.data();
        const auto checked = Utf8::check(from, from + c.text.size());
        EXPECT_EQ(checked.end, from + c.end);
        EXPECT_EQ(checked.ending, c.ending);
        EXPECT_EQ(checked.badSize, static_cast<std::ptrdiff_t>(c.badSize));
        expectAsNaive(c.text);
    }
}

TEST(Utf8Test, ChecksRandomTextsAsTheNaiveCheck) {
    const char* const kPieces[] = {"a",
                                   "\n",
                                   "\t",
                                   "\x01",
                                   "<item>some text</item>\n",
                                   "ä",
                                   "€",
                                   "😀",
                                   "\xEF\xBF\xBE",
                                   "\xEF\xBF\xBF",
                                   "\xC3",
                                   "\xE2\x82",
                                   "\xED\xA0\x80",
                                   "\xF0\x9F",
                                   "\x80",
                                   "\xFF",
                                   "\x7F"};
    Xml::test::Dice dice(2);
    int whole = 0;
    for (int round = Xml::test::rounds(60000); round > 0; --round) {
        std::string text;
        const bool broken = dice.chance(50);
        for (auto left = dice.below(30); left > 0; --left) {
            const auto piece = dice.chance(60) ? 4 : dice.below(broken ? std::size(kPieces) : 10);
            text += kPieces[piece];
        }
        if (dice.chance(20) && !text.empty()) text[dice.below(text.size())] = static_cast<char>(dice.below(256));
        expectAsNaive(text);
        if (naiveCheck(text).ending == Ending::Whole) ++whole;
    }
    EXPECT_GE(whole, Xml::test::atLeast(10000));
}

TEST(Utf8Test, SeesEachByteOfALongRun) {
    for (const std::size_t size : {15U, 16U, 63U, 64U, 65U, 150U}) {
        for (std::size_t at = 0; at < size; ++at) {
            for (const std::string odd : {"\x01", "\x7F", "\t", "\x80", "\xFF", "\xC3\xA4", "\xEF\xBF\xBE"}) {
                std::string text(size, 'a');
                text.replace(at, 1, odd);
                ASSERT_NO_FATAL_FAILURE(expectAsNaive(text));
            }
        }
    }
}

}  // namespace
