// Values and operators: literals, numbers, position() and last(), precedence, which value of one side meets which of
// the other, how texts and numbers are compared.
#include "support/Texts.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include "xpath/Queries.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {

namespace {

using OrvSys::Uni16String;

const char* const kText =
    "<r i='r' k='5'>"
    "<x i='x1' n='1' m='10'><v i='v1'>3</v><v i='v2'>4</v></x>"
    "<x i='x2' n='2' m='2'><v i='v3'>4</v></x>"
    "<x i='x3' n='30'/>"
    "<key i='key'>4</key>"
    "</r>";

TEST(ExpressionTest, TakesDigitsWithOnePointForANumber) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"one digit", u"5", "5#-1"},
        {"several", u"1024", "1024#-1"},
        {"leading noughts", u"007", "7#-1"},
        {"a fraction", u"7.25", "7.25#-1"},
        {"a long fraction", u"0.03125", "0.03125#-1"},
        {"a point at the end", u"12.", "12#-1"},
        {"noughts after the point", u"12.000", "12#-1"},
        {"with blanks", u" 1 2 ", "12#-1"},
        {"a letter", u"12a", "| failed 9: 12a"},
        {"an exponent", u"1e5", "| failed 9: 1e5"},
        {"two points", u"1.2.3", "| failed 9: 1.2.3"},
        {"two points in a row", u"1..", "| failed 9: 1.."},
        {"a letter after the point", u"1.x", "| failed 9: 1.x"},
        {"a comma", u"1,5", "| failed 9: 1,5"},
        {"a predicate", u"1[x]", "| failed 9: 1[x]"},
        {"a slash", u"1/x", "| failed 9: 1/x"},
        {"a literal", u"1'x'", "| failed 9: 1'x'"},
        {"an operator without blanks", u"1-x", "| failed 9: 1-x"},
        {"as it is written", u"1 [ x ]", "| failed 9: 1[ x ]"},
        {"after an operator", u"1 + 2b", "| failed 9: 2b"},
        {"before an operator", u"1a + 2", "| failed 9: 1a"},
        {"in a predicate", u"/r/x[@n = 2b]", "| failed 9: 2b"},
        {"a point first is a path", u".5", "| failed 0"},
        {"a sign first is a path", u"-5", "| failed 0"},
    };
    expectAnswers(tree.document(), kCases);
    for (const PathCase& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string expected = c.answer;
        EXPECT_EQ(syntax(tree.document(), c.path), expected[0] == '|' ? expected.substr(2) : "ok");
    }
}

