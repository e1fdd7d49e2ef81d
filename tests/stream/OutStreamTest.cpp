#include "OutPrograms.h"
#include "models/NaiveSink.h"
#include "xml/stream/OutStream.h"
#include <gtest/gtest.h>
#include <random>
#include <stdexcept>
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
        {"level changed after the line feed", "+a\n+b\n--c", "\ta\n\t\tb\nc"},
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
        {"data after a line feed", "+a\n{x}b", "\ta\nx\tb"},
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

// What a sink may do to its stream while it takes a byte. Both the library's stream and the naive one are made such.
template <class Sink>
class Acting : public Sink {
public:
    void putChar(char c) override {
        bytes += c;
        switch (c) {
        case '+': this->incTab(); break;
        case '-': this->decTab(); break;
        case '$': this->put('\n'); break;
        case '?': this->put('q'); break;
        case '!': throw std::runtime_error("refused");
        case '\t':
            if (lowersAtTabs) this->decTab();
            break;
        default: break;
        }
    }
    int getPosition() const override { return static_cast<int>(bytes.size()); }
    void setPosition(int) override {}

    std::string bytes;
    bool lowersAtTabs = false;
};

class NaiveActing : public Acting<Xml::test::NaiveSink> {
public:
    void writeDataHolder(const std::string& data) { putRaw(data); }
};

TEST(OutStreamTest, AgreesWithTheRuleByteByByteWhateverTheSinkDoesMeanwhile) {
    std::mt19937 random(21);
    const std::string kTexts[] = {"\n",  "\n\n\n",   "a",      "<b>\n",  "\n\tx",  "a\nb\nc", "\r",   "",
                                  "\0"s, "+\na\n+b", "-\n--x", "+a$b$c", "a\n?b?", "a\n!b",   "\n!!", "+$?\n-?"};
    for (int i = 0; i < 3000; ++i) {
        Acting<OutStream> out;
        NaiveActing naive;
        out.lowersAtTabs = naive.lowersAtTabs = i % 3 == 0;
        for (int k = 0; k < 30; ++k) {
            const std::string& text = kTexts[random() % (i % 2 == 0 ? 9 : 16)];
            const auto act = [&](auto& sink, unsigned what) {
                switch (what) {
                case 0: sink.incTab(); break;
                case 1: sink.decTab(); break;
                case 2: sink.writeDataHolder(text); break;
                default: sink.put(text);
                }
            };
            const auto refused = [&](auto& sink, unsigned what) {
                try {
                    act(sink, what);
                } catch (const std::runtime_error&) {
                    return true;
                }
                return false;
            };
            const auto what = static_cast<unsigned>(random() % 5);
            ASSERT_EQ(refused(out, what), refused(naive, what));
        }
        ASSERT_EQ(out.bytes, naive.bytes);
    }
}

TEST(OutStreamTest, ShowsASinkTheLevelAndTheLineStartInForceAtEachByte) {
    const struct {
        const char* name;
        std::string text;
        std::string bytes;
    } kCases[] = {
        {"level raised within a text", "+\na\n+b\nc", "+\n\ta\n\t+b\n\t\tc"},
        {"level lowered within a text", "++\na-\nb--\nc", "++\n\t\ta-\n\tb--\nc"},
        {"level raised by the byte after the tabs", "+\n+\na", "+\n\t+\n\t\ta"},
        {"line end put from within", "+$a", "+$\n\ta"},
        {"line start cleared before the tabs", "+\n?", "+\n\t?q"},
        {"line start set before the line feed", "+\n\n?", "+\n\n\t?q"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Acting<OutStream> out;
        out << c.text;
        EXPECT_EQ(out.bytes, c.bytes);
        Acting<OutStream> single;
        for (const char byte : c.text) single << byte;
        EXPECT_EQ(single.bytes, c.bytes);
    }
    Acting<OutStream> lowering;
    lowering.lowersAtTabs = true;
    lowering << "+++++\na"s;
    EXPECT_EQ(lowering.bytes, "+++++\n\t\t\ta");
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
