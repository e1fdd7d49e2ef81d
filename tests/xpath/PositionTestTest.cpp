// Predicates that ask for nothing but a position, beside the same ones in a form that is evaluated: with nought added
// to position() or last(). Both must keep the same nodes and miss the same ones.
#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/xpath/XPath.h"
#include "xpath/Queries.h"
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {

namespace {

using OrvSys::Uni16String;

const char* const kText =
    "<r i='r'><a i='a1'><b i='b1'>t</b><b i='b2'/></a><b i='b3'>t</b><a i='a2'/><a i='a3'><b i='b4'><c "
    "i='c'/></b></a></r>";

const char16_t* const kHeads[] = {u"//b",
                                  u"/r/*",
                                  u"/r/nothing",
                                  u"//c/ancestor::*",
                                  u"//b/..",
                                  u"//c/preceding::*",
                                  u"//a[b]",
                                  u"//b/@i",
                                  u"/r/a/b",
                                  u"//*",
                                  u"//@i",
                                  u"/r/descendant::*",
                                  u"//b/descendant-or-self::*",
                                  u"//a/following::*",
                                  u"//b/following-sibling::*",
                                  u"//b/preceding-sibling::*",
                                  u"//c/ancestor-or-self::*"};

TEST(PositionTest, ComparedWithANumberKeepsWhatTheEvaluationKeeps) {
    const Tree tree(kText);
    for (const Uni16String head : kHeads) {
        for (const char16_t* const op : {u" = ", u"!=", u" < ", u" <= ", u" > ", u" >= "}) {
            for (const char16_t* const number : {u"0", u"1", u"2", u"2.5", u"3", u"9"}) {
                const Uni16String test = head + u"[position()" + op + number + u"]";
                const Uni16String evaluated = head + u"[position() + 0" + op + number + u"]";
                XPath one(tree.document());
                XPath other(tree.document());
                EXPECT_EQ(one.GetValues(test), other.GetValues(evaluated));
                EXPECT_EQ(resultsOf(one), resultsOf(other)) << OrvSys::Uni16CharToPlatformCString(test);
                EXPECT_EQ(one.GetErrorCode(), other.GetErrorCode());
            }
        }
    }
}

// "last() + 0" is a number of one context node, the last, as last() is.
TEST(PositionTest, LastKeepsWhatTheEvaluationKeeps) {
    const Tree tree(kText);
    for (const Uni16String head : kHeads) {
        XPath one(tree.document());
        XPath other(tree.document());
        EXPECT_EQ(one.GetValues(head + u"[last()]"), other.GetValues(head + u"[last() + 0]"));
        EXPECT_EQ(resultsOf(one), resultsOf(other)) << OrvSys::Uni16CharToPlatformCString(head);
        EXPECT_EQ(one.GetErrorCode(), other.GetErrorCode());
    }
}

// A position that is bound above needs no later nodes: within this limit not all of the document can be looked at.
TEST(PositionTest, EndsTheWalkAtTheLastNodeThatItMayKeep) {
    const Tree tree("<r>" + repeated("<a><b>t</b><b/></a>", 1000) + "</r>");
    const std::int64_t before = XPath::setWorkLimit(1500);
    XPath query(tree.document());
    EXPECT_EQ(query.GetValues(u"//b[position() = 2]"), 1U);
    EXPECT_EQ(query.GetValues(u"//b[position() < 3.5]"), 3U);
    EXPECT_EQ(query.GetValues(u"//b[position() <= 2][last()]"), 1U);
    EXPECT_EQ(query.GetValues(u"//b[position() > 2]"), 0U);
    EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_TOO_COSTLY);
    EXPECT_EQ(query.GetValues(u"//b[last()]"), 0U);
    EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_TOO_COSTLY);
    XPath::setWorkLimit(before);
}

TEST(PositionTest, WhatIsNoPlainTestIsEvaluated) {
    const Tree tree(kText);
    const PathCase cases[] = {
        {"alone", u"/r/*[position()]", "a1 b3 a2 a3"},
        {"after a test", u"//b[position() > 1][last()]", "b4"},
        {"a number that cannot be read", u"//b[position() = 2x]", "| failed 9: 2x"},
        {"a call that cannot be read", u"//b[last]", "| failed 22: last"},
        {"a call that cannot be read, compared", u"//b[position = 2]", "| failed 22: position"},
    };
    expectAnswers(tree.document(), cases);
}

}  // namespace

}  // namespace Xml::test
