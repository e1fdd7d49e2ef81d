// Work grows as the input does. The first part counts the work at n, 2n, 4n and 8n, all else being equal. What a test
// cannot count, such as comparisons in the library, the second part shows by size: where it is quadratic, these tests
// would take minutes to days and end with their time limit.
#include "growth/Texts.h"
#include "growth/Work.h"
#include "support/Messages.h"
#include "support/Sources.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "support/WithoutFastValidation.h"
#include "support/WithoutReadAhead.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/xml.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

constexpr int kMillion = 1'000'000 / kScale;

// One with a window and one without, where that is all the difference that a source can make.
constexpr Source kMemorySources[] = {Source::String, Source::Bare};

// --- Counted: reading ---

TEST(GrowthTest, ReadingIsLinearInWhateverADocumentHasManyOf) {
    const auto in = [](const std::string& content) { return "<r>" + content + "</r>"; };
    const TextCase kCases[] = {
        {"siblings", [&](int n) { return in(repeated("<a/>", n)); }},
        {"indented siblings", [&](int n) { return in(repeated("\n\t\t\t\t<a></a>", n) + "\n"); }},
        {"siblings with text", [&](int n) { return in(repeated("<a>x y</a>z", n)); }},
        {"levels", [](int n) { return repeated("<a>", n) + repeated("</a>", n); }},
        {"levels with text", [](int n) { return repeated("<a>t", n) + repeated("u</a>", n); }},
        {"levels with attributes", [](int n) { return repeated("<a k='v'>", n) + repeated("</a>", n); }},
        {"levels with siblings", [](int n) { return repeated("<a><b/>", n) + repeated("<b/></a>", n); }},
        {"levels on lines that end with CR LF", [](int n) { return repeated("<a>\r\n", n) + repeated("</a>\r\n", n); }},
        {"levels with comments", [](int n) { return repeated("<a><!-- c -->", n) + repeated("</a>", n); }},
        {"levels with ampersands whose semicolon is far",
         [](int n) { return repeated("<a>&", n) + ";" + repeated("</a>", n); }},
        {"levels with quotes", [](int n) { return repeated("<a>'", n) + "x'" + repeated("</a>", n); }},
        {"attributes in order",
         [](int n) { return "<r" + pieces(n, [](int i) { return numbered(" a", i) + "='v'"; }) + "/>"; }},
        {"attributes in reverse",
         [](int n) { return "<r" + pieces(n, [](int i) { return numbered(" a", 1'000'000 - i) + "='v'"; }) + "/>"; }},
        {"one attribute again and again", [](int n) { return "<r" + repeated(" a='v'", n) + "/>"; }},
        {"references in an attribute", [](int n) { return "<r a='" + repeated("&lt;&#65;&b;", n) + "'/>"; }},
        {"ampersands in an attribute", [](int n) { return "<r a='" + repeated("&", n) + "'/>"; }},
        {"lines that end with CR LF", [&](int n) { return in(repeated("\r\n<a/>", n)); }},
        {"empty lines that end with CR LF", [&](int n) { return in(repeated("\r\n", n)); }},
        {"text of lines that end with CR LF", [&](int n) { return in("x" + repeated("line\r\n", n)); }},
        {"carriage returns", [&](int n) { return in("x" + repeated("\r", n)); }},
        {"comments", [&](int n) { return in(repeated("<!-- c -->", n)); }},
        {"comments in front", [](int n) { return repeated("<!-- c -->", n) + "<r/>"; }},
        {"comments after", [](int n) { return "<r/>" + repeated("<!-- c -->", n); }},
        {"instructions in front", [](int n) { return repeated("<?p i?>", n) + "<r/>"; }},
        {"a long comment", [&](int n) { return in("<!--" + repeated(" - -- ", n) + "-->"); }},
        {"a comment of dashes", [&](int n) { return in("<!--" + repeated("-", n) + "-->"); }},
        {"a long text", [&](int n) { return in(repeated("some words ", n)); }},
        {"a text of references", [&](int n) { return in(repeated("&amp;&x;&#10;", n)); }},
        {"a text of quotes", [&](int n) { return in("x" + repeated("'\"", n)); }},
        {"a long word", [&](int n) { return in(repeated("word", n)); }},
        {"a long name", [](int n) { return "<" + repeated("name", n) + "/>"; }},
        {"a long value", [](int n) { return "<r a='" + repeated("value", n) + "'/>"; }},
        // An ampersand or a quote is a token up to its end, wherever that is: the reader looks for it in front of every
        // text that begins so.
        {"ampersands whose semicolon is far", [&](int n) { return in(repeated("&<b/>", n) + ";"); }},
        {"ampersands and lines whose semicolon is far", [&](int n) { return in(repeated("&\r\n<b/>", n) + ";"); }},
        {"ampersands with their semicolons", [&](int n) { return in(repeated("&a;<b/>", n)); }},
        {"ampersands, half of them far from the end",
         [&](int n) { return in(repeated("&<b/>", n) + ";<b/>" + repeated("&<b/>", n) + ";"); }},
        {"quotes", [&](int n) { return in(repeated("\"<b/>", n) + "x\""); }},
        {"apostrophes", [&](int n) { return in(repeated("'<b/>", n) + "x'"); }},
        {"quotes and apostrophes in turn", [&](int n) { return in(repeated("\"<b/>'<b/>", n) + "x'\""); }},
        {"apostrophes between far quotes", [&](int n) { return in("\"<b/>" + repeated("'<b/>", n) + "x'\""); }},
        {"quotes and ampersands in turn", [&](int n) { return in(repeated("\"<b/>&<b/>'<b/>", n) + "x'\";"); }},
        {"quotes and lines", [&](int n) { return in(repeated("\"\r\n<b/>'\r\n<b/>", n) + "x'\""); }},
    };
    for (const TextCase& c : kCases) {
        expectLinear(
            c.name, [&](int n) { return reading(c.text(n)); }, SourceCalls);
    }
}

