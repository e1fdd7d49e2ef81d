#include "OutPrograms.h"
#include "xml/stream/OutStream.h"
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <type_traits>

namespace {

using namespace std::string_literals;
using Xml::OutStream;
using Xml::test::BareOutStream;
using Xml::test::runOutProgram;

TEST(OutStreamTest, IsABaseThatCannotBeCopied) {
    EXPECT_TRUE(std::is_abstract_v<OutStream>);
    EXPECT_TRUE(std::has_virtual_destructor_v<OutStream>);
    EXPECT_FALSE(std::is_copy_constructible_v<BareOutStream>);
    EXPECT_FALSE(std::is_copy_assignable_v<BareOutStream>);
    EXPECT_TRUE(BareOutStream().isValid());
}

// '+' and '-' change the level, '{' and '}' hold what is written as it stands, everything else is put byte by byte.
std::string written(const std::string& program) {
    BareOutStream out;
    for (std::size_t i = 0; i < program.size(); ++i) {
        if (program[i] == '+') {
            out.incTab();
        } else if (program[i] == '-') {
            out.decTab();
        } else if (program[i] == '{') {
            const std::size_t end = program.find('}', i);
            out.writeDataHolder(program.substr(i + 1, end - i - 1));
            i = end;
        } else {
            out.put(program[i]);
        }
    }
    return out.bytes;
}

TEST(OutStreamTest, IndentsTheFirstByteOfEachLineByTheLevelInForceThen) {
    const struct {
        const char* name;
        std::string program;
        std::string bytes;
    } kCases[] = {
        {"nothing", "++-", ""},
        {"level 0", "a\nb", "a\nb"},
        {"very first byte", "+a", "\ta"},
        {"element", "<a>\n+<b/>\n-</a>\n", "<a>\n\t<b/>\n</a>\n"},
        {"two levels", "++a\nb\n", "\t\ta\n\t\tb\n"},
        {"empty lines have no tabs", "+a\n\n\nb", "\ta\n\n\n\tb"},
        {"line feed first", "+\na", "\n\ta"},
        {"level changed behind the line feed", "+a\n+b\n--c", "\ta\n\t\tb\nc"},
        {"level changed inside a line", "a+b+c\nd", "abc\n\t\td"},
        {"carriage return is an ordinary byte", "+a\r\nb\rc", "\ta\r\n\tb\rc"},
        {"carriage return begins a line's bytes", "+\r\n", "\t\r\n"},
        {"blank and tab are indented", "+ \n\tx", "\t \n\t\tx"},
        {"zero byte", "+\0\n"s, "\t\0\n"s},
        {"never below 0", "---a\n+b", "a\n\tb"},
        {"below 0 and up", "-+-a\n+b", "a\n\tb"},
        {"data as it stands", "++{x\ny}", "x\ny"},
        {"data does not begin the line", "++{x\ny}z", "x\ny\t\tz"},
        {"data does not end the line", "+a{\n\n}b\nc", "\ta\n\nb\n\tc"},
        {"data behind a line feed", "+a\n{x}b", "\ta\nx\tb"},
        {"empty data", "+{}a", "\ta"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(written(c.program), c.bytes);
    }
}

TEST(OutStreamTest, PutsTextsAsTheirBytesOneByOne) {
    const std::string kTexts[] = {
        "", "a", "\n", "<a>\n<b/>\n", "\n\na", "a\r\nb", "x\0\ny\0"s, "\xff\n\xfe", std::string(10'000, 'x') + "\ny"};
    for (const std::string& text : kTexts) {
        for (int level = 0; level < 3; ++level) {
            SCOPED_TRACE(text.substr(0, 20));
            BareOutStream single;
            BareOutStream whole;
            BareOutStream streamed;
            BareOutStream streamedSingly;
            for (OutStream* out : {static_cast<OutStream*>(&single), static_cast<OutStream*>(&whole),
                                   static_cast<OutStream*>(&streamed), static_cast<OutStream*>(&streamedSingly)}) {
                for (int i = 0; i < level; ++i) out->incTab();
            }
            for (int twice = 0; twice < 2; ++twice) {
                for (const char c : text) single.put(c);
                whole.put(text);
                streamed << text;
                for (const char c : text) streamedSingly << c;
            }
            EXPECT_TRUE(whole.bytes == single.bytes);
            EXPECT_TRUE(streamed.bytes == single.bytes);
            EXPECT_TRUE(streamedSingly.bytes == single.bytes);
        }
    }
}

TEST(OutStreamTest, ReturnsItselfWhereOutputIsChained) {
    BareOutStream out;
    EXPECT_EQ(&(out << 'a'), &out);
    EXPECT_EQ(&(out << "b"s), &out);
    EXPECT_EQ(&out.writeDataHolder("c"), &out);
    out << 'd' << "e"s << '\n';
    EXPECT_EQ(out.bytes, "abcde\n");
}

TEST(OutStreamTest, HasNoUpperBoundForTheLevel) {
    BareOutStream out;
    for (int i = 0; i < 5000; ++i) out.incTab();
    out.put('a');
    EXPECT_TRUE(out.bytes == std::string(5000, '\t') + "a");
    for (int i = 0; i < 4999; ++i) out.decTab();
    out << "\nb"s;
    EXPECT_TRUE(out.bytes == std::string(5000, '\t') + "a\n\tb");
}

// The rule told byte by byte, beside the library's.
class NaiveOutStream {
public:
    void put(char c) {
        if (c == '\n') {
            atLineStart = true;
        } else if (atLineStart) {
            atLineStart = false;
            bytes.append(level, '\t');
        }
        bytes += c;
    }

    std::string bytes;
    std::size_t level = 0;

private:
    bool atLineStart = true;
};

TEST(OutStreamTest, AgreesWithTheRuleToldByteByByte) {
    std::mt19937 random(21);
    const std::string kTexts[] = {"\n", "\n\n\n", "a", "<b>\n", "\n\tx", "a\nb\nc", "\r", "", "\0"s};
    for (int i = 0; i < 3000; ++i) {
        BareOutStream out;
        NaiveOutStream naive;
        for (int k = 0; k < 30; ++k) {
            const std::string& text = kTexts[random() % 9];
            switch (random() % 5) {
            case 0:
                out.incTab();
                ++naive.level;
                break;
            case 1:
                out.decTab();
                if (naive.level > 0) --naive.level;
                break;
            case 2:
                out.writeDataHolder(text);
                naive.bytes += text;
                break;
            default:
                out.put(text);
                for (const char c : text) naive.put(c);
            }
        }
        ASSERT_EQ(out.bytes, naive.bytes);
    }
}

TEST(OutStreamTest, HandsEveryByteToPutCharInOrder) {
    class Marking : public BareOutStream {
    public:
        void putChar(char c) override { bytes += c == '\n' ? "$"s : "("s + c + ")"; }
    };
    Marking out;
    out.incTab();
    out << "ab\nc"s;
    out.writeDataHolder("d\n");
    EXPECT_EQ(out.bytes, "(\t)(a)(b)$(\t)(c)(d)$");
}

}  // namespace
