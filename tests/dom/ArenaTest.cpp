// The memory of trees: where nodes lie, what keeps it, and when it goes.
#include "xml/dom/internal/Arena.h"

#include "support/GiveAttributes.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/internal/TreeBuilder.h"
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <set>
#include <thread>

namespace Xml::test {
namespace {

// Slabs that are counted.
std::set<void*> slabs;
std::size_t slabsMade = 0;

void* takeSlab(std::size_t bytes) {
    void* memory = nullptr;
    if (posix_memalign(&memory, Slab::kBytes, bytes) != 0) return nullptr;
    ++slabsMade;
    slabs.insert(memory);
    return memory;
}

void giveSlab(void* memory) {
    EXPECT_EQ(slabs.erase(memory), 1U);
    std::free(memory);
}

constexpr Slab::Source kCounted = {takeSlab, giveSlab};

class ArenaTest : public testing::Test {
public:
    void SetUp() override {
        Slab::setSource(&kCounted);
        slabsMade = 0;
    }
    void TearDown() override {
        EXPECT_TRUE(slabs.empty()) << "memory was not given back";
        Slab::setSource(nullptr);
    }
};

// An element with so many children, each with two attributes and a text, long ones.
std::unique_ptr<Element> wide(int children) {
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    tree.begin("root");
    for (int i = 0; i < children; ++i) {
        tree.begin("child");
        giveAttributes(
            tree, {{"short", std::to_string(i)}, {"long", "a value of more bytes than fifteen, " + std::to_string(i)}});
        tree.addText("a text of more bytes than fifteen, " + std::to_string(i));
        tree.begin("leaf");
        tree.end();
        tree.end();
    }
    tree.end();
    return root;
}

TEST_F(ArenaTest, HoldsAllNodesBelowTheTopElement) {
    const std::unique_ptr<Element> root = wide(3);
    EXPECT_FALSE(Slab::holds(root.get()));
    std::vector<const Object*> nodes;
    for (int i = 0; i < root->getChildCount(); ++i) {
        const Element& child = *root->getChild(i)->toElement();
        nodes.insert(nodes.end(),
                     {&child, child.getAttribute(0), child.getAttribute(1), child.getChild(0), child.getChild(1)});
    }
    for (const Object* node : nodes) {
        EXPECT_TRUE(Slab::holds(node));
        EXPECT_EQ(&Arena::of(node), &Arena::of(nodes[0]));
    }
    EXPECT_FALSE(Slab::holds(std::make_unique<Element>("heap").get()));
    EXPECT_FALSE(Slab::holds(std::make_unique<CharData>().get()));
    EXPECT_FALSE(Slab::holds(std::make_unique<Attribute>().get()));
    EXPECT_EQ(slabsMade, 1U);
}

TEST_F(ArenaTest, SaysHowManyBytesATreeHas) {
    const std::unique_ptr<Element> root = wide(3);
    EXPECT_EQ(Arena::bytesBelow(*root), Slab::kBytes);
    EXPECT_EQ(Arena::bytesBelow(*root->getChild(0)->toElement()), 0U);
    EXPECT_EQ(Arena::bytesBelow(Element("heap")), 0U);
    slabsMade = 0;
    const std::unique_ptr<Element> large = wide(3000);
    EXPECT_GT(slabsMade, 1U);
    EXPECT_EQ(Arena::bytesBelow(*large), slabsMade * Slab::kBytes);
    Element other("other");
    other.addChild(large->extractChild(0));
    EXPECT_EQ(Arena::bytesBelow(other), 0U);
}

// An element with so many of each kind of leaf, short and long ones.
std::unique_ptr<Element> ofLeaves(int leaves) {
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    tree.begin("root");
    for (int i = 0; i < leaves; ++i) {
        tree.begin("child");
        for (const std::size_t size : {3U, 15U, 16U, 100U, 2000U}) {
            const std::string text(size, 'x');
            tree.addComment(text);
            tree.addSection(text);
            tree.addInstruction("go", text);
        }
        tree.end();
    }
    tree.addComment("last");
    tree.end();
    return root;
}

TEST_F(ArenaTest, HoldsCommentsInstructionsAndSections) {
    std::unique_ptr<Element> root = ofLeaves(20);
    std::unique_ptr<Object> copy(root->clone());
    EXPECT_EQ(dump(copy.get()), dump(root.get()));
    const std::size_t slabsOfBoth = slabsMade;
    for (const Element* const top : {root.get(), copy->toElement()}) {
        const Element& child = *top->getElement(0);
        for (int i = 0; i < child.getChildCount(); ++i) {
            EXPECT_TRUE(Slab::holds(child.getChild(i)));
            EXPECT_EQ(child.getChild(i)->getParent(), &child);
        }
        EXPECT_EQ(top->getChild(20)->getParent(), top);
    }
    copy.reset();
    EXPECT_GT(slabs.size(), 0U);
    EXPECT_LT(slabs.size(), slabsOfBoth);
    // One by one, once the tree was changed.
    static_cast<Comment*>(root->getElement(3)->getChild(9))->setText(std::string(50, 'y'));
    static_cast<Instruction*>(root->getElement(3)->getChild(11))->setContent("short");
    static_cast<CharData*>(root->getElement(3)->getChild(10))->setData("<");
    const std::unique_ptr<Object> taken(root->getElement(3)->extractChild(9));
    root.reset();
    EXPECT_EQ(textOf(*taken), "<!--" + std::string(50, 'y') + "-->");
}

TEST_F(ArenaTest, TakesNothingForAnElementAlone) {
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    tree.begin("root");
    tree.end();
    EXPECT_EQ(slabsMade, 0U);
}

TEST_F(ArenaTest, TakesNothingForSmallCopies) {
    for (const int children : {0, 1, 10, 30, 1000}) {
        SCOPED_TRACE(children);
        const std::unique_ptr<Element> root = wide(children);
        slabsMade = 0;
        const Element copy(*root);
        EXPECT_EQ(slabsMade > 0, children > 20);
        EXPECT_EQ(dump(&copy), dump(root.get()));
    }
}

// What is done to a tree of many slabs, and whether its memory is whole after that.
TEST_F(ArenaTest, IsDroppedWholeUnlessTheTreeWasChanged) {
    const struct {
        const char* name;
        bool whole;
        std::function<void(Element&)> change;
    } kCases[] = {
        {"nothing", true, [](Element&) {}},
        {"all is looked at", true,
         [](Element& root) {
             for (int i = 0; i < root.getChildCount(); ++i) {
                 const Element& child = *root.getChild(i)->toElement();
                 EXPECT_EQ(child.getAttribute("long")->getValue(),
                           "a value of more bytes than fifteen, " + std::to_string(i));
                 EXPECT_EQ(static_cast<const CharData*>(child.getChild(0))->data(),
                           "a text of more bytes than fifteen, " + std::to_string(i));
             }
         }},
        {"the top gets a name", true, [](Element& root) { root.setName("another"); }},
        {"a long value is replaced", true,
         [](Element& root) { root.getElement(7)->getAttribute("long")->setValue("short"); }},
        {"a short value is replaced", false,
         [](Element& root) { root.getElement(7)->getAttribute("short")->setValue("a value that needs memory"); }},
        {"a text is replaced", true,
         [](Element& root) { root.getElement(7)->getChild(0)->toCharData()->setData("another text with memory"); }},
        {"a text may be changed", false, [](Element& root) { root.getElement(7)->getChild(0)->toCharData()->data(); }},
        {"an element gets a name", false,
         [](Element& root) { root.getElement(7)->setName("a-name-that-needs-memory"); }},
        {"a child comes to the top", false, [](Element& root) { root.addElement("new", "text"); }},
        {"a child comes in front", false,
         [](Element& root) { root.insertChild(root.getChild(0), new Element("new")); }},
        {"a child comes to an element", false, [](Element& root) { root.getElement(7)->addElement("new", "text"); }},
        {"an attribute comes to the top", false, [](Element& root) { root.setAttribute("new", "text"); }},
        {"an attribute comes to an element", false,
         [](Element& root) { root.getElement(7)->setAttribute("new", "text"); }},
        {"an attribute goes", false, [](Element& root) { root.getElement(7)->removeAttribute("long"); }},
        {"an attribute goes by number", false, [](Element& root) { root.getElement(7)->removeAttribute(0); }},
        {"the text of an element changes", false, [](Element& root) { root.getElement(7)->setCharData("another"); }},
        {"the children of an element go", false, [](Element& root) { root.getElement(7)->killChildren(); }},
        {"all children go", false, [](Element& root) { root.killChildren(); }},
        {"a child of the top goes", false, [](Element& root) { delete root.extractChild(7); }},
        {"a child of an element goes", false, [](Element& root) { delete root.getElement(7)->extractChild(0); }},
        {"a child goes and comes back", false, [](Element& root) { root.addChild(root.extractChild(7)); }},
        {"an attribute is asked for its text", false,
         [](Element& root) { root.getElement(7)->getAttribute(0)->toString(); }},
        {"an element is asked for its text", false, [](Element& root) { root.getElement(7)->toString(); }},
        {"a text is asked for what it means", false,
         [](Element& root) { root.getElement(7)->getChild(0)->toCharData()->getData(); }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        std::unique_ptr<Element> root = wide(1000);
        ASSERT_GT(slabs.size(), 5U);
        ASSERT_NE(Arena::wholeBelow(*root), nullptr);
        c.change(*root);
        EXPECT_EQ(Arena::wholeBelow(*root) != nullptr, c.whole);
        root.reset();
        EXPECT_TRUE(slabs.empty());
    }
}

TEST_F(ArenaTest, GoesSlabBySlabWithTheLastNodeInEach) {
    std::unique_ptr<Element> root = wide(2000);
    const std::size_t before = slabs.size();
    ASSERT_GT(before, 10U);
    std::unique_ptr<Object> kept(root->extractChild(1000));
    const std::string text = dump(kept->toElement());
    root.reset();
    EXPECT_LE(slabs.size(), 3U) << "that of the child, of its array, and the first";
    EXPECT_GE(slabs.size(), 1U);
    EXPECT_EQ(dump(kept->toElement()), text);
    kept->toElement()->setAttribute("new", "value");
    kept->toElement()->getChild(0)->toCharData()->data() += "more text than there was";
}

TEST_F(ArenaTest, OutlivesTheTopElementWithoutChildren) {
    std::unique_ptr<Element> root = wide(100);
    std::vector<std::unique_ptr<Object>> parts;
    while (root->getChildCount() > 0) parts.emplace_back(root->extractChild(0));
    root->addElement("new", "text");
    EXPECT_EQ(dump(root.get()), "root(new('text'))");
    std::shuffle(parts.begin(), parts.end(), std::mt19937(20261122));
    std::thread([&parts] { parts.resize(50); }).join();
    for (const auto& part : parts) EXPECT_EQ(part->toElement()->getName(), "child");
}

void takeApartAndPutTogether(int times, int mostChildren) {
    std::mt19937 dice(20261122);
    for (int round = 0; round < times; ++round) {
        std::vector<std::unique_ptr<Element>> trees;
        for (const int children : {0, 1, 3, mostChildren}) trees.push_back(wide(children));
        for (const auto& tree : std::vector<const Element*>{trees[2].get(), trees[3].get()})
            trees.push_back(std::unique_ptr<Element>(tree->clone()->toElement()));
        for (int i = 0; i < 60; ++i) {
            Element& from = *trees[dice() % trees.size()];
            Element& to = *trees[dice() % trees.size()];
            if (from.getChildCount() == 0) continue;
            Object* const child =
                from.extractChild(static_cast<int>(dice() % static_cast<unsigned>(from.getChildCount())));
            if (dice() % 3 == 0 && child->isElement() && child->toElement()->getChildCount() > 0) {
                to.addChild(child->toElement()->extractChild(0));
            }
            if (dice() % 3 == 0) {
                delete child;
            } else {
                to.insertChild(to.getChildCount() > 0 ? to.getChild(0) : nullptr, child);
            }
        }
        std::shuffle(trees.begin(), trees.end(), dice);
        while (!trees.empty()) trees.pop_back();
        ASSERT_TRUE(slabs.empty());
    }
}

TEST_F(ArenaTest, TakesATreeApartAndPutsItTogetherAnyWay) { takeApartAndPutTogether(rounds(40), 300); }

// So many that their attributes lie apart.
constexpr int kMany = 8000;

TEST_F(ArenaTest, TakesALargeTreeApartAndPutsItTogetherAnyWay) { takeApartAndPutTogether(rounds(3), kMany); }

TEST_F(ArenaTest, KeepsTheAttributesOfLargeTreesApart) {
    const std::unique_ptr<Element> root = wide(kMany);
    const std::unique_ptr<Object> copy(root->clone());
    for (const Object* const node : std::vector<const Object*>{root.get(), copy.get()}) {
        const Element* const top = node->toElement();
        const auto isTogether = [&](int place) {
            const Element& child = *top->getElement(place);
            return &Slab::of(&child) == &Slab::of(child.getAttribute("short"));
        };
        EXPECT_TRUE(isTogether(0)) << "small trees need one slab";
        std::set<Slab*> withAttributes;
        std::set<Slab*> withNodes;
        for (int i = kMany * 3 / 4; i < kMany; ++i) {
            const Element& child = *top->getElement(i);
            for (const char* const name : {"short", "long"}) withAttributes.insert(&Slab::of(child.getAttribute(name)));
            withNodes.insert(&Slab::of(&child));
            withNodes.insert(&Slab::of(child.getChild(0)));
        }
        EXPECT_GT(withAttributes.size(), 3U);
        EXPECT_GT(withNodes.size(), 3U);
        for (Slab* const slab : withAttributes) EXPECT_EQ(withNodes.count(slab), 0U);
    }
}

TEST_F(ArenaTest, KeepsTreesWithinTreesApart) {
    std::unique_ptr<Element> outer = wide(300);
    for (int i = 0; i < 5; ++i) outer->getElement(i)->addChild(wide(300).release());
    EXPECT_EQ(Arena::wholeBelow(*outer), nullptr);
    const Element& inner = *outer->getElement(3)->getElement("root");
    EXPECT_NE(Arena::wholeBelow(inner), nullptr);
}

// Arrays of more children or attributes than a slab takes are in the heap.
TEST_F(ArenaTest, DropsWideElementsToo) {
    for (const bool changed : {false, true}) {
        std::unique_ptr<Element> root;
        TreeBuilder tree(root);
        tree.begin("root");
        for (const int count : {1, 2, 126, 127, 128, 1000}) {
            tree.begin("child");
            std::vector<std::pair<std::string, std::string>> attributes;
            for (int i = 0; i < count; ++i) attributes.emplace_back("a" + std::to_string(i), "v");
            giveAttributes(tree, attributes);
            for (int i = 0; i < count; ++i) tree.addText("t");
            tree.end();
        }
        tree.end();
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(root->getElement(i)->getChildCount(), root->getElement(i)->getAttributeCount());
        EXPECT_EQ(root->getElement(5)->getChildCount(), 1000);
        EXPECT_NE(Arena::wholeBelow(*root), nullptr);
        if (changed) root->getElement(5)->killChildren();
    }
}

// The array of children may be the only thing in its slab, and goes with the tree then as the others do.
TEST_F(ArenaTest, DropsTheArraysOfWideElementsOnce) {
    constexpr int kMostBefore = 1100;  // a slab's worth
    std::size_t most = 0;
    for (int before = 0; before < kMostBefore; ++before) {
        std::unique_ptr<Element> root;
        TreeBuilder tree(root);
        tree.begin("root");
        const auto addLeaves = [&tree](int count) {
            for (int i = 0; i < count; ++i) {
                tree.begin("leaf");
                tree.end();
            }
        };
        addLeaves(before);
        tree.begin("wide");
        std::vector<std::pair<std::string, std::string>> attributes;
        for (int i = 0; i < 128; ++i) attributes.emplace_back("a" + std::to_string(i), "");
        giveAttributes(tree, attributes);
        addLeaves(127);
        tree.end();
        tree.end();
        most = std::max(most, slabs.size());
        root.reset();
        ASSERT_TRUE(slabs.empty()) << before;
    }
    EXPECT_GT(most, 1U);
}

TEST_F(ArenaTest, MakesTheStringOfALongTextOnce) {
    const std::unique_ptr<Element> root = wide(1);
    const Attribute& attribute = *root->getElement(0)->getAttribute("long");
    const std::string_view before = NodeAccess::text(attribute);
    const DataHolder& value = attribute.getValue();
    EXPECT_EQ(value, before);
    EXPECT_NE(value.data(), before.data());
    EXPECT_EQ(&attribute.getValue(), &value);
    EXPECT_EQ(NodeAccess::text(attribute).data(), value.data());
    root->getElement(0)->getAttribute("long")->setValue("another");
    EXPECT_EQ(value, "another") << "the reference is to the value that the attribute has";
}

TEST_F(ArenaTest, HoldsTextsOfEveryLength) {
    for (std::size_t length = 0; length < 3000; length += length < 40 || (length > 1000 && length < 1050) ? 1 : 97) {
        SCOPED_TRACE(length);
        const std::string text(length, 'x');
        std::unique_ptr<Element> root;
        TreeBuilder tree(root);
        tree.begin("root");
        tree.begin("child");
        giveAttributes(tree, {{"a", text}});
        tree.addText(text);
        tree.end();
        tree.end();
        Element& child = *root->getElement(0);
        EXPECT_EQ(NodeAccess::text(*child.getAttribute(0)), text);
        EXPECT_EQ(child.getAttribute(0)->getValue(), text);
        const CharData& held = *child.getChild(0)->toCharData();
        EXPECT_EQ(NodeAccess::text(held), text);
        EXPECT_EQ(held.getData(), text);
        EXPECT_EQ(held.data(), text);
        const Element copy(*root);
        EXPECT_EQ(dump(&copy), dump(root.get()));
        child.getAttribute(0)->setValue("new");
        child.getChild(0)->toCharData()->setData("new");
        EXPECT_EQ(dump(root.get()), "root(child[a=new]('new'))");
    }
}

// Many names take turns, some of them changed since the tree was made, some parts from other trees.
TEST_F(ArenaTest, CopiesTreesOfManyNames) {
    std::mt19937 random(1);
    std::unique_ptr<Element> root;
    TreeBuilder tree(root);
    tree.begin("root");
    const auto anyName = [&random] { return "name-" + std::to_string(random() % 300); };
    for (int i = 0; i < 2000; ++i) {
        tree.begin(anyName());
        giveAttributes(tree, {{anyName(), "1"}});
        tree.end();
    }
    tree.end();
    for (int i = 0; i < root->getChildCount(); i += 7) root->getElement(i)->setName("renamed");
    for (int i = 0; i < 50; ++i) root->addChild(wide(3).release());

    const Element copy(*root);
    EXPECT_EQ(dump(&copy), dump(root.get()));
    EXPECT_TRUE(NodeAccess::sharesName(*copy.getElement(0)));
}

// Members, bases and locals lie wherever the caller has them.
TEST_F(ArenaTest, LeavesNodesElsewhereThanInTheHeapAlone) {
    struct alignas(16) Holder {
        long before = 1;
        Element element{"member"};
        long between = 2;
        CharData text{DataHolder("text")};
        Attribute attribute{"a", "v"};
    };
    struct First {
        virtual ~First() = default;
    };
    class Second : public First, public Element {
    public:
        Second() : Element("second") {}
        Second(const Second& other) : First(), Element(other) {}
        Object* clone() const override { return new Second(*this); }
    };
    Holder holder;
    int unaligned = 0;
    for (const Object* node : {static_cast<Object*>(&holder.element), static_cast<Object*>(&holder.text),
                               static_cast<Object*>(&holder.attribute)})
        unaligned += Slab::holds(node) ? 1 : 0;
    EXPECT_GT(unaligned, 0);
    const auto second = std::make_unique<Second>();
    EXPECT_TRUE(Slab::holds(static_cast<Object*>(second.get())));
    for (Element* element : {&holder.element, static_cast<Element*>(second.get())}) {
        element->addElement("child", "a text of more bytes than fifteen");
        element->addElement("child", "another");
        element->setAttribute("name", "a value of more bytes than fifteen");
        element->setName("renamed");
        element->removeAttribute("name");
        delete element->extractChild(0);
        EXPECT_EQ(element->toString(), "renamed");
        const std::unique_ptr<Object> copy(element->clone());
        EXPECT_EQ(dump(copy->toElement()), "renamed(child('another'))");
        element->killChildren();
    }
    holder.text.setData("a text of more bytes than fifteen");
    EXPECT_EQ(holder.text.getData(), holder.text.data());
    holder.attribute.setValue("a value of more bytes than fifteen");
    EXPECT_EQ(holder.attribute.toString(), "a=\"a value of more bytes than fifteen\"");
}

#ifdef __SANITIZE_ADDRESS__
TEST_F(ArenaTest, LeavesDeletedNodesToTheAddressSanitizer) {
    const std::unique_ptr<Element> root = wide(3);
    const Object* const node = root->extractChild(1);
    delete node;
    EXPECT_DEATH(node->getParent(), "use-after-poison");
}
#endif

}  // namespace
}  // namespace Xml::test
