#include "support/ForeignNumbers.h"
#include "support/Messages.h"
#include "xml/dtd/Dtd.h"
#include "xml/text/Entities.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using Xml::DataHolder;
using Xml::Dtd;
using Xml::test::MessageCollector;

// --- The rules step by step, by standard streams ---

const char* const kStandardNames[] = {"amp", "lt", "gt", "quot", "apos"};
const std::string kStandardValues = "&<>\"'";

// The byte that a name stands for without a Dtd, zero for none.
char naiveStandardValue(const std::string& name) {
    if (name.size() >= 2 && name[0] == '#') {
        const bool hex = name[1] == 'x';
        std::istringstream digits(name.substr(hex ? 2 : 1));
        unsigned number = 0;
        digits.imbue(std::locale::classic());
        digits >> (hex ? std::hex : std::dec) >> number;
        return digits.fail() ? '\0' : static_cast<char>(number & 255U);
    }
    for (std::size_t i = 0; i < 5; ++i) {
        if (name == kStandardNames[i]) return kStandardValues[i];
    }
    return 0;
}

std::string naiveValue(const std::string& name, const Dtd* dtd) {
    const char standard = naiveStandardValue(name);
    if (standard != 0) return std::string(1, standard);
    if (dtd != nullptr && dtd->isEntityName(name)) return dtd->getEntityValue(name);
    return "&" + name + ";";
}

std::string naiveReplaced(const std::string& text, const Dtd* dtd) {
    std::string result;
    std::size_t i = 0;
    while (i < text.size()) {
        if (text[i] != '&') {
            result += text[i++];
            continue;
        }
        std::string name;
        for (++i; i < text.size() && text[i] != ';'; ++i) name += text[i];
        ++i;
        result += naiveValue(name, dtd);
    }
    return result.empty() ? text : result;
}

std::string naiveEscaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const std::size_t index = kStandardValues.find(c);
        result += index == std::string::npos ? std::string(1, c) : "&"s + kStandardNames[index] + ";";
    }
    return result;
}

// --- Tables ---

std::string replaced(const std::string& text, const Dtd* dtd = nullptr) {
    DataHolder data(text);
    EXPECT_EQ(&Xml::replaceEntities(data, dtd), &data);
    return data;
}

std::string escaped(const std::string& text) {
    DataHolder data(text);
    EXPECT_EQ(&Xml::insertStdEntities(data), &data);
    return data;
}

TEST(EntitiesTest, KnowsTheStandardNamesAndCharacterReferences) {
    const struct {
        std::string name;
        bool known;
        std::string value;
    } kCases[] = {
        {"amp", true, "&"},
        {"lt", true, "<"},
        {"gt", true, ">"},
        {"quot", true, "\""},
        {"apos", true, "'"},
        {"AMP", false, "&AMP;"},
        {"Lt", false, "&Lt;"},
        {"lt ", false, "&lt ;"},
        {"nbsp", false, "&nbsp;"},
        {"", false, "&;"},
        {"&", false, "&&;"},
        {"#", false, "&#;"},
        {"#x", true, "&#x;"},
        {"#q", true, "&#q;"},
        {"#zz", true, "&#zz;"},
        {"#0", true, "&#0;"},
        {"#x0", true, "&#x0;"},
        {"#xZZ", true, "&#xZZ;"},
        {"#X3C", true, "&#X3C;"},
        {"#X41", true, "&#X41;"},
        {"#x3C", true, "<"},
        {"#x3c", true, "<"},
        {"#60", true, "<"},
        {"#65", true, "A"},
        {"#x41", true, "A"},
        {"#321", true, "A"},
        {"#x141", true, "A"},
        {"#256", true, "&#256;"},
        {"#255", true, "\xff"},
        {"#10", true, "\n"},
        {"#010", true, "\n"},
        {"#0x41", true, "&#0x41;"},
        {"# 65", true, "A"},
        {"# \t\r\n65", true, "A"},
        {"#x 41", true, "A"},
        {"#65z", true, "A"},
        {"#65 66", true, "A"},
        {"#x41g", true, "A"},
        {"#A", true, "&#A;"},
        {"#65\0"s, true, "A"},
        {"# ", true, "&# ;"},
        {"#x0x41", true, "A"},
        {"#x0X41", true, "A"},
        {"#x00x41", true, "&#x00x41;"},
        {"#x0x", true, "&#x0x;"},
        {"# 41", true, ")"},
        {"#+41", true, ")"},
        {"#-1", true, "\xff"},
        {"#-191", true, "A"},
        {"#x+41", true, "A"},
        {"#x-bf", true, "A"},
        {"#+-41", true, "&#+-41;"},
        {"#- 41", true, "&#- 41;"},
        {"#4294967295", true, "\xff"},
        {"#4294967361", true, "&#4294967361;"},
        {"#x100000041", true, "&#x100000041;"},
        {"#-4294967231", true, "A"},
        {"#0000000000000000000065", true, "A"},
        {"#x0000000000000000000041", true, "A"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Xml::isEntityName(c.name), c.known);
        EXPECT_EQ(Xml::getEntityValue(c.name), c.value);
        EXPECT_EQ(Xml::isEntityName(c.name, nullptr), c.known);
        EXPECT_EQ(naiveValue(c.name, nullptr), c.value);
    }
}

