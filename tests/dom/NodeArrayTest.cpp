#include "xml/dom/NodeArray.h"

#include "support/GiveAttributes.h"
#include "support/Rounds.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Element.h"
#include "xml/dom/internal/TreeBuilder.h"
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

// Nodes leave the lowest bits of their addresses free.
struct alignas(8) Eight {};
using Array = internal::NodeArray<Eight>;

std::vector<Eight*> shown(const Array& array) {
    const auto span = array.span();
    EXPECT_EQ(span.size(), array.size());
    EXPECT_EQ(span.empty(), array.empty());
    for (std::size_t i = 0; i < array.size(); ++i) EXPECT_EQ(span[i], array[i]);
    return {span.begin(), span.end()};
}

TEST(NodeArrayTest, IsOneWord) { EXPECT_EQ(sizeof(Array), sizeof(void*)); }

TEST(NodeArrayTest, DoesWhatAListOfPointersDoes) {
    std::mt19937 dice(20261122);
    std::vector<Eight> nodes(200);
    for (int round = 0; round < rounds(200); ++round) {
        Array array;
        std::vector<Eight*> expected;
        const auto next = [&dice](std::size_t below) { return static_cast<std::size_t>(dice() % below); };
        for (int i = 0; i < 60; ++i) {
            SCOPED_TRACE(std::to_string(round) + "/" + std::to_string(i));
            Eight* const node = &nodes[next(nodes.size())];
            const auto at = [&expected](std::size_t place) {
                return expected.begin() + static_cast<std::ptrdiff_t>(place);
            };
            switch (next(8)) {
            case 0:
            case 1:
                array.append(node);
                expected.push_back(node);
                break;
            case 2: {
                const std::size_t place = next(expected.size() + 1);
                array.insert(place, node);
                expected.insert(at(place), node);
                break;
            }
            case 3:
            case 4: {
                if (expected.empty()) break;
                const std::size_t place = next(expected.size());
                ASSERT_EQ(array.remove(place), expected[place]);
                expected.erase(at(place));
                break;
            }
            case 5:
                if (expected.empty()) break;
                array.set(expected.size() / 2, node);
                expected[expected.size() / 2] = node;
                break;
            case 6: array.reserve(next(2 * expected.size() + 2)); break;
            default:
                if (next(5) != 0) break;
                expected.resize(expected.size() / 2);
                array.truncate(expected.size());
            }
            ASSERT_EQ(shown(array), expected);
        }
    }
}

TEST(NodeArrayTest, StaysWhereItIsWhileThereIsRoom) {
    Eight nodes[10];
    for (const std::size_t count : {2, 3, 10}) {
        Array array;
        array.reserve(count);
        array.append(nodes);
        Eight* const* const first = array.span().begin();
        for (std::size_t i = 1; i < count; ++i) array.append(nodes + i);
        EXPECT_EQ(array.span().begin(), first);
        while (!array.empty()) array.remove(0);
        for (std::size_t i = 0; i < count; ++i) array.append(nodes + i);
        EXPECT_EQ(array.span().begin(), first) << "what was taken out can be put back";
    }
}

TEST(NodeArrayTest, IsFilledAtItsEnd) {
    Eight nodes[5];
    for (const std::size_t count : {0U, 1U, 2U, 5U}) {
        for (std::size_t before = 0; before <= count; ++before) {
            Array array;
            array.reserve(count);
            for (std::size_t i = 0; i < before; ++i) array.append(nodes + i);
            {
                Array::Filling filling(array);
                for (std::size_t i = before; i < count; ++i) filling.put(nodes + i);
            }
            std::vector<Eight*> expected;
            for (std::size_t i = 0; i < count; ++i) expected.push_back(nodes + i);
            EXPECT_EQ(shown(array), expected);
        }
    }
}

// An element that was built with so many attributes and children, which lie beside it in the memory of the tree.
std::unique_ptr<Element> built(int count) {
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    tree.begin("root");
    tree.begin("element");
    std::vector<std::pair<std::string, std::string>> attributes;
    for (int i = 0; i < count; ++i) attributes.emplace_back(std::string(1, static_cast<char>('a' + i)), "built");
    giveAttributes(tree, attributes);
    for (int i = 0; i < count; ++i) {
        tree.begin("child");
        tree.end();
    }
    tree.end();
    tree.end();
    return root;
}

TEST(NodeArrayTest, IsEditedWhereTheTreeHasItsMemory) {
    std::mt19937 dice(20261123);
    const auto next = [&dice](std::size_t below) { return static_cast<int>(dice() % below); };
    for (int round = 0; round < rounds(400); ++round) {
        SCOPED_TRACE(round);
        const std::unique_ptr<Element> root = built(round % 12);
        Element& element = *root->getChild(0)->toElement();
        std::vector<const Object*> children;
        std::map<std::string, std::string> attributes;
        for (int i = 0; i < round % 12; ++i) {
            children.push_back(element.getChild(i));
            attributes[element.getAttribute(i)->getName()] = "built";
        }
        for (int i = 0; i < 12; ++i) {
            const std::string name(1, static_cast<char>('a' + next(13)));
            switch (next(5)) {
            case 0:
                if (children.empty()) break;
                {
                    const int place = next(children.size());
                    const std::unique_ptr<Object> taken(element.extractChild(element.getChild(place)));
                    ASSERT_EQ(taken.get(), children[static_cast<std::size_t>(place)]);
                    children.erase(children.begin() + place);
                }
                break;
            case 1:
                children.push_back(new Element("new"));
                element.addChild(const_cast<Object*>(children.back()));
                break;
            case 2:
                element.setAttribute(name, std::string("set"));
                attributes[name] = "set";
                break;
            default: element.removeAttribute(name); attributes.erase(name);
            }
            ASSERT_EQ(element.getChildCount(), static_cast<int>(children.size()));
            for (std::size_t n = 0; n < children.size(); ++n)
                ASSERT_EQ(element.getChild(static_cast<int>(n)), children[n]);
            ASSERT_EQ(element.getAttributeCount(), static_cast<int>(attributes.size()));
            int at = 0;
            for (const auto& [itsName, value] : attributes) {
                ASSERT_EQ(element.getAttribute(at)->getName(), itsName);
                ASSERT_EQ(element.getAttribute(at++)->getValue(), value);
            }
        }
    }
}

}  // namespace
}  // namespace Xml::test