TEST(GrowthTest, ReadingThatFailsIsLinearToo) {
    const TextCase kCases[] = {
        {"no end", [](int n) { return "<r>" + repeated("<a>x</a>", n); }},
        {"levels without an end", [](int n) { return repeated("<a>t", n); }},
        {"levels with a wrong end", [](int n) { return repeated("<a>t", n) + "</b>" + repeated("</a>", n); }},
        {"ampersands without a semicolon", [](int n) { return "<r>" + repeated("<b/>&", n) + "</r>"; }},
        {"a lone quote", [](int n) { return "<r>" + repeated("<b/>'", n) + "<b/>x'<b/>\"</r>"; }},
        {"a wrong end after many lines", [](int n) { return "<r>" + repeated("\r\n<a/>", n) + "</s>"; }},
        {"text after the ampersands", [](int n) { return "<r>" + repeated("&<b/>", n) + ";"; }},
        {"no document", [](int n) { return repeated("<!-- c -->\r\n", n); }},
    };
    for (const TextCase& c : kCases) {
        expectLinear(
            c.name, [&](int n) { return reading(c.text(n), false); }, SourceCalls);
    }
}

// What follows "<!" and "<?" is tried, mostly in vain, and read again as tokens of its own.
const TextCase kTriedInVain[] = {
    {"declarations in declarations", [](int n) { return repeated("<!", n) + "1 "; }},
    {"instructions in instructions", [](int n) { return repeated("<?", n) + "1 "; }},
    {"declarations and instructions", [](int n) { return repeated("<!<? ", n) + "1 "; }},
    {"references whose semicolon is far", [](int n) { return repeated("<!& ", n) + ";"; }},
    {"references in instructions, whose semicolon is far", [](int n) { return repeated("<?& ", n) + ";"; }},
    {"references without a semicolon", [](int n) { return repeated("<!& ", n); }},
};

