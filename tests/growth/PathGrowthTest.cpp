// What a query costs grows as the tree does: counted by what it asks of the nodes, and where a test cannot count, shown by size.
#include "growth/Work.h"
#include "orvsys/Uni16.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int kScale = 20;
#else
constexpr int kScale = 1;
#endif

using OrvSys::Uni16String;

std::string narrow(const Uni16String& text) { return OrvSys::Uni16CharToPlatformCString(text); }

// A shape of n elements x and y in turn, each with an attribute and every third with a text.
struct Shape {
    const char* name;
    int (*parentOf)(int);  // the number of the element that the one with that number is put into
};

const Shape kShapes[] = {
    {"flat", [](int) { return 0; }},
    {"deep", [](int i) { return i - 1; }},
    {"bushy", [](int i) { return (i - 1) / 3; }},
};

std::shared_ptr<Document> grow(const Shape& shape, int n) {
    std::vector<Element*> elements;
    for (int i = 0; i < n; ++i) {
        auto* element = new CountingElement(i % 2 == 0 ? "x" : "y");
        element->setAttribute("a", std::to_string(i % 5));
        elements.push_back(element);
    }
    // From the last one up, so that a subtree is linked when it is complete.
    for (int i = n; i-- > 1;) {
        Element* const parent = elements[static_cast<std::size_t>(shape.parentOf(i))];
        parent->insertChild(parent->getChild(0), elements[static_cast<std::size_t>(i)]);
        if (i % 3 == 0) parent->insertChild(parent->getChild(0), new CountingCharData("text"));
    }
    return std::make_shared<Document>(elements.front(), nullptr);
}

constexpr int kSize = 250;

// The paths, one from the results of the other, the last of them counted.
void expectLinearPaths(const std::vector<Uni16String>& paths, long long least = 4 * kSize) {
    for (const Shape& shape : kShapes) {
        SCOPED_TRACE(std::string(shape.name) + ": " + narrow(paths.back()));
        expectLinearIn(
            [&](int size) {
                const auto document = grow(shape, size);
                const auto query = std::make_shared<XPath>(document.get());
                for (std::size_t i = 0; i + 1 < paths.size(); ++i) EXPECT_GT(query->GetValues(paths[i]), 0u);
                return [document, query, path = paths.back()] {
                    query->GetValues(path);
                    EXPECT_LE(query->GetErrorCode(), XPath::NODE_NOT_FOUND);
                };
            },
            NodeCalls, kSize, least);
    }
}

const char16_t* const kAxes[] = {u"self",      u"child",      u"attribute",          u"parent",
                                 u"ancestor",  u"following",  u"ancestor-or-self",   u"following-sibling",
                                 u"preceding", u"descendant", u"descendant-or-self", u"preceding-sibling"};

TEST(PathGrowthTest, EveryAxisFromAllNodesIsLinearInTheNodes) {
    for (const Uni16String axis : kAxes) {
        expectLinearPaths({u"//node()/" + axis + u"::node()"});
        expectLinearPaths({u"//x/" + axis + u"::y"});
    }
}

TEST(PathGrowthTest, EveryAxisFromAllResultsOfAQueryIsLinearInThem) {
    for (const Uni16String axis : kAxes) {
        // A climb along parents asks nodes nothing but whether what it takes fits.
        expectLinearPaths({u"//node()", axis + u"::node()"}, 1);
        expectLinearPaths({u"//node()", axis + u"::nothing"}, 1);
    }
}

TEST(PathGrowthTest, ChainsOfStepsAreLinearInTheNodes) {
    const Uni16String kPaths[] = {
        u"//x//y",
        u"//x//y//x//y",
        u"//node()//node()//node()",
        u"//x/ancestor::*/descendant::y/following-sibling::*",
        u"//y/preceding::x/following::y/ancestor-or-self::*",
        u"//x/following-sibling::y/preceding-sibling::x/..",
        u"//@a/../descendant-or-self::x/@a",
        u"//@a/preceding::x",
        u"//*/ancestor-or-self::*/preceding-sibling::*/descendant-or-self::*/following-sibling::*",
        u"//x/../../../*/*/x",
    };
    for (const auto& path : kPaths) expectLinearPaths({path});
}

TEST(PathGrowthTest, PredicatesAreLinearInTheNodesThatTheyLookAt) {
    const Uni16String kPaths[] = {
        u"//*[@a]",
        u"//*[@a = '3']",
        u"//*[@a > 2]",
        u"//*[y]",
        u"//*[y = 'text']",
        u"//*[self::x]",
        u"//*[..]",
        u"//*[../y]",
        u"//*[../nothing]",
        u"//*[../@a = '1']",
        u"//*[../../x/y]",
        u"//*[x/y/x]",
        u"//*[/x/y]",
        u"//*[//nothing]",
        u"//*[text()]",
        u"//*[y[x[@a]]]",
        u"//*[position() = 7]",
        u"//*[last()]",
        u"//*[position() + 1 > 2][@a][last()]",
        // One node is enough, and it is near.
        u"//x[descendant::*]",
        u"//x[.//*]",
    };
    for (const auto& path : kPaths) expectLinearPaths({path});
}

TEST(PathGrowthTest, TheNextContextNodeIsFoundBesideTheLastOne) {
    expectLinearIn(
        [](int n) {
            const auto document = grow(kShapes[0], n);
            return [document] { EXPECT_GT(XPath(document.get()).GetValues(u"//x[following-sibling::y]"), 0u); };
        },
        NodeCalls, kSize, 4 * kSize);
}

