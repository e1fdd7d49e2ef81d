// What a query costs grows as the tree does: counted by what it asks of the nodes, and where a test cannot count, shown
// by size.
#include "growth/Texts.h"
#include "growth/Work.h"
#include "orvsys/Uni16.h"
#include "support/QueriesFromHeap.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <algorithm>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

using OrvSys::Uni16String;

// A shape of n elements x and y in turn, each with an attribute and every third with a text.
struct Shape {
    const char* name;
    int (*parentOf)(int);  // the number of the element that the one with that number is put into
};

const Shape kFlat = {"flat", [](int) { return 0; }};
const Shape kDeep = {"deep", [](int i) { return i - 1; }};
const Shape kBushy = {"bushy", [](int i) { return (i - 1) / 3; }};
const Shape* const kShapes[] = {&kFlat, &kDeep, &kBushy};

// The children of the root and theirs in turn.
const Shape kTwigs = {"twigs", [](int i) { return i % 3 == 2 ? i - 1 : 0; }};

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

// Grown once: no query changes it.
std::shared_ptr<Document> grown(const Shape& shape, int n) {
    static std::map<std::pair<const Shape*, int>, std::shared_ptr<Document>> documents;
    auto& document = documents[{&shape, n}];
    if (!document) document = grow(shape, n);
    return document;
}

// Trees of up to 16 times as many elements are made. Those of a caller's own are gone through by recursion.
constexpr int kSize = 125;

// The paths for a tree of that size, one from the results of the other, the last of them counted.
using Paths = std::function<std::vector<Uni16String>(int)>;

// Two trees are asked at each size, of n and of 2n elements: the sets of nodes that a query keeps grow fourfold at a
// time, and one such step lies between the two or after them.
Jobs asking(const Shape& shape, const Paths& pathsFor) {
    return [&shape, pathsFor](int n) {
        std::vector<std::function<void()>> jobs;
        for (const int size : {n, 2 * n}) {
            const std::vector<Uni16String> paths = pathsFor(size);
            const auto query = std::make_shared<XPath>(grown(shape, size).get());
            for (std::size_t i = 0; i + 1 < paths.size(); ++i) EXPECT_GT(query->GetValues(paths[i]), 0u);
            jobs.emplace_back([query, path = paths.back()] {
                query->GetValues(path);
                EXPECT_LE(query->GetErrorCode(), XPath::NODE_NOT_FOUND);
            });
        }
        return [jobs] {
            for (const auto& job : jobs) job();
        };
    };
}

void expectNoMore(const std::string& name, const Jobs& jobs, Kind kind, int n) {
    expectAtMostLinear(name, jobs, kind, n);
}

void expectLinearPath(const Uni16String& path) {
    for (const Shape* shape : kShapes)
        expectLinear(shape->name + (": " + narrow(path)), asking(*shape, [&path](int) { return std::vector{path}; }),
                     NodeCalls, kSize);
}

const struct {
    Uni16String name;
    bool reachesFar;  // from one node, to more of them in a larger tree
} kAxes[] = {
    {u"self", false},
    {u"child", true},
    {u"attribute", false},
    {u"parent", false},
    {u"ancestor", true},
    {u"ancestor-or-self", true},
    {u"following", true},
    {u"preceding", true},
    {u"following-sibling", true},
    {u"preceding-sibling", true},
    {u"descendant", true},
    {u"descendant-or-self", true},
};

TEST(PathGrowthTest, EveryAxisFromAllNodesIsLinearInTheNodes) {
    for (const auto& axis : kAxes) {
        expectLinearPath(u"//node()/" + axis.name + u"::node()");
        expectLinearPath(u"//x/" + axis.name + u"::y");
    }
}

