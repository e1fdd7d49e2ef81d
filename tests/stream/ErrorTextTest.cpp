#include "xml/stream/ErrorText.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace Xml::test {
namespace {

using internal::ErrorText;

constexpr std::string_view kLasting = "a text of more bytes than fit in a string";

TEST(ErrorTextTest, HasTheTextThatWasSetLast) {
    ErrorText error;
    EXPECT_EQ(error.view(), "");
    EXPECT_EQ(error.show(), "");
    error = ErrorText();
    error.set("one");
    EXPECT_EQ(error.view(), "one");
    error.setLasting(kLasting);
    EXPECT_EQ(error.view(), kLasting);
    error.set("two");
    EXPECT_EQ(error.view(), "two");
    EXPECT_EQ(error.string(), "two");
    error.setLasting("");
    EXPECT_EQ(error.view(), "") << "an empty text is a text";
    EXPECT_EQ(error.string(), "");
}

TEST(ErrorTextTest, CopiesALastingTextWhenTheStringIsAskedFor) {
    ErrorText error;
    error.setLasting(kLasting);
    EXPECT_EQ(error.view().data(), kLasting.data());
    error.string() += "!";
    EXPECT_EQ(error.view(), std::string(kLasting) + "!");
    EXPECT_EQ(error.show(), std::string(kLasting) + "!");
}

TEST(ErrorTextTest, ShowsLaterTextsToWhoeverHasTheString) {
    ErrorText error;
    const std::string& shown = error.show();
    error.setLasting(kLasting);
    EXPECT_EQ(shown, kLasting);
    error.set("one");
    EXPECT_EQ(shown, "one");
}

}  // namespace
}  // namespace Xml::test
