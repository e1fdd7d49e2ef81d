#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// Each element carries a number of its own; results show it.
std::string id(const Element* element) {
    return element == nullptr ? "none" : element->getAttributeValue("id").toString();
}

Element* add(Element& parent, const char* name, const char* number) {
    auto* child = new Element(name);
    child->setAttribute("id", number);
    parent.addChild(child);
    return child;
}

// r
//   'text'
//   x 1 (k=v)
//     x 2
//       y 3 (k=v)
//     'x'
//   y 4
//     x 5 (k="")
//   x 6
struct Tree {
    Element root{"r"};
    Dtd dtd{"d"};

    Tree() {
        root.setAttribute("id", "0");
        root.addChild(new CharData(DataHolder("text")));
        Element* one = add(root, "x", "1");
        Element* two = add(*one, "x", "2");
        Element* three = add(*two, "y", "3");
        one->addChild(new CharData(DataHolder("x")));
        Element* four = add(root, "y", "4");
        Element* five = add(*four, "x", "5");
        add(root, "x", "6");
        one->setAttribute("k", "v");
        three->setAttribute("k", "v");
        five->setAttribute("k", "");
        dtd.addAttDecl("y", "k", new AttStringType(DEFAULT, "by default"));
        dtd.addAttDecl("x", "k", new AttStringType(DEFAULT, "v"));
        root.setDtd(&dtd);
    }
};

TEST(ElementSearchTest, TheNthChildElementIsFoundWhateverItsName) {
    Tree tree;
    const Element& constant = tree.root;
    const char* const kExpected[] = {"1", "4", "6", "none", "none"};
    for (int n = 0; n < 5; ++n) {
        EXPECT_EQ(id(tree.root.getElement(n)), kExpected[n]) << n;
        EXPECT_EQ(constant.getElement(n), tree.root.getElement(n));
    }
    EXPECT_EQ(id(tree.root.findElement("y")->getElement(0)), "none");
}

struct NameCase {
    const char* name;
    int n;
    const char* child;       // by getElement
    const char* descendant;  // by findElement
    int left;                // the count that the search leaves
};

TEST(ElementSearchTest, ElementsAreFoundByNameAmongTheChildrenAndInDocumentOrderBelow) {
    const NameCase kCases[] = {
        {"x", 0, "1", "1", 0},       {"x", 1, "6", "2", 0},       {"x", 2, "none", "5", 0},
        {"x", 3, "none", "6", 0},    {"x", 4, "none", "none", 0}, {"x", 9, "none", "none", 5},
        {"y", 0, "4", "3", 0},       {"y", 1, "none", "4", 0},    {"y", 2, "none", "none", 0},
        {"y", 5, "none", "none", 3}, {"r", 0, "none", "none", 0}, {"r", 2, "none", "none", 2},
        {"X", 1, "none", "none", 1}, {"", 0, "none", "none", 0},
    };
    Tree tree;
    Element& root = tree.root;
    const Element& constant = root;
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.n));
        EXPECT_EQ(id(root.getElement(c.name, c.n)), c.child);
        EXPECT_EQ(id(constant.getElement(c.name, c.n)), c.child);
        EXPECT_EQ(id(root.findElement(c.name, c.n)), c.descendant);
        EXPECT_EQ(id(constant.findElement(c.name, c.n)), c.descendant);
        int n = c.n;
        EXPECT_EQ(id(root.findElement(c.name, &n)), c.descendant);
        EXPECT_EQ(n, c.left);
        n = c.n;
        EXPECT_EQ(id(constant.findElement(c.name, &n)), c.descendant);
        EXPECT_EQ(n, c.left);
    }
}

TEST(ElementSearchTest, ACountBelowOneFindsTheFirstMatchAndStaysAsItIs) {
    Tree tree;
    const Element& constant = tree.root;
    for (int start : {0, -1, -7}) {
        SCOPED_TRACE(start);
        int n = start;
        EXPECT_EQ(id(tree.root.findElement("y", &n)), "3");
        EXPECT_EQ(n, start);
        EXPECT_EQ(id(constant.findElement("y", start)), "3");
        EXPECT_EQ(id(tree.root.findElementByAttribute("k", "v", &n)), "1");
        EXPECT_EQ(n, start);
    }
}

