#include "xml/easy/Compare.h"

#include "easy/RandomTrees.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dtd/Dtd.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Texts.h"
#include "xml/easy/Trees.h"
#include "xml/easy/Values.h"
#include "xml/standard/Read.h"
#include "xml/stream/OutStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

std::unique_ptr<Document> read(const std::string& text) {
    ReadResult result = readText(text, everything());
    EXPECT_TRUE(result) << result.message() << text;
    return result.take();
}

// What counts, in a text that is the same for trees that are the same.
std::string naive(const Object& node) {
    if (node.isCharData()) return Xml::textOf(node);
    if (!node.isElement())
        return "<" + std::to_string(static_cast<int>(kindOf(node))) + std::string(nameOf(node)) + "=" +
               Xml::textOf(node) + ">";
    const Element& element = *node.toElement();
    std::string text = "(" + element.getName();
    for (int i = 0; i < element.getAttributeCount(); ++i)
        text += " " + element.getAttribute(i)->getName() + "=\"" + element.getAttribute(i)->getValue() + "\"";
    NodeKind run = NodeKind::Element;
    for (int i = 0; i < element.getChildCount(); ++i) {
        const Object& child = *element.getChild(i);
        const std::string below = naive(child);
        if (!child.isCharData()) {
            run = NodeKind::Element;
        } else if (below.empty()) {
            continue;
        } else if (kindOf(child) != run) {
            run = kindOf(child);
            text += run == NodeKind::CData ? "\x01" : "\x02";
        }
        text += below;
    }
    return text + ")";
}

void expectSame(const Object& a, const Object& b, bool same) {
    EXPECT_EQ(sameTree(a, b), same);
    EXPECT_EQ(sameTree(b, a), same);
    EXPECT_EQ(firstDifference(a, b).empty(), same) << firstDifference(a, b);
}

TEST(CompareTest, SaysWhereTreesFirstDiffer) {
    const struct {
        const char* first;
        const char* second;
        const char* difference;
    } kCases[] = {
        {"<a/>", "<a></a>", ""},
        {"<a k='1' m='2'/>", "<a m='2' k='1'/>", ""},
        {"<a>x&lt;</a>", "<a>&#120;&#60;</a>", ""},
        {"<?xml version='1.0'?><!DOCTYPE a><a/>", "<a/>", ""},
        {"<!--c--><a/><?t?>", "<!--c--><!DOCTYPE a><a/><?t?>", ""},
        {"<a/>", "<b/>", "/: element a and element b"},
        {"<a><b/></a>", "<a/>", "/a[1]: element b and nothing"},
        {"<a/>", "<a><b/></a>", "/a[1]: nothing and element b"},
        {"<a>x</a>", "<a>y</a>", "/a[1]: text \"x\" and text \"y\""},
        {"<a>x</a>", "<a/>", "/a[1]: text \"x\" and nothing"},
        {"<a>x</a>", "<a><b/></a>", "/a[1]: text \"x\" and element b"},
        {"<a>x</a>", "<a><![CDATA[x]]></a>", "/a[1]: text \"x\" and section \"x\""},
        {"<a><!--x--></a>", "<a><!--y--></a>", "/a[1]: comment \"x\" and comment \"y\""},
        {"<a><?t x?></a>", "<a><?t y?></a>", "/a[1]: instruction t \"x\" and instruction t \"y\""},
        {"<a><?t x?></a>", "<a><?u x?></a>", "/a[1]: instruction t \"x\" and instruction u \"x\""},
        {"<a k='1'/>", "<a k='2'/>", "/a[1]: attribute k=\"1\" and attribute k=\"2\""},
        {"<a k='1'/>", "<a/>", "/a[1]: attribute k=\"1\" and no attribute k"},
        {"<a/>", "<a k='1'/>", "/a[1]: no attribute k and attribute k=\"1\""},
        {"<a k='1'/>", "<a j='1'/>", "/a[1]: no attribute j and attribute j=\"1\""},
        {"<a><b/><c/><b><c k='1'/></b></a>", "<a><b/><c/><b><c k='2'/></b></a>",
         "/a[1]/b[2]/c[1]: attribute k=\"1\" and attribute k=\"2\""},
        {"<a><b/><c/></a>", "<a><c/><b/></a>", "/a[1]: element b and element c"},
        {"<!--c--><a/>", "<a/>", "/: comment \"c\" and element a"},
        {"<a/><!--c-->", "<a/><!--d-->", "/: comment \"c\" and comment \"d\""},
        {"<a>1\n2</a>", "<a>1\n3</a>",
         "/a[1]: text \"1\xEF\xBF\xBD"
         "2\" and text \"1\xEF\xBF\xBD"
         "3\""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.first) + " " + c.second);
        const auto first = read(c.first);
        const auto second = read(c.second);
        EXPECT_EQ(firstDifference(*first, *second), c.difference);
        expectSame(*first, *second, *c.difference == '\0');
    }
}

