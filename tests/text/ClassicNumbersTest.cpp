#include "support/ForeignNumbers.h"
#include "xml/text/Numbers.h"
#include "xml/text/internal/ClassicNumbers.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using Xml::test::ForeignNumbers;
namespace Classic = Xml::Classic;

// What a stream makes of the text under the classic locale; `failed` says whether it took it for a number.
template <class Number>
Number extracted(const std::string& text, std::ios_base& (*base)(std::ios_base&), bool& failed) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    Number number = 0;
    stream >> base >> number;
    failed = stream.fail();
    return number;
}

template <class Number>
Number extracted(const std::string& text) {
    bool failed = false;
    return extracted<Number>(text, std::dec, failed);
}

unsigned extractedUnsigned(const std::string& text, std::ios_base& (*base)(std::ios_base&)) {
    bool failed = false;
    const auto number = extracted<unsigned>(text, base, failed);
    return failed ? 0 : number;
}

// Bit by bit the same: also the sign of a zero, and whether it is a number at all.
bool same(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

// Texts that look like numbers, nearly.
std::vector<std::string> numberTexts() {
    std::vector<std::string> texts = {"",
                                      "1e",
                                      "1e+",
                                      "1e-",
                                      "1e5e5",
                                      "1e5.5",
                                      "1.e5",
                                      ".e5",
                                      "inf",
                                      "-inf",
                                      "nan",
                                      "infinity",
                                      "1e400",
                                      "-1e400",
                                      "1e-400",
                                      "4.9e-324",
                                      "2e-324",
                                      "0x10",
                                      "-0x10",
                                      "0X1p3",
                                      "0x",
                                      "0xg",
                                      "00x1",
                                      "0x0x41",
                                      "x41",
                                      " 41",
                                      "+41",
                                      "-1",
                                      "-191",
                                      "--1",
                                      "+-1",
                                      "- 1",
                                      "1,5",
                                      "1.234,5",
                                      "1,234",
                                      "1 234",
                                      "0.1",
                                      "-0",
                                      "-0.0",
                                      "0e5",
                                      "1e0009",
                                      "1d5",
                                      "1.5.2",
                                      "1..5",
                                      ".",
                                      "-.",
                                      "-.5",
                                      "+.5",
                                      "5.",
                                      "\v\f1",
                                      "\xa0"
                                      "1",
                                      "1\0002"s,
                                      "2147483647",
                                      "2147483648",
                                      "-2147483648",
                                      "-2147483649",
                                      "4294967295",
                                      "4294967296",
                                      "-4294967295",
                                      "-4294967296",
                                      "9223372036854775807",
                                      "9223372036854775808",
                                      "-9223372036854775809",
                                      "18446744073709551616",
                                      "340282366920938463463374607431768211456",
                                      "ffffffff",
                                      "100000000",
                                      "FFFFffff",
                                      "-ffffffff",
                                      "0.1000000000000000055511151231257827021181583404541015625",
                                      "9007199254740993",
                                      "1.7976931348623159e308"};
    texts.emplace_back("0." + std::string(400, '0') + "1");
    texts.emplace_back(std::string(400, '0') + "1");
    texts.emplace_back(std::string(400, '9'));
    std::mt19937 random(31);
    const std::string kPieces[] = {"0",  "0",  "1", "2",   "5",   "9",  "41", "123",  ".",   ".", "e",
                                   "E",  "+",  "-", "x",   "X",   "0x", "a",  "F",    "g",   " ", "\t",
                                   "\n", "\v", ",", "inf", "nan", "p",  "e1", "e-30", "\0"s, "_"};
    for (int i = 0; i < 40'000; ++i) {
        std::string text;
        for (auto n = random() % 7; n > 0; --n) text += kPieces[random() % std::size(kPieces)];
        texts.push_back(text);
    }
    return texts;
}

TEST(ClassicNumbersTest, ReadsEveryTextAsAStreamWithTheClassicLocaleDoes) {
    int negativeHex = 0;
    int fractions = 0;
    for (const std::string& text : numberTexts()) {
        SCOPED_TRACE(text);
        ASSERT_EQ(Classic::extractInt(text), extracted<int>(text));
        ASSERT_EQ(Classic::extractUnsigned(text, 10), extractedUnsigned(text, std::dec));
        ASSERT_EQ(Classic::extractUnsigned(text, 16), extractedUnsigned(text, std::hex));
        ASSERT_TRUE(same(Classic::extractDouble(text), extracted<double>(text))) << Classic::extractDouble(text);
        negativeHex += Classic::extractUnsigned(text, 16) > 0xF0000000U ? 1 : 0;
        fractions += Classic::extractDouble(text) != Classic::extractInt(text) ? 1 : 0;
    }
    EXPECT_GT(negativeHex, 100);
    EXPECT_GT(fractions, 1000);
}

TEST(ClassicNumbersTest, ReadsEveryTextAsAtofDoes) {
    int others = 0;
    for (const std::string& text : numberTexts()) {
        SCOPED_TRACE(text);
        ASSERT_TRUE(same(Classic::atof(text.c_str()), std::atof(text.c_str()))) << Classic::atof(text.c_str());
        others += same(Classic::atof(text.c_str()), Classic::extractDouble(text)) ? 0 : 1;
    }
    EXPECT_GT(others, 100);
}

TEST(ClassicNumbersTest, WritesEveryNumberAsPrintfDoes) {
    std::vector<double> numbers = {0.0, -0.0, 0.5, 1.5, 2.5, 1e22, 1e23, 5e-324, -5e-324, 0.125, 1e-5};
    using Limits = std::numeric_limits<double>;
    for (const double number :
         {Limits::max(), Limits::min(), Limits::infinity(), Limits::quiet_NaN(), Limits::epsilon()}) {
        numbers.push_back(number);
        numbers.push_back(-number);
    }
    std::mt19937_64 random(32);
    for (int i = 0; i < 3000; ++i) {
        numbers.push_back(std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 2200) - 1130));
    }
    for (const double number : numbers) {
        for (const int precision : {0, 1, 2, 6, 17, 1074}) {
            char printed[1500];
            std::snprintf(printed, sizeof printed, "%1.*f", precision, number);
            ASSERT_EQ(Classic::fixedPoint(number, precision), printed);
        }
    }
}

TEST(ClassicNumbersTest, AsksForNoLocale) {
    const std::vector<std::string> texts = numberTexts();
    const auto answers = [&texts] {
        std::vector<double> numbers;
        for (const std::string& text : texts) {
            numbers.push_back(Classic::extractInt(text));
            numbers.push_back(Classic::extractUnsigned(text, 10));
            numbers.push_back(Classic::extractUnsigned(text, 16));
            numbers.push_back(Classic::extractDouble(text));
            numbers.push_back(Classic::atof(text.c_str()));
        }
        return numbers;
    };
    const std::vector<double> expected = answers();
    for (const char point : {',', '.'}) {
        const ForeignNumbers foreign(point, point == ',' ? '.' : ',');
        const std::vector<double> under = answers();
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_TRUE(same(under[i], expected[i])) << texts[i / 5] << ", answer " << i % 5;
        }
        EXPECT_EQ(Classic::fixedPoint(1234567.5, 2), "1234567.50");
    }
}

}  // namespace
