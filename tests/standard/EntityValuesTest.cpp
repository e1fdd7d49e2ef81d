#include "xml/standard/internal/EntityValues.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

Entities entitiesOf(const Texts& texts) {
    Entities all;
    for (const auto& [name, text] : texts) all[name].text = text;
    return all;
}

std::string valueOf(const Entities& all, const std::string& name) { return entityValues(all).at(name); }

TEST(EntityValuesTest, ResolvesReferences) {
    const struct {
        const char* name;
        Texts entities;
        const char* value;  // of "e"
    } kCases[] = {
        {"text", {{"e", "x"}}, "x"},
        {"nothing", {{"e", ""}}, ""},
        {"markup", {{"e", "<b>x</b>"}}, "<b>x</b>"},
        {"declared before", {{"d", "x"}, {"e", "&d;y"}}, "xy"},
        {"declared after", {{"e", "1&f;2&f;3"}, {"f", "x"}}, "1x2x3"},
        {"several levels", {{"e", "&f;&g;"}, {"f", "(&g;)"}, {"g", "&h;"}, {"h", "x"}}, "(x)x"},
        {"characters", {{"e", "&#65;&#x20AC;&#x20ac;"}}, "A\xE2\x82\xAC\xE2\x82\xAC"},
        {"the five", {{"e", "&amp;&lt;&gt;&quot;&apos;"}}, "&<>\"'"},
        {"one of the five, declared", {{"e", "&lt;"}, {"lt", "&#60;"}}, "<"},
        {"what is resolved is not looked at again", {{"e", "&f;"}, {"f", "&#38;g;"}, {"g", "x"}}, "&g;"},
        {"not declared", {{"e", "&x;"}}, "&x;"},
        {"name beyond ASCII", {{"e", "&\xC3\xB6;"}, {"\xC3\xB6", "x"}}, "x"},
        {"itself", {{"e", "1&e;2"}}, "1&e;2"},
        {"itself, at a distance", {{"e", "1&f;"}, {"f", "2&e;"}}, "12&e;"},
        {"no references",
         {{"e", "& && &; &#; &#x; &f &1; &#x110000; &#1; &#99999999999; &#6a; &#xg;"}},
         "& && &; &#; &#x; &f &1; &#x110000; &#1; &#99999999999; &#6a; &#xg;"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(valueOf(entitiesOf(c.entities), "e"), c.value);
    }
}

TEST(EntityValuesTest, LeavesReferencesToWhatIsNoText) {
    Entities all = entitiesOf({{"e", "&f;&g;"}, {"f", ""}, {"g", ""}});
    all["f"].kind = EntityDecl::Kind::External;
    all["g"].kind = EntityDecl::Kind::Unparsed;
    EXPECT_EQ(entityValues(all).size(), 1u);
    EXPECT_EQ(valueOf(all, "e"), "&f;&g;");
}

// A billion laughs that nothing refers to.
TEST(EntityValuesTest, LeavesReferencesThatWouldMakeTooMuch) {
    Entities all;
    all["e10"].text = "ha";
    for (int i = 11; i < 40; ++i) {
        const std::string inner = "&e" + std::to_string(i - 1) + ";";
        for (int times = 0; times < 10; ++times) all["e" + std::to_string(i)].text += inner;
    }
    std::size_t declared = 0;
    std::size_t made = 0;
    for (const auto& [name, entity] : all) declared += entity.text.size();
    for (const auto& [name, text] : entityValues(all)) made += text.size();
    EXPECT_GT(made, std::size_t{50'000});
    EXPECT_LT(made, (std::size_t{64} << 10) + 17 * declared);
    EXPECT_EQ(valueOf(all, "e11"), "hahahahahahahahahaha");
    EXPECT_EQ(valueOf(all, "e39"), all["e39"].text);
}

TEST(EntityValuesTest, ResolvesALongChain) {
    constexpr int kMany = 100'000;
    Entities all;
    for (int i = 0; i < kMany; ++i) all["e" + std::to_string(i)].text = "&e" + std::to_string(i + 1) + ";";
    all["e" + std::to_string(kMany)].text = "x";
    EXPECT_EQ(valueOf(all, "e0"), "x");
}

}  // namespace
}  // namespace Xml::test