// The job of a reader that takes the text in tokens, an ampersand alone as one.
std::function<void()> takingTokens(std::string text) {
    return [text = std::move(text)] {
        CountingSource in(text);
        const StreamAccess::Session session(in);
        std::string token;
        while (!in.eof() && in.getToken(token)) {
            if (token == "<!" || token == "<?") in.eatWhite();
            char c = 0;
            if (in.get(c) && c != '&') in.putBackChar();
        }
    };
}

TEST(GrowthTest, TokensThatWereTriedInVainAreReadAgainAtLinearCost) {
    for (const TextCase& c : kTriedInVain) {
        expectLinear(
            c.name, [&c](int n) { return takingTokens(c.text(n)); }, SourceCalls);
    }
}

// Why there is a memory of what was read ahead.
TEST(GrowthTest, WithoutWhatIsReadAheadTokensThatWereTriedInVainTakeTheSquare) {
    const WithoutReadAhead off;
    for (const TextCase& c : kTriedInVain) {
        SCOPED_TRACE(c.name);
        const Growth growth = growthOf([&c](int n) { return takingTokens(c.text(n)); }, 100);
        EXPECT_GE(exponentOf(growth, SourceCalls), 1.7);
    }
}

// --- Counted: trees of a caller's own nodes ---

// n children, in turn an element with a text and an attribute, and a text.
std::shared_ptr<Element> wideTree(int n) {
    auto root = std::make_shared<CountingElement>("r");
    for (int i = 0; i < n; i += 2) {
        auto* element = new CountingElement("a");
        element->setAttribute("k", "v");
        element->addChild(new CountingCharData("t & u"));
        root->addChild(element);
        root->addChild(new CountingCharData(" "));
    }
    return root;
}

// n levels with a text in front of the next level and one behind it. The elements are the library's: only those are
// gone through without recursion.
std::shared_ptr<Element> deepTree(int n) {
    auto root = std::make_shared<Element>("r");
    Element* inner = root.get();
    for (int i = 0; i < n; ++i) {
        inner->setAttribute("k", "v");
        inner->addChild(new CountingCharData("t & u"));
        auto* next = new Element("a");
        inner->addChild(next);
        inner->addChild(new CountingCharData(" "));
        inner = next;
    }
    inner->addChild(new CountingCharData("x"));
    return root;
}

TEST(GrowthTest, WorkOnATreeIsLinearInItsNodes) {
    const auto dtd = readDtd(
        "<!ELEMENT r (#PCDATA | a)*><!ATTLIST r k CDATA #IMPLIED>"
        "<!ELEMENT a (#PCDATA | a)*><!ATTLIST a k CDATA #IMPLIED>");
    const struct {
        const char* name;
        std::function<void(Element&)> use;
    } kCases[] = {
        {"linking", [&](Element& root) { root.setDtd(dtd.get()); }},
        {"copying", [](Element& root) { delete root.clone(); }},
        {"finding nothing", [](Element& root) { EXPECT_EQ(root.findElement("b"), nullptr); }},
        {"finding no value", [](Element& root) { EXPECT_EQ(root.findElementByAttribute("k", "w"), nullptr); }},
        {"finding all",
         [](Element& root) {
             std::vector<Element*> found;
             root.findAllElements("a", found);
         }},
        {"validating", [&](Element& root) { EXPECT_TRUE(dtd->validate(&root)); }},
        {"destroying the children", [](Element& root) { root.killChildren(); }},
        {"writing",
         [](Element& root) {
             CountingSink out;
             root.toStream(out);
         }},
    };
    for (const auto& c : kCases) {
        const auto job = [&c](const std::shared_ptr<Element>& tree) { return [tree, &c] { c.use(*tree); }; };
        expectLinear(
            c.name + std::string(" in a wide tree"), [&](int n) { return job(wideTree(n)); }, NodeCalls);
        expectLinear(
            c.name + std::string(" in a deep tree"), [&](int n) { return job(deepTree(n)); }, NodeCalls, 250);
    }
}

