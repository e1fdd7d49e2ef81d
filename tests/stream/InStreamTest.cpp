#include "stream/OverSources.h"
#include "xml/stream/internal/StreamAccess.h"
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

using namespace std::string_literals;

TEST(InStreamTest, StartsWithoutTextErrorOrBreaks) {
    everywhere("<a/>", [](auto& in) {
        EXPECT_EQ(in.getErrorMessage(), "");
        EXPECT_EQ(in.StorePosition(), std::make_pair(0, 0));
        EXPECT_EQ(in.getLine(), 1);
        EXPECT_EQ(in.getColumn(), 0);
    });
}

TEST(InStreamTest, CannotBeCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<BareInStream>);
    EXPECT_FALSE(std::is_copy_assignable_v<BareInStream>);
    EXPECT_TRUE(std::has_virtual_destructor_v<InStream>);
    EXPECT_TRUE(std::is_abstract_v<InStream>);
}

TEST(InStreamTest, HasNoPositionOnceAFileStreamMetItsEnd) {
    overFileStream("word", [](auto& in) {
        std::string token;
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(in.getPosition(), -1);
        EXPECT_EQ(in.getLine(), 1);
        EXPECT_EQ(in.getColumn(), -1);
        in.RestorePosition({0, 0});
        EXPECT_FALSE(in.getToken(token));
        EXPECT_EQ(in.getErrorMessage(), kEnd);
    });
}

TEST(InStreamTest, KeepsTheMessageOfAFailureUntilTheNext) {
    everywhere("1a b 2c 'x' ", [](auto& in) {
        std::string text;
        EXPECT_FALSE(in.getName(text));
        EXPECT_TRUE(in.getName(text));
        EXPECT_EQ(in.getErrorMessage(), "not a name: 1a");
        EXPECT_FALSE(in.getName(text));
        EXPECT_EQ(in.getErrorMessage(), "not a name: 2c");
        EXPECT_TRUE(in.getString(text));
        EXPECT_EQ(in.getErrorMessage(), "not a name: 2c");
    });
}

TEST(InStreamTest, AppendsToTheParseBufferOrEmptiesItFirst) {
    everywhere("a 'b' c d 'e' f g -x- ", [](auto& in) {
        EXPECT_TRUE(in.getTokenInParseBuffer());
        EXPECT_TRUE(in.getStringInParseBuffer());
        EXPECT_TRUE(in.getNameInParseBuffer());
        EXPECT_TRUE(holds(in, "a'b'c"));
        std::string text;
        EXPECT_TRUE(in.getToken(text));
        EXPECT_EQ(text, "d");
        EXPECT_TRUE(holds(in, "d"));
        EXPECT_TRUE(in.getString(text));
        EXPECT_TRUE(holds(in, "'e'"));
        EXPECT_TRUE(in.getName(text));
        EXPECT_TRUE(holds(in, "f"));
        EXPECT_TRUE(in.checkTokenInParseBuffer("fg", 2));
        EXPECT_TRUE(in.skip("x"));
        EXPECT_TRUE(holds(in, "fg -x"));
        EXPECT_TRUE(in.checkToken("-"));
        EXPECT_TRUE(holds(in, "-"));
    });
}

TEST(InStreamTest, GetsSingleBytesAndPutsThemBack) {
    everywhere("ab ", [](auto& in) {
        char c = 0;
        EXPECT_TRUE(in.get(c));
        EXPECT_TRUE(in.get(c));
        EXPECT_EQ(c, 'b');
        in.putBackChar();
        EXPECT_EQ(in.getPosition(), 1);
        in.putBackChar();
        in.putBackChar();
        EXPECT_EQ(in.getPosition(), 0);
        EXPECT_TRUE(in.get(c));
        EXPECT_EQ(c, 'a');
        EXPECT_EQ(in.getErrorMessage(), "");
    });
}

TEST(InStreamTest, LeavesTheCallersByteAsItWasAtTheEnd) {
    whereTheEndIsPrompt("a", [](auto& in) {
        char c = 'Z';
        EXPECT_TRUE(in.get(c));
        EXPECT_EQ(c, 'a');
        c = 'Z';
        EXPECT_FALSE(in.get(c));
        EXPECT_EQ(c, 'Z');
        EXPECT_EQ(in.getErrorMessage(), kEnd);
    });
    overFileStream("a", [](auto& in) {
        char c = 0;
        EXPECT_TRUE(in.get(c));
        c = 'Z';
        EXPECT_TRUE(in.get(c));
        EXPECT_EQ(c, 'Z');
        EXPECT_EQ(in.getErrorMessage(), "");
        EXPECT_FALSE(in.get(c));
        EXPECT_EQ(c, 'Z');
        EXPECT_EQ(in.getErrorMessage(), kEnd);
    });
}

TEST(InStreamTest, ComparesTheEndOfTheParseBuffer) {
    everywhere("abc ", [](auto& in) {
        EXPECT_TRUE(in.CheckParseBufferEnd("x", 0));
        EXPECT_TRUE(in.CheckParseBufferEnd("x", -1));
        EXPECT_FALSE(in.CheckParseBufferEnd("x", 1));
        EXPECT_TRUE(in.getTokenInParseBuffer());
        EXPECT_TRUE(in.CheckParseBufferEnd("abc", 3));
        EXPECT_TRUE(in.CheckParseBufferEnd("bcx", 2));
        EXPECT_TRUE(in.CheckParseBufferEnd("c", 1));
        EXPECT_FALSE(in.CheckParseBufferEnd("b", 1));
        EXPECT_FALSE(in.CheckParseBufferEnd("aabc", 4));
    });
}

TEST(InStreamTest, ComesBackToAStoredPosition) {
    everywhere("a b c ", [](auto& in) {
        EXPECT_TRUE(in.getTokenInParseBuffer());
        const std::pair<int, int> saved = in.StorePosition();
        EXPECT_EQ(saved, std::make_pair(1, 1));
        EXPECT_TRUE(in.getTokenInParseBuffer());
        EXPECT_TRUE(in.getTokenInParseBuffer());
        EXPECT_TRUE(holds(in, "abc"));
        in.RestorePosition(saved);
        EXPECT_EQ(in.StorePosition(), saved);
        EXPECT_TRUE(holds(in, "a"));
        EXPECT_TRUE(in.checkTokenInParseBuffer("ab", 2));
        in.RestorePosition({4, 5});
        EXPECT_TRUE(holds(in, "ab\0\0\0"s));
        EXPECT_TRUE(in.checkToken("c"));
    });
}

TEST(InStreamTest, ReadsNothingAtPositionsOutsideTheText) {
    for (const int position : {4, 5, 1000, 2'147'483'647, -1, -2'147'483'647 - 1}) {
        SCOPED_TRACE(position);
        const Source kFixed[] = {Source::String, Source::Bare};
        overSources(kFixed, "abc ", [position](auto& in) {
            std::string token = "before";
            in.setPosition(position);
            EXPECT_FALSE(in.getToken(token));
            EXPECT_EQ(token, "before");
            EXPECT_EQ(in.getErrorMessage(), kEnd);
            EXPECT_EQ(in.getPosition(), position);
            in.setPosition(0);
            EXPECT_TRUE(in.getToken(token));
            EXPECT_EQ(token, "abc");
        });
    }
}

}  // namespace
}  // namespace Xml::test
