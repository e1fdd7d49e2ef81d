// Events of single documents: what each operation says, and what stops a reading.
#include "xml/standard/StreamReader.h"

#include "standard/Streamed.h"
#include "stream/TextBuffer.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/dom/Element.h"
#include "xml/dom/Prolog.h"
#include <ext/stdio_filebuf.h>
#include <gtest/gtest.h>
#include <istream>
#include <sstream>
#include <string>
#include <type_traits>
#include <unistd.h>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

using Event = StreamReader::Event;

static_assert(std::is_nothrow_move_constructible_v<StreamReader> && std::is_nothrow_move_assignable_v<StreamReader>);
static_assert(!std::is_copy_constructible_v<StreamReader>);
static_assert(!std::is_constructible_v<StreamReader, std::string>, "a text that goes at once");

// The events in short: <a 'text' [section] !comment ?target > for an end, $ and # for Finished and Failed.
std::string eventsOf(const std::string& text, const ReadOptions& options = {}) {
    StreamReader reader(std::string_view(text), options);
    std::string shown;
    for (;;) {
        const Event event = reader.next();
        if (!shown.empty()) shown += ' ';
        const std::string name(reader.name());
        const std::string content(reader.text());
        switch (event) {
        case Event::Start: shown += "<" + name; break;
        case Event::End: shown += ">"; break;
        case Event::Text: shown += "'" + content + "'"; break;
        case Event::CData: shown += "[" + content + "]"; break;
        case Event::Comment: shown += "!" + content; break;
        case Event::Instruction: shown += "?" + name; break;
        case Event::Doctype: shown += "D" + name; break;
        case Event::Finished: return shown + "$";
        case Event::Failed: return shown + "#";
        }
    }
}