TEST(ExpressionTest, CalculatesTimesBeforePlusBeforeOrderBeforeEquality) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"plus", u"2 + 3", "5#-1"},
        {"minus", u"7 - 2", "5#-1"},
        {"times", u"4 * 3", "12#-1"},
        {"div", u"10 div 4", "2.5#-1"},
        {"a negative difference", u"2 - 7", "-5#-1"},
        {"times after plus", u"2 + 3 * 4", "14#-1"},
        {"times before plus", u"2 * 3 + 4", "10#-1"},
        {"div after minus", u"10 - 4 div 2", "8#-1"},
        {"several of each", u"1 + 2 * 3 - 8 div 4 * 2 + 1", "4#-1"},
        {"minus from the left", u"7 - 2 - 1", "4#-1"},
        {"minus and plus from the left", u"7 - 2 + 1", "6#-1"},
        {"div from the left", u"8 div 4 div 2", "1#-1"},
        {"div and times from the left", u"8 div 4 * 2", "4#-1"},
        {"times and div from the left", u"2 * 8 div 4", "4#-1"},
        {"plus before equality", u"1 + 1 = 2", "2#-1"},
        {"on both sides", u"2 * 3 = 1 + 5", "6#-1"},
        {"plus before order", u"1 + 1 < 1 + 2", "2#-1"},
        {"order before equality", u"5 != 1 < 3", "5#-1"},
        {"order before equality, the other way round", u"1 < 3 != 5", "1#-1"},
        {"order from the left", u"1 < 2 < 3", "1#-1"},
        {"order from the left, failing", u"3 > 2 > 4", ""},
        {"order from the left, with its left value", u"3 > 2 > 1", "3#-1"},
        {"equality from the left", u"2 = 2 = 2", "2#-1"},
        {"equality from the left, failing at once", u"1 = 2 = 2", ""},
        {"equality from the left, failing later", u"2 = 2 = 3", ""},
        {"both equalities", u"2 = 2 != 3", "2#-1"},
        {"with word operators", u"1 + 1 eq 2 ne 3", "2#-1"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(ExpressionTest, KnowsSixComparisonsByWordAndBySign) {
    const Tree tree(kText);
    struct Case {
        const char16_t* word;
        const char16_t* sign;
        bool below, equal, above;
    } const kCases[] = {
        {u" lt ", u"<", true, false, false}, {u" le ", u"<=", true, true, false}, {u" eq ", u"=", false, true, false},
        {u" ge ", u">=", false, true, true}, {u" gt ", u">", false, false, true}, {u" ne ", u"!=", true, false, true},
    };
    struct Pair {
        const char* name;
        const char16_t* left;
        const char16_t* right;
        int order;
        const char* kept;  // the left value
    } const kPairs[] = {
        {"numbers below", u"2", u"10", -1, "2#-1"},
        {"numbers alike", u"3", u"3.0", 0, "3#-1"},
        {"numbers above", u"3.5", u"3.25", 1, "3.5#-1"},
        {"texts below", u"'10'", u"'2'", -1, "str(10)#-1"},
        {"texts alike", u"'a b'", u"'a b'", 0, "str(a b)#-1"},
        {"texts above", u"'b'", u"'a'", 1, "str(b)#-1"},
        {"texts that are numbers alike", u"'3.0'", u"'3'", 1, "str(3.0)#-1"},
        {"a text that another begins with", u"'a'", u"'ab'", -1, "str(a)#-1"},
        {"a text that begins with another", u"'ab'", u"'a'", 1, "str(ab)#-1"},
        {"no text below any", u"''", u"' '", -1, "str()#-1"},
        {"capitals below small letters", u"'Z'", u"'a'", -1, "str(Z)#-1"},
        {"letters by unit", u"'\u00E9'", u"'z'", 1, "str(\xC3\xA9)#-1"},
        {"surrogates below the end of the plane", u"'\U0001F600'", u"'\uFF5E'", -1, "str(\xF0\x9F\x98\x80)#-1"},
        {"a text with a number, alike", u"'3.0'", u"3", 0, "str(3.0)#-1"},
        {"a number with a text, alike", u"3", u"'3.0'", 0, "3#-1"},
        {"a text with a number, below", u"'9'", u"10", -1, "str(9)#-1"},
        {"a number with a text, above", u"10", u"'9'", 1, "10#-1"},
        {"a text that is no number is nought", u"'abc'", u"0", 0, "str(abc)#-1"},
        {"no text is nought", u"''", u"0", 0, "str()#-1"},
        {"a text that begins with a number", u"'12abc'", u"12", 0, "str(12abc)#-1"},
        {"a text with blanks before a number", u"'  12 '", u"12", 0, "str(  12 )#-1"},
        {"a text with a sign", u"'-3'", u"0", -1, "str(-3)#-1"},
        {"a text with an exponent", u"'1e3'", u"1000", 0, "str(1e3)#-1"},
        {"a text with a point alone", u"'.5'", u"0.5", 0, "str(.5)#-1"},
        {"letters beyond ASCII before a number", u"'\u00E912'", u"0", 0,
         "str(\xC3\xA9"
         "12)#-1"},
        {"letters beyond ASCII after a number", u"'12\u00E9'", u"12", 0, "str(12\xC3\xA9)#-1"},
        {"digits beyond ASCII", u"'\u0131'", u"0", 0, "str(\xC4\xB1)#-1"},
        {"infinity above all", u"1 div 0", u"9999999999", 1, "inf#-1"},
        {"infinity alike", u"1 div 0", u"2 div 0", 0, "inf#-1"},
    };
    for (const Pair& pair : kPairs) {
        for (const Case& c : kCases) {
            SCOPED_TRACE(std::string(pair.name) + narrow(c.word));
            const bool holds = pair.order < 0 ? c.below : pair.order == 0 ? c.equal : c.above;
            for (const char16_t* sign : {c.word, c.sign})
                EXPECT_EQ(answer(tree.document(), Uni16String(pair.left) + sign + pair.right), holds ? pair.kept : "");
        }
    }
}

TEST(ExpressionTest, FindsOperatorsAnywhereOutsideLiteralsAndPredicates) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"after a step", u"/r/x/@n=2", "@n=2"},
        {"between two paths", u"/r/x/v=/r/key", "v2 v3"},
        {"in what looks like one path", u"/r/x/@n>3/v", "| failed 9: 3/v"},
        {"after a predicate", u"/r/x[v]/@n=2", "@n=2"},
        {"in a kind test", u"/r/element(a<b)", "| failed 23: element(a"},
        {"not in a literal", u"'a = b'", "str(a = b)#-1"},
        {"not in a predicate", u"/r/x[@n=2]", "x2"},
        {"the longer one first, less", u"1<=1", "1#-1"},
        {"the longer one first, greater", u"1>=1", "1#-1"},
        {"two in a row", u"1<>1", "| failed 0"},
        {"an exclamation mark is none", u"/r/x!", "| failed 12: x!"},
        {"a word without blanks is none", u"/r/eq", "| 2: eq"},
        {"a word in capitals is none", u"/r/x EQ 3", "| 2: xEQ3"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(ExpressionTest, CombinesAScalarWithEachValueOfTheOtherSide) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"values from the document plus a number", u"/r/x/@n + 1", "2#-1 3#-1 31#-1"},
        {"a number plus values", u"1 + /r/x/@n", "2#-1 3#-1 31#-1"},
        {"the left stays on the left of minus", u"2 - /r/x/@n", "1#-1 0#-1 -28#-1"},
        {"the right on the right", u"/r/x/@n - 2", "-1#-1 0#-1 28#-1"},
        {"of div too", u"60 div /r/x/@n", "60#-1 30#-1 2#-1"},
        {"and here", u"/r/x/@n div 2", "0.5#-1 1#-1 15#-1"},
        {"values keep their tags", u"r/x/@n * 2", "2#0 4#0 60#0"},
        {"on the right too", u"2 * r/x/@n", "2#0 4#0 60#0"},
        {"a literal is its number", u"'12abc' + r/@k", "17#0"},
        {"a node is a scalar when it was found alone from the document", u"/r/@k + r/x/@n", "6#0 7#0 35#0"},
        {"two of these", u"/r/@k + /r/key", "9#-1"},
        {"but not one from a context", u"/r/@k + r/@k", "10#0"},
        {"a comparison keeps values as they are", u"/r/x/@n > 1", "@n=2 @n=30"},
        {"on the left the scalar takes their place", u"1 < /r/x/@n", "1#-1 1#-1"},
        {"with their tags", u"1 < r/x/@n", "1#0 1#0"},
        {"as a text", u"'2' = r/x/@m", "str(2)#0"},
        {"as a node, then once", u"/r/@k > r/x/@m", "@k=5"},
        {"a node against one", u"/r/key = /r/x/v", "key"},
        {"values against a node", u"/r/x/v = /r/key", "v2 v3"},
        {"numbers compare with nodes as numbers", u"/r/x/@m < 3", "@m=2"},
        {"texts as texts", u"/r/x/@m < '2'", "@m=10"},
        {"nodes with nodes as texts", u"/r/x/@m < /r/@k", "@m=10 @m=2"},
        {"nothing with a scalar", u"/r/zip + 1", "| 2: zip"},
        {"a scalar with nothing", u"1 + /r/zip", "| 2: zip"},
        {"nothing compared", u"/r/zip = 1", "| 2: zip"},
        {"nothing unequal", u"1 != /r/zip", "| 2: zip"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(ExpressionTest, PairsOtherValuesByTheirContext) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"every pair of one context", u"r/x/@n + r/x/@m", "11#0 3#0 12#0 4#0 40#0 32#0"},
        {"in the order of the left, then of the right", u"r/x/@m - r/x/@n", "9#0 8#0 -20#0 1#0 0#0 -28#0"},
        {"every pair from the document", u"/r/x/@n + /r/x/@m", "11#-1 3#-1 12#-1 4#-1 40#-1 32#-1"},
        {"no pair of a context and the document", u"/r/x/@n + r/x/@m", ""},
        {"nor the other way round", u"r/x/@n = /r/x/@n", ""},
        {"each context with itself", u"@n + @m", "11#0 4#1", u"/r/x[@m]"},
        {"a left value without partner is dropped", u"@n + @m", "11#0 4#1 | 2: @m", u"/r/x"},
        {"a right one too", u"@m + @n", "11#0 4#1", u"/r/x"},
        {"several in one context", u"v + @n", "4#0 5#0 6#1", u"/r/x"},
        {"a comparison keeps the left values that find one", u"r/x/@n = r/x/@m", "@n=2"},
        {"once, however many they find", u"r/x/@n != r/x/@m", "@n=1 @n=2 @n=30"},
        {"as texts", u"r/x/@n < r/x/@m", "@n=1"},
        {"of the same context only", u"v = ../key", "v2 v3", u"/r/x"},
        {"within each context", u"@n = @m", "@n=2 | 2: @m", u"/r/x"},
        {"numbers with nodes", u"@n = position()", "@n=1 @n=2", u"/r/x"},
        {"numbers with numbers", u"@n + 0 = position() + 0", "1#0 2#1", u"/r/x"},
        {"in a predicate", u"/r/x[@n = @m]", "x2"},
        {"in a predicate with a sum", u"/r/x[@n + @m > 4]", "x1"},
        {"in a predicate with itself", u"/r/x[v = v]", "x1 x2"},
        {"in a predicate with another of its context", u"/r/x[v != v]", "x1"},
        {"values from the document do not meet values of the nodes", u"/r/x[@n = /r/x/@n]", "| 2: x[@n = /r/x/@n]"},
        {"nor keep nodes when they meet each other", u"/r/x[/r/x/@n = /r/x/@n]", "| 2: x[/r/x/@n = /r/x/@n]"},
        {"one from the document meets all", u"/r/x[v = /r/key]", "x1 x2"},
        {"on either side", u"/r/x[/r/key = v]", "x1 x2"},
        {"also in a calculation", u"/r/x[/r/@k + @n = 7]", "x2"},
    };
    expectAnswers(tree.document(), kCases);
}

