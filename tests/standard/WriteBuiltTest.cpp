// Trees that a program built, or changed, or that the dialect read: what is written reads as the same tree, or is a
// problem where XML cannot say it.
#include "standard/Documents.h"
#include "standard/WholeTree.h"
#include "standard/Written.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include "xml/standard/Write.h"
#include "xml/standard/internal/DtdText.h"
#include "xml/standard/internal/Syntax.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

const char* const kNames[] = {"a", "b", "item", "p:a", "x-1.y_z", "\u00F6\u00E4", ":", "_"};
const char* const kTexts[] = {
    "",
    "text",
    " ",
    "\n",
    "\t\r",
    "a & b < c > d \"'",
    "]]>",
    "&amp;",
    "&#65;",
    "\u00E4",
    "\U0001F600",
    "-->",
    "?>",
    "<![CDATA[",
    "&unknown;",
    "\u2028\u0085\x7F",
    "a\r\nb",
    "]]",
    ">",
    "\uFFFD",
    "  indented  ",
    "1234567890123456",
    "a text that is longer than most, with an \u00E4 and an & in it, and with \"quotes\"\nin two lines",
};
const char* const kBadTexts[] = {
    "\x01", "a\x1F", "\xFF", "\xC3", "\xEF\xBF\xBF", "\xED\xB0\x80", "\u00E4\x02 long enough for a block"};

// Builds random trees; `isBad` says whether something in them cannot be written.
class Builder {
public:
    Builder(Dice& itsDice, bool mayBeBad) : dice(itsDice), badPercent(mayBeBad ? 2 : 0) {}

    bool isBad = false;

    std::unique_ptr<Element> element(int depth) {
        std::unique_ptr<Element> made(new Element("x"));
        NodeAccess::setName(*made, name());
        for (std::size_t i = dice.below(4); i > 0; --i) {
            setAttribute(*made);
        }
        for (std::size_t i = dice.below(5); i > 0; --i) addChild(*made, depth);
        return made;
    }

    // Some changes of one that was read.
    void edit(Element& root) {
        std::vector<Element*> elements{&root};
        for (std::size_t i = 0; i < elements.size(); ++i) {
            for (int j = 0; j < elements[i]->getChildCount(); ++j) {
                if (elements[i]->getChild(j)->isElement()) elements.push_back(elements[i]->getChild(j)->toElement());
            }
        }
        for (std::size_t i = 0; i < 3; ++i) {
            Element& place = *elements[dice.below(elements.size())];
            switch (dice.below(5)) {
            case 0: addChild(place, 3); break;
            case 1: setAttribute(place); break;
            case 2: NodeAccess::setName(place, name()); break;
            case 3: place.addChild(place.clone()); break;
            default:
                for (int j = 0; j < place.getChildCount(); ++j) {
                    if (place.getChild(j)->isCharData()) place.getChild(j)->toCharData()->setData(text());
                }
            }
        }
    }

private:
    bool chooseBad() {
        const bool is = dice.chance(badPercent);
        isBad |= is;
        return is;
    }

    std::string name() {
        static const char* const kBadNames[] = {"", "1", "a b", "<", "a\xFF", "\u00D7"};
        return chooseBad() ? dice.any(kBadNames) : dice.any(kNames);
    }

    std::string text() { return chooseBad() ? dice.any(kBadTexts) : dice.any(kTexts); }

    // One that it has stays, lest something bad goes again.
    void setAttribute(Element& element) {
        const std::string attribute = name();
        if (element.getAttribute(attribute) == nullptr) element.setAttribute(attribute, text());
    }

    // What can be said without references.
    std::string plain() {
        static const char* const kPlain[] = {"", "c", " a - b ", "\n", "<a>&b;", "\u20AC", "]]>"};
        static const char* const kBadPlain[] = {"\r", "\x03", "\xC0\x80"};
        return chooseBad() ? dice.any(kBadPlain) : dice.any(kPlain);
    }

    void addChild(Element& to, int depth) {
        switch (dice.below(depth > 0 ? 7 : 5)) {
        case 0: to.addChild(new CharData(text())); break;
        case 1: to.addChild(new CDataSection(text())); break;
        case 2: to.addChild(new Comment(chooseBad() ? "a--" : plain())); break;
        case 3: to.addChild(new Instruction(chooseBad() ? "xml" : "t", "i" + plain())); break;
        case 4: to.addChild(new CharData(dice.any(kTexts))); break;
        default: to.addChild(element(depth - 1).release());
        }
    }

    Dice& dice;
    const std::size_t badPercent;
};

