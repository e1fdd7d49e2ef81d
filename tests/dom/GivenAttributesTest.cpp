#include "xml/dom/internal/GivenAttributes.h"

#include "support/Rounds.h"
#include "xml/dom/internal/NameTable.h"
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

class GivenAttributesTest : public testing::Test {
public:
    // What they are after sorting.
    Pairs sorted(const Pairs& given) {
        attributes.clear();
        for (const auto& [name, value] : given) attributes.add(names.find(name, memory), value);
        attributes.sort();
        Pairs result;
        for (const GivenAttributes::Given& each : attributes) result.emplace_back(each.name->text, each.value());
        return result;
    }

    NodeMemory memory;
    NameTable names;
    GivenAttributes attributes;
};

// The bytes of those that a node does not hold.
std::size_t longBytes(const GivenAttributes& attributes) {
    std::size_t bytes = 0;
    for (const GivenAttributes::Given& each : attributes) {
        if (!internal::isShort(each.value())) bytes += each.size;
    }
    return bytes;
}

// A map has the byte order, and keeps what came last.
Pairs inAMap(const Pairs& given) {
    std::map<std::string, std::string> map;
    for (const auto& [name, value] : given) map[name] = value;
    return {map.begin(), map.end()};
}

TEST_F(GivenAttributesTest, AreInTheByteOrderOfTheirNamesAndTheLastOfANameStays) {
    EXPECT_EQ(sorted({}), Pairs());
    EXPECT_EQ(sorted({{"b", "1"}, {"a", "2"}, {"b", "3"}, {"a-", "4"}, {"B", "5"}}),
              (Pairs{{"B", "5"}, {"a", "2"}, {"a-", "4"}, {"b", "3"}}));
    std::mt19937 random(1);
    for (int round = 0; round < rounds(3000); ++round) {
        const std::size_t count = random() % (round % 10 == 0 ? 100 : 8);
        const std::size_t different = 1 + random() % 60;
        Pairs given;
        for (std::size_t i = 0; i < count; ++i) {
            given.emplace_back("prefixed" + std::to_string(random() % different),
                               std::to_string(i) + std::string(random() % 20, '.'));
        }
        EXPECT_EQ(sorted(given), inAMap(given));
        EXPECT_EQ(attributes.size(), inAMap(given).size());
        EXPECT_EQ(attributes.longBytes(), longBytes(attributes));
    }
}

TEST_F(GivenAttributesTest, CountTheBytesOfValuesThatAreNotShort) {
    const std::string longOne(16, 'l'), shortOne(15, 's');
    sorted({{"a", longOne}, {"b", shortOne}, {"c", longOne}});
    EXPECT_EQ(attributes.longBytes(), 32U);
    attributes.setValue(0, "short");
    EXPECT_EQ(attributes[0].value(), "short");
    EXPECT_EQ(attributes.longBytes(), 16U);
    const std::string more(20, 'm');
    attributes.setValue(1, more);
    EXPECT_EQ(attributes.longBytes(), 36U);
}

TEST_F(GivenAttributesTest, BeginAnewWhenCleared) {
    EXPECT_EQ(sorted({{"b", "1"}, {"a", "a value that is not short"}}).size(), 2U);
    attributes.setPadded();
    EXPECT_TRUE(attributes.arePadded());
    attributes.clear();
    EXPECT_TRUE(attributes.empty());
    EXPECT_EQ(attributes.longBytes(), 0U);
    EXPECT_FALSE(attributes.arePadded());
}

}  // namespace
}  // namespace Xml::test
