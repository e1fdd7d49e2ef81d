#include "xml/dom/Attributes.h"

#include "support/Rounds.h"
#include "xml/dom/Attribute.h"
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

using internal::Attributes;

std::unique_ptr<Attribute> attribute(const std::string& name, const std::string& value) {
    return std::make_unique<Attribute>(name, DataHolder(value));
}

std::string shown(const Attributes& attributes) {
    std::string text;
    for (const Attribute* const each : attributes.span()) text += each->getName() + "=" + each->getValue() + " ";
    return text;
}

TEST(AttributesTest, AreInTheByteOrderOfTheirNames) {
    Attributes attributes;
    for (const char* name : {"b", "a-", "a", "B", "ab", "_"}) attributes.set(attribute(name, "1"));
    EXPECT_EQ(shown(attributes), "B=1 _=1 a=1 a-=1 ab=1 b=1 ");
    EXPECT_EQ(attributes.size(), 6U);
    EXPECT_EQ(attributes[1]->getName(), "_");
}

TEST(AttributesTest, NeverMove) {
    Attributes attributes;
    attributes.set(attribute("m", "1"));
    const Attribute* const m = attributes.find("m");
    for (const char* name : {"a", "z", "l", "n"}) attributes.set(attribute(name, "2"));
    attributes.remove("a");
    attributes.remove(attributes.size() - 1);
    attributes.set(attribute("b", "3"));
    EXPECT_EQ(attributes.find("m"), m);
    EXPECT_EQ(shown(attributes), "b=3 l=2 m=1 n=2 ");
}

TEST(AttributesTest, SayWhetherThereWasOneOfThatName) {
    Attributes attributes;
    EXPECT_FALSE(attributes.remove("a"));
    attributes.set(attribute("b", "1"));
    for (const char* absent : {"a", "c", "", "bb"}) {
        EXPECT_FALSE(attributes.remove(absent));
        EXPECT_EQ(attributes.find(absent), nullptr);
    }
    EXPECT_TRUE(attributes.remove("b"));
    EXPECT_TRUE(attributes.empty());
}

TEST(AttributesTest, OfSeveralWithOneNameTheLastStays) {
    std::mt19937 random(1);
    for (int round = 0; round < rounds(2000); ++round) {
        Attributes set;
        std::map<std::string, std::string> expected;
        const auto count = static_cast<unsigned>(random() % 8);
        std::string names;
        for (unsigned i = 0; i < count; ++i) {
            const std::string name(1, static_cast<char>('a' + random() % 5));
            names += name;
            expected[name] = std::to_string(i);
            set.set(attribute(name, expected[name]));
        }
        std::string text;
        for (const auto& [name, value] : expected) text.append(name).append("=").append(value).append(" ");
        ASSERT_EQ(shown(set), text) << names;
    }
}

// In their order: what a reader or a copy makes.
TEST(AttributesTest, AreFilledInAsTheyCome) {
    Attributes attributes;
    attributes.set(attribute("a", "1"));
    attributes.reserve(3);
    EXPECT_EQ(shown(attributes), "a=1 ");
    {
        Attributes::Filling filling = attributes.fill();
        filling.put(attribute("b", "2").release());
        EXPECT_EQ(attributes.size(), 1U) << "they count when the filling goes";
        filling.put(attribute("c", "3").release());
    }
    EXPECT_EQ(shown(attributes), "a=1 b=2 c=3 ");
    EXPECT_EQ(attributes.find("c")->getValue(), "3");

    Attributes one;
    one.fill().put(attribute("b", "2").release());
    EXPECT_EQ(shown(one), "b=2 ");
}

}  // namespace
}  // namespace Xml::test