TEST(StreamReaderTest, GivesARunOfTextAsOneEvent) {
    ReadOptions dropping;
    dropping.keepComments = dropping.keepInstructions = false;
    ReadOptions keeping;
    keeping.keepCData = true;
    const struct {
        const char* text;
        const char* plain;
        const char* withoutComments;
        const char* withSections;
    } kCases[] = {
        {"<a>x</a>", "<a 'x' > $", "<a 'x' > $", "<a 'x' > $"},
        {"<a>1&lt;2&#65;\r\n</a>", "<a '1<2A\n' > $", "<a '1<2A\n' > $", "<a '1<2A\n' > $"},
        {"<a>x<![CDATA[<y>]]>z</a>", "<a 'x<y>z' > $", "<a 'x<y>z' > $", "<a 'x' [<y>] 'z' > $"},
        {"<a><![CDATA[]]></a>", "<a > $", "<a > $", "<a [] > $"},
        {"<a>x<![CDATA[]]>y</a>", "<a 'xy' > $", "<a 'xy' > $", "<a 'x' [] 'y' > $"},
        {"<a>x<!--c-->y<?p?>z</a>", "<a 'x' !c 'y' ?p 'z' > $", "<a 'xyz' > $", "<a 'x' !c 'y' ?p 'z' > $"},
        {"<a><!--c--><b/><?p?></a>", "<a !c <b > ?p > $", "<a <b > > $", "<a !c <b > ?p > $"},
        {"<a>x<!--c--><b/>y</a>", "<a 'x' !c <b > 'y' > $", "<a 'x' <b > 'y' > $", "<a 'x' !c <b > 'y' > $"},
        {"<!--c--><a/><?p?>", "!c <a > ?p $", "<a > $", "!c <a > ?p $"},
        {"<a>x<b></a>", "<a 'x' <b #", "<a 'x' <b #", "<a 'x' <b #"},
        {"<a>x<!--c", "<a 'x' #", "<a 'x' #", "<a 'x' #"},
        {"<a>x", "<a 'x' #", "<a 'x' #", "<a 'x' #"},
        {"<!DOCTYPE a [<!ENTITY e 'x<b/>y'>]><a>1&e;2&e;</a>", "Da <a '1x' <b > 'y2x' <b > 'y' > $",
         "Da <a '1x' <b > 'y2x' <b > 'y' > $", "Da <a '1x' <b > 'y2x' <b > 'y' > $"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(eventsOf(c.text), c.plain);
        EXPECT_EQ(eventsOf(c.text, dropping), c.withoutComments);
        EXPECT_EQ(eventsOf(c.text, keeping), c.withSections);
    }
}

TEST(StreamReaderTest, DropsWhiteSpaceWhereAskedAlone) {
    const std::string text = "<a>\n <b> </b> x <b>&#32;</b><b><![CDATA[ ]]></b> <!--c--> </a>";
    ReadOptions options;
    EXPECT_EQ(eventsOf(text, options), "<a '\n ' <b ' ' > ' x ' <b ' ' > <b ' ' > ' ' !c ' ' > $");
    options.space = Space::Dropped;
    EXPECT_EQ(eventsOf(text, options), "<a <b > ' x ' <b ' ' > <b ' ' > !c > $");
    options.keepComments = false;
    EXPECT_EQ(eventsOf(text, options), "<a <b > ' x ' <b ' ' > <b ' ' > > $");
}

TEST(StreamReaderTest, SaysWhatAnEventIs) {
    StreamReader reader(std::string_view("<p:a xmlns:p='u' xmlns='v' x='1&amp;2'>t<b/></p:a>"));
    EXPECT_EQ(reader.name(), "");
    EXPECT_EQ(reader.localName(), "");
    EXPECT_EQ(reader.attributeCount(), 0);
    EXPECT_EQ(reader.depth(), 0);
    EXPECT_EQ(reader.place().offset, -1);
    ASSERT_EQ(reader.next(), Event::Start);
    EXPECT_EQ(reader.name(), "p:a");
    EXPECT_EQ(reader.localName(), "a");
    EXPECT_EQ(reader.namespaceUri(), "u");
    EXPECT_EQ(reader.text(), "");
    ASSERT_EQ(reader.attributeCount(), 3);
    EXPECT_EQ(reader.attributeName(2), "x");
    EXPECT_EQ(reader.attributeValue(2), "1&2");
    EXPECT_EQ(reader.attribute("xmlns"), "v");
    EXPECT_EQ(reader.attribute("y"), std::nullopt);
    EXPECT_EQ(reader.depth(), 1);
    ASSERT_EQ(reader.next(), Event::Text);
    EXPECT_EQ(reader.name(), "");
    EXPECT_EQ(reader.localName(), "");
    EXPECT_EQ(reader.namespaceUri(), "");
    EXPECT_EQ(reader.attributeCount(), 0);
    EXPECT_EQ(reader.attribute("x"), std::nullopt);
    EXPECT_EQ(reader.place().column, 40);
    ASSERT_EQ(reader.next(), Event::Start);
    EXPECT_EQ(reader.localName(), "b");
    EXPECT_EQ(reader.namespaceUri(), "v");
    EXPECT_EQ(reader.depth(), 2);
    ASSERT_EQ(reader.next(), Event::End);
    EXPECT_EQ(reader.depth(), 2);
    ASSERT_EQ(reader.next(), Event::End);
    EXPECT_EQ(reader.localName(), "a");
    EXPECT_EQ(reader.namespaceUri(), "u");
    EXPECT_EQ(reader.depth(), 1);
    ASSERT_EQ(reader.next(), Event::Finished);
    EXPECT_EQ(reader.next(), Event::Finished);
    EXPECT_EQ(reader.name(), "");
    EXPECT_EQ(reader.depth(), 0);
}

TEST(StreamReaderTest, KnowsNoNamespacesWhereTheyAreNotAskedFor) {
    ReadOptions options;
    options.namespaces = false;
    StreamReader reader(std::string_view("<p:a xmlns='v'/>"), options);
    ASSERT_EQ(reader.next(), Event::Start);
    EXPECT_EQ(reader.localName(), "p:a");
    EXPECT_EQ(reader.namespaceUri(), "");
}

TEST(StreamReaderTest, FindsAnAttributeOfMany) {
    const std::string text =
        "<!DOCTYPE a [<!ATTLIST a d CDATA 'default'>]><a" +
        pieces(100, [](int i) { return " x" + std::to_string(i * 37 % 100) + "='" + std::to_string(i) + "'"; }) + "/>";
    StreamReader reader{std::string_view(text)};
    ASSERT_EQ(reader.next(), Event::Doctype);
    ASSERT_EQ(reader.next(), Event::Start);
    ASSERT_EQ(reader.attributeCount(), 101);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(reader.attribute("x" + std::to_string(i * 37 % 100)), std::to_string(i));
        EXPECT_EQ(reader.attributeValue(i), std::to_string(i));
    }
    EXPECT_EQ(reader.attribute("d"), "default");
    EXPECT_EQ(reader.attributeName(100), "d");
    EXPECT_EQ(reader.attribute("x100"), std::nullopt);
    EXPECT_EQ(reader.attribute(""), std::nullopt);
}

