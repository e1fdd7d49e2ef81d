#include "xml/text/internal/Decode.h"
#include "xml/text/internal/Escape.h"
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace {

using namespace std::string_literals;

TEST(EscapeTest, WritesFiveBytesAsReferencesAndAllOthersAsTheyStand) {
    const std::string kFive = "&<>\"'";
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        const bool special = kFive.find(c) != std::string::npos;
        SCOPED_TRACE(i);
        EXPECT_EQ(Xml::needsEscaping(std::string_view(&c, 1)), special);
        EXPECT_EQ(Xml::referenceFor(c).empty(), !special);
        std::string text = "before";
        Xml::appendEscaped(text, std::string_view(&c, 1));
        if (special) {
            EXPECT_EQ(text, "before&"s.append(Xml::standardNameFor(c)) + ";");
            EXPECT_EQ(Xml::referenceFor(c), text.substr(6));
            EXPECT_EQ(Xml::standardValue(Xml::standardNameFor(c)), c);
        } else {
            EXPECT_EQ(text, "before"s + c);
            EXPECT_TRUE(Xml::standardNameFor(c).empty());
        }
    }
}

TEST(EscapeTest, TakesWhatStandsBetweenInRuns) {
    const struct {
        const char* name;
        std::string text;
        std::string result;
    } kCases[] = {
        {"nothing", "", ""},
        {"one run", "plain", "plain"},
        {"runs and references", "a<bc&&d'", "a&lt;bc&amp;&amp;d&apos;"},
        {"reference first and last", "\"a\"", "&quot;a&quot;"},
        {"reference that is there", "&lt;", "&amp;lt;"},
        {"zero bytes", "\0>\0"s, "\0&gt;\0"s},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        std::string text;
        Xml::appendEscaped(text, c.text);
        EXPECT_EQ(text, c.result);
        EXPECT_EQ(Xml::needsEscaping(c.text), c.text != c.result);
    }
}

// Looks at every place in rows of every length, and at what stands before and after the row.
TEST(EscapeTest, FindsTheFirstByteThatIsSpecial) {
    for (int byte = 0; byte < 256; ++byte) {
        const bool special = std::string("&<>\"'\n").find(static_cast<char>(byte)) != std::string::npos;
        for (std::size_t length = 0; length < 50; ++length) {
            for (std::size_t place = 0; place < length; ++place) {
                std::string text(length + 2, 'x');
                text.front() = text.back() = '<';
                text[1 + place] = static_cast<char>(byte);
                const char* const from = text.data() + 1;
                ASSERT_EQ(Xml::findSpecial(from, from + length) - from,
                          static_cast<std::ptrdiff_t>(special ? place : length))
                    << byte << " at " << place << " of " << length;
            }
        }
    }
}

}  // namespace