TEST(GrowthTest, WorkOnChildrenIsLinearInTheirNumber) {
    const struct {
        const char* name;
        std::function<void(Element&)> use;
    } kCases[] = {
        {"no such child", [](Element& root) { EXPECT_EQ(root.getElement("b"), nullptr); }},
        {"no such value", [](Element& root) { EXPECT_EQ(root.getElementByAttribute("k", "w"), nullptr); }},
        {"the last child", [](Element& root) { EXPECT_NE(root.getElement(root.getChildCount() / 2 - 1), nullptr); }},
        {"replacing the text", [](Element& root) { root.setCharData("x"); }},
    };
    for (const auto& c : kCases) {
        expectLinear(
            c.name, [&](int n) { return [tree = wideTree(n), &c] { c.use(*tree); }; }, NodeCalls);
    }
}

// --- Counted: writing ---

TEST(GrowthTest, WritingIsLinearInWhateverIsWritten) {
    const TextCase kCases[] = {
        {"siblings", [](int n) { return "<r>" + repeated("<a/>", n) + "</r>"; }},
        {"levels with text", [](int n) { return repeated("<a>t", n) + repeated("</a>", n); }},
        {"levels with text and siblings", [](int n) { return repeated("<a><b/>t", n) + repeated("u<b/></a>", n); }},
        {"attributes", [](int n) { return "<r" + pieces(n, [](int i) { return numbered(" a", i) + "='v'"; }) + "/>"; }},
        {"escapes in an attribute", [](int n) { return "<r a='" + repeated("&lt;\"", n) + "'/>"; }},
        {"a text", [](int n) { return "<r>" + repeated("some words &lt; ", n) + "</r>"; }},
        {"lines of text", [](int n) { return "<r>" + repeated("line\n", n) + "</r>"; }},
        {"lines of text that end with CR LF", [](int n) { return "<r>x" + repeated("line\r\n", n) + "</r>"; }},
        {"texts", [](int n) { return "<r>" + repeated("x<a/>", n) + "</r>"; }},
        {"ampersands", [](int n) { return "<r>" + repeated("&<a/>", n) + ";</r>"; }},
        {"a long name", [](int n) { return "<" + repeated("name", n) + "/>"; }},
    };
    for (const TextCase& c : kCases) {
        expectLinear(
            c.name,
            [&c](int n) {
                return [root = std::shared_ptr<Element>(readElement(c.text(n)))] {
                    CountingSink out;
                    root->toStream(out);
                };
            },
            SinkCalls);
    }
}

TEST(GrowthTest, WritingAgainAfterAChangeIsLinearInTheSiblingsOfWhatHasChanged) {
    const struct {
        const char* name;
        std::string piece;
        std::function<void(Element&)> change;
    } kCases[] = {
        {"nothing but the root", "<a>text</a>", [](Element& root) { root.touch(); }},
        {"the first child", "<a>text</a>", [](Element& root) { root.getChild(0)->touch(); }},
        {"a child at the end", "<a>text</a>", [](Element& root) { root.addElement("b", "another"); }},
        {"every second child", "<a><b/></a>",
         [](Element& root) {
             for (int i = 0; i < root.getChildCount(); i += 2) root.getElement(i)->setAttribute("k", "v");
         }},
    };
    for (const auto& c : kCases) {
        expectLinear(
            c.name,
            [&c](int n) {
                const auto root = std::shared_ptr<Element>(readElement("<r>" + repeated(c.piece, n) + "</r>"));
                const auto out = std::make_shared<CountingSink>();
                root->toStream(*out);
                c.change(*root);
                out->setPosition(0);
                return [root, out] {
                    const bool before = Object::setRWOptimization(true);
                    root->toStream(*out);
                    Object::setRWOptimization(before);
                };
            },
            SinkCalls);
    }
}

// --- Counted: edits ---

// An element with n children and n attributes, two levels down: the marks of change go up.
struct Edited {
    Element root{"r"};
    Element* element = nullptr;