TEST(ExpressionTest, NumbersTheNodesOfTheContext) {
    const Tree tree(kText);
    const PathCase kCases[] = {
        {"one", u"position()", "1#0"},
        {"the last of one", u"last()", "1#0"},
        {"three", u"position()", "1#0 2#1 3#2", u"/r/x"},
        {"the last of three", u"last()", "3#2", u"/r/x"},
        {"the second", u"position() = 2", "2#1", u"/r/x"},
        {"the second, turned", u"2 = position()", "2#1", u"/r/x"},
        {"the last by place", u"position() = last()", "3#2", u"/r/x"},
        {"turned", u"last() = position()", "3#2", u"/r/x"},
        {"the place before the last is not that of the last", u"position() = last() - 1", "", u"/r/x"},
        {"place and last of one context", u"position() + last()", "6#2", u"/r/x"},
        {"place and place", u"position() * position()", "1#0 4#1 9#2", u"/r/x"},
        {"of the document in a path that begins with a slash", u"/r + position()", "1#0", u"/r/x"},
        {"with white space", u" position ( ) ", "1#0"},
        {"with something in the parentheses", u"position(what[ever])", "1#0"},
        {"of attributes", u"last()", "3#2", u"/r/x/@n"},
        {"in a predicate, the second", u"/r/x[position() = 2]", "x2"},
        {"turned", u"/r/x[2 = position()]", "x2"},
        {"by calculation", u"/r/x[position() * 2 = 4]", "x2"},
        {"the last", u"/r/x[last()]", "x3"},
        {"the last by place", u"/r/x[position() = last()]", "x3"},
        {"none before the last", u"/r/x[position() = last() - 1]", "| 2: x[position() = last() - 1]"},
        {"all but some", u"/r/x[position() != 2]", "x1 x3"},
        {"by value", u"/r/x[@n = position()]", "x1 x2"},
        {"over no nodes", u"/r/nope[position() = 1]", "| 2: nope"},
        {"the last over no nodes", u"/r/nope[last()]", "| 2: nope"},
        {"as a step", u"/r/position", "| 2: position"},
        {"as a later step", u"r/last", "| 2: last"},
        {"after a dot", u"./position", "| 2: position"},
        {"without parentheses", u"position", "| failed 22: position"},
        {"a word that begins with it", u"positions()", "| failed 22: positions()"},
        {"a path that begins with it", u"lastname/first", "| failed 22: lastname/first"},
        {"a closing one alone", u"position)", "| failed 22: position)"},
        {"an opening one alone", u"position(", "| failed 21: position("},
        {"last without parentheses", u"last", "| failed 22: last"},
        {"last with an opening one", u"last( x", "| failed 21: last(x"},
        {"last with a closing one", u"last)", "| failed 22: last)"},
        {"something after", u"position()x", "| failed 7: position()x"},
        {"something after a blank", u"position() x", "| failed 7: position()x"},
        {"a predicate after", u"last()[ 1 ]", "| failed 7: last()[ 1 ]"},
        {"a path after", u"last()/x", "| failed 7: last()/x"},
        {"two pairs", u"last()()", "| failed 7: last()()"},
        {"a second closing one", u"position(a))", "| failed 7: position(a))"},
        {"after an operator", u"1 + last", "| failed 22: last"},
        {"in a predicate", u"/r/x[lastname]", "| failed 22: lastname"},
        {"in a predicate over no nodes", u"/r/nope[position()x]", "| failed 7: position()x"},
    };
    expectAnswers(tree.document(), kCases);
    for (const PathCase& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string expected = c.answer;
        const bool fails = expected.rfind("| failed", 0) == 0;
        EXPECT_EQ(syntax(tree.document(), c.path, c.before), fails ? expected.substr(2) : "ok");
    }
}

