#include "xml/text/internal/Decode.h"
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <memory>
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

// The reference that a text has, at every place of texts of many lengths, in memory of exactly that length.
TEST(DecodeTest, FindsAReferenceWhereverItStands) {
    const struct {
        std::string reference;
        std::string value;
    } kCases[] = {{"&amp;", "&"},
                  {"&lt;", "<"},
                  {"&gt;", ">"},
                  {"&quot;", "\""},
                  {"&apos;", "'"},
                  {"&#9;", "\t"},
                  {"&#x3f;", "?"},
                  {"&#00000065;", "A"},
                  {"&#x00000041;", "A"},
                  {"&#000000065;", "A"},
                  {"&# 65z;", "A"},
                  {"&#x-bf;", "A"},
                  {"&#321;", "A"},
                  {"&#0;", "&#0;"},
                  {"&#;", "&#;"},
                  {"&#x;", "&#x;"},
                  {"&a;", "alpha"},
                  {"&;", "no name"},
                  {"&lt &amp;", "&lt &amp;"},
                  {"&lt;&amp;&gt;", "<&>"},
                  {"&am;", "&am;"},
                  {"&amp ;", "&amp ;"},
                  {"&quo;", "&quo;"},
                  {"&aposs;", "&aposs;"},
                  {"&Lt;", "&Lt;"}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.reference);
        for (std::size_t before = 0; before < 150; ++before) {
            for (const std::size_t after : {0, 1, 7, 15, 63, 64, 90}) {
                const std::string text = std::string(before, '<') + c.reference + std::string(after, ';');
                const std::unique_ptr<char[]> exact(new char[text.size()]);
                std::copy(text.begin(), text.end(), exact.get());
                const Decoded result = decoded({exact.get(), text.size()});
                ASSERT_EQ(result.text, ">" + std::string(before, '<') + c.value + std::string(after, ';'))
                    << before << " before, " << after << " after";
            }
        }
    }
}

// The same reference by reference: what a text has of others makes no difference to one.
TEST(DecodeTest, DecodesReferencesOneByOneAsAllTogether) {
    const std::string kPieces[] = {"&amp;", "&lt;",   "&gt;", "&quot;", "&apos;",
                                   "&#65;", "&#x42;", "&#7;", "&a;",    "&q;",
                                   "&#0;",  "&none;", "x",    "; ",     "words, as they are",
                                   "\0"s,   "&#x3;"};
    std::mt19937 random(4);
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        std::string expected = ">";
        const bool mostlyPlain = random() % 2 == 0;
        for (auto count = random() % 60; count > 0; --count) {
            const std::string& piece = kPieces[mostlyPlain && random() % 4 != 0 ? 14 : random() % std::size(kPieces)];
            text += piece;
            expected += decoded(piece).text.substr(1);
        }
        ASSERT_EQ(decoded(text).text, expected) << text;
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
