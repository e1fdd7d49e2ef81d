// What a query may cost: within its limit a query answers as without one, past it it ends with one code and no results.
#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include "xpath/AskedMemory.h"
#include "xpath/Queries.h"
#include "xpath/RandomPaths.h"
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

using OrvSys::Uni16String;

// For as long as it lives.
class Limit {
public:
    explicit Limit(std::int64_t visits) : before(XPath::setWorkLimit(visits)) {}
    ~Limit() { XPath::setWorkLimit(before); }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;

private:
    const std::int64_t before;
};

const char* const kTooCostly = "| failed 28";

// The answer under a limit, from the document.
std::string answerWithin(std::int64_t visits, const Tree& tree, const Uni16String& path) {
    const Limit limit(visits);
    return answer(tree.document(), path);
}

// The least limit under which the path is answered.
std::int64_t costOf(const Tree& tree, const Uni16String& path) {
    std::int64_t refused = 0;
    std::int64_t answered = 1;
    while (answerWithin(answered, tree, path) == kTooCostly) answered *= 2;
    while (answered - refused > 1) {
        const std::int64_t middle = refused + (answered - refused) / 2;
        (answerWithin(middle, tree, path) == kTooCostly ? refused : answered) = middle;
    }
    return answered;
}

const char* const kText = "<r><x n='1'><y/><y>t</y><z/></x><x n='2'><y/><y/><z><y/></z></x><x n='3'/></r>";

TEST(WorkLimitTest, IsNoneAtFirstAndAfterZero) {
    EXPECT_EQ(XPath::setWorkLimit(5), 0);
    EXPECT_EQ(XPath::setWorkLimit(-3), 5);
    const Tree tree(kText);
    EXPECT_EQ(answer(tree.document(), u"//@n"), "@n=1 @n=2 @n=3");
    EXPECT_EQ(XPath::setWorkLimit(0), -3);
    EXPECT_EQ(answer(tree.document(), u"//@n"), "@n=1 @n=2 @n=3");
}

TEST(WorkLimitTest, EndsAQueryThatGoesPastItWithoutResults) {
    const Tree tree(kText);
    const Limit limit(10);
    XPath query(tree.document());
    EXPECT_EQ(query.GetValues(u"/r/x"), 3u);
    EXPECT_FALSE(query.FindNodes(u"//y[../z]"));
    EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_TOO_COSTLY);
    EXPECT_EQ(query.GetErrorString(), u"The expression is too costly");
    EXPECT_EQ(query.GetNrOfResults(), 0u);
    EXPECT_EQ(query.GetValue(u"//y[../z]", -1), u"");
    EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_TOO_COSTLY);
    // It goes on from the document, or from what it finds next.
    EXPECT_EQ(query.GetValues(u"x"), 0u);
    EXPECT_EQ(query.GetErrorCode(), XPath::RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES);
    EXPECT_EQ(query.GetValues(u"/r/x"), 3u);
    EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
    EXPECT_EQ(query.GetValues(u"@n"), 3u);
}

TEST(WorkLimitTest, IsForEachQueryAnew) {
    const Tree tree(kText);
    const std::int64_t cost = costOf(tree, u"//y");
    const Limit limit(cost);
    XPath query(tree.document());
    for (int i = 0; i < 100; ++i) ASSERT_EQ(query.GetValues(u"//y"), 5u);
}

TEST(WorkLimitTest, NeverEndsACheckOfThePath) {
    const Tree tree(kText);
    const Limit limit(1);
    XPath query(tree.document());
    EXPECT_TRUE(query.SyntaxOK(u"//y[../z[//x]]/preceding::*"));
    EXPECT_TRUE(query.FindNodes(u"//y[../z[//x]]/preceding::*"));
    EXPECT_EQ(query.GetErrorCode(), XPath::NONE);
    EXPECT_EQ(query.GetNrOfResults(), 1u);
}