TEST(ElementSearchTest, AnIndexBelowZeroFindsNoChild) {
    Tree tree;
    const Element& constant = tree.root;
    for (int n : {-1, -7, -2147483647 - 1}) {
        SCOPED_TRACE(n);
        EXPECT_EQ(tree.root.getElement(n), nullptr);
        EXPECT_EQ(constant.getElement(n), nullptr);
        EXPECT_EQ(tree.root.getElement("x", n), nullptr);
        EXPECT_EQ(constant.getElement("x", n), nullptr);
        EXPECT_EQ(tree.root.getElementByAttribute("k", "v", n), nullptr);
        EXPECT_EQ(constant.getElementByAttribute("k", "v", n), nullptr);
    }
}

TEST(ElementSearchTest, OneCountRunsThroughSeveralSearches) {
    Tree tree;
    int n = 3;
    EXPECT_EQ(tree.root.getElement(0)->findElement("x", &n), nullptr);
    EXPECT_EQ(n, 2);
    EXPECT_EQ(tree.root.getElement(1)->findElement("x", &n), nullptr);
    EXPECT_EQ(n, 1);
    EXPECT_EQ(id(tree.root.findElement("x", &n)), "2");
    EXPECT_EQ(n, 0);
}

TEST(ElementSearchTest, TheCountIsZeroWhenItIsLeftOut) {
    Tree tree;
    const Element& constant = tree.root;
    EXPECT_EQ(id(tree.root.getElement("x")), "1");
    EXPECT_EQ(id(constant.getElement("x")), "1");
    EXPECT_EQ(id(tree.root.findElement("y")), "3");
    EXPECT_EQ(id(constant.findElement("y")), "3");
    EXPECT_EQ(id(tree.root.getElementByAttribute("k", "v")), "1");
    EXPECT_EQ(id(constant.getElementByAttribute("k", "v")), "1");
    EXPECT_EQ(id(tree.root.findElementByAttribute("id", "3")), "3");
    EXPECT_EQ(id(constant.findElementByAttribute("id", "3")), "3");
}

struct AttributeCase {
    const char* attribute;
    const char* value;
    int n;
    const char* child;       // by getElementByAttribute: what is stored alone
    const char* descendant;  // by findElementByAttribute: defaults as well
    int left;
};

TEST(ElementSearchTest, ChildrenAreFoundByStoredAttributesDescendantsByDefaultsAsWell) {
    const AttributeCase kCases[] = {
        {"k", "v", 0, "1", "1", 0},
        {"k", "v", 1, "none", "2", 0},
        {"k", "v", 2, "none", "3", 0},
        {"k", "v", 3, "none", "6", 0},
        {"k", "v", 6, "none", "none", 2},
        {"k", "by default", 0, "none", "4", 0},
        {"k", "by default", 1, "none", "none", 0},
        {"k", "", 0, "none", "5", 0},
        {"k", "", 3, "none", "none", 2},
        {"id", "4", 0, "4", "4", 0},
        {"id", "0", 0, "none", "none", 0},
        {"none", "", 0, "none", "1", 0},
        {"none", "", 5, "none", "6", 0},
        {"none", "", 6, "none", "none", 0},
        {"none", "v", 1, "none", "none", 1},
        {"", "", 1, "none", "2", 0},
    };
    Tree tree;
    Element& root = tree.root;
    const Element& constant = root;
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.attribute) + "=" + c.value + " " + std::to_string(c.n));
        MessageCollector collector;
        EXPECT_EQ(id(root.getElementByAttribute(c.attribute, c.value, c.n)), c.child);
        EXPECT_EQ(id(constant.getElementByAttribute(c.attribute, c.value, c.n)), c.child);
        EXPECT_EQ(id(root.findElementByAttribute(c.attribute, c.value, c.n)), c.descendant);
        EXPECT_EQ(id(constant.findElementByAttribute(c.attribute, c.value, c.n)), c.descendant);
        int n = c.n;
        EXPECT_EQ(id(root.findElementByAttribute(c.attribute, c.value, &n)), c.descendant);
        EXPECT_EQ(n, c.left);
        n = c.n;
        EXPECT_EQ(id(constant.findElementByAttribute(c.attribute, c.value, &n)), c.descendant);
        EXPECT_EQ(n, c.left);
        EXPECT_TRUE(collector.texts().empty());
    }
}

