#include "xml/standard/StreamWriter.h"

#include "standard/Documents.h"
#include "standard/Streamed.h"
#include "standard/WholeTree.h"
#include "standard/Written.h"
#include "support/Rounds.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/Prolog.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/Write.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Calls = std::function<void(StreamWriter&)>;

WriteOptions bare() {
    WriteOptions options;
    options.indent.clear();
    options.declaration = false;
    return options;
}

struct Outcome {
    bool isFinished;
    std::string text;
    std::vector<Problem> problems;
};

Outcome outcomeOf(const Calls& calls, const WriteOptions& options = bare()) {
    std::ostringstream stream;
    StreamWriter writer(stream, options);
    calls(writer);
    const bool isFinished = writer.finish();
    EXPECT_EQ(writer.finish(), isFinished);
    EXPECT_EQ(isFinished, writer.problems().empty());
    return {isFinished, stream.str(), writer.problems()};
}

TEST(StreamWriterTest, WritesPieceByPiece) {
    struct Case {
        Calls calls;
        const char* written;
    };
    const Case kCases[] = {
        {[](StreamWriter& w) { w.start("a").end(); }, "<a/>\n"},
        {[](StreamWriter& w) { w.start("a").text("").end(); }, "<a/>\n"},
        {[](StreamWriter& w) { w.start("a").attribute("x", "<\"&\n'>").attribute("y", "").text("1 < 2\r").end(); },
         "<a x=\"&lt;&quot;&amp;&#10;'>\" y=\"\">1 &lt; 2&#13;</a>\n"},
        {[](StreamWriter& w) { w.start("a").cdata("<]]>").start("b").end().comment("c").instruction("t", "i").end(); },
         "<a><![CDATA[<]]]]><![CDATA[>]]><b/><!--c--><?t i?></a>\n"},
        {[](StreamWriter& w) { w.comment("1").instruction("t", "").start("a").end().comment("2"); },
         "<!--1-->\n<?t?>\n<a/>\n<!--2-->\n"},
        {[](StreamWriter& w) {
             Prolog prolog;
             prolog.standalone = true;
             prolog.doctype = "a";
             prolog.systemId = "s";
             prolog.beforeDoctype.push_back(std::make_unique<Comment>("1"));
             prolog.beforeRoot.push_back(std::make_unique<Instruction>("t", "2"));
             prolog.afterRoot.push_back(std::make_unique<Comment>("3"));
             w.prolog(prolog).start("a").end();
         },
         "<!--1-->\n<!DOCTYPE a SYSTEM \"s\">\n<?t 2?>\n<a/>\n<!--3-->\n"},
        {[](StreamWriter& w) {
             Element b("b");
             b.setAttribute("x", "1");
             b.addChild(new CharData("&"));
             w.start("a").node(b).node(CharData("<")).node(Comment("c")).node(CDataSection("s")).end();
         },
         "<a><b x=\"1\">&amp;</b>&lt;<!--c--><![CDATA[s]]></a>\n"},
        {[](StreamWriter& w) { w.node(Comment("1")).node(Element("a")).node(Instruction("t", "2")); },
         "<!--1-->\n<a/>\n<?t 2?>\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.written);
        const Outcome outcome = outcomeOf(c.calls);
        EXPECT_TRUE(outcome.isFinished);
        EXPECT_EQ(outcome.text, c.written);
    }
}

TEST(StreamWriterTest, OptionsSayTheForm) {
    const Calls calls = [](StreamWriter& w) {
        Element c("c");
        c.addChild(new Element("d"));
        w.start("a").start("b").start("e").end().end().node(c).comment("1").start("f").text("t").start("g").end().end();
        w.start("h").attribute("xml:space", "preserve").start("i").end().end().end();
    };
    WriteOptions options;
    EXPECT_EQ(outcomeOf(calls, options).text,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n\t<b>\n\t\t<e/>\n\t</b>\n\t<c>\n\t\t<d/>\n\t</c>\n\t"
              "<!--1-->\n\t<f>t<g/></f>\n\t<h xml:space=\"preserve\"><i/></h>\n</a>\n");
    options.indent = " ";
    options.newline = "\r\n";
    options.shortEmptyTags = false;
    options.mark = true;
    options.encoding = "utf-8";
    EXPECT_EQ(outcomeOf([](StreamWriter& w) { w.start("a").start("b").end().end(); }, options).text,
              "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<a>\r\n <b></b>\r\n</a>\r\n");
    options = bare();
    options.encoding = "ISO-8859-1";
    EXPECT_EQ(outcomeOf([](StreamWriter& w) { w.start("a").text("\u00E4\u20AC").end(); }, options).text,
              "<a>\xE4&#8364;</a>\n");
    options.encoding = "klingon";
    const Outcome refused = outcomeOf([](StreamWriter& w) { w.start("a").end(); }, options);
    EXPECT_FALSE(refused.isFinished);
    EXPECT_EQ(refused.text, "");
    EXPECT_EQ(refused.problems[0].kind, Problem::Kind::Unsupported);
}

TEST(StreamWriterTest, WhatWouldNotBeWellFormedIsAProblemAndNotWritten) {
    struct Case {
        Calls calls;
        const char* problem;
        const char* path;
        const char* written;
    };
    const Case kCases[] = {
        {[](StreamWriter&) {}, "the document has no root", "", ""},
        {[](StreamWriter& w) { w.comment("c"); }, "the document has no root", "", "<!--c-->\n"},
        {[](StreamWriter& w) { w.start("a").start("b").end(); }, "the element a is not ended", "/a", "<a><b/>"},
        {[](StreamWriter& w) { w.start("a").end().end(); }, "no element is open", "", "<a/>\n"},
        {[](StreamWriter& w) { w.start("a").end().start("b"); }, "the document has a root already", "", "<a/>\n"},
        {[](StreamWriter& w) { w.start("a").end().node(Element("b")); }, "the document has a root already", "",
         "<a/>\n"},
        {[](StreamWriter& w) { w.text("x"); }, "text has to be in an element", "", ""},
        {[](StreamWriter& w) { w.start("a").end().text(" "); }, "text has to be in an element", "", "<a/>\n"},
        {[](StreamWriter& w) { w.cdata(""); }, "a section has to be in an element", "", ""},
        {[](StreamWriter& w) { w.node(CharData("x")); }, "text has to be in an element", "", ""},
        {[](StreamWriter& w) { w.attribute("x", "1"); }, "an attribute has to follow the start of its element", "", ""},
        {[](StreamWriter& w) { w.start("a").text("t").attribute("x", "1"); },
         "an attribute has to follow the start of its element", "/a", "<a>t"},
        {[](StreamWriter& w) { w.start("a").start("b").end().attribute("x", "1"); },
         "an attribute has to follow the start of its element", "/a", "<a><b/>"},
        {[](StreamWriter& w) { w.start("a").attribute("x", "1").attribute("x", "2"); },
         "the attribute x stands twice in the tag of <a>", "/a", "<a x=\"1\""},
        {[](StreamWriter& w) {
             w.start("a");
             for (int i = 0; i < 40; ++i) w.attribute("x" + std::to_string(i % 30), "");
         },
         "the attribute x0 stands twice in the tag of <a>", "/a", nullptr},
        {[](StreamWriter& w) { w.start("a").start("1"); }, "\"1\" cannot be the name of an element", "/a", "<a"},
        {[](StreamWriter& w) { w.start("a").attribute("x y", ""); }, "\"x y\" cannot be the name of an attribute", "/a",
         "<a"},
        {[](StreamWriter& w) { w.start("a").attribute("x", "<\x01"); },
         "the attribute x has a character that XML does not allow: U+0001", "/a", "<a"},
        {[](StreamWriter& w) { w.start("a").text("&\xFF"); }, "the text has bytes that are not UTF-8: FF", "/a", "<a"},
        {[](StreamWriter& w) { w.start("a").text(std::string(100000, '<') + "\x02"); },
         "the text has a character that XML does not allow: U+0002", "/a", "<a"},
        {[](StreamWriter& w) { w.start("a").cdata("\r\x03"); },
         "the section has a character that XML does not allow: U+0003", "/a", "<a"},
        {[](StreamWriter& w) { w.start("a").comment("--"); }, "the comment has \"--\"", "/a", "<a"},
        {[](StreamWriter& w) { w.instruction("xml", "version='1.0'"); }, "an instruction may not be named xml", "", ""},
        {[](StreamWriter& w) {
             Element b("b");
             b.addChild(new Comment("--"));
             w.start("a").text("t").node(b);
         },
         "the comment has \"--\"", "/a", "<a>t"},
        {[](StreamWriter& w) { w.start("a").node(Attribute("x", "1")); },
         "a node of a kind that is no content of an element", "/a", "<a"},
        {[](StreamWriter& w) { w.start("a").end().prolog(Prolog()); }, "the prolog has to come first", "", "<a/>\n"},
        {[](StreamWriter& w) { w.comment("c").prolog(Prolog()); }, "the prolog has to come first", "", "<!--c-->\n"},
        {[](StreamWriter& w) {
             Prolog prolog;
             prolog.doctype = "a";
             prolog.internalSubset = "]><x/>";
             w.prolog(prolog);
         },
         "the document type cannot be written: its parts would be read as other ones", "", ""},
        {[](StreamWriter& w) { w.copy(StreamReader("<a/>")); }, "the reader has no event yet", "", ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.problem);
        // What comes after is not written either.
        const Outcome outcome = outcomeOf([&](StreamWriter& w) {
            c.calls(w);
            if (!w.problems().empty()) w.start("later").text("later").end();
        });
        EXPECT_FALSE(outcome.isFinished);
        ASSERT_EQ(outcome.problems.size(), 1U) << outcome.text;
        EXPECT_EQ(outcome.problems[0].kind, Problem::Kind::Unwritable);
        EXPECT_EQ(outcome.problems[0].text, c.problem);
        EXPECT_EQ(outcome.problems[0].path, c.path);
        EXPECT_NE(outcome.problems[0].rule, "");
        if (c.written != nullptr) {
            EXPECT_EQ(outcome.text, c.written);
        }
    }
}

TEST(StreamWriterTest, AStreamThatFailsIsAProblem) {
    std::ostringstream stream;
    stream.setstate(std::ios_base::failbit);
    StreamWriter writer(stream);
    EXPECT_FALSE(writer.start("a").end().finish());
    EXPECT_EQ(writer.problems()[0].toString(), "error: the stream cannot be written");
}

TEST(StreamWriterTest, GivesTheStreamWhatThereIsWhenItEnds) {
    std::ostringstream stream;
    {
        StreamWriter writer(stream, bare());
        StreamWriter moved(std::move(writer));
        moved.start("a").text("1");
        EXPECT_EQ(stream.str(), "");
    }
    EXPECT_EQ(stream.str(), "<a>1");
}

TEST(StreamWriterTest, NothingIsHeldBackButTheLastPieces) {
    std::ostringstream stream;
    StreamWriter writer(stream, bare());
    writer.start("a");
    std::size_t written = 2;
    for (int i = 0; i < 10000; ++i) {
        writer.start("record").text("some text").end();
        written += std::string("<record>some text</record>").size();
        ASSERT_LE(written - static_cast<std::size_t>(stream.tellp()), 64U << 10);
    }
    EXPECT_TRUE(writer.end().finish());
}

// --- Random calls ---

// What a call may do, by the rules: kept apart from how it is done.
class Model {
public:
    bool start(const std::string& name) {
        if (hasRoot && open == 0) return false;
        if (!isName(name)) return false;
        hasRoot = true;
        ++open;
        attributes.clear();
        isTagOpen = true;
        return true;
    }
    bool attribute(const std::string& name, const std::string& value) {
        return isTagOpen && isName(name) && isText(value) && attributes.insert(name).second;
    }
    bool text(const std::string& text) {
        if (text.empty()) return true;
        isTagOpen = false;
        return open > 0 && isText(text);
    }
    bool section(const std::string& text) {
        isTagOpen = false;
        return open > 0 && isText(text);
    }
    bool comment(const std::string& text) {
        isTagOpen = false;
        return text.find("--") == std::string::npos && (text.empty() || text.back() != '-') && isText(text) &&
               text.find('\r') == std::string::npos;
    }
    bool instruction(const std::string& target, const std::string& content) {
        isTagOpen = false;
        return isName(target) && target != "xml" && content.find("?>") == std::string::npos && isText(content) &&
               content.find('\r') == std::string::npos &&
               (content.empty() || (content[0] != ' ' && content[0] != '\n'));
    }
    bool end() {
        isTagOpen = false;
        if (open == 0) return false;
        --open;
        return true;
    }
    bool finish() const { return hasRoot && open == 0; }

    bool isOpen() const { return open > 0; }

private:
    static bool isName(const std::string& name) { return !name.empty() && name[0] != '1' && name != "a b"; }
    static bool isText(const std::string& text) {
        return text.find('\x01') == std::string::npos && text.find('\xFF') == std::string::npos;
    }

    bool hasRoot = false, isTagOpen = false;
    int open = 0;
    std::set<std::string> attributes;
};

const char* const kNames[] = {"a", "b", "c:d", "\u00F6", "longer-name"};
const char* const kBadNames[] = {"", "1", "a b"};
const char* const kTexts[] = {"", "text", "a&b<c>\"'", "]]>", "\n", "\u20AC \U0001F600", " x ", "->", "a?"};
const char* const kBadTexts[] = {"\x01", "a\xFF", "--", "-", "?>", "\r", "a long text, which is longer\x01"};

TEST(StreamWriterTest, AnySequenceOfCallsGivesADocumentOrAProblem) {
    Dice dice(40);
    int finished = 0;
    for (int i = 0; i < rounds(6000); ++i) {
        WriteOptions options;
        options.indent = dice.chance(50) ? "" : "\t";
        options.newline = dice.chance(70) ? "\n" : "\r\n";
        options.encoding = dice.chance(60) ? "UTF-8" : dice.chance(50) ? "UTF-16" : "GB18030";
        options.declaration = options.encoding != "UTF-8" || dice.chance(50);
        options.shortEmptyTags = dice.chance(50);
        std::ostringstream stream;
        StreamWriter writer(stream, options);
        std::ostringstream bareStream;
        StreamWriter bareWriter(bareStream, bare());
        Model model;
        bool isRight = true;
        const bool mayBeBad = dice.chance(40);
        const auto name = [&] { return mayBeBad && dice.chance(3) ? dice.any(kBadNames) : dice.any(kNames); };
        const auto text = [&] { return mayBeBad && dice.chance(3) ? dice.any(kBadTexts) : dice.any(kTexts); };
        const auto both = [&](const Calls& calls) {
            calls(writer);
            calls(bareWriter);
        };
        const std::size_t calls = dice.below(30);
        for (std::size_t j = 0; j < calls && isRight; ++j) {
            const std::string a = name();
            const std::string b = text();
            switch (dice.below(8)) {
            case 0:
            case 1:
                if (model.isOpen() || dice.chance(mayBeBad ? 20 : 100)) {
                    isRight = model.start(a);
                    both([&](StreamWriter& w) { w.start(a); });
                }
                break;
            case 2:
                isRight = model.attribute(a, b);
                both([&](StreamWriter& w) { w.attribute(a, b); });
                break;
            case 3:
                isRight = model.text(b);
                both([&](StreamWriter& w) { w.text(b); });
                break;
            case 4:
                isRight = model.section(b);
                both([&](StreamWriter& w) { w.cdata(b); });
                break;
            case 5:
                isRight = model.comment(b);
                both([&](StreamWriter& w) { w.comment(b); });
                break;
            case 6:
                isRight = model.instruction(a, b);
                both([&](StreamWriter& w) { w.instruction(a, b); });
                break;
            default: isRight = model.end(); both([&](StreamWriter& w) { w.end(); });
            }
            ASSERT_EQ(writer.problems().empty(), isRight);
        }
        while (isRight && model.isOpen()) {
            model.end();
            both([](StreamWriter& w) { w.end(); });
        }
        isRight = isRight && model.finish();
        ASSERT_EQ(writer.finish(), isRight);
        ASSERT_EQ(bareWriter.finish(), isRight);
        if (!isRight) {
            ASSERT_EQ(writer.problems().size(), 1U);
            EXPECT_NE(writer.problems()[0].toString(), "error: ");
            continue;
        }
        ++finished;
        ReadOptions reading = everything();
        reading.namespaces = false;
        const ReadResult read = readText(stream.str(), reading);
        const ReadResult bareRead = readText(bareStream.str(), reading);
        ASSERT_TRUE(read) << read.message() << "\n" << stream.str();
        ASSERT_TRUE(bareRead) << bareRead.message() << "\n" << bareStream.str();
        ASSERT_EQ(expatRefusal(bareStream.str()), "") << bareStream.str();
        if (!options.indent.empty()) continue;
        ASSERT_EQ(wholeTree(*read, AttributeOrder::OfTag, Sections::Nodes),
                  wholeTree(*bareRead, AttributeOrder::OfTag, Sections::Nodes));
    }
    EXPECT_GE(finished, atLeast(300));
}

// --- Filters ---

std::string filtered(const std::string& text, const ReadOptions& reading, const WriteOptions& writing,
                     std::vector<Problem>& problems) {
    std::istringstream in(text);
    StreamReader reader(in, reading);
    std::ostringstream out;
    StreamWriter writer(out, writing);
    for (;;) {
        const StreamReader::Event event = reader.next();
        writer.copy(reader);
        if (event == StreamReader::Event::Finished || event == StreamReader::Event::Failed) break;
    }
    EXPECT_EQ(writer.finish(), writer.problems().empty());
    problems = writer.problems();
    return out.str();
}

TEST(StreamWriterTest, AFilterLosesNothing) {
    Dice dice(41);
    int read = 0;
    for (int i = 0; i < rounds(4000); ++i) {
        const std::string text = randomDocument(dice);
        const ReadResult tree = readText(text, everything());
        if (!tree) continue;
        SCOPED_TRACE(text);
        const WriteOptions options = asRead(*tree);
        std::vector<Problem> problems;
        const std::string written = filtered(text, everything(), options, problems);
        ASSERT_TRUE(problems.empty()) << problems[0].toString();
        ASSERT_EQ(written, writeText(*tree, options).text());
        ++read;
    }
    EXPECT_GE(read, atLeast(1000));
}

TEST(StreamWriterTest, AFilterOfWhatCannotBeReadHasTheProblemOfTheReader) {
    std::vector<Problem> problems;
    WriteOptions options = bare();
    EXPECT_EQ(filtered("<a><b>1</c></a>", everything(), options, problems), "<a><b>1");
    ASSERT_EQ(problems.size(), 1U);
    EXPECT_EQ(problems[0].toString(), "1:8: error: </b> expected, found </c> (<b> began at 1:4)");
}

TEST(StreamWriterTest, WhatTheDocumentTypeSuppliesIsLeftOutWithIt) {
    const std::string text = "<!DOCTYPE a [<!ATTLIST a x CDATA '1'>]>\n<a y=\"2\"/>\n";
    std::vector<Problem> problems;
    WriteOptions options = bare();
    EXPECT_EQ(filtered(text, everything(), options, problems), text);
    options.defaults = true;
    EXPECT_EQ(filtered(text, everything(), options, problems),
              "<!DOCTYPE a [<!ATTLIST a x CDATA '1'>]>\n<a y=\"2\" x=\"1\"/>\n");
    options.defaults = options.doctype = false;
    EXPECT_EQ(filtered(text, everything(), options, problems), "<a y=\"2\" x=\"1\"/>\n");
}

TEST(StreamWriterTest, APieceAfterTheEndIsAProblem) {
    std::ostringstream out;
    StreamWriter writer(out, bare());
    writer.start("a").end();
    EXPECT_TRUE(writer.finish());
    EXPECT_TRUE(writer.finish());
    writer.comment("late").comment("later");
    ASSERT_EQ(writer.problems().size(), 1U);
    EXPECT_EQ(writer.problems()[0].toString(), "error: the document is finished");
    EXPECT_FALSE(writer.finish());
    EXPECT_EQ(out.str(), "<a/>\n");
}

TEST(StreamWriterTest, WhatAnotherDocumentTypeSuppliedIsWritten) {
    const ReadResult read = readText("<!DOCTYPE a [<!ATTLIST b x CDATA '1'>]><a><b/></a>");
    ASSERT_TRUE(read);
    const auto writtenAfter = [&](const char* subset) {
        Prolog prolog;
        prolog.doctype = "z";
        prolog.internalSubset = subset;
        std::ostringstream out;
        StreamWriter writer(out, bare());
        writer.prolog(prolog).start("z").node(*read->getRoot()->getChild(0)).end();
        EXPECT_TRUE(writer.finish());
        return out.str();
    };
    EXPECT_EQ(writtenAfter(""), "<!DOCTYPE z>\n<z><b x=\"1\"/></z>\n");
    EXPECT_EQ(writtenAfter("<!ATTLIST b x CDATA '1'>"), "<!DOCTYPE z [<!ATTLIST b x CDATA '1'>]>\n<z><b/></z>\n");
}

}  // namespace
}  // namespace Xml::test