    Edited(int children, int attributes) {
        root.addChild(new Element("s"));
        element = new CountingElement("t");
        root.getElement(0)->addChild(element);
        for (int i = 0; i < children; ++i) element->addChild(new CountingElement("c"));
        for (int i = 0; i < attributes; ++i) element->setAttribute(numbered("a", i), "value");
    }
};

struct EditCase {
    const char* name;
    Kind kind;
    std::function<void(Element&, int)> edit;  // the number rises from edit to edit
};

const EditCase kEditsAtTheEnd[] = {
    {"adding a child", NodeCalls, [](Element& e, int) { e.addChild(new CountingElement("a")); }},
    {"adding a text", NodeCalls, [](Element& e, int) { e.addChild(new CountingCharData("t")); }},
    {"adding an element", Allocations, [](Element& e, int) { e.addElement("a", "t"); }},
    {"inserting at the end", NodeCalls, [](Element& e, int) { e.insertChild(nullptr, new CountingElement("a")); }},
    {"inserting in front of the last", NodeCalls,
     [](Element& e, int) { e.insertChild(e.getChild(e.getChildCount() - 1), new CountingElement("a")); }},
    {"adding two and taking one out", NodeCalls,
     [](Element& e, int) {
         e.addChild(new CountingElement("a"));
         e.addChild(new CountingElement("b"));
         delete e.extractChild(e.getChildCount() - 1);
     }},
    {"taking out the last", NodeCalls,
     [](Element& e, int) {
         e.addChild(new CountingElement("a"));
         delete e.extractChild(e.getChild(e.getChildCount() - 1));
     }},
    {"changing the last", Allocations,
     [](Element& e, int) {
         Object* const last = e.getChild(e.getChildCount() - 1);
         if (last != nullptr) last->touch();
         e.addChild(new CountingElement("a"));
     }},
    {"setting a new attribute", Allocations, [](Element& e, int i) { e.setAttribute(numbered("b", i), "value"); }},
    {"setting the same attribute", Allocations, [](Element& e, int) { e.setAttribute("b", "a value on the heap"); }},
    {"setting and removing", Allocations,
     [](Element& e, int i) {
         e.setAttribute(numbered("b", i), "value");
         e.removeAttribute(i % 2 == 0 ? e.getAttributeCount() - 1 : 0);
     }},
};

TEST(GrowthTest, EveryEditCostsTheSameHoweverManyWentBefore) {
    const EditCase kElsewhere[] = {
        {"inserting in front", NodeCalls,
         [](Element& e, int) { e.insertChild(e.getChild(0), new CountingElement("a")); }},
        {"replacing the text", Allocations, [](Element& e, int) { e.setCharData("another"); }},
        {"setting and removing in turn", Allocations,
         [](Element& e, int i) {
             e.setAttribute(numbered("a", i), "value");
             if (i % 2 == 0) e.removeAttribute(0);
         }},
    };
    std::vector<EditCase> cases(std::begin(kEditsAtTheEnd), std::end(kEditsAtTheEnd));
    cases.insert(cases.end(), std::begin(kElsewhere), std::end(kElsewhere));
    for (const EditCase& c : cases) {
        expectLinear(
            c.name,
            [&c](int n) {
                return [edited = std::make_shared<Edited>(0, 0), n, &c] {
                    for (int i = 0; i < n; ++i) c.edit(*edited->element, i);
                };
            },
            c.kind);
    }
}

TEST(GrowthTest, AnEditAtTheEndCostsTheSameHoweverLongTheListIs) {
    for (const EditCase& c : kEditsAtTheEnd) {
        expectSame(
            c.name,
            [&c](int n) {
                return [edited = std::make_shared<Edited>(n, n), &c] {
                    for (int i = 0; i < 100; ++i) c.edit(*edited->element, i);
                };
            },
            c.kind, 500);
    }
}