TEST(ElementSearchTest, WithoutALinkToTheDtdNoDefaultIsFoundAndTheEmptyValueFindsElementsWithoutTheAttribute) {
    Tree tree;
    tree.root.setDtd(nullptr);
    EXPECT_EQ(id(tree.root.findElementByAttribute("k", "v", 1)), "3");
    EXPECT_EQ(id(tree.root.findElementByAttribute("k", "by default")), "none");
    EXPECT_EQ(id(tree.root.findElementByAttribute("k", "")), "2");
    EXPECT_EQ(id(tree.root.findElementByAttribute("k", "", 1)), "4");
    EXPECT_EQ(id(tree.root.findElementByAttribute("k", "", 2)), "5");
    EXPECT_EQ(id(tree.root.findElementByAttribute("k", "", 3)), "6");

    // Each element answers by its own link.
    tree.root.getElement("y")->setDtd(&tree.dtd);
    EXPECT_EQ(id(tree.root.findElementByAttribute("k", "by default")), "4");
}

TEST(ElementSearchTest, AllElementsOfANameAreAppendedInDocumentOrder) {
    Tree tree;
    const Element& constant = tree.root;
    const struct {
        const char* name;
        std::vector<std::string> ids;
    } kCases[] = {{"x", {"0", "1", "2", "5", "6"}}, {"y", {"0", "3", "4"}}, {"r", {"0"}}, {"", {"0"}}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        std::vector<Element*> found = {&tree.root};
        std::vector<const Element*> constFound = {&tree.root};
        tree.root.findAllElements(c.name, found);
        constant.findAllElements(c.name, constFound);
        std::vector<std::string> ids;
        for (const Element* element : found) ids.push_back(id(element));
        EXPECT_EQ(ids, c.ids);
        EXPECT_EQ(std::vector<const Element*>(found.begin(), found.end()), constFound);
    }
}

TEST(ElementSearchTest, TheSecondOfThreeChildrenOfWhichTheMiddleHasAnotherNameIsTheLast) {
    Element root("r");
    add(root, "x", "1");
    add(root, "y", "2");
    add(root, "x", "3");
    EXPECT_EQ(id(root.getElement("x", 1)), "3");
    EXPECT_EQ(root.getElement("x", 2), nullptr);
}

TEST(ElementSearchTest, NothingIsFoundInAnEmptyElementOrAmongTexts) {
    Element root("r");
    for (int i = 0; i < 2; ++i) {
        int n = 1;
        EXPECT_EQ(root.getElement(0), nullptr);
        EXPECT_EQ(root.getElement("r"), nullptr);
        EXPECT_EQ(root.findElement("r"), nullptr);
        EXPECT_EQ(root.findElementByAttribute("k", "", &n), nullptr);
        EXPECT_EQ(n, 1);
        root.addChild(new CharData(DataHolder("r")));
        root.setAttribute("k", "");
    }
}

TEST(ElementSearchTest, AnElementWhoseNameWasRefusedIsFoundUnderTheEmptyName) {
    MessageCollector collector;
    Element root("r");
    root.addElement("9", "text");
    EXPECT_EQ(root.getElement(""), root.getChild(0));
    EXPECT_EQ(root.findElement(""), root.getChild(0));
    EXPECT_EQ(root.findElement("9"), nullptr);
}

TEST(ElementSearchTest, WhatIsFoundInANonConstTreeCanBeChanged) {
    Tree tree;
    tree.root.findElement("y")->setName("z");
    tree.root.getElementByAttribute("id", "6")->setName("z");
    tree.root.findElementByAttribute("id", "5")->setName("z");
    std::vector<Element*> found;
    tree.root.findAllElements("z", found);
    EXPECT_EQ(found.size(), 3U);
}

}  // namespace
}  // namespace Xml::test