TEST(PathGrowthTest, EveryAxisFromAllResultsOfAQueryIsLinearInThem) {
    // What the first query has found is not counted here, and where steps lead back to few nodes little else is: in one
    // of the shapes the work must grow.
    for (const auto& axis : kAxes) {
        for (const char16_t* const test : {u"::node()", u"::nothing"}) {
            const Uni16String path = axis.name + test;
            double largest = 0;
            for (const Shape* shape : kShapes) {
                const auto paths = [&path](int) { return std::vector<Uni16String>{u"//node()", path}; };
                largest = std::max(largest, expectAtMostLinear(shape->name + (": " + narrow(path)),
                                                               asking(*shape, paths), NodeCalls, kSize));
            }
            EXPECT_GE(largest, kLeastExponent) << narrow(path);
        }
    }
}

TEST(PathGrowthTest, EveryAxisFromOneNodeIsLinearInTheNodesThatItReaches) {
    const struct {
        const char* name;
        std::function<Uni16String(int)> path;
    } kFrom[] = {
        {"the root", [](int) { return u"/x"; }},
        {"the middle", [](int n) { return u"/descendant::y[position() = " + wide(std::to_string(n / 4)) + u"]"; }},
        {"the end", [](int n) { return u"/descendant::y[position() = " + wide(std::to_string(n / 2)) + u"]"; }},
    };
    for (const auto& axis : kAxes) {
        const Uni16String path = axis.name + u"::node()";
        double largest = 0;
        // In a bushy tree it is a matter of chance how many nodes one reaches.
        for (const Shape* shape : {&kFlat, &kDeep}) {
            for (const auto& from : kFrom) {
                const auto paths = [&](int n) { return std::vector<Uni16String>{from.path(n), path}; };
                largest =
                    std::max(largest, expectAtMostLinear(shape->name + (": " + narrow(path)) + " from " + from.name,
                                                         asking(*shape, paths), NodeCalls, kSize));
            }
        }
        if (axis.reachesFar) {
            EXPECT_GE(largest, kLeastExponent) << narrow(path);
        } else {
            EXPECT_EQ(largest, 0) << narrow(path);
        }
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
    for (const auto& path : kPaths) expectLinearPath(path);
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
        u"//*[position() != 7]",
        u"//*[last()]",
        u"//*[position() + 1 > 2][@a][last()]",
        // One node is enough, and it is near.
        u"//x[descendant::*]",
        u"//x[.//*]",
    };
    for (const auto& path : kPaths) expectLinearPath(path);
}

TEST(PathGrowthTest, WhatContextNodesShareAboveThemIsWalkedOnceHoweverTheyComeThere) {
    const Uni16String kPaths[] = {
        u"/descendant::x[../nothing]", u"//x[parent::x/nothing]",        u"//x[./../nothing]",
        u"//*[@a/../../nothing]",      u"/descendant::*[../../nothing]", u"//*[parent::*[@a]/nothing]",
    };
    for (const auto& path : kPaths)
        expectLinear("twigs: " + narrow(path), asking(kTwigs, [&path](int) { return std::vector{path}; }), NodeCalls,
                     kSize);
}