TEST(CompareTest, LongTextsAreShownFromALittleBeforeTheDifference) {
    const std::string same(1000, 's');
    const auto first = read("<a>" + same + "x" + same + "</a>");
    const auto second = read("<a>" + same + "y" + same + "</a>");
    const std::string before(20, 's');
    const std::string after(39, 's');
    EXPECT_EQ(firstDifference(*first, *second),
              "/a[1]: text \"..." + before + "x" + after + "...\" and text \"..." + before + "y" + after + "...\"");
}

TEST(CompareTest, TextsSideBySideAreOneAndEmptyOnesNone) {
    const auto made = [](std::initializer_list<const char*> pieces) {
        auto element = std::make_unique<Element>("a");
        for (const char* const piece : pieces) {
            if (*piece == '[') {
                append(*element, std::make_unique<CDataSection>(piece + 1));
            } else if (*piece == '!') {
                append(*element, std::make_unique<Comment>(piece + 1));
            } else {
                append(*element, std::make_unique<CharData>(piece));
            }
        }
        return element;
    };
    const struct {
        std::unique_ptr<Element> first, second;
        bool same;
    } kCases[] = {
        {made({"ab", "c"}), made({"a", "", "bc"}), true},
        {made({""}), made({}), true},
        {made({"", "["}), made({}), true},
        {made({"a", "[", "b"}), made({"ab"}), true},
        {made({"[a", "[b"}), made({"[ab"}), true},
        {made({"[a", "", "[b"}), made({"[ab"}), true},
        {made({"a", "[b"}), made({"[a", "b"}), false},
        {made({"a", "!c", "b"}), made({"ab", "!c"}), false},
        {made({"a", "!c", "b"}), made({"a", "!c", "", "b", ""}), true},
        {made({"a", "!c"}), made({"a"}), false},
        {made({"a"}), made({"ab"}), false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(dump(c.first.get()) + " " + dump(c.second.get()));
        expectSame(*c.first, *c.second, c.same);
    }
}

TEST(CompareTest, LeavesAndDocumentTypesAreCompared) {
    Dtd first("d"), second("d"), other("d");
    first.addElementDecl("a");
    second.addElementDecl("a");
    other.addElementDecl("b");
    expectSame(first, second, true);
    expectSame(first, other, false);
    expectSame(Attribute("k", "1"), Attribute("k", "1"), true);
    expectSame(Attribute("k", "1"), Attribute("k", "2"), false);
    expectSame(Attribute("k", "1"), Attribute("m", "1"), false);
    expectSame(CharData("x"), CharData("x"), true);
    expectSame(CharData("x"), CharData("y"), false);
    expectSame(CharData("x"), CDataSection("x"), false);
    expectSame(Comment("x"), CharData("x"), false);
    expectSame(Comment("x"), Comment("x"), true);
    expectSame(Document(nullptr, nullptr), Document(nullptr, nullptr), true);
    expectSame(Document(nullptr, nullptr), Document(new Element("a"), nullptr), false);
    expectSame(Document(new Element("a"), nullptr), Element("a"), false);
    EXPECT_EQ(firstDifference(Attribute("k", "1"), Attribute("k", "2")), "/: attribute k=\"1\" and attribute k=\"2\"");
    EXPECT_EQ(firstDifference(Document(new Element("a"), nullptr), Element("a")), "/: document and element a");
}

TEST(CompareTest, ACopyWithoutLinksIsTheSame) {
    Outcome outcome = readDocument("<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e 'x'>]><a>&e;</a>");
    ASSERT_TRUE(outcome.ok) << outcome.error;
    Element& root = *outcome.document->getRoot();
    root.setDtd(outcome.document->getDtd());
    const auto copy = copyOf(root);
    EXPECT_NE(Xml::textOf(root), Xml::textOf(*copy));
    expectSame(root, *copy, true);
    expectSame(*root.getChild(0), *copy->getChild(0), true);
    append(*copy, std::make_unique<CharData>("y"));
    expectSame(root, *copy, false);
    // What means the same is the same, too.
    setText(*copy, "x");
    expectSame(root, *copy, true);
}

TEST(CompareTest, PartsAreComparedFromThereOn) {
    const auto document = read("<a><b/><b><c/></b></a>");
    const auto other = read("<b><c/></b>");
    expectSame(*document->getRoot()->getChild(1), *other->getRoot(), true);
    append(*other->getRoot()->getElement(0), "d");
    EXPECT_EQ(firstDifference(*document->getRoot()->getChild(1), *other->getRoot()),
              "/b[1]/c[1]: nothing and element d");
}

// A node that a caller made up.
template <char Kind>
class Made : public Object {
public:
    explicit Made(const char* itsText) : text(itsText) {}

    Object* clone() const override { return new Made(*this); }
    const std::string& toString() const override { return text; }
    void write(OutStream& out) const override { out << text.c_str(); }

private:
    std::string text;
};

TEST(CompareTest, NodesOfCallersAreComparedByWhatTheyWrite) {
    expectSame(Made<'a'>("x"), Made<'a'>("x"), true);
    expectSame(Made<'a'>("x"), Made<'a'>("y"), false);
    expectSame(Made<'a'>("x"), Made<'b'>("x"), false);
    EXPECT_EQ(firstDifference(Made<'a'>("x"), Made<'a'>("y")), "/: node \"x\" and node \"y\"");
}

TEST(CompareTest, AgreesWithANaiveComparisonOfRandomTrees) {
    Dice dice(8);
    int different = 0;
    for (int round = 0; round < rounds(400); ++round) {
        for (const auto& document : randomTrees(dice)) {
            const std::unique_ptr<Document> copy = copyOf(*document);
            expectSame(*document, *copy, true);
            Element& element = anyElement(dice, *copy);
            switch (dice.below(5)) {
            case 0: setValue(element, "k", "x"); break;
            case 1: append(element, std::make_unique<CharData>(dice.chance(50) ? "" : "x")); break;
            case 2: setText(element, Xml::textOf(element)); break;
            case 3:
                if (element.getChildCount() > 0) detach(*element.getChild(0));
                break;
            default:
                sortChildren(element, [](const Object& a, const Object& b) { return nameOf(a) < nameOf(b); });
                break;
            }
            const bool same = naive(*document->getRoot()) == naive(*copy->getRoot());
            expectSame(*document, *copy, same);
            different += !same;
            const auto trees = randomTrees(dice);
            expectSame(*document->getRoot(), *trees[0]->getRoot(),
                       naive(*document->getRoot()) == naive(*trees[0]->getRoot()));
        }
    }
    EXPECT_GE(different, atLeast(400));
}

TEST(CompareTest, TheSameDocumentReadByBothFacesIsTheSame) {
    Dice dice(9);
    for (int round = 0; round < rounds(200); ++round) {
        const std::string text = randomText(dice);
        const Outcome outcome = readDocument(text);
        ReadOptions options = everything();
        options.keepComments = false;
        const ReadResult result = readText(text, options);
        ASSERT_TRUE(outcome.ok && result) << text;
        EXPECT_EQ(firstDifference(*outcome.document, *result), "") << text;
    }
}

}  // namespace
}  // namespace Xml::test
