#include "support/ForeignNumbers.h"
#include "xml/text/Numbers.h"
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;

// Sets the precision and puts it back.
class Precision {
public:
    explicit Precision(int precision) : before(Xml::setFloatPrecision(precision)) {}
    ~Precision() { Xml::setFloatPrecision(before); }
    Precision(const Precision&) = delete;
    Precision& operator=(const Precision&) = delete;

private:
    int before;
};

constexpr int kMaxInt = std::numeric_limits<int>::max();
constexpr int kMinInt = std::numeric_limits<int>::min();

TEST(NumbersTest, TakesTheIntegerThatATextBeginsWith) {
    const struct {
        std::string text;
        int number;
    } kCases[] = {
        {"", 0},
        {"x", 0},
        {"  7", 7},
        {"\t\r\n\v\f 8", 8},
        {"12abc", 12},
        {"-42", -42},
        {"+5", 5},
        {"+ 5", 0},
        {"--5", 0},
        {"-", 0},
        {" - 1", 0},
        {"007", 7},
        {"010", 10},
        {"0x10", 0},
        {"1e3", 1},
        {"3.9", 3},
        {".5", 0},
        {"1,000", 1},
        {"2147483647", kMaxInt},
        {"2147483648", kMaxInt},
        {"-2147483648", kMinInt},
        {"-2147483649", kMinInt},
        {"99999999999999999999999", kMaxInt},
        {"-99999999999999999999999", kMinInt},
        {"4\0"
         "5"s,
         4},
        {"\0"
         "5"s,
         0},
        {"\xa0"
         "5",
         0},
    };
    for (const auto& c : kCases) EXPECT_EQ(Xml::toInt(c.text), c.number) << c.text;
}

TEST(NumbersTest, TakesTheDoubleThatATextBeginsWith) {
    const struct {
        std::string text;
        double number;
    } kCases[] = {
        {"", 0},
        {"x", 0},
        {" 2.5", 2.5},
        {"2.5kg", 2.5},
        {"-1e3", -1000},
        {"1e-2z", 0.01},
        {".5", 0.5},
        {"5.", 5},
        {"-.25", -0.25},
        {"+1", 1},
        {"-", 0},
        {".", 0},
        {"1.5.2", 1.5},
        {"1 2", 1},
        {"0x10", 0},
        {"nan", 0},
        {"\t\n 3", 3},
        {"12", 12},
        {"1,5", 1},
        {"1e999", std::numeric_limits<double>::max()},
        {"-1e999", std::numeric_limits<double>::lowest()},
    };
    for (const auto& c : kCases) EXPECT_EQ(Xml::toDouble(c.text), c.number) << c.text;
}

TEST(NumbersTest, ReadsNumbersAsAStandardStreamDoes) {
    std::mt19937 random(12);
    const std::string kBytes = "0123456789012345678900--++..eE \t,xa\0"s;
    int nonzero = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string text;
        const std::size_t length = random() % 14;
        for (std::size_t k = 0; k < length; ++k) text += kBytes[random() % kBytes.size()];
        int integer = 0;
        std::istringstream(text) >> integer;
        ASSERT_EQ(Xml::toInt(text), integer) << text;
        double number = 0.0;
        std::istringstream(text) >> number;
        ASSERT_EQ(Xml::toDouble(text), number) << text;
        nonzero += number != 0 ? 1 : 0;
    }
    EXPECT_GT(nonzero, 1000);
}

TEST(NumbersTest, ReadsAndWritesAsUnderTheClassicLocale) {
    for (const char point : {',', '.'}) {
        const Xml::test::ForeignNumbers foreign(point, point == ',' ? '.' : ',');
        SCOPED_TRACE(point);
        EXPECT_EQ(Xml::toInt("1,042"), 1);
        EXPECT_EQ(Xml::toInt("1.042"), 1);
        EXPECT_EQ(Xml::toDouble("2.5"), 2.5);
        EXPECT_EQ(Xml::toDouble("2,5"), 2);
        EXPECT_EQ(Xml::toDouble("1,042.5"), 1);
        EXPECT_EQ(Xml::toString(1.0), "1");
        EXPECT_EQ(Xml::toString(2.5), "2.5");
        EXPECT_EQ(Xml::toString(1234567.5), "1234567.5");
        EXPECT_EQ(Xml::toString(1234567), "1234567");
    }
}

