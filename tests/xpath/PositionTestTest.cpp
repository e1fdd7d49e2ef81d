// Predicates that ask for nothing but a position, beside the same ones in a form that is evaluated: with nought added
// to position() or last(). Both must keep the same nodes and miss the same ones.
#include "xml/xpath/XPath.h"
#include "xpath/Queries.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {

namespace {

using OrvSys::Uni16String;

const char* const kText =
    "<r i='r'><a i='a1'><b i='b1'/><b i='b2'/></a><b i='b3'/><a i='a2'/><a i='a3'><b i='b4'><c i='c'/></b></a></r>";

const char16_t* const kHeads[] = {
    u"//b",    u"/r/*",   u"/r/nothing", u"//c/ancestor::*", u"//b/..", u"//c/preceding::*",
    u"//a[b]", u"//b/@i", u"/r/a/b"};

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