TEST(StreamReaderTest, KnowsWhatStandsAroundTheRoot) {
    const std::string text =
        "\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8' standalone='yes'?>\r\n<!--c--><!DOCTYPE a PUBLIC 'p' 's' "
        "[<!ENTITY e ''>]>\n<a/><!--d-->";
    for (const std::size_t chunk : {1, 1000}) {
        BufferHabits habits;
        habits.chunk = chunk;
        TextStream stream(text, habits);
        StreamReader reader(stream);
        EXPECT_FALSE(reader.prolog().hasDeclaration);
        EXPECT_FALSE(reader.prolog().hasMark);
        ASSERT_EQ(reader.next(), Event::Comment);
        const Prolog& prolog = reader.prolog();
        EXPECT_TRUE(prolog.hasDeclaration);
        EXPECT_TRUE(prolog.hasMark);
        EXPECT_EQ(prolog.encoding, "utf-8");
        EXPECT_EQ(prolog.standalone, true);
        EXPECT_EQ(prolog.newline, "\r\n");
        EXPECT_EQ(prolog.doctype, "");
        ASSERT_EQ(reader.next(), Event::Doctype);
        while (reader.next() != Event::Finished) ASSERT_TRUE(reader.problems().empty());
        EXPECT_EQ(reader.prolog().doctype, "a");
        EXPECT_EQ(reader.prolog().publicId, "p");
        EXPECT_EQ(reader.prolog().systemId, "s");
        EXPECT_EQ(reader.prolog().internalSubset, "<!ENTITY e ''>");
        EXPECT_TRUE(reader.prolog().beforeDoctype.empty() && reader.prolog().afterRoot.empty());
    }
}

// --- Elements ---

TEST(StreamReaderTest, ReadsRecordsAsTrees) {
    const std::string text =
        "<list xml:space='preserve'><r id='1'>\n<x/>\n</r>\n"
        "<r id='2' xml:space='default'>\n<x/>\n</r><r id='3'/>tail</list>";
    StreamReader reader{std::string_view(text)};
    std::string shown;
    for (Event event = reader.next(); event != Event::Finished; event = reader.next()) {
        ASSERT_NE(event, Event::Failed);
        if (event != Event::Start || reader.name() != "r") continue;
        const auto record = reader.readElement();
        shown += dump(record.get()) + " ";
        EXPECT_EQ(reader.name(), "r");
        EXPECT_EQ(reader.depth(), 2);
    }
    EXPECT_EQ(shown, "r[id=1]('\n' x '\n') r[id=2 xml:space=default](x) r[id=3] ");
}

TEST(StreamReaderTest, PassesOverElements) {
    StreamReader reader(std::string_view("<a><b><b>x</b><c/></b><d/>y</a>"));
    reader.skipElement();
    EXPECT_EQ(reader.readElement(), nullptr);
    ASSERT_EQ(reader.next(), Event::Start);
    ASSERT_EQ(reader.next(), Event::Start);
    reader.skipElement();
    EXPECT_EQ(reader.name(), "b");
    EXPECT_EQ(reader.depth(), 2);
    reader.skipElement();  // at its End nothing happens
    ASSERT_EQ(reader.next(), Event::Start);
    EXPECT_EQ(reader.name(), "d");
    reader.skipElement();
    ASSERT_EQ(reader.next(), Event::Text);
    EXPECT_EQ(reader.text(), "y");
}

