#include "xml/reader/ElementReader.h"

#include "reader/GrowthLimit.h"
#include "reader/ReadCase.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace Xml::test {

namespace {

Reading parseElement(InStream& in) {
    ElementReader reader;
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), dump(reader.getRoot())};
}

// Notes each message instead of formatting it.
class ListeningElementReader : public ElementReader {
public:
    using ElementReader::ElementReader;
    void message(InStream&, const std::string& text) override { heard.push_back(text); }

    std::vector<std::string> heard;
};

class RenamedElementReader : public ElementReader {};

// Takes what was read out of itself as soon as it has a message.
class TakingElementReader : public ElementReader {
public:
    using ElementReader::ElementReader;
    void message(InStream&, const std::string&) override {
        const std::unique_ptr<Element> element(extractRoot());
        taken = dump(element.get());
    }

    std::string taken;
};

}  // namespace

TEST(ElementReaderTest, ReadsTagsAndAttributes) {
    expectReadings(
        {
            {"empty", "<a/>z", yes("z").builds("a")},
            {"empty with both tags", "<a></a>z", yes("z").builds("a")},
            {"white space around names", " < a ></ a >z", yes("z").builds("a")},
            {"a name with all kinds of characters", "<_a:b-c.d1/>", yes().builds("_a:b-c.d1")},
            {"attributes in name order", "<a y=\"2\" x='1'/>", yes().builds("a[x=1 y=2]")},
            {"white space around attributes", "<a\n\tx = \"1\"\r\n/>", yes().builds("a[x=1]")},
            {"no white space between attributes",
             "<a x=\"1\"y='2'>"
             "</a>",
             yes().builds("a[x=1 y=2]")},
            {"the last of a name wins", "<a x='1' y='2' x='3'/>", yes().builds("a[x=3 y=2]")},
            {"empty value", "<a x=\"\"/>", yes().builds("a[x=]")},
            {"the other quote in a value", "<a x=\"it's\" y='\"'/>", yes().builds("a[x=it's y=\"]")},
            {"markup in a value", "<a x='<b/>-->'/>", yes().builds("a[x=<b/>-->]")},
            {"white space in a value", "<a x=' 1\n\t2 '/>", yes().builds("a[x= 1\n\t2 ]")},
            {"standard references", "<a x='1&amp;2&lt;&gt;&quot;&apos;'/>", yes().builds("a[x=1&2<>\"']")},
            {"character references", "<a x='&#65;&#x42;&#321;'/>", yes().builds("a[x=ABA]")},
            {"unknown references", "<a x='&u;&#0;&#X41;'/>", yes().builds("a[x=&u;&#0;&#X41;]")},
            {"unfinished reference", "<a x='1&u'/>", yes().builds("a[x=1&u;]")},
            {"references are replaced once", "<a x='&amp;lt;'/>", yes().builds("a[x=&lt;]")},
            {"children", "<a><b><c/></b><b/></a>z", yes("z").builds("a(b(c) b)")},
            {"the end of a name is enough for an end tag", "<a></ba>z", yes("z").builds("a")},
            {"an end tag that ends like an empty element", "<a></a/>z", yes("z").builds("a")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, DropsWhiteSpaceAroundChildElementsAndKeepsItAroundText) {
    expectReadings(
        {
            {"indented child", "<a>\n\t<b/>\n</a>", yes().builds("a(b)")},
            {"only white space", "<a> \r\n\t </a>", yes().builds("a")},
            {"text keeps blanks", "<a> x </a>", yes().builds("a(' x ')")},
            {"text before a child", "<a> x <b/> </a>", yes().builds("a(' x ' b)")},
            {"text after a child", "<a> <b/> x </a>", yes().builds("a(b ' x ')")},
            {"text around a comment", "<a> x <!-- y --> z </a>", yes().builds("a(' x ' ' z ')")},
            {"white space around a comment", "<a> <!-- y --> </a>", yes().builds("a")},
            {"text within a child", "<a>\n<b> x </b>\n</a>", yes().builds("a(b(' x '))")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, HoldsTextAsItStands) {
    expectReadings(
        {
            {"references", "<a>1 &lt; &u; &#65;</a>", yes().builds("a('1 &lt; &u; &#65;')")},
            {"a bare ampersand", "<a>x & y</a>", yes().builds("a('x & y')")},
            {"an ampersand at its start, ended further on", "<a>&<b/>;</a>", yes().builds("a('&' b ';')")},
            {"an apostrophe", "<a>it's</a>", yes().builds("a('it's')")},
            {"a string at its start", "<a>'x' y</a>", yes().builds("a(''x' y')")},
            {"a quote at its start, closed further on", "<a>\"<b/>x\"</a>", yes().builds("a('\"' b 'x\"')")},
            {"punctuation", "<a>/>=]]>?!|</a>", yes().builds("a('/>=]]>?!|')")},
            {"bytes above 127", "<a>\xC3\xA9\xFF</a>", yes().builds("a('\xC3\xA9\xFF')")},
            {"line ends", "<a>x\r\ny\rz\n</a>", yes().builds("a('x\r\ny\rz\n')")},
            {"a zero byte", std::string("<a>x\0y</a>", 10), yes().builds(std::string("a('x\0y')", 8))},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, DropsCommentsInContent) {
    expectReadings(
        {
            {"only a comment", "<a><!-- x --></a>", yes().builds("a")},
            {"several", "<a><!--x--> <!--y--><b/><!--z--></a>", yes().builds("a(b)")},
            {"markup inside", "<a><!-- <b> </a> & ' \" --></a>", yes().builds("a")},
            {"the opening's dashes may end it", "<a><!--></a>", yes().builds("a")},
            {"so may one dash more", "<a> <!---><b/></a>", yes().builds("a(b)")},
            {"empty", "<a><!----><b/></a>", yes().builds("a(b)")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, ReportsWhatTheStartTagLacks) {
    const Verdict noElement = ended().builds("null");
    expectReadings(
        {
            {"nothing", "", noElement},
            {"white space", "  ", noElement},
            {"only opened", "<", noElement},
            {"text", "x y", no("\"<\" expected", " y").builds("null")},
            {"comment", "<!-- x --><a/>", no("\"<\" expected", " x --><a/>").builds("null")},
            {"end tag", "</a>", no("\"<\" expected", "a>").builds("null")},
            {"instruction", "<?x?>", no("\"<\" expected", "x?>").builds("null")},
            {"digit first", "<1a/>", no("not a name: 1a", "/>").builds("null")},
            {"no name", "<>", no("not a name: >", "").builds("null")},
            {"string for a name", "<'a'>", no("not a name: 'a'", ">").builds("null")},
            {"only a name", "<a", ended().builds("a"), no("not a name: a").goes().builds("null")},
            {"only a name and a blank", "<a ", ended().builds("a")},
            {"attribute without equals sign", "<a x'1'>", no("\"=\" expected", ">").builds("a")},
            {"attribute without value", "<a x=>", no("\"\"\" or \"'\" expected", "").builds("a")},
            {"value without quotes", "<a x='1' y=2/>", no("\"\"\" or \"'\" expected", "/>").builds("a[x=1]")},
            {"value of a name met before", "<a x='1' x='2' x=3/>",
             no("\"\"\" or \"'\" expected", "/>").builds("a[x=2]")},
            {"unfinished value", "<a x='1' y='2>", ended().builds("a[x=1]")},
            {"nothing after an attribute's name", "<a x", ended().builds("a"), silent().goes().builds("a")},
            {"nothing after the equals sign", "<a x=", ended().builds("a")},
            {"nothing after an attribute", "<a x='1'", ended().builds("a[x=1]")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, FailsSilentlyWhenAnotherTokenEndsTheStartTag) {
    expectReadings(
        {
            {"equals sign", "<a =>", silent(">").builds("a")},
            {"parted empty element's end", "<a / >", silent(" >").builds("a")},
            {"digit", "<a x='1' 2>", silent(">").builds("a[x=1]")},
            {"string", "<a 'x'>", silent(">").builds("a")},
            {"start tag", "<a<b/>", silent("b/>").builds("a")},
            {"question mark", "<a ?>", silent(">").builds("a")},
            {"a slash at the end of the data", "<a/", silent().builds("a"), silent().goes().builds("a")},
            {"in a child", "<a><b/><c x='1' =></c></a>", silent("></c></a>").builds("a(b)")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, ReportsWhatTheContentLacks) {
    expectReadings(
        {
            {"nothing", "<a>", ended().builds("a")},
            {"white space", "<a>  ", ended().builds("a")},
            {"text is not finished", "<a>x", ended().builds("a")},
            {"text with a blank after it", "<a>x y ", ended().builds("a")},
            {"a child and no more", "<a>x<b/>", ended().builds("a('x' b)")},
            {"an unfinished child is left out", "<a><b/><c><d/>", ended().builds("a(b)")},
            {"an ampersand that opens the text", "<a>& x</a>", ended().builds("a")},
            {"a quote that opens the text", "<a><b/>\"x</a>", ended().builds("a(b)")},
            {"a quote after a closed one", "<a>\"<b/>\"</a>", ended().builds("a('\"' b)")},
            {"half a child", "<a><", ended().builds("a")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, ReportsAnEndTagThatDoesNotFit) {
    expectReadings(
        {
            {"another name", "<a></b>", no("\"a\" expected", ">").builds("a")},
            {"another name after content", "<a>x<b/></c>z", no("\"a\" expected", ">z").builds("a('x' b)")},
            {"the end of the name only", "<ab></b>", no("\"ab\" expected", ">").builds("ab")},
            {"crossed", "<a><b></a></b>", no("\"b\" expected", "></b>").builds("a")},
            {"no name", "<a></>", no("\"a\" expected", "").builds("a")},
            {"quoted", "<a></'a'>", no("\"a\" expected", ">").builds("a")},
            {"something after the name", "<a></a x>", no("\">\" expected", ">").builds("a")},
            {"ends after the opening", "<a></", ended().builds("a")},
            {"ends after the name", "<a></a", ended().builds("a"), no("\"a\" expected").goes().builds("a")},
            {"ends after a blank", "<a></a ", ended().builds("a")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, StopsAtMarkupThatItDoesNotConsume) {
    expectReadings(
        {
            {"instruction", "<a><?x?></a>", no("unexpected markup \"<?\"", "x?></a>").builds("a")},
            {"declaration", "<a> <?xml?></a>", no("unexpected markup \"<?xml\"", "?></a>").builds("a")},
            {"CDATA section", "<a><![CDATA[x]]></a>", no("unexpected markup \"<![CDATA[\"", "x]]></a>").builds("a")},
            {"parted CDATA section", "<a><! [ CDATA [x]]></a>",
             no("unexpected markup \"<![CDATA[\"", "x]]></a>").builds("a")},
            {"other section", "<a><![x]]></a>", no("unexpected markup \"<![\"", "x]]></a>").builds("a")},
            {"document type", "<a><!DOCTYPE b></a>", no("unexpected markup \"<!DOCTYPE\"", " b></a>").builds("a")},
            {"any name", "<a><!x></a>", no("unexpected markup \"<!x\"", "></a>").builds("a")},
            {"no name", "<a><! ></a>", no("unexpected markup \"<!\"", " ></a>").builds("a")},
            {"one dash", "<a><!-x--></a>", no("unexpected markup \"<!\"", "-x--></a>").builds("a")},
            {"after white space", "<a><b/> \n <?x?></a>", no("unexpected markup \"<?\"", "x?></a>").builds("a(b)")},
            {"after text", "<a>x <?x?></a>", no("unexpected markup \"<?\"", "x?></a>").builds("a('x ')")},
            {"in a child", "<a>x<b>y<?x?></b></a>", no("unexpected markup \"<?\"", "x?></b></a>").builds("a('x')")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, FailsSilentlyAtACommentThatDoesNotEnd) {
    const Verdict lateEnd = silent().goes().builds("a(b)");
    expectReadings(
        {
            {"text after it", "<a><b/><!-- x", silent().builds("a(b)"), lateEnd},
            {"half ended", "<a><b/><!-- x --", silent().builds("a(b)"), lateEnd},
            {"in a child", "<a><b/><c><!-- x", silent().builds("a(b)"), lateEnd},
            {"only opened", "<a><b/><!-- ", silent().builds("a(b)"), lateEnd},
            {"half opened", "<a><b/><!-", ended().builds("a(b)")},
        },
        classOf<ElementReader>(), parseElement);
}

TEST(ElementReaderTest, TakesOverTheMessageOfAChildAlsoWhenItIsEmpty) {
    StringInStream own("<a =>");
    ElementReader reader;
    reader.setMessage("before");
    EXPECT_FALSE(reader.parse(own));
    EXPECT_EQ(reader.getErrorMessage(), "before");

    StringInStream childs("<a><b =></a>");
    EXPECT_FALSE(reader.parse(childs));
    EXPECT_EQ(reader.getErrorMessage(), "");
}

TEST(ElementReaderTest, KeepsItsMessageAfterASuccess) {
    ElementReader reader;
    reader.setMessage("before");
    StringInStream in("<a x='1'>y<b/></a>");
    EXPECT_TRUE(reader.parse(in));
    EXPECT_EQ(reader.getErrorMessage(), "before");
}

TEST(ElementReaderTest, LocatesAFailureByTheLinesItRead) {
    const struct {
        const char* name;
        const char* text;
        int line;
        int column;
        const char* message;
    } kCases[] = {
        {"attribute", "<a \r\n x='1'\r\n y=2>", 2, 4, "\"\"\" or \"'\" expected"},
        {"a CR that ends a word is read twice and counts", "<a\r\n x=2>", 2, 4, "\"\"\" or \"'\" expected"},
        {"end tag of a child", "<a>\r\n<b>\r\n</c>\r\n</a>", 2, 3, "\"b\" expected"},
        {"text of many lines", "<a>x\r\ny\r\nz\r\n</b></a>", 3, 3, "\"a\" expected"},
        {"comment of many lines", "<a><!--\r\n\r\n--></b>\r\n</a>", 2, 6, "\"a\" expected"},
        {"value of many lines", "<a x='\r\n\r\n'></b>", 2, 5, "\"a\" expected"},
        {"bare line feeds", "<a>\n\n</b>", 1, 8, "\"a\" expected"},
        {"markup", "<a>\r\n  <?x?>\r\n</a>", 1, 4, "unexpected markup \"<?\""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        for (auto source : kAllSources) {
            SCOPED_TRACE(::testing::Message() << source);
            withSource(source, c.text, [&c](InStream& in) {
                EXPECT_EQ(parseElement(in).error, located(c.line, c.column, c.message, classOf<ElementReader>()));
            });
        }
    }
}

TEST(ElementReaderTest, CutsTheMessageAboutALongName) {
    const std::string name(400, 'a');
    StringInStream in("<" + name + "></b>");
    const Reading reading = parseElement(in);
    EXPECT_FALSE(reading.ok);
    EXPECT_EQ(reading.error, located(1, 405, "\"" + name + "\" expected", classOf<ElementReader>()));
    EXPECT_EQ(reading.error.size(), 255U);
}

TEST(ElementReaderTest, TakesPercentSignsInMessagesAsText) {
    for (auto source : kAllSources) {
        withSource(source, "<%s%n%5000d />", [](InStream& in) {
            EXPECT_EQ(parseElement(in).error, located(1, 11, "not a name: %s%n%5000d", classOf<ElementReader>()));
        });
    }
}

TEST(ElementReaderTest, DecodesAttributesWithTheEntitiesOfItsDtdAndLeavesText) {
    Dtd dtd("a");
    dtd.setEntity("e", "value & more");
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        withSource(source, "<a x='&e;'>&e;<b y='-&e;&amp;&u;-'/></a>", [&dtd](InStream& in) {
            ElementReader reader(&dtd);
            ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage();
            EXPECT_EQ(dump(reader.getRoot()), "a[x=value & more]('&e;' b[y=-value & more&&u;-])");
            EXPECT_EQ(reader.getRoot()->getCharData(), "&e;");
            reader.getRoot()->setDtd(&dtd);
            EXPECT_EQ(reader.getRoot()->getCharData(), "value & more");
            reader.getRoot()->setDtd(nullptr);
        });
    }
}

TEST(ElementReaderTest, KeepsAValueThatWouldBecomeEmpty) {
    Dtd dtd("a");
    dtd.setEntity("none", "");
    StringInStream in("<a x='&none;' y='-&none;'/>");
    ElementReader reader(&dtd);
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(dump(reader.getRoot()), "a[x=&none; y=-]");
}

TEST(ElementReaderTest, LeavesNodesMarkedWithParentsAndWithoutDtd) {
    Dtd dtd("a");
    StringInStream in("<a x='1' y='2'>text<b z='3'><c/></b></a>");
    ElementReader reader(&dtd);
    ASSERT_TRUE(reader.parse(in));
    Element* a = reader.getRoot();
    Element* b = a->getElement(0);
    Element* c = b->getElement(0);
    const struct {
        const char* name;
        const Object* node;
        const Object* parent;
    } kCases[] = {
        {"root", a, nullptr},
        {"first attribute", a->getAttribute(0), a},
        {"second attribute", a->getAttribute(1), a},
        {"text", a->getChild(0), a},
        {"child", b, a},
        {"attribute of the child", b->getAttribute(0), b},
        {"grandchild", c, b},
    };
    for (const auto& node : kCases) {
        SCOPED_TRACE(node.name);
        ASSERT_NE(node.node, nullptr);
        EXPECT_EQ(node.node->getParent(), node.parent);
        EXPECT_EQ(NodeTestAccess::dtd(*node.node), nullptr);
        EXPECT_TRUE(NodeTestAccess::dirty(*node.node));
        EXPECT_EQ(NodeTestAccess::writeStart(*node.node), -1);
        EXPECT_EQ(NodeTestAccess::writeEnd(*node.node), -1);
    }
}

TEST(ElementReaderTest, HandsTheElementOverOnce) {
    StringInStream in("<a/>");
    ElementReader reader;
    EXPECT_EQ(reader.getRoot(), nullptr);
    EXPECT_EQ(reader.extractRoot(), nullptr);
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(const_cast<const ElementReader&>(reader).getRoot(), reader.getRoot());
    const std::unique_ptr<Element> root(reader.extractRoot());
    EXPECT_EQ(dump(root.get()), "a");
    EXPECT_EQ(reader.getRoot(), nullptr);
    EXPECT_EQ(reader.extractRoot(), nullptr);
}

TEST(ElementReaderTest, HandsOverWhatWasBuiltBeforeAFailure) {
    StringInStream in("<a x='1'>y<b/><c><d></c></a>");
    ElementReader reader;
    EXPECT_FALSE(reader.parse(in));
    const std::unique_ptr<Element> root(reader.extractRoot());
    EXPECT_EQ(dump(root.get()), "a[x=1]('y' b)");
    EXPECT_EQ(reader.getRoot(), nullptr);
    root->addElement("e", "later");
    EXPECT_EQ(dump(root.get()), "a[x=1]('y' b e('later'))");
}

TEST(ElementReaderTest, ReadsOneElementAfterAnother) {
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        withSource(source, "<a/> <b><c></b> <d>x</d> ", [](InStream& in) {
            ElementReader reader;
            ASSERT_TRUE(reader.parse(in));
            EXPECT_EQ(dump(reader.getRoot()), "a");
            EXPECT_FALSE(reader.parse(in));
            EXPECT_EQ(dump(reader.getRoot()), "b");
            std::string token;
            ASSERT_TRUE(in.getToken(token));
            EXPECT_EQ(token, ">");
            ASSERT_TRUE(reader.parse(in));
            EXPECT_EQ(dump(reader.getRoot()), "d('x')");
        });
    }
}

TEST(ElementReaderTest, TellsASubclassOnlyOfItsOwnFailures) {
    const struct {
        const char* name;
        const char* text;
        std::vector<std::string> heard;
        std::string message;
    } kCases[] = {
        {"own end tag", "<a><b/></c>", {"\"a\" expected"}, ""},
        {"own markup", "<a><?x?></a>", {"unexpected markup \"<?\""}, ""},
        {"own start tag", "x ", {"\"<\" expected"}, ""},
        {"own end of data", "<a>x", {kEndOfStream}, ""},
        {"own silent failure", "<a =>", {}, ""},
        {"child's end tag", "<a><b></c></a>", {}, located(1, 9, "\"b\" expected", classOf<ElementReader>())},
        {"child's markup",
         "<a><b><?x?></b></a>",
         {},
         located(1, 8, "unexpected markup \"<?\"", classOf<ElementReader>())},
        {"grandchild's end of data", "<a><b><c>", {}, located(1, 9, kEndOfStream, classOf<ElementReader>())},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        StringInStream in(c.text);
        ListeningElementReader reader;
        EXPECT_FALSE(reader.parse(in));
        EXPECT_EQ(reader.heard, c.heard);
        EXPECT_EQ(reader.getErrorMessage(), c.message);
    }
}

TEST(ElementReaderTest, NamesASubclassInItsOwnFailuresAndThePlainReaderInThoseOfChildren) {
    RenamedElementReader reader;
    StringInStream own("<a></b>");
    EXPECT_FALSE(reader.parse(own));
    EXPECT_EQ(reader.getErrorMessage(), located(1, 6, "\"a\" expected", classOf<RenamedElementReader>()));
    StringInStream childs("<a><b></a></a>");
    EXPECT_FALSE(reader.parse(childs));
    EXPECT_EQ(reader.getErrorMessage(), located(1, 9, "\"b\" expected", classOf<ElementReader>()));
}

TEST(ElementReaderTest, HandsOverWhatWasReadWhileItReports) {
    const struct {
        const char* name;
        const char* text;
        const char* taken;
    } kCases[] = {
        {"attributes are in order", "<a y='2' x='1' y='3' z>", "a[x=1 y=3]"},
        {"unfinished attribute", "<a y='2' x='1' y=>", "a[x=1 y=2]"},
        {"too much text", "<a y='2' x='1' z='&e;'>", "a[x=1 y=2]"},
        {"content", "<a><b/>text<?x?></a>", "a(b 'text')"},
        {"end tag", "<a><b/></c>", "a(b)"},
        {"no name", "<1>", "null"},
    };
    const GrowthLimit limit(1);
    Dtd dtd("a");
    dtd.setEntity("e", DataHolder(std::string(100'000, 'x')));
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        for (auto source : kAllSources) {
            withSource(source, c.text, [&](InStream& in) {
                TakingElementReader reader(&dtd);
                EXPECT_FALSE(reader.parse(in));
                EXPECT_EQ(reader.taken, c.taken);
                EXPECT_EQ(reader.getRoot(), nullptr);
            });
        }
    }
}

// A source that takes what is read out of its reader when it comes to that byte.
class TakingSource : public BareInStream {
public:
    TakingSource(const std::string& bytes, int itsPlace, ElementReader& itsReader)
        : BareInStream(bytes), place(itsPlace), reader(itsReader) {}

    bool getChar(char& c) override {
        if (getPosition() == place && taken == nullptr) taken.reset(reader.extractRoot());
        return BareInStream::getChar(c);
    }

    std::unique_ptr<Element> taken;

private:
    int place;
    ElementReader& reader;
};

TEST(ElementReaderTest, FinishesATreeThatIsTakenWhileItIsRead) {
    const std::string text = "<a><b><c/></b><d/>x</a>";
    for (int place = 0; place < static_cast<int>(text.size()); ++place) {
        SCOPED_TRACE(place);
        ElementReader reader;
        TakingSource in(text, place, reader);
        EXPECT_TRUE(reader.parse(in));
        EXPECT_EQ(dump(in.taken != nullptr ? in.taken.get() : reader.getRoot()), "a(b(c) d 'x')");
    }
}

TEST(ElementReaderTest, BoundsTheTextMadeFromOneLargeEntityInManyAttributes) {
    std::string text = "<a";
    for (int i = 0; i < 100; ++i) text += " x" + std::to_string(i) + "='&e;'";
    text += "/>";
    Dtd dtd("a");
    dtd.setEntity("e", DataHolder(std::string(100000, 'x')));
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        {
            const GrowthLimit limit(1000);
            Dtd bounded(dtd);
            withSource(source, text, [&bounded](InStream& in) {
                ElementReader reader(&bounded);
                EXPECT_FALSE(reader.parse(in));
                EXPECT_EQ(reader.getErrorMessage(),
                          located(1, in.getColumn(), "entity text too large", classOf<ElementReader>()));
                ASSERT_NE(reader.getRoot(), nullptr);
                EXPECT_LT(reader.getRoot()->getAttributeCount(), 100);
            });
        }
        for (const std::int64_t lifted : {std::int64_t{0}, std::int64_t{20000000}}) {
            const GrowthLimit limit(lifted);
            Dtd free(dtd);
            withSource(source, text, [&free](InStream& in) {
                ElementReader reader(&free);
                EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
                EXPECT_EQ(reader.getRoot()->getAttributeCount(), 100);
                EXPECT_EQ(reader.getRoot()->getAttributeValue("x99").size(), 100000U);
            });
        }
    }
}

TEST(ElementReaderTest, NamesThePlainReaderWhenAChildMakesTooMuchText) {
    const GrowthLimit limit(1000);
    Dtd dtd("a");
    dtd.setEntity("e", DataHolder(std::string(100000, 'x')));
    StringInStream in("<a><b x='&e;' y='&e;'/></a>");
    ListeningElementReader reader(&dtd);
    EXPECT_FALSE(reader.parse(in));
    EXPECT_TRUE(reader.heard.empty());
    EXPECT_NE(reader.getErrorMessage().find(std::string("entity text too large <") + classOf<ElementReader>() + ">"),
              std::string::npos)
        << reader.getErrorMessage();
}

TEST(ElementReaderTest, LetsEachDocumentOverASharedDtdMakeAsMuchText) {
    const GrowthLimit limit(25000);
    Dtd dtd("a");
    dtd.setEntity("e", DataHolder(std::string(6000, 'x')));
    for (int documents = 0; documents < 10; ++documents) {
        StringInStream in("<a x='&e;' y='&e;'/>");
        ElementReader reader(&dtd);
        ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage() << " in document " << documents;
    }
    StringInStream in("<a b='&e;' c='&e;' d='&e;' e='&e;' f='&e;'/>");
    EXPECT_FALSE(ElementReader(&dtd).parse(in));
}

TEST(ElementReaderTest, BoundsTheTextMadeToTheByte) {
    Dtd dtd("a");
    dtd.setEntity("e", DataHolder(std::string(6000, 'x')));
    for (const std::int64_t bound : {11999, 12000}) {
        const GrowthLimit limit(bound);
        StringInStream in("<a x='&e;' y='&e;'/>");
        EXPECT_EQ(ElementReader(&dtd).parse(in), bound == 12000);
    }
}

TEST(ElementReaderTest, AllowsAHundredTimesTheBytesReadWhateverTheBound) {
    const GrowthLimit limit(1);
    Dtd dtd("a");
    dtd.setEntity("e", DataHolder(std::string(500, 'x')));
    StringInStream in("<a x='&e;' y='&e;'><b z='&e;'/></a>");
    ElementReader reader(&dtd);
    EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
}

}  // namespace Xml::test
