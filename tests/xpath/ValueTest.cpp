#include "xml/xpath/internal/Value.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/xpath/internal/Folding.h"
#include "xml/xpath/internal/VisitBudget.h"
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace Xml {
namespace {

constexpr Operator kComparisons[] = {Operator::LessThan,    Operator::LessOrEqual,    Operator::Equal,
                                     Operator::GreaterThan, Operator::GreaterOrEqual, Operator::NotEqual};

// Which of the six hold, in that order: "<", "<=" ... as 1 and 0.
template <class Compare>
std::string holding(Compare compare) {
    std::string text;
    for (const Operator op : kComparisons) text += compare(op) ? '1' : '0';
    return text;
}

constexpr const char* kLess = "110001";
constexpr const char* kEqual = "011010";
constexpr const char* kGreater = "000111";

std::string compared(const Value& left, const Value& right) {
    return holding([&](Operator op) { return CompareResultItems(left, right, op); });
}

TEST(ValueTest, ComparesNumbersAndTheOrderOfTextsAlike) {
    EXPECT_EQ(holding([](Operator op) { return CompareValue(1.5, 2.0, op); }), kLess);
    EXPECT_EQ(holding([](Operator op) { return CompareValue(2.0, 2.0, op); }), kEqual);
    EXPECT_EQ(holding([](Operator op) { return CompareValue(2.0, 1.5, op); }), kGreater);
    EXPECT_EQ(holding([](Operator op) { return CompareValue(-7, 0, op); }), kLess);
    EXPECT_EQ(holding([](Operator op) { return CompareValue(0, 0, op); }), kEqual);
    EXPECT_EQ(holding([](Operator op) { return CompareValue(7, 0, op); }), kGreater);
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(holding([none](Operator op) { return CompareValue(none, none, op); }), "000001");
}

TEST(ValueTest, NoOtherOperatorCompares) {
    for (const Operator op : {Operator::Plus, Operator::Minus, Operator::Divide, Operator::Multiply, Operator::None}) {
        EXPECT_FALSE(CompareValue(1.0, 1.0, op));
        EXPECT_FALSE(CompareValue(0, 0, op));
    }
    for (const Operator op : kComparisons) EXPECT_EQ(CalculusOnValue(2, 3, op), 0.0);
    EXPECT_EQ(CalculusOnValue(2, 3, Operator::None), 0.0);
}

TEST(ValueTest, ComparesWhatIsOfTwoKindsAsTheOneThatDecides) {
    Attribute three("n", "3");
    const Literal textThree(u"3");
    const Literal one(u"1");
    const Literal half(OrvSys::Uni16String(1, 0xD800));  // of a surrogate pair
    const struct {
        const char* name;
        Value left, right;
        const char* holds;
    } kCases[] = {
        {"a node and a number", Value::ofNode(-1, &three), Value::ofNumber(-1, 2), kGreater},
        {"a number and a string", Value::ofNumber(-1, 3), Value::ofString(-1, &textThree), kEqual},
        {"a node and a string", Value::ofNode(-1, &three), Value::ofString(-1, &one), kGreater},
        {"a node and a string without 8-bit text", Value::ofNode(-1, &three), Value::ofString(-1, &half), kLess},
        {"a string without 8-bit text and a node", Value::ofString(-1, &half), Value::ofNode(-1, &three), kGreater},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(compared(c.left, c.right), c.holds);
    }
}

TEST(ValueTest, ConvertsEachKindToANumberAndToAText) {
    Attribute node("n", " 12 ");
    const Literal string(u"3x");
    EXPECT_EQ(ConvertToNumber(Value::ofNode(0, &node)), 12.0);
    EXPECT_EQ(ConvertToNumber(Value::ofString(0, &string)), 3.0);
    EXPECT_EQ(ConvertToNumber(Value::ofNumber(0, 2)), 2.0);
    EXPECT_EQ(ConvertToString(Value::ofNode(0, &node)), u" 12 ");
    EXPECT_EQ(ConvertToString(Value::ofString(0, &string)), u"3x");
    EXPECT_EQ(ConvertToString(Value::ofNumber(0, 2)), u"2.000000");
}

// In the classic locale, under which tests run, as printf writes them.
TEST(ValueTest, WritesNumbersWholeWithSixDecimals) {
    using Limits = std::numeric_limits<double>;
    std::vector<double> numbers = {0.0,
                                   -0.0,
                                   1e300,
                                   1e308,
                                   -1e308,
                                   Limits::max(),
                                   Limits::min(),
                                   Limits::lowest(),
                                   Limits::denorm_min(),
                                   0.0000005,
                                   0.0000015,
                                   0.9999995,
                                   2.5,
                                   Limits::infinity(),
                                   -Limits::infinity(),
                                   Limits::quiet_NaN(),
                                   -Limits::quiet_NaN()};
    std::mt19937_64 random(3);
    for (int i = 0; i < 20'000; ++i) {
        const std::uint64_t bits = random();
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        numbers.push_back(number);
        numbers.push_back(std::ldexp(static_cast<double>(bits % 1'000'000), static_cast<int>(bits >> 58) - 32));
    }
    for (const double number : numbers) {
        char expected[512];
        std::snprintf(expected, sizeof expected, "%f", number);
        EXPECT_EQ(textOf(number), OrvSys::PlatformCStringToUni16Char(expected));
    }
    EXPECT_EQ(textOf(1e300).find(u'.'), 301u);
    EXPECT_EQ(textOf(Limits::lowest()).size(), 317u);
}

TEST(ValueTest, OrdersTextsByTheir16BitUnits) {
    // In UTF-8 U+10000 comes after U+FFFF; its units, a surrogate pair, come before.
    Attribute high("a", "\xF0\x90\x80\x80");
    Attribute low("a", "\xEF\xBF\xBF");
    EXPECT_EQ(compared(Value::ofNode(-1, &high), Value::ofNode(-1, &low)), kLess);
    // Malformed bytes are all alike once widened.
    Attribute bad("a", "x\xFFy");
    Attribute alsoBad("a", "x\xC0y");
    EXPECT_EQ(compared(Value::ofNode(-1, &bad), Value::ofNode(-1, &alsoBad)), kEqual);
    // The beginning of a character that does not go on is widened by itself, and comes after the whole one.
    Attribute begun("a", "\xC3z");
    Attribute whole("a", "\xC3\x80");
    EXPECT_EQ(compared(Value::ofNode(-1, &begun), Value::ofNode(-1, &whole)), kGreater);
    EXPECT_EQ(compared(Value::ofNode(-1, &whole), Value::ofNode(-1, &begun)), kLess);
    // Half of a surrogate pair is in no node, also not where a node holds what it would be narrowed to.
    const Literal half(u"\xD800");
    Attribute replaced("a", "\xEF\xBF\xBD");
    EXPECT_EQ(compared(Value::ofString(-1, &half), Value::ofNode(-1, &replaced)), kLess);
}

TEST(FoldingTest, ComparesValuesOfOneTagAndPutsAScalarInThePlaceOfWhatItHoldsFor) {
    Values left = {Value::ofNumber(0, 1), Value::ofNumber(1, 2), Value::ofNumber(2, 1)};
    const Values right = {Value::ofNumber(0, 1), Value::ofNumber(1, 1)};
    CompareExpressionItems(left, right, Operator::Equal);
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].tag, 0);

    Values scalar = {Value::ofNumber(-1, 0)};
    CompareExpressionItems(scalar, right, Operator::LessThan);
    ASSERT_EQ(scalar.size(), 2u);
    EXPECT_EQ(scalar[1].tag, 1);
    EXPECT_EQ(scalar[1].number, 0);
}

TEST(FoldingTest, MakesAsManyPairsAsMayBeAndNotOneMore) {
    VisitBudget budget(0);
    const Values two = {Value::ofNumber(0, 1), Value::ofNumber(0, 2)};
    Values left(kMostPairs / 2, Value::ofNumber(0, 3));
    ASSERT_TRUE(CalculusOnExpressionItems(left, two, Operator::Plus, budget));
    EXPECT_EQ(left.size(), kMostPairs);
    EXPECT_EQ(left.back().number, 5);

    // Of two tags each makes fewer than may be; together they make one more.
    left.assign(kMostPairs / 2, Value::ofNumber(0, 3));
    left.push_back(Value::ofNumber(1, 3));
    const Values right = {Value::ofNumber(0, 1), Value::ofNumber(0, 2), Value::ofNumber(1, 1)};
    EXPECT_FALSE(CalculusOnExpressionItems(left, right, Operator::Plus, budget));
    EXPECT_EQ(left.size(), kMostPairs / 2 + 1);
    EXPECT_EQ(left.front().number, 3);
}

}  // namespace
}  // namespace Xml