TEST(StreamReaderTest, StaysFailedWhereAnElementIsNotWellFormed) {
    const std::string text = "<a><b><c></b></a>";
    for (const bool isRead : {true, false}) {
        StreamReader reader{std::string_view(text)};
        ASSERT_EQ(reader.next(), Event::Start);
        ASSERT_EQ(reader.next(), Event::Start);
        if (isRead)
            EXPECT_EQ(reader.readElement(), nullptr);
        else
            reader.skipElement();
        EXPECT_EQ(reader.next(), Event::Failed);
        ASSERT_EQ(reader.problems().size(), 1u);
        EXPECT_EQ(reader.problems()[0].rule, "Element Type Match");
        EXPECT_EQ(reader.problems()[0].path, "/a/b/c");
    }
}

// --- What stops a reading ---

TEST(StreamReaderTest, SaysWhatIsWrongAndStaysFailed) {
    ReadOptions options;
    options.source = "app.xml";
    std::istringstream stream("<app>\n  <server>\n   <port>80</prot>\n  </server>\n</app>\n");
    StreamReader reader(stream, options);
    while (reader.next() != Event::Failed) EXPECT_TRUE(reader.problems().empty());
    EXPECT_EQ(reader.next(), Event::Failed);
    ASSERT_EQ(reader.problems().size(), 1u);
    const Problem& problem = reader.problems()[0];
    EXPECT_EQ(problem.toString(), "app.xml:3:12: error: </port> expected, found </prot> (<port> began at 3:4)");
    EXPECT_EQ(problem.excerpt, "   <port>80</prot>\n           ^");
    EXPECT_EQ(problem.path, "/app/server/port");
    EXPECT_EQ(reader.place().line, 3);
    EXPECT_EQ(reader.name(), "");
    EXPECT_EQ(reader.text(), "");
    EXPECT_EQ(reader.attributeCount(), 0);
    EXPECT_EQ(reader.readElement(), nullptr);
    reader.skipElement();
    EXPECT_EQ(reader.next(), Event::Failed);
}

TEST(StreamReaderTest, ShowsTheLineOfAPlaceAlsoWhereItsBeginningIsGone) {
    const std::string text = "<a>\n" + repeated("<bcd/>", 5000) + "<c></d></a>";
    BufferHabits habits;
    habits.chunk = 10;
    TextStream stream(text, habits);
    StreamReader reader(stream);
    while (reader.next() != Event::Failed) {}
    const Problem& problem = reader.problems()[0];
    EXPECT_EQ(problem.place.line, 2);
    EXPECT_EQ(problem.place.column, 30004);
    const std::string beginning = repeated("<bcd/>", 100).substr(600 - 77) + "<c>";
    EXPECT_EQ(problem.excerpt.substr(0, 80), beginning);
    EXPECT_EQ(problem.excerpt.substr(problem.excerpt.find('\n')), "\n" + std::string(80, ' ') + "^");
}

TEST(StreamReaderTest, RefusesOptionsThatAreNotSupported) {
    ReadOptions options;
    options.validate = true;
    options.resolver = [](const std::string&, const std::string&, const std::string&) { return std::nullopt; };
    StreamReader reader(std::string_view("<a/>"), options);
    EXPECT_TRUE(reader.problems().empty());
    EXPECT_EQ(reader.next(), Event::Failed);
    EXPECT_EQ(reader.next(), Event::Failed);
    ASSERT_EQ(reader.problems().size(), 2u);
    for (const Problem& problem : reader.problems()) EXPECT_EQ(problem.kind, Problem::Kind::Unsupported);
    EXPECT_EQ(reader.prolog().newline, "\n");
}

