#include "xml/easy/Values.h"

#include "support/ForeignNumbers.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/NodeKind.h"
#include "xml/easy/Ranges.h"
#include "xml/standard/Read.h"
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <memory>
#include <random>
#include <string>

namespace Xml::test {
namespace {

Element holding(const std::string& text) {
    Element element("e");
    element.setAttribute("v", text);
    return element;
}

template <class T>
std::optional<T> read(const std::string& text) {
    return value<T>(holding(text), "v");
}

template <class T>
std::string written(T number) {
    Element element("e");
    setValue(element, "v", number);
    return element.getAttributeValue("v");
}

TEST(ValuesTest, AreReadWholeOrNotAtAll) {
    const struct {
        const char* text;
        std::optional<int> number;
        std::optional<double> real;
        std::optional<bool> truth;
    } kCases[] = {
        {"0", 0, 0.0, false},
        {"1", 1, 1.0, true},
        {"true", {}, {}, true},
        {"false", {}, {}, false},
        {" \t\r\n true \n", {}, {}, true},
        {"True", {}, {}, {}},
        {"yes", {}, {}, {}},
        {"01", 1, 1.0, {}},
        {"+1", 1, 1.0, {}},
        {"+", {}, {}, {}},
        {"++1", {}, {}, {}},
        {"+-1", {}, {}, {}},
        {"-+1", {}, {}, {}},
        {"+ 1", {}, {}, {}},
        {"-1", -1, -1.0, {}},
        {"- 1", {}, {}, {}},
        {" 42\n", 42, 42.0, {}},
        {"\v42", {}, {}, {}},
        {"\xC2\xA0"
         "42",
         {},
         {},
         {}},
        {"42 43", {}, {}, {}},
        {"42px", {}, {}, {}},
        {"", {}, {}, {}},
        {"  ", {}, {}, {}},
        {"1.5", {}, 1.5, {}},
        {"1,5", {}, {}, {}},
        {".5", {}, 0.5, {}},
        {"1.", {}, 1.0, {}},
        {"1e3", {}, 1000.0, {}},
        {"+1.5E-2", {}, 0.015, {}},
        {"0x10", {}, {}, {}},
        {"1e999", {}, {}, {}},
        {"inf", {}, std::numeric_limits<double>::infinity(), {}},
        {"-INF", {}, -std::numeric_limits<double>::infinity(), {}},
        {"2147483647", 2147483647, 2147483647.0, {}},
        {"2147483648", {}, 2147483648.0, {}},
        {"-2147483648", -2147483647 - 1, -2147483648.0, {}},
        {"-2147483649", {}, -2147483649.0, {}},
        {"99999999999999999999999999", {}, 1e26, {}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(read<int>(c.text), c.number);
        EXPECT_EQ(read<double>(c.text), c.real);
        EXPECT_EQ(read<bool>(c.text), c.truth);
        Element element("e");
        element.setCharData(DataHolder(std::string(c.text)));
        EXPECT_EQ(content<int>(element), c.number);
        EXPECT_EQ(content<double>(element), c.real);
        EXPECT_EQ(content<bool>(element), c.truth);
        EXPECT_EQ(content<std::string>(element), std::optional<std::string>(c.text));
    }
    EXPECT_TRUE(std::isnan(read<double>("NaN").value_or(0)));
}

TEST(ValuesTest, FitTheTypeThatIsAskedFor) {
    EXPECT_EQ(read<std::int8_t>("127"), std::int8_t{127});
    EXPECT_EQ(read<std::int8_t>("128"), std::nullopt);
    EXPECT_EQ(read<std::int8_t>("-128"), std::int8_t{-128});
    EXPECT_EQ(read<std::int8_t>("-129"), std::nullopt);
    EXPECT_EQ(read<std::uint8_t>("255"), std::uint8_t{255});
    EXPECT_EQ(read<std::uint8_t>("256"), std::nullopt);
    EXPECT_EQ(read<std::uint8_t>("-1"), std::nullopt);
    EXPECT_EQ(read<unsigned>("4294967295"), 4294967295u);
    EXPECT_EQ(read<unsigned>("4294967296"), std::nullopt);
    EXPECT_EQ(read<std::int64_t>("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(read<std::uint64_t>("18446744073709551615"), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(read<std::uint64_t>("18446744073709551616"), std::nullopt);
    EXPECT_EQ(read<long>("7"), 7L);
    EXPECT_EQ(read<short>("7"), short{7});
    EXPECT_EQ(read<float>("1e39"), std::nullopt);
    EXPECT_EQ(read<float>("0.1"), 0.1f);
    EXPECT_EQ(read<long double>("0.1"), 0.1L);
    EXPECT_EQ(read<std::string>(" a b "), std::optional<std::string>(" a b "));
    const Element element = holding("a view");
    EXPECT_EQ(value<std::string_view>(element, "v"), std::string_view("a view"));
}

TEST(ValuesTest, HaveDefaultsOfTheLinkedDtdWhereTheAttributeIsAbsent) {
    Outcome outcome =
        readDocument("<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r n CDATA '7' s CDATA 'd' i CDATA #IMPLIED>]><r s='x'/>");
    ASSERT_TRUE(outcome.ok) << outcome.error;
    Element& root = *outcome.document->getRoot();
    root.setDtd(outcome.document->getDtd());
    EXPECT_EQ(value<int>(root, "n"), 7);
    EXPECT_EQ(valueOr(root, "n", 8), 7);
    EXPECT_EQ(valueOr(root, "s", "y"), "x");
    EXPECT_EQ(value<std::string>(root, "i"), std::nullopt);
    EXPECT_EQ(valueOr(root, "i", "y"), "y");
    EXPECT_EQ(valueOr(root, "s", 5), 5);
    root.setDtd(nullptr);
    EXPECT_EQ(value<int>(root, "n"), std::nullopt);
}

TEST(ValuesTest, OtherwiseAreWhatIsGiven) {
    const Element element = holding("5");
    EXPECT_EQ(valueOr(element, "v", 1), 5);
    EXPECT_EQ(valueOr(element, "w", 1), 1);
    EXPECT_EQ(valueOr(element, "w", 1.5), 1.5);
    EXPECT_EQ(valueOr(element, "w", true), true);
    EXPECT_EQ(valueOr<long>(element, "w", 3), 3L);
    EXPECT_EQ(valueOr(element, "v", "x"), "5");
    EXPECT_EQ(valueOr(element, "w", "x"), "x");
    EXPECT_EQ(valueOr(element, "w", std::string("x")), "x");
    char otherwise[] = "x";
    EXPECT_EQ(valueOr(element, "w", otherwise), "x");
    EXPECT_EQ(valueOr(element, "v", &otherwise[0]), "5");
    EXPECT_EQ(valueOr(element, "w", std::string_view("x")), "x");
    static_assert(std::is_same_v<decltype(valueOr(element, "w", "x")), std::string>);
    static_assert(std::is_same_v<decltype(valueOr(element, "w", std::string_view())), std::string>);
    static_assert(std::is_same_v<decltype(valueOr(element, "w", 1u)), unsigned>);
}

TEST(ValuesTest, AreWrittenAsTheShortestTextThatReadsBack) {
    EXPECT_EQ(written(true), "true");
    EXPECT_EQ(written(false), "false");
    EXPECT_EQ(written(-17), "-17");
    EXPECT_EQ(written(std::uint8_t{200}), "200");
    EXPECT_EQ(written(std::int8_t{-5}), "-5");
    EXPECT_EQ(written(0.1), "0.1");
    EXPECT_EQ(written(0.1f), "0.1");
    EXPECT_EQ(written(1.0), "1");
    EXPECT_EQ(written(-0.0), "-0");
    EXPECT_EQ(written(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(written(1e300), "1e+300");
    EXPECT_EQ(written(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(written(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");

    std::mt19937_64 random(3);
    for (int round = 0; round < rounds(100000); ++round) {
        const std::uint64_t bits = random();
        double number = 0;
        std::memcpy(&number, &bits, sizeof number);
        if (!std::isfinite(number)) continue;
        ASSERT_EQ(read<double>(written(number)), number);
        const auto single = static_cast<float>(static_cast<std::int32_t>(bits)) / 3;
        ASSERT_EQ(read<float>(written(single)), single);
        ASSERT_EQ(read<std::uint64_t>(written(bits)), bits);
        ASSERT_EQ(read<std::int16_t>(written(static_cast<std::int16_t>(bits))), static_cast<std::int16_t>(bits));
        ASSERT_EQ(read<long double>(written(number / 3.0L)), number / 3.0L);
    }
}

TEST(ValuesTest, DoNotDependOnTheLocale) {
    const ForeignNumbers foreign(',', '.');
    EXPECT_EQ(read<double>("1.5"), 1.5);
    EXPECT_EQ(read<double>("1,5"), std::nullopt);
    EXPECT_EQ(written(1234567.25), "1234567.25");
    EXPECT_EQ(written(1234567), "1234567");
}

TEST(ValuesTest, StringsAreSetAsTheyAre) {
    Element element("e");
    const std::string text = "<&>\"' \n";
    const char buffer[8] = {'a', 'b', 0, 'c', 0, 0, 0, 0};
    const char full[3] = {'x', 'y', 'z'};
    setValue(element, "string", text);
    setValue(element, "view", std::string_view(text).substr(0, 2));
    setValue(element, "literal", "lit");
    setValue(element, "pointer", text.c_str());
    setValue(element, "buffer", buffer);
    setValue(element, "full", full);
    setValue<int>(element, "number", 5);
    const std::pair<const char*, std::string> kExpected[] = {{"string", text},  {"view", "<&"},   {"literal", "lit"},
                                                             {"pointer", text}, {"buffer", "ab"}, {"full", "xyz"},
                                                             {"number", "5"}};
    for (const auto& [name, expected] : kExpected) EXPECT_EQ(element.getAttributeValue(name), expected) << name;
}

TEST(ValuesTest, SettingKeepsTheAttributeAndItsPlaceInTheTag) {
    const MessageCollector messages;
    ReadResult result = readText("<!DOCTYPE r [<!ATTLIST r d CDATA '1'>]><r z='1' k='2'><a/></r>");
    ASSERT_TRUE(result) << result.message();
    Element& root = *result->getRoot();
    Attribute* const before = root.getAttribute("z");
    EXPECT_TRUE(isDefault(*root.getAttribute("d")));
    setValue(root, "z", 9);
    setValue(root, "\xC3\xB6", "new");
    setValue(root, "d", 2);
    setValue(root, "not a name", 3);
    EXPECT_EQ(root.getAttribute("z"), before);
    EXPECT_FALSE(isDefault(*root.getAttribute("d")));
    std::string order;
    for (const Attribute& attribute : attributes(root)) {
        order += attribute.getName() + "=" + attribute.getValue() + " ";
        EXPECT_EQ(attribute.getParent(), &root);
    }
    EXPECT_EQ(order, "z=9 k=2 d=2 \xC3\xB6=new not a name=3 ");
    EXPECT_TRUE(messages.texts().empty());
}

TEST(ValuesTest, ATextOfItsOwnCanBeSet) {
    Element element("e");
    setValue(element, "name that is no short string", "value that is no short string either");
    setValue(element, "name that is no short string",
             *value<std::string_view>(element, "name that is no short string"));
    EXPECT_EQ(valueOr(element, "name that is no short string", ""), "value that is no short string either");
}

}  // namespace
}  // namespace Xml::test
