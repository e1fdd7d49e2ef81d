#include "xml/reader/Reader.h"

#include "reader/ReadCase.h"
#include "xml/stream/StringInStream.h"
#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace Xml::test {

namespace {

class PlainReader : public Reader {};

// Notes each message instead of formatting it.
class ListeningReader : public Reader {
public:
    void message(InStream&, const std::string& text) override { heard.push_back(text); }

    std::vector<std::string> heard;
};

std::string messageOf(const std::string& text) {
    StringInStream in("");
    PlainReader reader;
    reader.message(in, text);
    return reader.getErrorMessage();
}

}  // namespace

TEST(ReaderTest, HasNoMessageAtFirst) { EXPECT_EQ(PlainReader().getErrorMessage(), ""); }

TEST(ReaderTest, TellsLineAndColumnOfTheStream) {
    const struct {
        const char* name;
        std::string text;
        int bytes;
        int line;
        int column;
    } kCases[] = {
        {"start", "abc", 0, 1, 0},
        {"first line", "abc", 2, 1, 2},
        {"bare line feeds are no lines", "a\nb\nc", 4, 1, 4},
        {"exactly on the first break", "ab\r\ncd", 4, 1, 4},
        {"after the first break", "ab\r\ncd", 5, 1, 1},
        {"between CR and LF", "ab\r\ncd", 3, 1, 3},
        {"exactly on the second break", "a\r\nb\r\ncd", 6, 2, 3},
        {"after the second break", "a\r\nb\r\ncd", 7, 2, 1},
        {"three breaks", "\r\n\r\n\r\n1234567", 13, 3, 7},
        {"two CR", "a\r\rbc", 4, 1, 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        for (auto source : kAllSources) {
            SCOPED_TRACE(::testing::Message() << source);
            withSource(source, c.text, [&c](InStream& in) {
                char byte = 0;
                for (int i = 0; i < c.bytes; ++i) ASSERT_TRUE(in.get(byte));
                PlainReader reader;
                reader.message(in, "what happened");
                EXPECT_EQ(reader.getErrorMessage(), located(c.line, c.column, "what happened", classOf<PlainReader>()));
            });
        }
    }
}

TEST(ReaderTest, CutsAMessageAt255Characters) {
    const std::size_t around = located(1, 0, "", classOf<PlainReader>()).size();
    const struct {
        const char* name;
        std::size_t whole;
        std::size_t kept;
    } kCases[] = {
        {"one less", 254, 254},
        {"just fits", 255, 255},
        {"one more", 256, 255},
        {"much more", 100000, 255},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string text(c.whole - around, 'x');
        EXPECT_EQ(messageOf(text), located(1, 0, text, classOf<PlainReader>()));
        EXPECT_EQ(messageOf(text).size(), c.kept);
    }
}

TEST(ReaderTest, TakesTheTextOfAMessageAsItStands) {
    for (const std::string text : {"", "100 %", "%s%n%d%%", "%5000d", "\xC3\xA9\n\t\x01"}) {
        EXPECT_EQ(messageOf(text), located(1, 0, text, classOf<PlainReader>())) << text;
    }
}

TEST(ReaderTest, EndsTheTextOfAMessageAtAZeroByte) {
    EXPECT_EQ(messageOf(std::string("ab\0cd", 5)), located(1, 0, "ab", classOf<PlainReader>()));
}

TEST(ReaderTest, KeepsASetMessageUnformatted) {
    PlainReader reader;
    for (const std::string& text :
         {std::string("100 %s"), std::string(1000, 'x'), std::string("a\0b", 3), std::string()}) {
        reader.setMessage(text);
        EXPECT_EQ(reader.getErrorMessage(), text);
    }
}

TEST(ReaderTest, ReplacesTheMessageByALaterOne) {
    StringInStream in("abc");
    PlainReader reader;
    reader.setMessage("set");
    reader.message(in, "formatted");
    EXPECT_EQ(reader.getErrorMessage(), located(1, 0, "formatted", classOf<PlainReader>()));
    reader.setMessage("set again");
    EXPECT_EQ(reader.getErrorMessage(), "set again");
}

TEST(ReaderTest, ReportsWhatFailsInTheStreamAndKeepsItsMessageOtherwise) {
    std::string got;
    const auto token = [&got](Reader& reader, InStream& in) { return reader.getToken(in, got); };
    const auto name = [&got](Reader& reader, InStream& in) { return reader.getName(in, got); };
    const auto string = [&got](Reader& reader, InStream& in) { return reader.getString(in, got); };
    const auto check = [](Reader& reader, InStream& in) { return reader.checkToken(in, ">"); };
    const auto skip = [](Reader& reader, InStream& in) { return reader.skip(in, "-->"); };
    const auto data = [&got](Reader& reader, InStream& in) {
        DataHolder text("+");
        const bool ok = reader.getCharData(in, text);
        got = text;
        return ok;
    };
    const struct {
        const char* name;
        std::function<bool(Reader&, InStream&)> operation;
        std::string text;
        Verdict verdict;
    } kCases[] = {
        {"token", token, " ab cd", yes(" cd").builds("ab")},
        {"token at the end", token, "  ", ended().builds("untouched")},
        {"name", name, " ab>", yes(">").builds("ab")},
        {"no name", name, "1ab >", no("not a name: 1ab", " >").builds("untouched")},
        {"name at the end", name, "", ended().builds("untouched")},
        {"string", string, " 'a b' ", yes(" ").builds("'a b'")},
        {"no string", string, "ab >", no("\"\"\" or \"'\" expected", "b >").builds("untouched")},
        {"unfinished string", string, "'ab", ended().builds("untouched")},
        {"expected token", check, " > ", yes(" ").builds("untouched")},
        {"end of a token is enough", check, " /> ", yes(" ").builds("untouched")},
        {"another token", check, " a ", no("\">\" expected", " ").builds("untouched")},
        {"expected token at the end", check, " ", ended().builds("untouched")},
        {"skip", skip, "a->-->-->", yes("-->").builds("untouched")},
        {"skip without end", skip, "a-- >", ended().builds("untouched")},
        {"text", data, " a &amp; b <", yes("<").builds("+ a &amp; b ")},
    };
    for (const auto& c : kCases) {
        const Verdict verdict = c.verdict.ok ? c.verdict.notes("before") : c.verdict;
        for (auto source : kAllSources) {
            SCOPED_TRACE(::testing::Message() << c.name << ", " << source);
            withSource(source, c.text, [&](InStream& in) {
                got = "untouched";
                PlainReader reader;
                reader.setMessage("before");
                EXPECT_EQ(c.operation(reader, in), verdict.ok);
                EXPECT_EQ(got, verdict.builtText);
                const bool gone = source == Source::FileStream && verdict.message == kEndOfStream;
                const int place = gone ? -1 : static_cast<int>(c.text.size() - verdict.left.size());
                EXPECT_EQ(in.getPosition(), place);
                EXPECT_EQ(reader.getErrorMessage(),
                          verdict.ok ? "before" : located(1, place, *verdict.message, classOf<PlainReader>()));
            });
        }
    }
}

TEST(ReaderTest, ReadsTextUpToTheEndAndReportsIt) {
    for (auto source : kPromptSources) {
        withSource(source, "ab", [](InStream& in) {
            PlainReader reader;
            DataHolder text;
            EXPECT_FALSE(reader.getCharData(in, text));
            EXPECT_EQ(text, "ab");
            EXPECT_EQ(reader.getErrorMessage(), located(1, 2, kEndOfStream, classOf<PlainReader>()));
        });
    }
}

TEST(ReaderTest, TellsASubclassThatOverridesMessage) {
    StringInStream in("x 1 y");
    ListeningReader reader;
    std::string text;
    EXPECT_FALSE(reader.checkToken(in, "<"));
    EXPECT_FALSE(reader.getName(in, text));
    EXPECT_FALSE(reader.getString(in, text));
    EXPECT_FALSE(reader.skip(in, "-->"));
    const std::vector<std::string> expected = {"\"<\" expected", "not a name: 1", "\"\"\" or \"'\" expected",
                                               kEndOfStream};
    EXPECT_EQ(reader.heard, expected);
    EXPECT_EQ(reader.getErrorMessage(), "");
}

}  // namespace Xml::test