TEST(StreamReaderTest, ReadsNoMoreBytesThanAreAllowed) {
    const std::string text = "<a><b/></a>";
    ReadOptions options;
    options.maxBytes = static_cast<std::int64_t>(text.size());
    EXPECT_EQ(eventsOf(text, options), "<a <b > > $");
    --options.maxBytes;
    EXPECT_EQ(eventsOf(text, options), "#");
    for (const std::size_t chunk : {1, 5, 100}) {
        BufferHabits habits;
        habits.chunk = chunk;
        TextStream stream(text, habits);
        StreamReader reader(stream, options);
        EXPECT_EQ(reader.next(), Event::Start);
        EXPECT_EQ(reader.next(), Event::Start);
        EXPECT_EQ(reader.next(), Event::End);
        EXPECT_EQ(reader.next(), Event::Failed);
        ASSERT_EQ(reader.problems().size(), 1u);
        EXPECT_EQ(reader.problems()[0].kind, Problem::Kind::Limit);
        EXPECT_EQ(reader.problems()[0].rule, "maxBytes");
    }
}

TEST(StreamReaderTest, ReadsAStreamThatBreaksUpToThere) {
    BufferHabits habits;
    habits.throwsAt = 9;
    TextStream stream("<a>text<b/></a>", habits);
    StreamReader reader(stream);
    EXPECT_EQ(reader.next(), Event::Start);
    EXPECT_EQ(reader.next(), Event::Text);
    EXPECT_EQ(reader.next(), Event::Failed);
    ASSERT_EQ(reader.problems().size(), 1u);
    EXPECT_EQ(reader.problems()[0].kind, Problem::Kind::Unreadable);
    EXPECT_FALSE(reader.problems()[0].text.empty());
}

TEST(StreamReaderTest, FindsBytesThatAreNoTextWhereTheyStand) {
    std::istringstream stream("<a>\n<b/>\xC3(</a>");
    StreamReader reader(stream);
    Event event = reader.next();
    std::string shown;
    for (; event != Event::Failed; event = reader.next()) shown += lineOf(reader, event);
    EXPECT_EQ(reader.problems()[0].place.offset, 8);
    EXPECT_EQ(reader.problems()[0].place.line, 2);
    EXPECT_EQ(reader.problems()[0].path, "/a");
    EXPECT_EQ(reader.problems()[0].rule, "Character Encoding in Entities");
}

// --- Streams ---

// A pipe gives what is there. Nothing waits for more than the event needs.
TEST(StreamReaderTest, ReadsFromAPipeWhatIsThere) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    __gnu_cxx::stdio_filebuf<char> buffer(ends[0], std::ios::in);
    std::istream stream(&buffer);
    const auto give = [&](const std::string& text) {
        ASSERT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    };
    StreamReader reader(stream);
    give("<chat><message>one");
    EXPECT_EQ(reader.next(), Event::Start);
    EXPECT_EQ(reader.next(), Event::Start);
    give("</message>");
    EXPECT_EQ(reader.next(), Event::Text);
    EXPECT_EQ(reader.text(), "one");
    EXPECT_EQ(reader.next(), Event::End);
    const std::string name(10000, 'n');
    give("<" + name);
    give(" x='1'/>");
    EXPECT_EQ(reader.next(), Event::Start);
    EXPECT_EQ(reader.name(), name);
    EXPECT_EQ(reader.next(), Event::End);
    give("</chat>");
    EXPECT_EQ(reader.next(), Event::End);
    close(ends[1]);
    EXPECT_EQ(reader.next(), Event::Finished);
}

TEST(StreamReaderTest, ReadsFromWhereTheStreamStands) {
    std::istringstream stream("12 <a/>");
    int number = 0;
    stream >> number;
    stream.get();
    StreamReader reader(stream);
    EXPECT_EQ(linesOf(reader), "1 0 1:1 <a\n1 </a\nfinished\n");
}

TEST(StreamReaderTest, ReadsALiteral) {
    StreamReader reader("<a/>");
    EXPECT_EQ(reader.next(), Event::Start);
}

TEST(StreamReaderTest, MovesWithTheEventAtHand) {
    const std::string text = "<a><b>x</b></a>";
    StreamReader first{std::string_view(text)};
    ASSERT_EQ(first.next(), Event::Start);
    StreamReader second(std::move(first));
    EXPECT_EQ(second.name(), "a");
    ASSERT_EQ(second.next(), Event::Start);
    StreamReader third{std::string_view("<c/>")};
    third = std::move(second);
    EXPECT_EQ(third.name(), "b");
    EXPECT_EQ(third.next(), Event::Text);
}

}  // namespace
}  // namespace Xml::test