TEST(GrowthTest, TakingOutAllFromTheEndIsLinear) {
    expectLinear(
        "children",
        [](int n) {
            return [edited = std::make_shared<Edited>(n, 0)] {
                Element& e = *edited->element;
                while (e.getChildCount() > 0) delete e.extractChild(e.getChildCount() - 1);
            };
        },
        NodeCalls);
}

// --- Counted: text ---

TEST(GrowthTest, EscapingAndDecodingAreLinearInTheText) {
    const struct {
        const char* name;
        const char* piece;
    } kCases[] = {
        {"plain", "plain text "}, {"escaped", "<&>'\""},      {"references", "&lt;&#x41;"},
        {"unknown", "&unknown;"}, {"ampersands", "&"},        {"one character in many", "a long run of text &lt; "},
        {"digits", "&#1234567;"}, {"own entities", "&e;&e;"}, {"lines", "line\r\n"},
    };
    const auto dtd = readDtd("<!ENTITY e 'an entity'>");
    for (const auto& c : kCases) {
        expectLinear(
            c.name,
            [&](int n) {
                return [text = DataHolder(repeated(c.piece, n)), &dtd] {
                    DataHolder value = text;
                    insertStdEntities(value);
                    value = text;
                    replaceEntities(value, dtd.get());
                    EXPECT_GE(toXmlString(text).size(), text.size());
                };
            },
            AllocatedBytes);
    }
}

// --- By size ---

