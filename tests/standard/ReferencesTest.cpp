#include "xml/standard/internal/References.h"
#include <gtest/gtest.h>
#include <string>

namespace {

namespace References = Xml::References;

TEST(ReferencesTest, TheFirstIsWholeOrAnAmpersand) {
    const struct {
        const char* text;
        const char* first;
    } kCases[] = {
        {"&amp;x", "&amp;"}, {"&#65;;", "&#65;"}, {"&#x41;", "&#x41;"}, {"&\u00E4;", "&\u00E4;"}, {"&", "&"},
        {"&;", "&"},         {"&#;", "&"},        {"&a", "&"},          {"&a b;", "&"},           {"&&amp;", "&"},
    };
    for (const auto& c : kCases) EXPECT_EQ(References::first(c.text), c.first) << c.text;
}

TEST(ReferencesTest, NumbersAreThoseOfCharactersThatXmlHas) {
    const struct {
        const char* reference;
        char32_t character;
    } kCases[] = {
        {"&#65;", 'A'},
        {"&#x41;", 'A'},
        {"&#xe9;", 0xE9},
        {"&#xE9;", 0xE9},
        {"&#00065;", 'A'},
        {"&#10;", '\n'},
        {"&#x10FFFF;", 0x10FFFF},
        {"&#x110000;", 0},
        {"&#0;", 0},
        {"&#8;", 0},
        {"&#xD800;", 0},
        {"&#xFFFE;", 0},
        {"&#x;", 0},
        {"&#X41;", 0},
        {"&#4a;", 0},
        {"&#99999999999999999999;", 0},
    };
    for (const auto& c : kCases) EXPECT_EQ(References::characterOf(c.reference), c.character) << c.reference;
}

}  // namespace