TEST(PathGrowthTest, SiblingsThatComeInAnyOrderAreFound) {
    // The last elements of many rows come before the first ones.
    const int count = 200'000 / kScale;
    std::string text;
    for (int i = 0; i < count; ++i) text += "<a><b/></a>";
    const Outcome outcome = readDocument("<r>" + text + "</r>");
    ASSERT_TRUE(outcome.ok);
    XPath query(outcome.document.get());
    EXPECT_EQ(query.GetValues(u"//b/ancestor-or-self::*/preceding-sibling::*/following-sibling::a"),
              static_cast<unsigned>(count - 1));
}

// --- Shown by size ---

Uni16String repeated(const Uni16String& text, int count) {
    Uni16String all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

TEST(PathGrowthTest, ALongPathIsTakenApartOnce) {
    const int count = 200'000 / kScale;
    const auto document = std::make_unique<Document>(new Element("r"), nullptr);
    XPath query(document.get());
    EXPECT_EQ(query.GetValues(u"1" + repeated(u" + 1", count)), 1u);
    EXPECT_EQ(query.GetResult(0).number, count + 1);
    EXPECT_EQ(query.GetValues(u"/r" + repeated(u"/.", count)), 1u);
    EXPECT_EQ(query.GetValues(u"/r" + repeated(u"[.]", count)), 1u);
    EXPECT_TRUE(query.SyntaxOK(repeated(u"/a[b = 'c' ] / d", count)));
    EXPECT_EQ(query.GetValues(repeated(u" ", count) + u"/r[. = '" + repeated(u"x", count) + u"']"), 0u);
    EXPECT_EQ(query.GetErrorCode(), XPath::NODE_NOT_FOUND);
    EXPECT_EQ(query.GetValues(u"/r[" + repeated(u"(", count)), 0u);
    EXPECT_EQ(query.GetErrorCode(), XPath::MISSING_CLOSING_BRACKET_AFTER_PREDICATE);
}

TEST(PathGrowthTest, NestedPredicatesAreTakenApartOnce) {
    const int levels = 1'000;
    const Uni16String blanks = repeated(u" ", 2'000'000 / levels / kScale);
    const auto document = std::make_unique<Document>(new Element("r"), nullptr);
    XPath query(document.get());
    EXPECT_EQ(query.GetValues(u"/r" + repeated(u"[" + blanks + u".", levels) + repeated(blanks + u"]", levels)), 1u);
    EXPECT_TRUE(query.SyntaxOK(u"/r" + repeated(u"[" + blanks + u"x", levels) + repeated(blanks + u"]", levels)));
}

TEST(PathGrowthTest, PredicatesWithinPredicatesDoNotMultiplyTheWalks) {
    const Outcome outcome = readDocument("<r><a><b/><b/></a><a><b/><b/></a><a><b/><b/></a></r>");
    ASSERT_TRUE(outcome.ok);
    XPath query(outcome.document.get());
    const int levels = 300;
    // Each level goes down to several nodes, and from each of them back to the same one.
    EXPECT_EQ(query.GetValues(u"/r[" + repeated(u"*[..[", levels) + u"." + repeated(u"]]", levels) + u"]"), 1u);
    EXPECT_EQ(query.GetValues(u"/r[" + repeated(u"*/b[../..[", levels) + u"." + repeated(u"]]", levels) + u"]"), 1u);
    EXPECT_EQ(query.GetValues(u"/r[" + repeated(u".//b[ancestor::r[", levels) + u"." + repeated(u"]]", levels) + u"]"),
              1u);
    EXPECT_EQ(
        query.GetValues(u"/r[" + repeated(u"*[..[", levels) + u"a" + repeated(u" = '']] = ''", levels) + u" = '']"),
        1u);
}

TEST(PathGrowthTest, PairsThatMultiplyBeyondMeasureEndAsMemoryThatRunsOut) {
    std::string text;
    for (int i = 0; i < 10; ++i) text += "<a>1</a>";
    const Outcome outcome = readDocument("<r>" + text + "</r>");
    ASSERT_TRUE(outcome.ok);
    XPath query(outcome.document.get());
    EXPECT_EQ(query.GetValues(u"/r/a + /r/a + /r/a"), 1'000u);
    EXPECT_THROW(query.GetValues(u"/r/a" + repeated(u" + /r/a", 30)), std::bad_alloc);
    EXPECT_EQ(query.GetValues(u"/r/a"), 10u);
}

TEST(PathGrowthTest, TwoLongListsAreComparedWithoutComparingEachWithEach) {
    const int count = 200'000 / kScale;
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "<a>" + std::to_string(i) + "</a><b>" + std::to_string(i + count / 2) + "</b>";
    const Outcome outcome = readDocument("<r>" + text + "</r>");
    ASSERT_TRUE(outcome.ok);
    XPath query(outcome.document.get());
    const auto half = static_cast<unsigned>(count - count / 2);
    EXPECT_EQ(query.GetValues(u"/r/a = /r/b"), half);
    EXPECT_EQ(query.GetValues(u"/r/a != /r/b"), static_cast<unsigned>(count));
    EXPECT_EQ(query.GetValues(u"/r/a * 1 = /r/b"), half);
    EXPECT_EQ(query.GetValues(u"/r/a * 1 < /r/b"), static_cast<unsigned>(count));
    EXPECT_EQ(query.GetValues(u"/r[a = b]"), 1u);
}

}  // namespace
}  // namespace Xml::test
