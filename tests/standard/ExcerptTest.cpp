#include "xml/standard/internal/Excerpt.h"

#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

const std::string kReplaced = "\xEF\xBF\xBD";

TEST(ExcerptTest, FindsWhatMovesTheCursor) {
    for (const char32_t c :
         {0x00, 0x09, 0x0A, 0x1B, 0x1F, 0x7F, 0x80, 0x85, 0x9F, 0x2028, 0x2029, 0x202A, 0x202E, 0x2066, 0x2069})
        EXPECT_TRUE(isControl(c)) << static_cast<unsigned>(c);
    for (const char32_t c : {0x20, 0x7E, 0xA0, 0x2027, 0x202F, 0x2065, 0x206A, 0xFFFD, 0x1F600})
        EXPECT_FALSE(isControl(c)) << static_cast<unsigned>(c);
}

TEST(ExcerptTest, ShowsControlCharactersAndBytesThatAreNoneAsReplaced) {
    EXPECT_EQ(visible("plain \xC3\xB6"), "plain \xC3\xB6");
    EXPECT_EQ(visible("a\nb\tc\x1B"), "a" + kReplaced + "b" + kReplaced + "c" + kReplaced);
    EXPECT_EQ(visible("\xC2\x85|\xE2\x80\xA8|\xE2\x80\xA9|\xC2\xA0"),
              kReplaced + "|" + kReplaced + "|" + kReplaced + "|\xC2\xA0");
    EXPECT_EQ(visible("a\xC3"), "a" + kReplaced);
    EXPECT_EQ(visible("\xFF\xE2\x82x\x80"), kReplaced + kReplaced + kReplaced + "x" + kReplaced);
    EXPECT_EQ(visible(""), "");
}

TEST(ExcerptTest, CutsLongWordsInMessages) {
    const std::string fits(80, 'x');
    EXPECT_EQ(messageLine("a " + fits + "  b "), "a " + fits + "  b ");
    EXPECT_EQ(messageLine("a <" + fits + "> b"), "a <" + std::string(44, 'x') + "..." + std::string(29, 'x') + "> b");
    std::string wide;
    for (int i = 0; i < 100; ++i) wide += "\xE2\x82\xAC";
    EXPECT_EQ(messageLine(wide), wide.substr(0, 135) + "..." + wide.substr(0, 90));
    EXPECT_EQ(messageLine(wide.substr(0, 240)), wide.substr(0, 240));
    EXPECT_EQ(messageLine("a\nb"), "a" + kReplaced + "b");
}

TEST(ExcerptTest, ShowsTheLineAndACaret) {
    EXPECT_EQ(excerptOf("1\n\tx\xC3\xB6y\r\n2", 6), "\tx\xC3\xB6y\n\t  ^");
    EXPECT_EQ(excerptOf("1\r2", 2), "2\n^");
    EXPECT_EQ(excerptOf("1\n", 2), "\n^");
    EXPECT_EQ(excerptOf("", 0), "\n^");
    EXPECT_EQ(excerptOf("a\xC2\x85"
                        "b\xE2\x80\xA8"
                        "c\x01",
                        7),
              "a" + kReplaced + "b" + kReplaced + "c" + kReplaced + "\n    ^");
}

TEST(ExcerptTest, ShowsAtMost160CharactersOfALine) {
    std::string line;
    for (int i = 0; i < 1000; ++i) line += "\xC3\xB6";
    const std::string early = excerptOf(line, 20);
    EXPECT_EQ(early, line.substr(0, 320) + "\n" + std::string(10, ' ') + "^");
    const std::string late = excerptOf(line, 1000);
    EXPECT_EQ(late, line.substr(0, 320) + "\n" + std::string(80, ' ') + "^");
    EXPECT_EQ(excerptOf(line, line.size()), line.substr(0, 160) + "\n" + std::string(80, ' ') + "^");
}

// --- In problems ---

Problem problemOf(const std::string& text, const ReadOptions& options = {}) {
    const ReadResult result = readText(text, options);
    EXPECT_EQ(result.problems().size(), 1U);
    return result ? Problem() : result.problems()[0];
}

// Whatever the document, a message is one line of visible characters, and not much longer than its words.
TEST(ExcerptTest, HoldsForProblems) {
    const std::string name(1000000, 'n');
    const std::string kTexts[] = {
        "<a \xC2\x85='1'/>",
        "<a>\xE2\x80\xA8</b\xE2\x80\xA9></a>",
        "<a></\xC2\x9B>",
        "<a>\x1B[2J</a>",
        "<" + name + "></b>",
        "<a></" + name + ">",
        "<a " + name + "='' " + name + "=''/>",
        "<" + name + ":a/>",
        "<a>&" + name + ";</a>",
        "<a>&#" + std::string(100000, '0') + ";</a>",
        "<!DOCTYPE a [<!ENTITY " + name + " '<'>]><a>&" + name + ";</a>",
        "<?xml version='1.0' encoding='" + name + "'?><a/>",
        "<a>" + name + "\x01",
    };
    for (const std::string& text : kTexts) {
        const Problem problem = problemOf(text);
        SCOPED_TRACE(problem.text);
        EXPECT_LT(problem.text.size(), 400U);
        EXPECT_EQ(visible(problem.text), problem.text);
        const std::size_t lineEnd = problem.excerpt.find('\n');
        EXPECT_LE(lineEnd, 640U);
        EXPECT_EQ(visible(problem.excerpt.substr(0, lineEnd)), problem.excerpt.substr(0, lineEnd));
        EXPECT_EQ(problem.toString().find('\n'), std::string::npos);
    }
    EXPECT_NE(problemOf("<a \xC2\x85='1'/>").text.find("U+0085"), std::string::npos);
    ReadOptions options;
    options.encoding = "no\nsuch";
    EXPECT_EQ(visible(problemOf("<a/>", options).text), problemOf("<a/>", options).text);
}

}  // namespace
}  // namespace Xml::test
