#include "xml/dom/internal/TagAttributes.h"

#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/internal/TreeBuilder.h"
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

TEST(TagAttributesTest, AreNodesInTheOrderOfNamesThatKnowTheirPlaceInTheTag) {
    for (const int more : {0, 100}) {
        SCOPED_TRACE(more);
        std::unique_ptr<Element> root;
        TreeBuilder tree(root);
        tree.begin("r");
        tree.begin("a");
        TagAttributes attributes;
        attributes.add(tree.name("c"), "1");
        attributes.add(tree.name("a"), "2");
        for (int i = 0; i < more; ++i) attributes.add(tree.name("m" + std::to_string(i)), "m");
        attributes.addDefault(tree.name("b"), "3", Marks::kNoOffset);
        EXPECT_TRUE(attributes.sort());
        tree.setAttributes(attributes);
        tree.end();
        tree.end();
        const Element& a = *root->getElement(0);
        EXPECT_EQ(a.getAttributeCount(), more + 3);
        EXPECT_EQ(a.getAttribute(0)->getName(), "a");
        EXPECT_EQ(a.getAttributeValue("b"), "3");
        EXPECT_EQ(NodeAccess::order(*a.getAttribute("c")), 0U);
        EXPECT_EQ(NodeAccess::order(*a.getAttribute("a")), 1U);
        EXPECT_EQ(NodeAccess::order(*a.getAttribute("b")), static_cast<unsigned>(more) + 2U);
        EXPECT_TRUE(isDefault(*a.getAttribute("b")));
        EXPECT_FALSE(isDefault(*a.getAttribute("a")));
        root->getElement(0)->setAttribute("0", "last");
        EXPECT_GT(NodeAccess::order(*a.getAttribute(0)), static_cast<unsigned>(more) + 2U);
    }
}

TEST(TagAttributesTest, SayWhetherANameIsThereAgain) {
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    tree.begin("r");
    TagAttributes attributes;
    const std::string value = "a value that is not short", other = "another one that is not";
    for (const char* const name : {"b", "a", "c", "b"}) attributes.add(tree.name(name), value);
    attributes.setValue(1, other);
    attributes.setValue(2, "short");
    EXPECT_EQ(attributes[1].value(), other);
    EXPECT_EQ(attributes.longBytes(), 2 * value.size() + other.size());
    EXPECT_FALSE(attributes.sort());
    attributes.clear();
    EXPECT_TRUE(attributes.empty());
    EXPECT_EQ(attributes.longBytes(), 0U);
    EXPECT_TRUE(attributes.sort());
    attributes.add(tree.name("a"), "");
    attributes.add(tree.name("a"), "");
    EXPECT_FALSE(attributes.sort()) << "side by side";
}

TEST(TagAttributesTest, AreSortedHoweverManyThereAre) {
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    tree.begin("r");
    TagAttributes attributes;
    std::mt19937 random(1);
    for (int round = 0; round < rounds(3000); ++round) {
        const std::size_t count = random() % (round % 10 == 0 ? 100 : 8);
        const std::size_t different = 1 + random() % (3 * count + 1);
        attributes.clear();
        std::map<std::string, std::vector<unsigned>> orders;
        for (unsigned i = 0; i < count; ++i) {
            const std::string name = "name" + std::to_string(random() % different);
            attributes.add(tree.name(name), "");
            orders[name].push_back(i);
        }
        EXPECT_EQ(attributes.sort(), orders.size() == count);
        std::size_t place = 0;
        for (const auto& [name, expected] : orders) {
            for (const unsigned order : expected) {
                ASSERT_EQ(attributes[place].name->text, name);
                ASSERT_EQ(attributes[place].order, order);
                ++place;
            }
        }
        ASSERT_EQ(attributes.size(), place);
    }
}

}  // namespace
}  // namespace Xml::test