TEST(WorkLimitTest, GivesTheAnswerWithoutALimitOrNone) {
    Dice dice(1);
    RandomPaths paths(dice);
    int answered = 0;
    int refused = 0;
    for (int trees = 0; trees < 300; ++trees) {
        const RandomTree tree(dice);
        for (int i = 0; i < 20; ++i) {
            const Uni16String before = dice.chance(50) ? u"//node()" : u"/*";
            const Uni16String path = dice.chance(70) ? paths.wellFormed(dice.chance(40)) : paths.withMistakes(true);
            const auto hasContext = [&] { return XPath(tree.document.get()).GetValues(before) > 0; };
            if (!hasContext()) continue;
            const std::string expected = answer(tree.document.get(), path, before);
            for (const std::int64_t visits : {1, 10, 40, 150, 1'000'000}) {
                const Limit limit(visits);
                if (!hasContext()) continue;
                const std::string actual = answer(tree.document.get(), path, before);
                if (actual == kTooCostly) {
                    ++refused;
                    EXPECT_LT(visits, 1'000'000) << narrow(path);
                } else {
                    ++answered;
                    ASSERT_EQ(actual, expected) << narrow(path) << " within " << visits;
                }
            }
        }
    }
    EXPECT_GE(answered, 10'000);
    EXPECT_GE(refused, 2'000);
}

TEST(WorkLimitTest, CountsTheNodesThatStepsAndPredicatesLookAt) {
    const Tree tree(kText);
    EXPECT_GE(costOf(tree, u"//node()"), 12);
    EXPECT_LT(costOf(tree, u"//node()"), 40);
    EXPECT_LT(costOf(tree, u"/r"), 5);
    const Uni16String kCheapAndDear[][2] = {
        {u"/r/x", u"/r/x/y"},
        {u"//y", u"//y[..]"},
        {u"//y[..]", u"//y[../z]"},
        {u"//y", u"//y[position() > 0]"},
        {u"//y[position() > 0]", u"//y[position() > 0][position() > 0]"},
        {u"//x", u"//x/preceding::*"},
        {u"//x/preceding::*", u"//x[preceding::* = 't']"},
        {u"//x", u"//x/following::*"},
        {u"//x", u"//x/ancestor::*"},
        {u"//y", u"//y/ancestor::x/ancestor::*"},
        {u"//x", u"//x/@*"},
        {u"/r/x", u"/r/x/self::x"},
        {u"//y", u"//y + 1 = //y"},
        {u"//y[. = .]", u"//y[. + .]"},
        {u"/r/x/y/z = /r/x/y", u"/r/x/y/z = /r/x/y * /r/x/y"},
    };
    for (const auto& pair : kCheapAndDear) {
        SCOPED_TRACE(narrow(pair[0]) + " and " + narrow(pair[1]));
        EXPECT_LT(costOf(tree, pair[0]), costOf(tree, pair[1]));
    }
}

TEST(WorkLimitTest, DoesNotCountWhatFollowsTheLastContextNodeForThePrecedingAxis) {
    const std::string before = "<r><x>t</x><y>t</y><x n=''/><z>";
    const Tree narrowTree(before + "</z></r>");
    const Tree wideTree(before + repeated("<x/>t", 100) + "</z></r>");
    for (const Uni16String path : {u"/r/x/preceding::node()", u"/r/y/preceding::node()", u"/r/x/text()/preceding::*"}) {
        SCOPED_TRACE(narrow(path));
        EXPECT_GT(costOf(narrowTree, path), costOf(narrowTree, u"/r/x"));
        EXPECT_EQ(costOf(wideTree, path), costOf(narrowTree, path));
    }
    // An attribute has no place in the order: all nodes are looked at.
    EXPECT_EQ(costOf(wideTree, u"/r/x/@n/preceding::*"), costOf(narrowTree, u"/r/x/@n/preceding::*") + 200);
}

// Each round of the path keeps some nodes, the last one outside of the row, and goes up and down again: the parents of
// those in the row come first then, before the rest of the row. So one more child comes first, from the end.
TEST(WorkLimitTest, SearchesARowOfSiblingsAFewTimesHoweverOftenContextNodesTurnBack) {
    const int row = 1'000;
    const int turns = 9;
    std::string text = "<r>" + repeated("<c/>", row - turns);
    for (int i = 0; i < turns; ++i) text += "<c><d n='" + std::to_string(i) + "'/></c>";
    const Tree tree(text + "<e n='100'/></r>");
    Uni16String path = u"/r";
    for (int i = turns; i-- > 0;) path += u"/descendant-or-self::*[@n >= " + wide(std::to_string(i)) + u"]/..";
    path += u"/descendant-or-self::c";
    {
        XPath query(tree.document());
        ASSERT_EQ(query.GetValues(path), static_cast<unsigned>(row));
        const auto* const parent = static_cast<Element*>(query.GetResult(0).node)->getParent()->toElement();
        for (int i = 0; i < turns; ++i)
            ASSERT_EQ(query.GetResult(static_cast<unsigned>(i)).node, parent->getChild(row - 1 - i));
    }
    EXPECT_LT(costOf(tree, path + u"/following-sibling::x") - costOf(tree, path), 5 * row);
}

TEST(WorkLimitTest, CountsANumberThatIsMadeOnce) {
    const Tree tree(kText);
    EXPECT_EQ(costOf(tree, u"/r/x + /r/x") - costOf(tree, u"/r/x = /r/x"), 3 * 3);
    EXPECT_EQ(costOf(tree, u"/r/x + 1") - costOf(tree, u"/r/x = 1"), 3);
    EXPECT_EQ(costOf(tree, u"1 + /r/x") - costOf(tree, u"1 = /r/x"), 3);
}

// The children are gone through once for all of them, not once for each or for the first one.
TEST(WorkLimitTest, CountsNoSearchForAContextNodeThatIsTheFirstChildOrFollowsTheLastOne) {
    for (const int children : {100, 200}) {
        const Tree tree("<r>" + repeated("<a/>", children) + "</r>");
        EXPECT_LT(costOf(tree, u"/r/a[following-sibling::a]"), 5 * children + 10);
    }
}

// What a refused query has asked of the heap tells how far it went, on every machine alike.
TEST(WorkLimitTest, EndsAQueryBeforeItHasDoneMuchMore) {
    const Tree wide("<a>" + repeated("<b/>", 3'999) + "</a>");
    const Tree deep(repeated("<a>", 100'000) + "<b i='b'/>" + repeated("</a>", 100'000));
    const struct {
        const char* name;
        Object* context;
        Uni16String path;
        std::int64_t visits;
    } kCases[] = {
        {"pairs", wide.document(), u"/a/b + /a/b", 20'000},
        {"pairs in a predicate", wide.document(), u"/a[b * b]", 20'000},
        {"numbers of nodes and a scalar", wide.document(), u"/a/b + 1", 4'100},
        {"numbers of a scalar and nodes", wide.document(), u"1 + /a/b", 4'100},
        {"ancestors", deep["b"], u"ancestor::*", 1'000},
        {"itself and ancestors", deep["b"], u"ancestor-or-self::*", 1'000},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Limit limit(c.visits);
        XPath query(c.context);
        const std::size_t before = askedMemory();
        EXPECT_EQ(query.GetValues(c.path), 0u);
        EXPECT_LT(askedMemory() - before, 100 * static_cast<std::size_t>(c.visits));
        EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_TOO_COSTLY);
    }
}

TEST(WorkLimitTest, RefusesPairsThatAreTooManyWithoutALimitToo) {
    std::string text;
    for (int i = 0; i < 5'000; ++i) text += "<a/>";
    const Tree tree("<r>" + text + "</r>");
    for (const Uni16String path : {u"/r/a + /r/a", u"/r[a * a = 0]", u"//a - //a div //a"})
        EXPECT_EQ(answer(tree.document(), path), kTooCostly) << narrow(path);
    EXPECT_EQ(answer(tree.document(), u"/r[a + 1 = 1]"), "r");
    // One more than 16 million.
    const Tree pairs("<r>" + repeated("<a/>", 641) + repeated("<b/>", 24'961) + "</r>");
    EXPECT_EQ(answer(pairs.document(), u"/r/a + /r/b"), kTooCostly);
    XPath query(tree.document());
    EXPECT_TRUE(query.SyntaxOK(u"/r/a + /r/a"));
}

}  // namespace
}  // namespace Xml::test