ReadOptions withoutNamespaces() {
    ReadOptions options = everything();
    options.namespaces = false;
    return options;
}

// What a reader makes of the tree: sections are text where they are split.
std::string treeOf(const Document& document) { return wholeTree(document, AttributeOrder::ByName, Sections::Texts); }

void expectSameOrProblem(const Document& document, bool isBad) {
    WriteOptions options;
    options.indent.clear();
    const WriteResult written = writeText(document, options);
    ASSERT_EQ(static_cast<bool>(written), !isBad) << written.message() << written.text();
    if (isBad) {
        EXPECT_EQ(written.problems()[0].kind, Problem::Kind::Unwritable);
        EXPECT_NE(written.message(), "");
        return;
    }
    const ReadResult again = readText(written.text(), withoutNamespaces());
    ASSERT_TRUE(again) << again.message() << "\n" << written.text();
    ASSERT_EQ(treeOf(*again), treeOf(document)) << written.text();
    EXPECT_EQ(expatRefusal(written.text()), "") << written.text();

    // Indented it is the same but for white space, in any encoding too.
    WriteOptions indented;
    indented.encoding = "UTF-16";
    const WriteResult wide = writeText(document, indented);
    ASSERT_TRUE(wide) << wide.message();
    const ReadResult fromWide = readText(wide.text(), withoutNamespaces());
    ASSERT_TRUE(fromWide) << fromWide.message();
    indented.encoding = "UTF-8";
    const ReadResult fromIndented = readText(writeText(document, indented).text(), withoutNamespaces());
    ASSERT_TRUE(fromIndented) << fromIndented.message();
    EXPECT_EQ(treeOf(*fromWide), treeOf(*fromIndented));
}

TEST(WriteBuiltTest, RandomTreesAreTheSameAfterwardsOrAProblem) {
    const MessageCollector quiet;
    Dice dice(30);
    int bad = 0;
    for (int i = 0; i < rounds(4000); ++i) {
        Builder builder(dice, dice.chance(50));
        std::unique_ptr<Element> root = builder.element(4);
        const Document document(root.release(), nullptr);
        expectSameOrProblem(document, builder.isBad);
        if (HasFailure()) return;
        bad += builder.isBad ? 1 : 0;
    }
    EXPECT_GE(bad, atLeast(300));
}

TEST(WriteBuiltTest, TreesThatWereReadAndChangedAreTheSameAfterwardsOrAProblem) {
    const MessageCollector quiet;
    Dice dice(31);
    int read = 0;
    for (int i = 0; i < rounds(4000); ++i) {
        const std::string text = randomDocument(dice);
        ReadOptions options = everything();
        options.keepCData = dice.chance(50);
        const ReadResult result = readText(text, options);
        // Defaults would come again where a name is changed to that of their element.
        if (!result || text.find("<!ATTLIST") != std::string::npos) continue;
        SCOPED_TRACE(text);
        std::unique_ptr<Document> document(result->clone()->toDocument());
        Builder builder(dice, dice.chance(30));
        builder.edit(*document->getRoot());
        // What is bad may have been replaced again: the tree says what it is.
        const WriteResult written = writeText(*document);
        if (!written) {
            EXPECT_TRUE(builder.isBad) << written.message();
            continue;
        }
        expectSameOrProblem(*document, false);
        if (HasFailure()) return;
        ++read;
    }
    EXPECT_GE(read, atLeast(300));
}

// --- Trees of the dialect ---