TEST(EntitiesTest, NamesTheFiveCharactersAndNoOtherValue) {
    const struct {
        std::string value;
        bool known;
        const char* name;
    } kCases[] = {
        {"&", true, "amp"},  {"<", true, "lt"},   {">", true, "gt"},   {"\"", true, "quot"},
        {"'", true, "apos"}, {"", false, ""},     {"ab", false, "ab"}, {"a", false, "a"},
        {"&&", false, "&&"}, {"<a", false, "<a"}, {"A", false, "A"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(Xml::isEntityValue(c.value), c.known);
        EXPECT_EQ(Xml::getEntityName(c.value), c.name);
    }
    EXPECT_FALSE(Xml::isEntityValue(std::string(1, '\0')));
    EXPECT_EQ(Xml::getEntityName(std::string(1, '\0')), std::string(1, '\0'));
}

TEST(EntitiesTest, ReplacesReferencesInOnePass) {
    const struct {
        const char* name;
        std::string text;
        std::string result;
    } kCases[] = {
        {"standard names", "1 &lt; 2 &amp;&amp; 3", "1 < 2 && 3"},
        {"none", "no refs", "no refs"},
        {"nothing", "", ""},
        {"unterminated", "x&y", "x&y;"},
        {"unterminated and known", "x&lt", "x<"},
        {"ampersand at the end", "a&", "a&;"},
        {"empty name", "a&;b", "a&;b"},
        {"unknown", "&foo;", "&foo;"},
        {"no value", "&#0;", "&#0;"},
        {"what comes out is not looked at again", "&amp;lt;", "&lt;"},
        {"semicolons alone", "a;b;;", "a;b;;"},
        {"name that takes an ampersand in", "&a&lt;", "&a&lt;"},
        {"name with blanks and markup", "&a <b/>;", "&a <b/>;"},
        {"character references", "&#72;&#x69;", "Hi"},
        {"a reference alone", "&gt;", ">"},
        {"first and last", "&lt;a&gt;", "<a>"},
        {"zero bytes", "\0&lt;\0"s, "\0<\0"s},
        {"bytes above 127", "\xc3\xa9&lt;\xff", "\xc3\xa9<\xff"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(replaced(c.text), c.result);
    }
}

TEST(EntitiesTest, EscapesTheFiveCharactersEverywhere) {
    const struct {
        const char* name;
        std::string text;
        std::string result;
    } kCases[] = {
        {"all", "<a href='x'>&</a>", "&lt;a href=&apos;x&apos;&gt;&amp;&lt;/a&gt;"},
        {"double quotes", "\"\"", "&quot;&quot;"},
        {"none", "no special byte;", "no special byte;"},
        {"nothing", "", ""},
        {"reference that is there", "&amp;", "&amp;amp;"},
        {"control characters and bytes above 127", "\0\x01\n\r\t\x7f\x80\xff"s, "\0\x01\n\r\t\x7f\x80\xff"s},
        {"beside zero bytes", "\0<\0"s, "\0&lt;\0"s},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(escaped(c.text), c.result);
        EXPECT_EQ(Xml::toXmlString(c.text), "\"" + c.result + "\"");
    }
}

TEST(EntitiesTest, WritesTextsInDoubleQuotesAndLeavesThemAsTheyWere) {
    EXPECT_EQ(Xml::toXmlString(""), "\"\"");
    EXPECT_EQ(Xml::toXmlString("a<b"), "\"a&lt;b\"");
    const DataHolder data("'");
    EXPECT_EQ(Xml::toXmlString(data), "\"&apos;\"");
    EXPECT_EQ(data, "'");
}

TEST(EntitiesTest, DoesNotTouchTextsWithoutAnythingToReplace) {
    DataHolder data("text that is long enough to lie on the heap");
    const char* const bytes = data.data();
    Xml::replaceEntities(data);
    Xml::insertStdEntities(data);
    EXPECT_EQ(data.data(), bytes);
    EXPECT_EQ(data, "text that is long enough to lie on the heap");
}

TEST(EntitiesTest, AsksTheDtdAfterTheStandardEntities) {
    const MessageCollector messages;
    Dtd dtd("doc");
    dtd.setEntity("who", "you & I");
    dtd.setEntity("empty", "");
    dtd.setEntity("nested", "&who;&lt;");
    dtd.setEntity("lt", "not this");
    dtd.setEntity("less", "<");
    dtd.setEntity("#q", "Q");
    dtd.setEntity("#65", "not this");
    dtd.setEntity("twice", "you & I");

    const struct {
        const char* name;
        bool known;
        const char* value;
    } kNames[] = {
        {"who", true, "you & I"}, {"empty", true, ""},          {"lt", true, "<"},    {"#q", true, "Q"},
        {"#65", true, "A"},       {"less", true, "<"},          {"#p", true, "&#p;"}, {"nobody", false, "&nobody;"},
        {"Who", false, "&Who;"},  {"nested", true, "&who;&lt;"}};
    for (const auto& c : kNames) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Xml::isEntityName(c.name, &dtd), c.known);
        EXPECT_EQ(Xml::getEntityValue(c.name, &dtd), c.value);
    }

    const struct {
        const char* value;
        bool known;
        const char* name;
    } kValues[] = {
        {"you & I", true, "twice"}, {"<", true, "lt"}, {"Q", true, "#q"}, {"", true, "empty"}, {"none", false, "none"}};
    for (const auto& c : kValues) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(Xml::isEntityValue(c.value, &dtd), c.known);
        EXPECT_EQ(Xml::getEntityName(c.value, &dtd), c.name);
    }

    const struct {
        const char* name;
        const char* text;
        const char* result;
    } kTexts[] = {
        {"value with an ampersand", "&who;!", "you & I!"},
        {"value with references, one level only", "&nested;", "&who;&lt;"},
        {"nothing left of it", "&empty;", "&empty;"},
        {"nothing left of all", "&empty;&empty;", "&empty;&empty;"},
        {"something left", "a&empty;", "a"},
        {"unterminated", "&who", "you & I"},
        {"unknown", "&nobody;&who;", "&nobody;you & I"},
    };
    for (const auto& c : kTexts) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(replaced(c.text, &dtd), c.result);
    }
    EXPECT_EQ(messages.texts(), std::vector<std::string>());
}