TEST(ExpressionTest, AsksNoPathAndNoPlaceOfWhatIsNotANode) {
    const Tree tree(kText);
    struct Case {
        const char* name;
        const char16_t* before;
        const char16_t* path;
        const char* answer;
        const char* syntax;
    } const kCases[] = {
        {"a step of a number", u"1 + 1", u"x", "| failed 26", "ok"},
        {"a step of a text", u"'a'", u"x", "| failed 26", "ok"},
        {"a step of values of nodes", u"r/x/@n + 1", u"..", "| failed 26", "ok"},
        {"the dot", u"1 + 1", u".", "| failed 26", "ok"},
        {"two slashes after the dot", u"1 + 1", u".//x", "| failed 26", "ok"},
        {"a place", u"1 + 1", u"position()", "| failed 26", "failed 26"},
        {"the last", u"'a'", u"last()", "| failed 26", "failed 26"},
        {"a place of values of nodes", u"r/x/@n + 1", u"position() = 1", "| failed 26", "failed 26"},
        {"after an operator", u"1 + 1", u"1 + x", "| failed 26", "ok"},
        {"before a wrong axis", u"1 + 1", u"x::y", "| failed 26", "failed 15: x::y"},
        {"before what is no name", u"1 + 1", u"-x", "| failed 26", "failed 0"},
        {"after another error", u"1 + 1", u"12a + x", "| failed 9: 12a", "failed 9: 12a"},
        {"before another error", u"1 + 1", u"x + 12a", "| failed 26", "failed 9: 12a"},
        {"a number", u"1 + 1", u"3", "3#-1", "ok"},
        {"a text", u"1 + 1", u"'a'", "str(a)#-1", "ok"},
        {"a path from the document", u"1 + 1", u"/r", "r", "ok"},
        {"a place in its predicate", u"1 + 1", u"/r/x[position() = 2]", "x2", "ok"},
        {"a path after it", u"1 + 1", u"/r/@k + r/@k", "10#0", "ok"},
        {"the same turned", u"1 + 1", u"r/@k + /r/@k", "| failed 26", "ok"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(answer(tree.document(), c.path, c.before), c.answer);
        EXPECT_EQ(syntax(tree.document(), c.path, c.before), c.syntax);
    }
    XPath query(tree.document());
    query.GetValues(u"1 + 1");
    EXPECT_EQ(query.GetValues(u"x"), 0u);
    EXPECT_EQ(query.GetValues(u"x"), 0u);
    EXPECT_EQ(errorIn(query), "13: x") << "the failure left no results";
}

// The number that the digits give as the language has it, one after the other; not what the nearest double would be.
double accumulated(const Uni16String& digits) {
    double number = 0;
    for (const char16_t digit : digits) number = number * 10 + (digit - u'0');
    return number;
}

Uni16String oneAndNoughts(int noughts) { return u"1" + repeated(u"0", noughts); }

// The whole number with six decimals, as long as it may be.
std::string printed(double number) {
    char text[512];
    std::snprintf(text, sizeof text, "%f", number);
    return text;
}

TEST(ExpressionTest, PrintsNumbersWholeWithSixDecimals) {
    const Tree tree(kText);
    struct Case {
        const char* name;
        Uni16String path;
        std::string text;
    } const kCases[] = {
        {"a whole number", u"3", "3.000000"},
        {"a fraction", u"2.5", "2.500000"},
        {"rounded", u"2 div 3", "0.666667"},
        {"rounded to nothing", u"0.0000004", "0.000000"},
        {"negative", u"0 - 1.5", "-1.500000"},
        {"of a node", u"r/key + 0", "4.000000"},
        {"of a place", u"last()", "1.000000"},
        {"a million", u"1000000", "1000000.000000"},
        {"too large for any integer", u"123456789012345678901234567890",
         printed(accumulated(u"123456789012345678901234567890"))},
        {"infinity", u"1 div 0", "inf"},
        {"negative infinity", u"0 - 1 div 0", "-inf"},
        {"248 digits", oneAndNoughts(247), printed(accumulated(oneAndNoughts(247)))},
        {"249 digits", oneAndNoughts(248), printed(accumulated(oneAndNoughts(248)))},
        {"255 digits", oneAndNoughts(254), printed(accumulated(oneAndNoughts(254)))},
        {"300 digits", oneAndNoughts(299), printed(accumulated(oneAndNoughts(299)))},
        {"300 ones", repeated(u"1", 300), printed(accumulated(repeated(u"1", 300)))},
        {"400 digits are infinity", oneAndNoughts(399), "inf"},
        {"a million are too", repeated(u"9", 1000000), "inf"},
        {"a million noughts are one", repeated(u"0", 1000000), "0.000000"},
        {"a million decimals", u"1." + repeated(u"0", 1000000), "1.000000"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        XPath query(tree.document());
        EXPECT_EQ(narrow(query.GetValue(c.path, -1)), c.text);
    }
    XPath query(tree.document());
    EXPECT_EQ(narrow(query.GetValue(oneAndNoughts(300), -1)).find('.'), 301u);
}

// The sign of what is no number means nothing.
std::string signless(const std::string& text) { return text == "-nan" ? "nan" : text; }

// One value of a side, as it is compared: nodes with nodes as texts, else as numbers.
struct Value {
    int tag;
    std::string text;
    double number;
    bool isNode;
};

bool holds(const std::string& sign, const Value& a, const Value& b) {
    // -1, 0, 1, or 2 for what is no number
    int order = 0;
    if (a.isNode && b.isNode) {
        order = a.text < b.text ? -1 : a.text > b.text ? 1 : 0;
    } else {
        order = a.number < b.number ? -1 : a.number > b.number ? 1 : a.number == b.number ? 0 : 2;
    }
    if (sign == "<") return order == -1;
    if (sign == "<=") return order == -1 || order == 0;
    if (sign == "=") return order == 0;
    if (sign == ">=") return order == 1 || order == 0;
    if (sign == ">") return order == 1;
    return order != 0;
}

TEST(ExpressionTest, PairsManyValuesAsItPairsAFew) {
    // Values in no order, some of them alike, some no numbers.
    std::mt19937 random(5);
    for (const int count : {1, 2, 3, 10, 200}) {
        std::string text = "<r>";
        std::vector<std::string> values[2];
        for (int i = 0; i < count; ++i) {
            for (auto& side : values) {
                const auto value = static_cast<int>(random() % 60);
                side.push_back(value == 0 ? "nan" : value == 1 ? "" : std::to_string(value));
            }
            text += "<x a='" + values[0].back() + "' b='" + values[1].back() + "'/>";
        }
        const Tree tree(text + "</r>");
        const auto valueOf = [&values](int side, int i, int tag, bool isNode) {
            const std::string& value = values[side][static_cast<std::size_t>(i)];
            return Value{tag, value, std::atof(value.c_str()), isNode};
        };
        // All of one context, all of none, or each of its own; as nodes or as numbers.
        struct Side {
            const char* path;
            const char* before;
            bool isNode;
        } const kLefts[] = {
            {"r/x/@a", "", true},       {"r/x/@a + 0", "", false}, {"/r/x/@a", "", true},
            {"/r/x/@a + 0", "", false}, {"@a", "/r/x", true},      {"@a + 0", "/r/x", false},
        };
        for (const Side& left : kLefts) {
            const bool own = *left.before != '\0';
            const bool fromDocument = *left.path == '/';
            for (const bool rightIsNode : {true, false}) {
                std::string rightPath = left.path;
                rightPath.replace(rightPath.find("@a"), std::string::npos, rightIsNode ? "@b" : "@b + 0");
                std::vector<Value> lefts, rights;
                for (int i = 0; i < count; ++i) {
                    const int tag = own ? i : fromDocument ? -1 : 0;
                    lefts.push_back(valueOf(0, i, tag, left.isNode));
                    rights.push_back(valueOf(1, i, tag, rightIsNode));
                }
                // One value of no context is a scalar, which takes the place of what it is compared with; see above.
                if (fromDocument && count == 1) continue;
                for (const char* sign : {"<", "<=", "=", ">=", ">", "!="}) {
                    const std::string path = left.path + std::string(sign) + rightPath;
                    SCOPED_TRACE(path + " of " + std::to_string(count) + " from '" + left.before + "'");
                    XPath query(tree.document());
                    if (own) query.GetValues(wide(left.before));
                    query.GetValues(wide(path));
                    std::vector<std::string> expected, found;
                    for (const Value& a : lefts) {
                        const bool kept = std::any_of(rights.begin(), rights.end(), [&](const Value& b) {
                            return a.tag == b.tag && holds(sign, a, b);
                        });
                        if (kept) expected.push_back(left.isNode ? a.text : printed(a.number));
                    }
                    for (unsigned i = 0; i < query.GetNrOfResults(); ++i)
                        found.push_back(narrow(query.GetValue(i, -1)));
                    EXPECT_EQ(found, expected);
                }
                for (const char* sign : {" + ", " - ", " * ", " div "}) {
                    if (count > 10) continue;
                    const std::string path = left.path + std::string(sign) + rightPath;
                    SCOPED_TRACE(path + " of " + std::to_string(count) + " from '" + left.before + "'");
                    XPath query(tree.document());
                    if (own) query.GetValues(wide(left.before));
                    query.GetValues(wide(path));
                    // Not in parentheses: what is added to the left is part of what is multiplied.
                    if (!left.isNode || !rightIsNode) continue;
                    std::vector<std::string> expected, found;
                    for (const Value& a : lefts) {
                        for (const Value& b : rights) {
                            if (a.tag != b.tag) continue;
                            const double result = sign[1] == '+'   ? a.number + b.number
                                                  : sign[1] == '-' ? a.number - b.number
                                                  : sign[1] == '*' ? a.number * b.number
                                                                   : a.number / b.number;
                            expected.push_back(signless(printed(result)) + "#" + std::to_string(a.tag));
                        }
                    }
                    for (unsigned i = 0; i < query.GetNrOfResults(); ++i)
                        found.push_back(signless(narrow(query.GetValue(i, -1))) + "#" +
                                        std::to_string(query.GetResult(i).contextTag));
                    EXPECT_EQ(found, expected);
                }
            }
        }
    }
}

// Among many values the least and the greatest tell of an order; what has no place in it counts all the same.
TEST(ExpressionTest, DiffersFromWhatIsNoNumberAmongManyThatAreAlike) {
    std::string alike;
    for (int i = 0; i < 20; ++i) alike += "<b>7</b>";
    const struct {
        const char* name;
        const char* more;
        unsigned different, alike;
    } kCases[] = {
        {"none else", "", 0, 1},
        {"one that is no number", "<b>nan</b>", 1, 1},
        {"one in front of them", "<b>6</b>", 1, 1},
        {"one after them", "<b>8</b>", 1, 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Tree tree("<r><a>7</a>" + alike + c.more + "</r>");
        XPath query(tree.document());
        EXPECT_EQ(query.GetValues(u"r/a + 0 != r/b"), c.different);
        query.GetValues(u"/");
        EXPECT_EQ(query.GetValues(u"r/a + 0 = r/b"), c.alike);
    }
}

// Each context node makes fewer pairs than are allowed; both together make more.
TEST(ExpressionTest, BoundsThePairsOfAllContextNodesTogether) {
    std::string text;
    for (int i = 0; i < 2890; ++i) text += "<a/><b/>";
    const Tree tree("<r><x>" + text + "</x><x>" + text + "</x></r>");
    XPath query(tree.document());
    EXPECT_EQ(query.GetValues(u"/r/x"), 2u);
    EXPECT_EQ(query.GetValues(u"a + b"), 0u);
    EXPECT_EQ(query.GetErrorCode(), XPath::EXPRESSION_TOO_COSTLY);
    EXPECT_EQ(query.GetValues(u"/r/x/a"), 5780u);
}

TEST(ExpressionTest, ComparesNodesByTheTextThatTheyAreHandedOutWith) {
    // The bytes that are no UTF-8 come out as U+FFFD; a surrogate is below what ends the plane.
    const std::string kValues[] = {"",
                                   "a",
                                   "ab",
                                   "b",
                                   "~",
                                   "12",
                                   "9",
                                   "1 < 2 & 'x'",
                                   "\xC3\xA9",
                                   "\xC3\xA9t",
                                   "\xEF\xBD\x9E",
                                   "\xF0\x9F\x98\x80",
                                   "\xF0\x9F\x98\x81",
                                   "\xEF\xBF\xBD",
                                   "\x80",
                                   "\xC3",
                                   "a\x80"
                                   "b",
                                   std::string(300, 'a'),
                                   std::string(300, 'a') + "b"};
    Document document(new Element("r"), nullptr);
    for (const std::string& value : kValues) {
        auto* x = new Element("x", DataHolder(value));
        x->setAttribute("v", DataHolder(value));
        document.getRoot()->addChild(x);
    }
    const XPath reader(&document);
    const int count = document.getRoot()->getChildCount();
    const char* const kForms[] = {"", "/text()", "/@v"};
    for (int i = 0; i < count; ++i) {
        const std::string first = "/r/x[position() = " + std::to_string(i + 1) + "]";
        const Uni16String a = reader.GetValue(document.getRoot()->getChild(i));
        for (int j = 0; j < count; ++j) {
            const std::string second = "/r/x[position() = " + std::to_string(j + 1) + "]";
            const Uni16String b = reader.GetValue(document.getRoot()->getChild(j));
            const std::pair<const char*, bool> kSigns[] = {{"<", a < b},   {"<=", a <= b}, {"=", a == b},
                                                           {"!=", a != b}, {">=", a >= b}, {">", a > b}};
            for (const auto& [sign, holds] : kSigns) {
                const std::string form = kForms[(i + j) % 3];
                SCOPED_TRACE(first + form + sign + second + ": " + narrow(a) + sign + narrow(b));
                XPath query(&document);
                EXPECT_EQ(query.GetValues(wide(first + form + sign + second)), holds ? 1u : 0u);
                if (b.find(u'\'') != Uni16String::npos) continue;
                EXPECT_EQ(query.GetValues(wide(first + form + sign) + u"'" + b + u"'"), holds ? 1u : 0u);
            }
        }
        for (const char* form : kForms) {
            SCOPED_TRACE(first + form);
            XPath query(&document);
            ASSERT_EQ(query.GetValues(wide(first + form + " + 0")), 1u);
            EXPECT_EQ(query.GetResult(0).number, std::atof(narrow(a).c_str()));
        }
    }
    const PathCase kCases[] = {
        {"the document has no text", u"/. = ''", "/"},
        {"an element without text", u"/r = ''", "r"},
        {"nor a number", u"/r + 1", "1#-1"},
        {"the document neither", u"/. + 1", "1#-1"},
    };
    expectAnswers(&document, kCases);
}

TEST(ExpressionTest, CalculatesWithDoubles) {
    const Tree tree(kText);
    XPath query(tree.document());
    const auto number = [&query](const Uni16String& path) {
        EXPECT_EQ(query.GetValues(u"/"), 1u);
        EXPECT_EQ(query.GetValues(path), 1u) << narrow(path);
        return query.GetNrOfResults() == 1 ? query.GetResult(0).number : -1;
    };
    EXPECT_EQ(number(u"0.1"), 0.1);
    EXPECT_EQ(number(u"1 div 3"), 1.0 / 3.0);
    EXPECT_EQ(number(u"0.1 + 0.2"), 0.1 + 0.2);
    EXPECT_EQ(number(u"9007199254740993"), 9007199254740992.0 + 1.0);
    EXPECT_EQ(number(u"'0.1' + 0"), 0.1);
    EXPECT_EQ(number(u"'1e308' * 10"), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(number(u"0 div 0")));
    EXPECT_TRUE(std::isnan(number(u"1 div 0 - 1 div 0")));
    EXPECT_TRUE(std::signbit(number(u"0 * '-1'")));
    query.GetValues(u"/");
    EXPECT_NE(narrow(query.GetValue(u"0 div 0", -1)).find("nan"), std::string::npos);

    const PathCase kCases[] = {
        {"what is no number equals nothing", u"0 div 0 = 0 div 0", ""},
        {"and is unlike itself", u"0 div 0 != 0 div 0", "nan#-1"},
        {"not less", u"0 div 0 < 1", ""},
        {"not less or equal", u"0 div 0 <= 0 div 0", ""},
        {"not greater", u"1 > 0 div 0", ""},
        {"not greater or equal", u"0 div 0 >= 1", ""},
        {"a text may be no number", u"1 = 'nan'", ""},
        {"unlike any", u"1 != 'nan'", "1#-1"},
        {"a text may be infinity", u"1 div 0 = 'inf'", "inf#-1"},
        {"noughts are alike", u"0 = 0 * '-1'", "0#-1"},
    };
    for (const PathCase& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::string found = answer(tree.document(), c.path);
        EXPECT_EQ(found == "-nan#-1" ? "nan#-1" : found, c.answer);
    }
}

TEST(ExpressionTest, FoldsChainsOfAnyLength) {
    const Tree tree(kText);
    constexpr std::size_t kMany = 100000;
    Uni16String mixed = u"1";
    double term = 1;
    double sum = 0;
    bool minus = false;
    for (std::size_t i = 1; i < kMany; ++i) {
        const auto digit = static_cast<int>(i % 9 + 1);
        const char16_t* const kSigns[] = {u" + ", u" * ", u" - ", u" div "};
        mixed += kSigns[i % 4];
        mixed += static_cast<char16_t>(u'0' + digit);
        if (i % 4 == 1) {
            term *= digit;
        } else if (i % 4 == 3) {
            term /= digit;
        } else {
            sum = minus ? sum - term : sum + term;
            minus = i % 4 == 2;
            term = digit;
        }
    }
    sum = minus ? sum - term : sum + term;

    struct Case {
        const char* name;
        Uni16String path;
        double result;
    } const kCases[] = {
        {"plus", u"1" + repeated(u" + 1", kMany - 1), static_cast<double>(kMany)},
        {"minus", u"1" + repeated(u" - 1", kMany - 1), 2 - static_cast<double>(kMany)},
        {"times", u"3" + repeated(u" * 1", kMany - 1), 3},
        {"div", u"3" + repeated(u" div 1", kMany - 1), 3},
        {"equal", u"3" + repeated(u" = 3", kMany - 1), 3},
        {"less or equal", u"3" + repeated(u" <= 3", kMany - 1), 3},
        {"all of one sign, then another", u"1" + repeated(u" * 1 + 1", kMany / 2) + u" = 50001", 50001},
        {"the four signs in turn", mixed, sum},
        {"from the right as from the left", repeated(u"1 + ", kMany - 1) + u"1 * 1", static_cast<double>(kMany)},
        {"values of a node", u"r/@k" + repeated(u" + 1", kMany - 1), 4 + static_cast<double>(kMany)},
        {"paths", u"0" + repeated(u" + /r/@k", 20000), 100000},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        XPath query(tree.document());
        ASSERT_EQ(query.GetValues(c.path), 1u);
        EXPECT_EQ(query.GetResult(0).number, c.result);
        EXPECT_EQ(syntax(tree.document(), c.path), "ok");
    }

    EXPECT_EQ(answer(tree.document(), u"1" + repeated(u" = 1", kMany) + u" = 2"), "");
    EXPECT_EQ(answer(tree.document(), u"'a'" + repeated(u" = 'a'", kMany)), "str(a)#-1");
    EXPECT_EQ(answer(tree.document(), u"/r/x/v" + repeated(u" = 4", kMany)), "v2 v3");
    EXPECT_EQ(answer(tree.document(), u"/r/x[@n" + repeated(u" + 1", kMany) + u" = 100002]"), "x2");
    EXPECT_EQ(answer(tree.document(), u"/r/x[@n" + repeated(u" + 1", kMany) + u"a]"), "| failed 9: 1a");
}

}  // namespace

}  // namespace Xml::test
