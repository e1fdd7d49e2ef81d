#include "xml/text/Names.h"
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using namespace std::string_literals;

TEST(NamesTest, SortsEachOfThe256BytesIntoItsClasses) {
    const std::string kWhite = "\t\n\r ";
    const std::string kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const std::string kDigits = "0123456789";
    const std::string kMarks = "-.:_";
    const auto in = [](char c, const std::string& bytes) { return bytes.find(c) != std::string::npos; };
    for (int byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        const char c = static_cast<char>(byte);
        EXPECT_EQ(Xml::isWhite(c), in(c, kWhite));
        EXPECT_EQ(Xml::isLetter(c), in(c, kLetters));
        EXPECT_EQ(Xml::isDigit(c), in(c, kDigits));
        EXPECT_EQ(Xml::isNameChar(c), in(c, kLetters) || in(c, kDigits) || in(c, kMarks));
        EXPECT_EQ(Xml::isName(&c, 1), in(c, kLetters) || c == '_' || c == ':');
    }
}

TEST(NamesTest, FormFeedAndVerticalTabAreNotWhite) {
    EXPECT_FALSE(Xml::isWhite('\f'));
    EXPECT_FALSE(Xml::isWhite('\v'));
}

TEST(NamesTest, AcceptsNamesAndNoOtherTexts) {
    const struct {
        const char* rule;
        std::string text;
        bool isName;
    } kCases[] = {
        {"empty", "", false},
        {"underscore alone", "_", true},
        {"colon alone", ":", true},
        {"letter alone", "Z", true},
        {"every mark after a letter", "a-b.c:d_e", true},
        {"marks and digits to the end", "a-.:_0", true},
        {"digit first", "1a", false},
        {"dash first", "-a", false},
        {"point first", ".a", false},
        {"digit alone", "7", false},
        {"blank inside", "a b", false},
        {"blank before", " a", false},
        {"blank after", "a ", false},
        {"byte above 127 first", "\xc3\xa9", false},
        {"byte above 127 inside", "caf\xc3\xa9s", false},
        {"byte above 127 last", "a\xff", false},
        {"zero byte first", "\0a"s, false},
        {"zero byte inside", "a\0b"s, false},
        {"zero byte last", "a\0"s, false},
        {"punctuation inside", "a/b", false},
        {"less-than first", "<a", false},
        {"hash first", "#PCDATA", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.rule);
        EXPECT_EQ(Xml::isName(c.text), c.isName);
        EXPECT_EQ(Xml::isName(c.text.data(), static_cast<int>(c.text.size())), c.isName);
    }
}

TEST(NamesTest, ReadsExactlyAsManyBytesAsItsLengthSays) {
    const char text[] = "ab c";
    EXPECT_TRUE(Xml::isName(text, 1));
    EXPECT_TRUE(Xml::isName(text, 2));
    EXPECT_FALSE(Xml::isName(text, 3));
    EXPECT_FALSE(Xml::isName(text, 4));
    EXPECT_FALSE(Xml::isName(text, 0));
    EXPECT_FALSE(Xml::isName(text, -1));
    // Without a zero byte at its end.
    const char bare[] = {'a', 'b'};
    EXPECT_TRUE(Xml::isName(bare, 2));
    // After its last byte the text has a zero byte, which is one too many.
    EXPECT_FALSE(Xml::isName("ab", 3));
}

TEST(NamesTest, AgreesWithTheRuleByteByByte) {
    std::mt19937 random(11);
    const std::string kBytes = "ab:_-.9Z \xe9\0/"s;
    int names = 0;
    for (int i = 0; i < 50'000; ++i) {
        std::string text;
        const std::size_t length = random() % 6;
        for (std::size_t k = 0; k < length; ++k) text += kBytes[random() % kBytes.size()];
        bool wanted = !text.empty() && (Xml::isLetter(text[0]) || text[0] == '_' || text[0] == ':');
        for (const char c : text) wanted = wanted && Xml::isNameChar(c);
        ASSERT_EQ(Xml::isName(text), wanted) << text;
        names += wanted ? 1 : 0;
    }
    EXPECT_GT(names, 1000);
}

}  // namespace