TEST(EntitiesTest, AgreesWithTheRulesByStandardStreams) {
    Dtd dtd("doc");
    dtd.setEntity("a", "");
    dtd.setEntity("b", "&a;");
    dtd.setEntity("xy", "<&\">");
    dtd.setEntity("#", "hash");
    dtd.setEntity("", "none");
    const std::vector<std::string> kPieces = {
        "&",  ";",  "#",   "x", "&lt;", "&amp;", "&gt;", "&apos;", "&quot;",   "&#",  "&#x", "65",   "3C",
        "fF", "0",  "1",   "9", " ",    "\n",    "-",    "+",      "0x",       "&a;", "&b;", "&xy;", "&;",
        "a",  "lt", "amp", "<", ">",    "\"",    "'",    "text",   "\xc3\xa9", "\0"s, "X",   "q",    "."};
    std::mt19937 random(14);
    int changed = 0;
    for (int i = 0; i < 40'000; ++i) {
        std::string text;
        for (auto n = random() % 9; n > 0; --n) text += kPieces[random() % kPieces.size()];
        const Dtd* const used = i % 2 == 0 ? nullptr : &dtd;
        SCOPED_TRACE(text);
        const std::string wanted = naiveReplaced(text, used);
        ASSERT_EQ(replaced(text, used), wanted);
        ASSERT_EQ(escaped(text), naiveEscaped(text));
        ASSERT_EQ(Xml::toXmlString(text), "\"" + naiveEscaped(text) + "\"");
        ASSERT_EQ(Xml::getEntityValue(text, used), naiveValue(text, used));
        changed += wanted != text ? 1 : 0;
    }
    EXPECT_GT(changed, 10'000);
}

// Counts what streams under the global locale ask it for.
class CountingNumbers : public std::num_get<char> {
public:
    static int asked;

protected:
    iter_type do_get(iter_type in, iter_type end, std::ios_base& format, std::ios_base::iostate& state,
                     unsigned& number) const override {
        ++asked;
        return std::num_get<char>::do_get(in, end, format, state, number);
    }
};

int CountingNumbers::asked = 0;

TEST(EntitiesTest, MakesNoStreamForACharacterReference) {
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new CountingNumbers));
    unsigned number = 0;
    std::istringstream("65") >> number;
    EXPECT_EQ(CountingNumbers::asked, 1);
    EXPECT_EQ(replaced("&#65;&#x41;&#0000000000065;&#x0x41;&# 65;&#q;&#-191;"), "AAAAA&#q;A");
    EXPECT_EQ(CountingNumbers::asked, 1);
    std::locale::global(before);
}

TEST(EntitiesTest, ReadsCharacterReferencesAsUnderTheClassicLocale) {
    for (const char point : {',', '.'}) {
        const Xml::test::ForeignNumbers foreign(point, point == ',' ? '.' : ',');
        EXPECT_EQ(replaced("&#65;&#0000000000065;&#x0041;"), "AAA");
        EXPECT_EQ(replaced("&#0000000000,065;&#0000000000.065;&#x1,000;&#x6.5;"),
                  "&#0000000000,065;&#0000000000.065;\1\6");
    }
}

TEST(EntitiesTest, GivesAnyTextBackFromItsEscapedForm) {
    std::mt19937 random(15);
    for (int i = 0; i < 5000; ++i) {
        std::string text(1 + random() % 40, '\0');
        for (char& c : text)
            c = static_cast<char>(random() % 3 == 0 ? "&<>\"'"[random() % 5] : static_cast<char>(random() % 256));
        ASSERT_EQ(replaced(escaped(text)), text);
    }
}

}  // namespace
