// Queries over trees, and of paths, that are nested far deeper than any recursion could go within 256 KiB of stack.
#include "orvsys/Uni16.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int kDepth = 10'000;
#else
constexpr int kDepth = 1'000'000;
#endif

struct PathCase {
    const char16_t* path;
    unsigned results;
};

TEST(PathDepthTest, EveryAxisWalksADeepTree) {
    std::string text;
    for (int i = 0; i < kDepth; ++i) text += "<a>";
    text += "<z k='v'/>";
    for (int i = 0; i < kDepth; ++i) text += "</a>";
    const Outcome outcome = readDocument(text);
    ASSERT_TRUE(outcome.ok) << outcome.error;

    const unsigned all = kDepth;
    const PathCase kCases[] = {
        {u"//a", all},
        {u"//z/ancestor::a", all},
        {u"//z/ancestor-or-self::*", all + 2},
        {u"//z/..", 1},
        {u"//@k/ancestor::*", all + 2},
        {u"//@k/preceding::*", 0},
        {u"//z/preceding::*", 0},
        {u"/a/descendant::*", all},
        {u"//a/descendant-or-self::a", all},
        {u"//a/following::*", 0},
        {u"//a/following-sibling::*", 0},
        {u"//a/preceding-sibling::*", 0},
        {u"//a[a]", all - 1},
        {u"//a[../a]", all},
        {u"//a[z/@k = 'v']", 1},
        {u"//a//a//z", 1},
    };
    XPath query(outcome.document.get());
    for (const auto& c : kCases) {
        SCOPED_TRACE(narrow(c.path));
        EXPECT_EQ(query.GetValues(c.path), c.results);
    }
}

TEST(PathDepthTest, PredicatesAreNestedAThousandDeepAndNotDeeper) {
    const Outcome outcome = readDocument("<r><r/></r>");
    XPath query(outcome.document.get());
    const auto nested = [](int levels) { return u"/r" + repeated(u"[.", levels) + repeated(u"]", levels); };
    EXPECT_EQ(query.GetValues(nested(1'000)), 1u);
    EXPECT_TRUE(query.SyntaxOK(nested(1'000)));
    for (const int levels : {1'001, 100'000}) {
        EXPECT_EQ(query.GetValues(nested(levels)), 0u);
        EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_NESTED_TOO_DEEPLY);
        EXPECT_FALSE(query.SyntaxOK(nested(levels)));
        EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_NESTED_TOO_DEEPLY);
    }
    EXPECT_EQ(query.GetValues(repeated(u"[", 100'000)), 0u);
    EXPECT_EQ(query.GetErrorCode(), XPath::RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES);
    EXPECT_EQ(query.GetValues(u"/" + repeated(u"[", 100'000)), 0u);
    EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_NESTED_TOO_DEEPLY);
}

}  // namespace
}  // namespace Xml::test