TEST(WriteBuiltTest, TreesOfTheDialectAreWrittenAsTheyAreMeant) {
    struct Case {
        const char* text;
        const char* written;
    };
    const Case kCases[] = {
        {"<a>1 &#228; &#8364;</a>", "<a>1 \u00E4 \u20AC</a>\n"},
        {"<a>say &quot;x&quot; &apos;y&apos;</a>", "<a>say \"x\" 'y'</a>\n"},
        {"<!DOCTYPE a [<!ELEMENT a (#PCDATA)><!ENTITY e \"x<y\">]><a>&e;&e;</a>",
         "<!DOCTYPE a [\n<!ENTITY e \"x&lt;y\">\n<!ELEMENT a (#PCDATA)>\n]>\n<a>x&lt;yx&lt;y</a>\n"},
        {"<!DOCTYPE a [<!ELEMENT a (b | c)*><!ELEMENT b EMPTY><!ELEMENT c ANY>"
         "<!ATTLIST a x CDATA #FIXED \"1\" y CDATA #REQUIRED z CDATA #IMPLIED w CDATA \"<&\">]><a y=\"2\"/>",
         "<!DOCTYPE a [\n<!ELEMENT a (b | c)*>\n<!ELEMENT b EMPTY>\n<!ELEMENT c ANY>\n<!ATTLIST a\n\tw CDATA "
         "\"&#60;&#38;\"\n\tx CDATA #FIXED \"1\"\n\ty CDATA #REQUIRED\n\tz CDATA #IMPLIED>\n]>\n<a y=\"2\"/>\n"},
        {"<!DOCTYPE a [<!ELEMENT a (b | c | #PCDATA)*><!ELEMENT b ((c?, b+) | c)><!ELEMENT c (#PCDATA | "
         "b)*>]><a>1<c/></a>",
         "<!DOCTYPE a [\n<!ELEMENT a (#PCDATA | b | c)*>\n<!ELEMENT b ((c?, b+) | c)>\n<!ELEMENT c (#PCDATA | "
         "b)*>\n]>\n"
         "<a>1<c/></a>\n"},
        {"<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a x CDATA #IMPLIED><!ENTITY p \"100%\">]><a x=\"a\nb\">&p;</a>",
         "<!DOCTYPE a [\n<!ENTITY p \"100&#37;\">\n<!ELEMENT a ANY>\n<!ATTLIST a\n\tx CDATA #IMPLIED>\n]>\n<a "
         "x=\"a&#10;b\">100%</a>\n"},
        {"<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY lt \"&lt;\"><!ENTITY gt \"&gt;\"><!ENTITY q "
         "\"&quot;&apos;\">]><a>&q;</a>",
         "<!DOCTYPE a [\n<!ENTITY gt \"&#38;#62;\">\n<!ENTITY lt \"&#38;#60;\">\n<!ENTITY q \"&#34;'\">\n<!ELEMENT a "
         "ANY>\n]>\n<a>\"'</a>\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        const Outcome read = readDocument(c.text);
        ASSERT_TRUE(read.ok) << read.error;
        WriteOptions options;
        options.declaration = false;
        const WriteResult written = writeText(*read.document, options);
        ASSERT_TRUE(written) << written.message();
        EXPECT_EQ(written.text(), c.written);
        EXPECT_EQ(expatRefusal(written.text()), "");
        const ReadResult again = readText(written.text());
        ASSERT_TRUE(again) << again.message();
    }
}

TEST(WriteBuiltTest, ModelsThatXmlDoesNotHaveCannotBeWritten) {
    const Outcome read = readDocument("<!DOCTYPE a [<!ELEMENT a (b+ | #PCDATA)*>]><a>1</a>");
    ASSERT_TRUE(read.ok) << read.error;
    const WriteResult written = writeText(*read.document);
    EXPECT_EQ(written.message(),
              "error: the document type cannot be written: the name of an element or \"(\" expected, found \"#\"");
    WriteOptions options;
    options.doctype = false;
    EXPECT_TRUE(writeText(*read.document, options));
}

// --- Document types ---

TEST(WriteBuiltTest, DeclarationsOfADtdAreReadAsTheSameDtd) {
    Dice dice(32);
    int read = 0;
    for (int i = 0; i < rounds(3000); ++i) {
        const std::string text = randomDocument(dice);
        ReadResult result = readText(text, everything());
        if (!result || result->getDtd() == nullptr) continue;
        SCOPED_TRACE(text);
        Prolog& prolog = prologOf(*result);
        // What was not read of the document type cannot be in the Dtd.
        prolog = Prolog();
        std::string declarations;
        Syntax::appendLines(declarations, declarationsOf(*result->getDtd()));
        EXPECT_EQ(writeText(*result->getDtd()).text(), declarations);
        const WriteResult written = writeText(*result, asRead(*result));
        ASSERT_TRUE(written) << written.message();
        const ReadResult again = readText(written.text(), everything());
        ASSERT_TRUE(again) << again.message() << "\n" << written.text();
        EXPECT_EQ(declarationsOf(*again->getDtd()), declarations);
        std::string tree = wholeTree(*again, AttributeOrder::ByName, Sections::Nodes);
        ASSERT_EQ(tree[0], 'D');
        tree.erase(0, tree.find('\n') + 1);
        EXPECT_EQ("D" + tree, "D" + wholeTree(*result, AttributeOrder::ByName, Sections::Nodes)) << written.text();
        EXPECT_EQ(expatRefusal(written.text()), "") << written.text();
        ++read;
        if (HasFailure()) return;
    }
    EXPECT_GE(read, atLeast(500));
}

}  // namespace
}  // namespace Xml::test