TEST(NumbersTest, WritesIntegersAsDecimals) {
    const struct {
        int number;
        const char* text;
    } kCases[] = {{0, "0"}, {-42, "-42"}, {100, "100"}, {kMaxInt, "2147483647"}, {kMinInt, "-2147483648"}};
    for (const auto& c : kCases) EXPECT_EQ(Xml::toString(c.number), c.text);
}

TEST(NumbersTest, WritesDoublesWithFixedPointAndDropsZerosAtTheEnd) {
    const struct {
        int precision;
        double number;
        const char* text;
    } kCases[] = {
        {2, 3.14159, "3.14"},
        {2, 2.5, "2.5"},
        {2, 1.50, "1.5"},
        {2, 1.0, "1"},
        {2, 100, "100"},
        {2, 0, "0"},
        {2, 0.001, "0"},
        {2, -0.001, "-0"},
        {2, -0.0, "-0"},
        {2, -2.5, "-2.5"},
        {2, 0.05, "0.05"},
        {2, 1e6, "1000000"},
        {2, 999.999, "1000"},
        {2, 1.005, "1"},
        {2, 1.015, "1.01"},
        {0, 100.0, "1"},
        {0, 10, "1"},
        {0, 0.4, "0"},
        {0, 0, "0"},
        {0, 120, "12"},
        {0, 105, "105"},
        {0, -100, "-1"},
        {0, 2.5, "2"},
        {1, 0.25, "0.2"},
        {5, 3.14159265, "3.14159"},
        {5, 1.0 / 3, "0.33333"},
        {10, 0.5, "0.5"},
        {2, std::numeric_limits<double>::infinity(), "inf"},
        {2, -std::numeric_limits<double>::infinity(), "-inf"},
    };
    for (const auto& c : kCases) {
        const Precision precision(c.precision);
        EXPECT_EQ(Xml::toString(c.number), c.text) << c.precision << " digits";
    }
}

// Printed into room enough, then trimmed character by character.
std::string printed(double number, int precision) {
    std::vector<char> buffer(400 + static_cast<std::size_t>(precision));
    std::snprintf(buffer.data(), buffer.size(), "%1.*f", precision, number);
    std::string text = buffer.data();
    while (text.size() >= 2 && text.back() == '0') text.pop_back();
    if (!text.empty() && text.back() == '.') text.pop_back();
    return text.empty() ? "0" : text;
}

TEST(NumbersTest, WritesAnyDoubleAsPrintedAndTrimmed) {
    std::mt19937 random(13);
    for (int i = 0; i < 20'000; ++i) {
        const int precision = static_cast<int>(random() % 9);
        double number = (static_cast<double>(random()) - 2e9) * std::pow(10.0, static_cast<int>(random() % 24) - 12);
        if (i % 5 == 0) number = std::round(number);
        const Precision set(precision);
        ASSERT_EQ(Xml::toString(number), printed(number, precision)) << precision << " digits";
    }
}

TEST(NumbersTest, FindsRoomForNumbersOfAnyLength) {
    const struct {
        double number;
        int precision;
    } kCases[] = {{1e300, 2},    {-1e308, 0},        {std::numeric_limits<double>::max(), 20},
                  {1.0 / 3, 61}, {1.0 / 3, 62},      {1.0 / 3, 63},
                  {0.1, 1000},   {-1e308 / 3, 5000}, {1e60, 1},
                  {1e61, 1}};
    for (const auto& c : kCases) {
        const Precision set(c.precision);
        EXPECT_EQ(Xml::toString(c.number), printed(c.number, c.precision)) << c.precision << " digits";
    }
}

TEST(NumbersTest, SetsThePrecisionUnlessItIsNegative) {
    EXPECT_EQ(Xml::getFloatPrecision(), 2);
    EXPECT_EQ(Xml::setFloatPrecision(5), 2);
    EXPECT_EQ(Xml::getFloatPrecision(), 5);
    EXPECT_EQ(Xml::setFloatPrecision(-1), 5);
    EXPECT_EQ(Xml::getFloatPrecision(), 5);
    EXPECT_EQ(Xml::setFloatPrecision(kMinInt), 5);
    EXPECT_EQ(Xml::setFloatPrecision(0), 5);
    EXPECT_EQ(Xml::setFloatPrecision(2), 0);
    EXPECT_EQ(Xml::getFloatPrecision(), 2);
}

}  // namespace
