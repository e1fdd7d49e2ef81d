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
    attributes.append(attribute("b", "3"));
    attributes.sort();
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

// Appending and sorting once leaves what setting one after the other leaves.
TEST(AttributesTest, OfSeveralWithOneNameTheLastStays) {
    std::mt19937 random(1);
    for (int round = 0; round < rounds(2000); ++round) {
        Attributes appended;
        Attributes set;
        std::map<std::string, std::string> expected;
        const auto count = static_cast<unsigned>(random() % 8);
        appended.reserve(count);
        std::string names;
        for (unsigned i = 0; i < count; ++i) {
            const std::string name(1, static_cast<char>('a' + random() % 5));
            names += name;
            expected[name] = std::to_string(i);
            appended.append(attribute(name, expected[name]));
            set.set(attribute(name, expected[name]));
        }
        appended.sort();
        std::string text;
        for (const auto& [name, value] : expected) text.append(name).append("=").append(value).append(" ");
        ASSERT_EQ(shown(appended), text) << names;
        ASSERT_EQ(shown(set), text) << names;
    }
}

}  // namespace
}  // namespace Xml::test
