#include "xml/dtd/internal/PlainText.h"

#include "support/Messages.h"
#include "support/Texts.h"
#include "xml/dom/CharData.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

TEST(PlainTextTest, ResolvesWhatXmlHasAndLeavesTheRest) {
    const MessageCollector messages;
    Dtd dtd("d");
    dtd.setEntity("e", "entity & <b>");
    dtd.setEntity("empty", "");
    dtd.setEntity("amp", "not that one");
    const struct {
        const char* held;
        const char* text;
        const char* withoutDtd;
    } kCases[] = {
        {"", "", ""},
        {"text", "text", "text"},
        {"&amp;&lt;&gt;&quot;&apos;", "&<>\"'", "&<>\"'"},
        {"&amp;amp;", "&amp;", "&amp;"},
        {"&#65;&#x42;&#x1F600;", "AB\xF0\x9F\x98\x80", "AB\xF0\x9F\x98\x80"},
        {"&#233;", "\xC3\xA9", "\xC3\xA9"},
        {"&#10;", "\n", "\n"},
        {"a &e; b", "a entity & <b> b", "a &e; b"},
        {"[&empty;]", "[]", "[&empty;]"},
        {"&none;", "&none;", "&none;"},
        {"&", "&", "&"},
        {"&;", "&;", "&;"},
        {"&amp", "&amp", "&amp"},
        {"&&amp;", "&&", "&&"},
        {"&x&lt;", "&x<", "&x<"},
        {"a & b; c", "a & b; c", "a & b; c"},
        {"&AMP;", "&AMP;", "&AMP;"},
        {"&#;", "&#;", "&#;"},
        {"&#x;", "&#x;", "&#x;"},
        {"&#X41;", "&#X41;", "&#X41;"},
        {"&#-65;", "&#-65;", "&#-65;"},
        {"&#+65;", "&#+65;", "&#+65;"},
        {"&# 65;", "&# 65;", "&# 65;"},
        {"&#65 ;", "&#65 ;", "&#65 ;"},
        {"&#0;", "&#0;", "&#0;"},
        {"&#1;", "&#1;", "&#1;"},
        {"&#xD800;", "&#xD800;", "&#xD800;"},
        {"&#xFFFE;", "&#xFFFE;", "&#xFFFE;"},
        {"&#x110000;", "&#x110000;", "&#x110000;"},
        {"&#x10FFFF;", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        {"&#4294967361;", "&#4294967361;", "&#4294967361;"},
        {"&#99999999999999999999;", "&#99999999999999999999;", "&#99999999999999999999;"},
        {"\xFF&lt;\xC3", "\xFF<\xC3", "\xFF<\xC3"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.held);
        std::string text = "before ";
        appendPlain(text, c.held, &dtd);
        EXPECT_EQ(text, std::string("before ") + c.text);
        text.clear();
        appendPlain(text, c.held, nullptr);
        EXPECT_EQ(text, c.withoutDtd);
        CharData node;
        node.data() = std::string(c.held);
        text.clear();
        appendPlain(text, node);
        EXPECT_EQ(text, c.withoutDtd);
        node.setDtd(&dtd);
        text.clear();
        appendPlain(text, node);
        EXPECT_EQ(text, c.text);
    }
    EXPECT_TRUE(messages.texts().empty());
}

TEST(PlainTextTest, ReferencesWithoutAnEndAreLookedAtOnce) {
    const std::string held = repeated("&", 2'000'000) + repeated("&a", 2'000'000);
    std::string text;
    appendPlain(text, held, nullptr);
    EXPECT_EQ(text, held);
}

}  // namespace
}  // namespace Xml::test