TEST(GrowthTest, AMillionAttributesOfOneElementAreReadFoundAndWritten) {
    // In an order that is neither that of their names nor its reverse.
    const auto name = [](int i) { return numbered("a", static_cast<int>(i * 7'919LL % kMillion)); };
    const std::string text = "<r" + pieces(kMillion, [&](int i) { return " " + name(i) + "='v'"; }) + "/>";
    for (const Source source : kMemorySources) {
        SCOPED_TRACE(source);
        const Outcome outcome = readDocument(text, source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        const Element& root = *outcome.document->getRoot();
        ASSERT_EQ(root.getAttributeCount(), kMillion);
        if (source != Source::String) continue;
        int found = 0;
        for (int i = 0; i < kMillion; i += 10) {
            if (root.getAttributeValue(name(i)) == "v") ++found;
        }
        EXPECT_EQ(found, kMillion / 10);
        EXPECT_EQ(root.getAttribute("a"), nullptr);
        int rising = 0;
        for (int i = 1; i < kMillion; ++i) {
            if (root.getAttribute(i - 1)->getName() < root.getAttribute(i)->getName()) ++rising;
        }
        EXPECT_EQ(rising, kMillion - 1);
        const Element copy(root);
        EXPECT_EQ(copy.getAttributeCount(), kMillion);
        EXPECT_EQ(textOf(copy).size(), text.size());
    }
}

TEST(GrowthTest, OfAMillionAttributesOfOneNameTheLastStays) {
    const std::string text = "<r" + pieces(kMillion, [](int i) { return numbered(" a='", i) + "'"; }) + "/>";
    EXPECT_EQ(treeOf(text), numbered("r[a=", kMillion - 1) + "]");
}

TEST(GrowthTest, AHundredThousandAttributesAreSetByHandInReverse) {
    Element element("r");
    const int count = kMillion / 10;
    for (int i = count; i-- > 0;) element.setAttribute(numbered("a", i), "v");
    EXPECT_EQ(element.getAttributeCount(), count);
    EXPECT_EQ(element.getAttribute(0)->getName(), numbered("a", 0));
}

TEST(GrowthTest, AMillionAmpersandsWhoseSemicolonIsFarAreRead) {
    const std::string text = "<r>" + repeated("&<b/>", kMillion) + ";</r>";
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        const Outcome outcome = readDocument(text, source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        const Element& root = *outcome.document->getRoot();
        ASSERT_EQ(root.getChildCount(), 2 * kMillion + 1);
        EXPECT_EQ(dump(root.getChild(2 * kMillion - 2)), "'&'");
        EXPECT_EQ(dump(root.getChild(2 * kMillion)), "';'");
    }
}

TEST(GrowthTest, AMillionQuotesInFrontOfTextsAreRead) {
    const std::string text = "<r>\"<b/>" + repeated("'<b/>", kMillion) + "\"<b/>'<b/>x'\"</r>";
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        const Outcome outcome = readDocument(text, source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        EXPECT_EQ(outcome.document->getRoot()->getChildCount(), 2 * (kMillion + 3) + 1);
    }
}

TEST(GrowthTest, AMillionLinesAreCounted) {
    const struct {
        const char* name;
        std::string lines;
    } kCases[] = {
        {"between elements", repeated("\r\n<b/>", kMillion)},
        // The lines are met when the reader looks for the semicolon, and once more as it reads on.
        {"after ampersands", repeated("&\r\n<b/>", kMillion) + ";"},
        {"in quotes", repeated("\"\r\n<b/>'\r\n<b/>", kMillion / 2) + "x'\""},
    };
    for (const auto& c : kCases) {
        for (const Source source : kMemorySources) {
            SCOPED_TRACE(c.name);
            SCOPED_TRACE(source);
            const std::string error = errorOf("<r>" + c.lines + "</s>", source);
            EXPECT_EQ(error.find("(line = " + std::to_string(kMillion) + ", column = "), std::size_t{0}) << error;
        }
    }
}

TEST(GrowthTest, AMillionSiblingsAreReadValidatedCopiedSearchedAndWritten) {
    const std::string text = "<r>" + repeated("<a/>", kMillion) + "<z/></r>";
    const std::unique_ptr<Element> root = readElement(text);
    ASSERT_EQ(root->getChildCount(), kMillion + 1);
    const char* const kModels[] = {
        "(a*, z)",  "(a+, z)",           "((a | b)*, z)", "((a?, b?)+, z)", "((a, (b | a))*, a?, z)",
        "(a | z)*", "(#PCDATA | z | a)*"};
    for (const char* model : kModels) {
        SCOPED_TRACE(model);
        const auto dtd = readDtd(std::string("<!ELEMENT r ") + model +
                                 "><!ELEMENT a EMPTY><!ELEMENT z EMPTY><!ATTLIST r k CDATA #IMPLIED>");
        for (const bool byMatcher : {false, true}) {
            const WithoutFastValidation off(byMatcher);
            EXPECT_TRUE(dtd->validate(root.get()));
            root->setDtd(nullptr);
        }
    }
    EXPECT_EQ(root->findElement("z"), root->getChild(kMillion));
    EXPECT_EQ(root->findElement("a", kMillion - 1), root->getChild(kMillion - 1));
    const Element copy(*root);
    EXPECT_EQ(copy.getChildCount(), kMillion + 1);
    EXPECT_EQ(textOf(copy).size(), text.size() + 2 * (static_cast<std::size_t>(kMillion) + 1) + 1);
}

TEST(GrowthTest, AMillionEditsAreMadeAtTheEndOfAMillionChildren) {
    const std::unique_ptr<Element> root = readElement("<r>" + repeated("<a/>", kMillion) + "</r>");
    for (int i = 0; i < kMillion; i += 4) {
        auto* const added = new CharData("t");
        root->insertChild(root->getChild(kMillion - 1), added);
        EXPECT_TRUE(root->isChild(added));
        ASSERT_EQ(root->extractChild(added), added);
        root->insertChild(nullptr, added);
        delete root->extractChild(kMillion);
        root->addChild(new CharData("t"));
        delete root->extractChild(kMillion);
    }
    EXPECT_EQ(root->getChildCount(), kMillion);
}

TEST(GrowthTest, AMillionCommentsAreDropped) {
    const std::string text = "<r>" + repeated("<!-- -->", kMillion) + "</r>";
    for (const Source source : kAllSources) EXPECT_EQ(treeOf(text, source), "r") << source;
    EXPECT_EQ(treeOf("<r><!--" + repeated("- ->", kMillion) + "--></r>"), "r");
    EXPECT_EQ(treeOf("<r><!--" + repeated("-", kMillion) + "--></r>"), "r");
}

TEST(GrowthTest, AWideModelIsMatchedByAsManyChildren) {
    // Each child is the one that stands last in the model.
    const int width = 300'000 / kScale;
    const std::string names = pieces(width, [](int i) { return numbered("|e", i); });
    const std::string last = "<" + numbered("e", width - 1) + "/>";
    const std::string leaf = numbered("<!ELEMENT e", width - 1) + " EMPTY>";
    const std::unique_ptr<Element> root = readElement("<r>" + pieces(width, [&](int) { return last; }) + "</r>");
    for (const std::string& model :
         {"(#PCDATA" + names + ")*", "(e" + names + ")*", "((e" + names + "), x?)*", "(e" + names + "|#PCDATA)+"}) {
        SCOPED_TRACE(model.substr(0, 10));
        const auto dtd = readDtd("<!ELEMENT r " + model + ">" + leaf);
        for (const bool byMatcher : {false, true}) {
            const WithoutFastValidation off(byMatcher);
            EXPECT_TRUE(dtd->validate(root.get()));
        }
        EXPECT_FALSE(readDtd("<!ELEMENT r " + model + ">")->validate(root.get()));
    }
    // In a model that lists them all in order each is looked at once.
    const std::string sequence = pieces(width, [](int i) { return numbered(",e", i) + "?"; });
    EXPECT_FALSE(readDtd("<!ELEMENT r (x?" + sequence + ")>" + leaf)->validate(root.get()));
}

TEST(GrowthTest, AHundredThousandDeclarationsAreReadUsedAndWritten) {
    const int count = kMillion / 10;
    const std::string declarations = pieces(count, [](int i) {
        const std::string number = std::to_string(i * 7'919LL % 1'000'003);
        return "<!ELEMENT e" + number + " EMPTY><!ATTLIST e" + number + " k CDATA 'v'><!ENTITY n" + number + " 'w'>";
    });
    const std::string attributes = pieces(count, [](int i) { return numbered(" a", i) + " CDATA 'v'"; });
    const std::string text = "<!DOCTYPE r [" + declarations + "<!ELEMENT r ANY><!ATTLIST r" + attributes + ">]><r x='" +
                             pieces(count, [](int i) { return "&n" + std::to_string(i * 7'919LL % 1'000'003) + ";"; }) +
                             "'" + numbered(" a", 7) + "='u'/>";
    const MessageCollector messages;
    const Outcome outcome = readDocument(text);
    EXPECT_FALSE(outcome.ok) << "x is not declared";
    ASSERT_NE(outcome.document, nullptr);
    Element& root = *outcome.document->getRoot();
    EXPECT_EQ(root.getAttributeValue("x"), std::string(static_cast<std::size_t>(count), 'w'));
    root.removeAttribute("x");
    EXPECT_TRUE(outcome.document->validate());
    EXPECT_EQ(root.getAttributeValue(numbered("a", count - 1)), "v");
    EXPECT_TRUE(messages.texts().empty());

    const Dtd copy(*outcome.document->getDtd());
    EXPECT_TRUE(textOf(copy) == textOf(*outcome.document->getDtd()));
}

TEST(GrowthTest, NamesOf16MegabytesAndATextOf64MegabytesAreHeld) {
    const std::string name(16'000'000 / kScale, 'n');
    EXPECT_TRUE(treeOf("<" + name + " " + name + "='v'></" + name + ">") == name + "[" + name + "=v]");

    const std::string content = repeated("some text &lt; more; ", 64'000'000 / 21 / kScale);
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        const Outcome outcome = readDocument("<r>" + content + "</r>", source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        EXPECT_TRUE(outcome.document->getRoot()->getChild(0)->toCharData()->data() == content);
        EXPECT_EQ(outcome.document->getRoot()->getCharData().size(), content.size() / 21 * 18);
    }
}

}  // namespace
}  // namespace Xml::test