TEST(PathGrowthTest, ALongTextIsReadOnceHoweverManyAreComparedWithIt) {
    for (const Uni16String path : {u"/r[y = z]", u"/r[y != z]", u"/r[y > z]", u"/r[z = y]", u"/r[z < y]"}) {
        expectLinear(
            narrow(path),
            [&path](int n) {
                const std::string children = repeated("<y>a</y>", n) + "<z>" + repeated("&amp;z", n) + "</z>";
                const auto document =
                    std::make_shared<Document>(readElement("<r>" + children + "</r>").release(), nullptr);
                return [query = std::make_shared<XPath>(document.get()), document, path] { query->GetValues(path); };
            },
            AllocatedBytes, 1'000);
    }
}

TEST(PathGrowthTest, TheNextContextNodeIsFoundBesideTheLastOne) {
    expectLinear("flat", asking(kFlat, [](int) { return std::vector<Uni16String>{u"//x[following-sibling::y]"}; }),
                 NodeCalls, kSize);
}

TEST(PathGrowthTest, ValuesAreLinearInTheNodesThatTheyAreMadeOf) {
    const Uni16String kPaths[] = {
        u"//x/@a * 2",      u"2 - //@a",         u"//y = 'text'",    u"//@a > 2",
        u"//x/@a = //y/@a", u"//x/@a != //y/@a", u"//x/@a < //y/@a",
    };
    for (const auto& path : kPaths) expectLinearPath(path);
}

TEST(PathGrowthTest, AskingAllResultsForTheirTextIsLinearInThem) {
    const struct {
        const char* name;
        Uni16String path;
        int token;
    } kCases[] = {
        {"elements", u"/r/x", -1},  {"attributes", u"//@a", -1}, {"words of attributes", u"//@a", 1},
        {"texts", u"//text()", -1}, {"numbers", u"//x + 1", -1},
    };
    for (const auto& c : kCases) {
        expectLinear(
            c.name,
            [&c](int n) {
                const std::string children = test::repeated("<x a='two ratherlong'>text of a few words</x>", n);
                const auto document =
                    std::make_shared<Document>(readElement("<r>" + children + "</r>").release(), nullptr);
                const auto query = std::make_shared<XPath>(document.get());
                EXPECT_EQ(query->GetValues(c.path), static_cast<unsigned>(n));
                return [document, query, n, &c] {
                    for (int i = 0; i < n; ++i) query->GetValue(static_cast<unsigned>(i), c.token);
                };
            },
            AllocatedBytes, kSize);
    }
}

// Where only bytes are counted they grow at most so: of a plain path nothing is kept but its steps.
TEST(PathGrowthTest, APathIsLinearInItsLength) {
    const QueriesFromHeap fromHeap;
    const struct {
        const char* name;
        Kind kind;
        std::function<Uni16String(int)> path;
    } kCases[] = {
        {"steps to the node", NodeCalls, [](int n) { return u"/x" + repeated(u"/.", n); }},
        {"steps down and up", NodeCalls, [](int n) { return u"/x" + repeated(u"/*/..", n); }},
        {"steps sideways", NodeCalls,
         [](int n) { return u"/x/*" + repeated(u"/following-sibling::*/preceding-sibling::*", n); }},
        {"steps through the whole tree", NodeCalls, [](int n) { return u"/x" + repeated(u"//y/ancestor::x", n); }},
        {"steps before and after", NodeCalls,
         [](int n) { return u"//y" + repeated(u"/preceding::x/following::y", n); }},
        {"steps that find nothing", AllocatedBytes, [](int n) { return u"/x" + repeated(u"/nothing", n); }},
        {"predicates of one step", NodeCalls, [](int n) { return u"/x/*" + repeated(u"[@a]", n); }},
        {"predicates of each step", NodeCalls, [](int n) { return u"/x" + repeated(u"/.[y]", n); }},
        {"predicates in each other", NodeCalls, [](int n) { return u"/x" + repeated(u"[.", n) + repeated(u"]", n); }},
        {"predicates in each other, down and up", NodeCalls,
         [](int n) { return u"/x" + repeated(u"[y[..", n / 2) + repeated(u"]]", n / 2); }},
        {"numbers", AllocatedBytes, [](int n) { return u"1" + repeated(u" + 1", n); }},
        {"paths added up", NodeCalls, [](int n) { return u"/x/@a" + repeated(u" + /x/@a", n); }},
        {"a name", AllocatedBytes, [](int n) { return u"/x/" + repeated(u"name", n); }},
        {"a literal", AllocatedBytes, [](int n) { return u"/x[@a = '" + repeated(u"text", n) + u"']"; }},
        {"blanks", AllocatedBytes, [](int n) { return u"/x" + repeated(u"    ", n) + u"/y"; }},
    };
    for (const auto& c : kCases) {
        (c.kind == NodeCalls ? expectLinear : expectNoMore)(
            c.name,
            [&c](int n) {
                return [query = std::make_shared<XPath>(grown(kBushy, 20).get()), path = c.path(n)] {
                    query->GetValues(path);
                    EXPECT_LE(query->GetErrorCode(), XPath::NODE_NOT_FOUND);
                };
            },
            c.kind, 100);
        expectNoMore(
            c.name + std::string(", only checked"),
            [&c](int n) {
                return [query = std::make_shared<XPath>(grown(kBushy, 20).get()), path = c.path(n)] {
                    EXPECT_TRUE(query->SyntaxOK(path));
                };
            },
            AllocatedBytes, 100);
    }
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

// GetValue(index) forgets the error of a query, but not how deep in the path it was.
TEST(PathGrowthTest, WhatAnEarlierQueryMissedDoesNotMultiplyTheWalks) {
    const int count = 100'000 / kScale;
    const Outcome outcome = readDocument("<r>" + repeated("<a><b/></a>", count) + "<a/></r>");
    ASSERT_TRUE(outcome.ok);
    XPath query(outcome.document.get());
    const auto missLast = [&query] {
        query.GetValues(u"/r/a");
        EXPECT_TRUE(query.FindNodes(u"./b"));
        EXPECT_EQ(query.GetErrorCode(), XPath::NODE_NOT_FOUND);
        query.GetValue(0u, -1);
        EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
    };
    missLast();
    EXPECT_TRUE(query.FindNodes(u"parent::*/following-sibling::a"));
    EXPECT_EQ(query.GetNrOfResults(), static_cast<unsigned>(count));
    missLast();
    EXPECT_TRUE(query.FindNodes(u"/r[" + repeated(u"a[..[", 20) + u"." + repeated(u"]]", 20) + u"]"));
    EXPECT_EQ(query.GetNrOfResults(), 1u);
}

// However large the tree is. A tree of three branches, in which a row of siblings, which may be gone past the limit, is
// short.
TEST(PathGrowthTest, AQueryPastItsLimitCostsWhatTheLimitAllows) {
    const Uni16String kPaths[] = {
        u"//node()",
        u"//x[descendant::y]//y[ancestor::x]",
        u"//@a",
        u"//*[@a > 2]/following-sibling::*",
        u"//*[../../x/y[../x]]",
        u"//x/ancestor-or-self::*/descendant::*",
        u"//y[preceding::x = 'text']",
        u"/descendant::y[position() > 1][position() > 1]/following::*",
        u"//*[.//nothing]",
        u"//*[//nothing = //x]",
    };
    const std::int64_t before = XPath::setWorkLimit(300);
    for (const auto& path : kPaths) {
        SCOPED_TRACE(narrow(path));
        for (const int n : {1'000, 4'000}) {
            const std::shared_ptr<Document> document = grown(kBushy, n);
            XPath query(document.get());
            const Work work = workOf([&] { query.GetValues(path); });
            EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_TOO_COSTLY);
            EXPECT_GT(work[NodeCalls], 30);
            EXPECT_LT(work[NodeCalls], 3'000);
            EXPECT_LT(work[AllocatedBytes], 100'000);
        }
    }
    XPath::setWorkLimit(before);
}

TEST(PathGrowthTest, PairsThatMultiplyBeyondMeasureAreRefused) {
    std::string text;
    for (int i = 0; i < 10; ++i) text += "<a>1</a>";
    const Outcome outcome = readDocument("<r>" + text + "</r>");
    ASSERT_TRUE(outcome.ok);
    XPath query(outcome.document.get());
    EXPECT_EQ(query.GetValues(u"/r/a + /r/a + /r/a"), 1'000u);
    EXPECT_EQ(query.GetValues(u"/r/a" + repeated(u" + /r/a", 30)), 0u);
    EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_TOO_COSTLY);
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
