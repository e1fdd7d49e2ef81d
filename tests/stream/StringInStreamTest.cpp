#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <type_traits>

namespace {

using namespace std::string_literals;
using Xml::StringInStream;

TEST(StringInStreamTest, IsMadeFromATextExplicitly) {
    EXPECT_TRUE((std::is_constructible_v<StringInStream, const std::string&>));
    EXPECT_FALSE((std::is_convertible_v<std::string, StringInStream>));
    EXPECT_TRUE((std::is_base_of_v<Xml::InStream, StringInStream>));
    EXPECT_FALSE(std::is_copy_constructible_v<StringInStream>);
}

TEST(StringInStreamTest, IsAtItsEndAtOnceWithoutText) {
    StringInStream in("");
    char c = 'Z';
    EXPECT_TRUE(in.eof());
    EXPECT_FALSE(in.getChar(c));
    EXPECT_EQ(c, 'Z');
    EXPECT_EQ(in.getPosition(), 0);
}

TEST(StringInStreamTest, HandsOutEachByteAndThenNone) {
    std::string text;
    for (int byte = 0; byte < 256; ++byte) text += static_cast<char>(byte);
    StringInStream in(text);
    for (int i = 0; i < 256; ++i) {
        char c = 'Z';
        EXPECT_EQ(in.getPosition(), i);
        EXPECT_FALSE(in.eof());
        EXPECT_TRUE(in.getChar(c));
        EXPECT_EQ(c, static_cast<char>(i));
    }
    char c = 'Z';
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(in.eof());
        EXPECT_FALSE(in.getChar(c));
        EXPECT_EQ(c, 'Z');
        EXPECT_EQ(in.getPosition(), 256);
    }
}

TEST(StringInStreamTest, ReadsItsOwnCopy) {
    std::string text = "abc";
    StringInStream in(text);
    text = "xyz";
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "abc");
}

TEST(StringInStreamTest, TakesAnyPositionAndReadsOnlyInsideTheText) {
    const struct {
        int position;
        bool reads;
        char byte;
    } kCases[] = {
        {0, true, 'a'},   {2, true, 'c'},      {1, true, 'b'},
        {3, false, 'Z'},  {4, false, 'Z'},     {std::numeric_limits<int>::max(), false, 'Z'},
        {-1, false, 'Z'}, {-1000, false, 'Z'}, {std::numeric_limits<int>::min(), false, 'Z'},
    };
    StringInStream in("abc");
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.position);
        in.setPosition(c.position);
        EXPECT_EQ(in.getPosition(), c.position);
        if (c.position >= 0) {
            EXPECT_EQ(in.eof(), !c.reads);
        }
        char byte = 'Z';
        EXPECT_EQ(in.getChar(byte), c.reads);
        EXPECT_EQ(byte, c.byte);
        EXPECT_EQ(in.getPosition(), c.reads ? c.position + 1 : c.position);
    }
}

TEST(StringInStreamTest, LetsTheTokenizerAndTheCallerReadInTurns) {
    StringInStream in("one two three");
    std::string token;
    char c = 0;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_TRUE(in.getChar(c));
    EXPECT_TRUE(in.getChar(c));
    EXPECT_EQ(c, 't');
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "wo");
    in.setPosition(in.getPosition() - 3);
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "two");
    EXPECT_FALSE(in.eof());
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "three");
    EXPECT_TRUE(in.eof());
}

TEST(StringInStreamTest, LetsADerivedClassOverrideAPrimitive) {
    class Counting : public StringInStream {
    public:
        using StringInStream::StringInStream;
        bool getChar(char& c) override {
            ++reads;
            if (!StringInStream::getChar(c)) return false;
            if (c == 'o') c = '0';
            return true;
        }
        int reads = 0;
    };
    Counting in("one two ");
    std::string token;
    EXPECT_TRUE(in.getToken(token));
    EXPECT_EQ(token, "0ne");
    EXPECT_TRUE(in.checkToken("tw0"));
    EXPECT_GE(in.reads, 8);
}

}  // namespace
