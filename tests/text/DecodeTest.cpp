#include "xml/text/internal/Decode.h"
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_literals;
using Xml::Expansion;

const std::map<std::string, std::string, std::less<>> kEntities = {
    {"a", "alpha"}, {"none", ""}, {"nested", "&a;&lt;"}, {"lt", "never asked for"}, {"", "no name"}};

struct Decoded {
    bool complete;
    std::string text;
    std::vector<std::string> asked;
    std::int64_t made;
};

Decoded decoded(std::string_view text, Expansion expansion = {}) {
    Decoded result{};
    const auto lookUp = [&result](std::string_view name) {
        result.asked.emplace_back(name);
        const auto found = kEntities.find(name);
        return found != kEntities.end() ? &found->second : nullptr;
    };
    result.text = ">";  // is appended to
    result.complete = Xml::appendDecoded(result.text, text, lookUp, expansion);
    result.made = expansion.made;
    return result;
}

TEST(DecodeTest, AppendsTextWithItsReferencesReplaced) {
    const struct {
        const char* name;
        std::string text;
        std::string result;
        std::vector<std::string> asked;
    } kCases[] = {
        {"nothing", "", ">", {}},
        {"no reference", "a;b", ">a;b", {}},
        {"standard ones are not looked up", "&lt;&#65;&#x41;&amp;", "><AA&", {}},
        {"looked up", "x&a;y", ">xalphay", {"a"}},
        {"looked up each time", "&a;&a;", ">alphaalpha", {"a", "a"}},
        {"empty value", "&none;", ">", {"none"}},
        {"values are not looked through again", "&nested;", ">&a;&lt;", {"nested"}},
        {"unknown", "&q;!", ">&q;!", {"q"}},
        {"without an end", "&a", ">alpha", {"a"}},
        {"unknown and without an end", "x&q", ">x&q;", {"q"}},
        {"empty name", "&;", ">no name", {""}},
        {"ampersand at the end", "x&", ">xno name", {""}},
        {"ampersand in a name", "&&a;", ">&&a;", {"&a"}},
        {"character reference without a value", "&#0;&#q;", ">&#0;&#q;", {"#0", "#q"}},
        {"zero bytes", "\0&a\0;"s, ">\0&a\0;"s, {"a\0"s}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Decoded result = decoded(c.text);
        EXPECT_TRUE(result.complete);
        EXPECT_EQ(result.text, c.result);
        EXPECT_EQ(result.asked, c.asked);
    }
}

TEST(DecodeTest, ReadsNoFurtherThanTheView) {
    const std::string text = "&a;&lt;&a;";
    EXPECT_EQ(decoded(std::string_view(text).substr(0, 2)).text, ">alpha");
    EXPECT_EQ(decoded(std::string_view(text).substr(3, 3)).text, "><");
    EXPECT_EQ(decoded(std::string_view(text).substr(3, 4)).text, "><");
    EXPECT_EQ(decoded(std::string_view(text).substr(2, 3)).text, ">;&l;");
}

TEST(DecodeTest, CountsWhatIsLookedUpAndStopsBeforeTheBound) {
    const struct {
        const char* text;
        std::int64_t made;
        std::int64_t most;
        bool complete;
        const char* result;
    } kCases[] = {
        {"&a;&lt;&a;&q;", 0, 10, true, ">alpha<alpha&q;"}, {"&a;&lt;&a;&q;", 0, 9, false, ">alpha<"},
        {"&a;&lt;&a;&q;", 1, 10, false, ">alpha<"},        {"&a;&lt;&a;&q;", 7, 10, false, ">"},
        {"&lt;&q;&none;", 10, 10, true, "><&q;"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.made);
        Expansion expansion;
        expansion.made = c.made;
        expansion.most = c.most;
        const Decoded result = decoded(c.text, expansion);
        EXPECT_EQ(result.complete, c.complete);
        EXPECT_EQ(result.text, c.result);
        if (c.complete) {
            EXPECT_LE(result.made, c.most);
        } else {
            EXPECT_GT(result.made, c.most);
        }
    }
    EXPECT_EQ(decoded("&a;&lt;&a;&q;").made, 10);
}

TEST(DecodeTest, KnowsCharacterReferencesByTheirFirstByte) {
    for (const char* const name : {"#6", "#x", "#q", "##"}) EXPECT_TRUE(Xml::isCharReference(name)) << name;
    for (const char* const name : {"", "#", "6#", "lt"}) EXPECT_FALSE(Xml::isCharReference(name)) << name;
}

TEST(DecodeTest, ValuesOfStandardNames) {
    const struct {
        const char* name;
        char value;
    } kCases[] = {{"amp", '&'}, {"lt", '<'},   {"gt", '>'}, {"quot", '"'}, {"apos", '\''},
                  {"", 0},      {"l", 0},      {"ltt", 0},  {"LT", 0},     {"#", 0},
                  {"#65", 'A'}, {"#x41", 'A'}, {"#X41", 0}, {"#0", 0},     {"#321", 'A'}};
    for (const auto& c : kCases) EXPECT_EQ(Xml::standardValue(c.name), c.value) << c.name;
}

}  // namespace
