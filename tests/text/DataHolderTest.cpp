#include "xml/text/DataHolder.h"
#include "xml/text/internal/EmptyData.h"
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using namespace std::string_literals;
using Xml::DataHolder;

std::string taken(const DataHolder& data) { return data.toString(); }

TEST(DataHolderTest, IsAStringAndConvertsFromTextByItself) {
    EXPECT_TRUE((std::is_base_of_v<std::string, DataHolder>));
    EXPECT_TRUE((std::is_convertible_v<DataHolder*, std::string*>));
    EXPECT_TRUE((std::is_convertible_v<std::string, DataHolder>));
    EXPECT_TRUE((std::is_convertible_v<const char*, DataHolder>));
    EXPECT_TRUE((std::is_same_v<decltype(std::declval<const DataHolder&>().toString()), const std::string&>));
    EXPECT_EQ(taken("text"), "text");
    EXPECT_EQ(taken("a\0b"s), "a\0b"s);
}

TEST(DataHolderTest, HasEveryConstructorOfAString) {
    const std::string text = "abcdef";
    const struct {
        const char* name;
        DataHolder made;
        std::string wanted;
    } kCases[] = {
        {"none", DataHolder(), ""},
        {"count and byte", DataHolder(3, 'x'), "xxx"},
        {"part of a string", DataHolder(text, 2, 3), "cde"},
        {"pointer and length", DataHolder("a\0b", 3), "a\0b"s},
        {"range", DataHolder(text.begin(), text.begin() + 2), "ab"},
        {"list", DataHolder({'p', 'q'}), "pq"},
        {"string", DataHolder(text), "abcdef"},
        {"text", DataHolder("abc"), "abc"},
    };
    for (const auto& c : kCases) EXPECT_EQ(c.made, c.wanted) << c.name;
}

TEST(DataHolderTest, GivesTheVeryTextThatItHolds) {
    DataHolder data("a");
    const std::string& text = data.toString();
    EXPECT_EQ(&text, static_cast<const std::string*>(&data));
    data += "bc";
    EXPECT_EQ(text, "abc");
}

TEST(DataHolderTest, HasTheValueSemanticsOfAString) {
    DataHolder data("a");
    DataHolder copy = data;
    copy.append("b");
    EXPECT_EQ(data, "a");
    EXPECT_EQ(copy, "ab");
    EXPECT_LT(data, copy);
    data = copy;
    EXPECT_EQ(data, copy);
    EXPECT_EQ(data.length(), 2U);
    data = std::string("\xff\0", 2);
    EXPECT_EQ(data.size(), 2U);
    data = "c";
    EXPECT_EQ(data, "c");
    DataHolder moved = std::move(data);
    EXPECT_EQ(moved, "c");
}

TEST(DataHolderTest, HasOneEmptyInstance) {
    EXPECT_TRUE(Xml::emptyData().empty());
    EXPECT_EQ(&Xml::emptyData(), &Xml::emptyData());
}

}  // namespace
