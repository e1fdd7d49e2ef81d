#include "xml/standard/internal/OrdinaryText.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

// What was made of a run without memory around it, and what is left of that; "-" where it is not ordinary.
template <class Append>
std::string of(const std::string& run, const Append& append) {
    const std::unique_ptr<char[]> bytes(new char[run.size()]);
    std::memcpy(bytes.get(), run.data(), run.size());
    std::string result;
    const char* const end = append(result, bytes.get(), bytes.get() + run.size());
    if (end == nullptr) return "-";
    return result + "|" + std::string(end, static_cast<const char*>(bytes.get()) + run.size());
}

std::string textOf(const std::string& run) { return of(run, OrdinaryText::appendText); }
std::string valueOf(const std::string& run, char quote = '"') {
    return of(run, [quote](std::string& result, const char* from, const char* to) {
        return OrdinaryText::appendValue(result, from, to, quote);
    });
}

TEST(OrdinaryTextTest, IsTheTextThatATreeHolds) {
    const struct {
        const char* run;
        const char* text;
    } kCases[] = {
        {"<", "|<"},
        {"a\tb\n<c", "a\tb\n|<c"},
        {"a\r\nb\rc\r\r\n<", "a\nb\nc\n\n|<"},
        {"&amp;&lt;&gt;&quot;&apos;<", "&amp;&lt;&gt;\"'|<"},
        {"&#38;&#60;&#62;&#34;<", "&amp;&lt;&gt;\"|<"},
        {"&#65;&#x41;&#xe9;&#xE9;&#8364;&#x10FFFF;&#13;<", "AA\xC3\xA9\xC3\xA9\xE2\x82\xAC\xF4\x8F\xBF\xBF\r|<"},
        {"a > b<", "a &gt; b|<"},
        {"a ] b ]] c ]><", "a ] b ]] c ]&gt;|<"},
        {"]]]<<", "]]]|<<"},
        {"\xEF\xBC\xA1\xEF\xBF\xBD<", "\xEF\xBC\xA1\xEF\xBF\xBD|<"},
        {"a text that is longer than sixteen bytes &amp; goes on<",
         "a text that is longer than sixteen bytes &amp; "
         "goes on|<"},
        {"", "-"},
        {"abc", "-"},
        {"a\r", "-"},
        {"]", "-"},
        {"]]", "-"},
        {"]]><", "-"},
        {"]]]><", "-"},
        {"&", "-"},
        {"&a", "-"},
        {"&am", "-"},
        {"&amp", "-"},
        {"&amp<", "-"},
        {"&ampx;<", "-"},
        {"&apo;<", "-"},
        {"&#4/;<", "-"},
        {"&#4:;<", "-"},
        {"&#4a;<", "-"},
        {"&#x4/;<", "-"},
        {"&#x4:;<", "-"},
        {"&#x4@;<", "-"},
        {"&#x4`;<", "-"},
        {"&#x4G;<", "-"},
        {"&#x4g;<", "-"},
        {"&ltx;<", "-"},
        {"&e;<", "-"},
        {"& <", "-"},
        {"&#", "-"},
        {"&#x", "-"},
        {"&#65", "-"},
        {"&#;<", "-"},
        {"&#x;<", "-"},
        {"&#a;<", "-"},
        {"&#X41;<", "-"},
        {"&#xg;<", "-"},
        {"&#xD800;<", "-"},
        {"&#xFFFE;<", "-"},
        {"&#x110000;<", "-"},
        {"&#0;<", "-"},
        {"&#11;<", "-"},
        {"&#00000065;<", "-"},
        {"&#x4294967361;<", "-"},
        {"a\x01<", "-"},
        {"\xEF\xBF\xBE<", "-"},
        {"\xEF\xBF\xBF<", "-"},
    };
    for (const auto& c : kCases) EXPECT_EQ(textOf(c.run), c.text) << c.run;
}

TEST(OrdinaryTextTest, IsTheValueOfAnAttribute) {
    const struct {
        const char* run;
        const char* value;
    } kCases[] = {
        {"\"", "|\""},
        {"a'b\"c", "a'b|\"c"},
        {"a\tb\nc\r\nd\re\"", "a b c d e|\""},
        {"&amp;&lt;&gt;&quot;&apos;&#65;&#10;&#9;\"", "&<>\"'A\n\t|\""},
        {"]]> >\"", "]]> >|\""},
        {"\xEF\xBC\xA1\"", "\xEF\xBC\xA1|\""},
        {"", "-"},
        {"abc", "-"},
        {"a\r", "-"},
        {"a<\"", "-"},
        {"&e;\"", "-"},
        {"&amp\"", "-"},
        {"&#xD800;\"", "-"},
        {"\x1F\"", "-"},
        {"\xEF\xBF\xBF\"", "-"},
    };
    for (const auto& c : kCases) EXPECT_EQ(valueOf(c.run), c.value) << c.run;
    EXPECT_EQ(valueOf("a\"b'c", '\''), "a\"b|'c");
}

}  // namespace
}  // namespace Xml::test
