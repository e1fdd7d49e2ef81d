#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/text/internal/StandardNames.h"
#include "xml/text/internal/Utf8.h"
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace Names = Xml::StandardNames;
namespace Utf8 = Xml::Utf8;

using Ranges = std::initializer_list<std::pair<char32_t, char32_t>>;

bool isIn(const Ranges& ranges, char32_t c) {
    for (const auto& range : ranges) {
        if (c >= range.first && c <= range.second) return true;
    }
    return false;
}

// The productions, character by character as they stand there.
bool naiveChar(char32_t c) {
    return isIn({{0x9, 0x9}, {0xA, 0xA}, {0xD, 0xD}, {0x20, 0xD7FF}, {0xE000, 0xFFFD}, {0x10000, 0x10FFFF}}, c);
}
bool naiveNameStart(char32_t c) {
    return isIn({{':', ':'},
                 {'A', 'Z'},
                 {'_', '_'},
                 {'a', 'z'},
                 {0xC0, 0xD6},
                 {0xD8, 0xF6},
                 {0xF8, 0x2FF},
                 {0x370, 0x37D},
                 {0x37F, 0x1FFF},
                 {0x200C, 0x200D},
                 {0x2070, 0x218F},
                 {0x2C00, 0x2FEF},
                 {0x3001, 0xD7FF},
                 {0xF900, 0xFDCF},
                 {0xFDF0, 0xFFFD},
                 {0x10000, 0xEFFFF}},
                c);
}
bool naiveNameChar(char32_t c) {
    return naiveNameStart(c) ||
           isIn({{'-', '-'}, {'.', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}}, c);
}

constexpr char32_t kLast = 0x10FFFF;
bool isSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

std::string textOf(const std::vector<char32_t>& characters) {
    std::string text;
    for (const char32_t c : characters) Utf8::append(text, c);
    return text;
}

TEST(StandardNamesTest, SortEveryCodePointIntoItsClasses) {
    for (char32_t c = 0; c <= kLast + 1; ++c) {
        ASSERT_EQ(Names::isChar(c), naiveChar(c)) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(Names::isNameStart(c), naiveNameStart(c)) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(Names::isNameChar(c), naiveNameChar(c)) << std::hex << static_cast<unsigned>(c);
    }
}

TEST(StandardNamesTest, EndAtEveryCodePointThatIsNoneOfTheirs) {
    for (char32_t c = 0; c <= kLast; ++c) {
        if (isSurrogate(c)) continue;
        const std::string text = "a" + textOf({c}) + "b";
        const char* const from = text.data();
        const char* const to = from + text.size();
        ASSERT_EQ(Names::nameEnd(from, to), naiveNameChar(c) ? to : from + 1) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(Names::nameEnd(from + 1, to), naiveNameStart(c) ? to : from + 1);
        ASSERT_EQ(Names::nmtokenEnd(from + 1, to), naiveNameChar(c) ? to : from + 1);
        ASSERT_EQ(Names::charsEnd(from, to), naiveChar(c) ? to : from + 1);
    }
}

TEST(StandardNamesTest, AreNamesTokensAndQualifiedNamesOrNot) {
    const struct {
        const char* text;
        bool isName;
        bool isNmtoken;
        bool isNCName;
        bool isQName;
    } kCases[] = {
        {"", false, false, false, false},
        {"a", true, true, true, true},
        {"größe", true, true, true, true},
        {"名前", true, true, true, true},
        {"_", true, true, true, true},
        {"1", false, true, false, false},
        {"-a", false, true, false, false},
        {".a", false, true, false, false},
        {"a-1.b_", true, true, true, true},
        {"a b", false, false, false, false},
        {" a", false, false, false, false},
        {"a ", false, false, false, false},
        {":", true, true, false, false},
        {":a", true, true, false, false},
        {"a:", true, true, false, false},
        {"a:b", true, true, false, true},
        {"ä:ö", true, true, false, true},
        {"a:1", true, true, false, false},
        {"a:-b", true, true, false, false},
        {"a:\xC2\xB7", true, true, false, false},
        {"a:b:c", true, true, false, false},
        {"a::b", true, true, false, false},
        {"1:b", false, true, false, false},
        {"\xC3\x97", false, false, false, false},
        {"a\xC3\x97", false, false, false, false},
        {"\xF0\x90\x80\x80", true, true, true, true},
        {"\xF3\xB0\x80\x80", false, false, false, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Names::isName(c.text), c.isName);
        EXPECT_EQ(Names::isNmtoken(c.text), c.isNmtoken);
        EXPECT_EQ(Names::isNCName(c.text), c.isNCName);
        EXPECT_EQ(Names::qNameOf(c.text).has_value(), c.isQName);
        if (c.isName) {
            EXPECT_EQ(Names::qNameOfName(c.text).has_value(), c.isQName);
        }
    }
}

TEST(StandardNamesTest, ComeApartAtTheColon) {
    const auto both = Names::qNameOf("größe:länge");
    ASSERT_TRUE(both);
    EXPECT_EQ(both->prefix, "größe");
    EXPECT_EQ(both->local, "länge");
    const auto local = Names::qNameOf("a");
    ASSERT_TRUE(local);
    EXPECT_EQ(local->prefix, "");
    EXPECT_EQ(local->local, "a");
}

TEST(StandardNamesTest, EndWhereTheNaiveOnesEndInAnyText) {
    constexpr char32_t kCharacters[] = {'a',    'z',    ':',     '-',     '7',     ' ',    '<',
                                        0xB7,   0xD7,   0xE4,    0x300,   0x2070,  0x4E00, 0xFFFE,
                                        0xFFFF, 0xFFFD, 0x1F600, 0xEFFFF, 0xF0000, 0x1,    '\t'};
    Xml::test::Dice dice(1);
    for (int round = Xml::test::rounds(20000); round > 0; --round) {
        std::vector<char32_t> characters;
        for (auto left = dice.below(40); left > 0; --left)
            characters.push_back(dice.chance(70) ? U'b' : kCharacters[dice.below(std::size(kCharacters))]);
        const std::string text = textOf(characters);
        const auto endOf = [&](bool (*first)(char32_t), bool (*next)(char32_t)) {
            std::vector<char32_t> taken;
            for (const char32_t c : characters) {
                if (!(taken.empty() ? first(c) : next(c))) break;
                taken.push_back(c);
            }
            return text.data() + textOf(taken).size();
        };
        const char* const to = text.data() + text.size();
        EXPECT_EQ(Names::nameEnd(text.data(), to), endOf(naiveNameStart, naiveNameChar));
        EXPECT_EQ(Names::nmtokenEnd(text.data(), to), endOf(naiveNameChar, naiveNameChar));
        EXPECT_EQ(Names::charsEnd(text.data(), to), endOf(naiveChar, naiveChar));
    }
}

}  // namespace
