// What an attribute is in its tag: where it stands, and whether the document type supplied it.
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/internal/TreeBuilder.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// The names in the order of the tag, with blanks between them.
std::string tagOf(const Element& element) {
    const AttributeSpan all = NodeAccess::attributes(element);
    std::vector<const Attribute*> sorted(all.begin(), all.end());
    std::stable_sort(sorted.begin(), sorted.end(), [](const Attribute* a, const Attribute* b) {
        return NodeAccess::order(*a) < NodeAccess::order(*b);
    });
    std::string names;
    for (const Attribute* const attribute : sorted) {
        if (!names.empty()) names += ' ';
        names += attribute->getName();
    }
    return names;
}

Element with(const std::string& names) {
    Element element("a");
    for (const char name : names) element.setAttribute(std::string(1, name), "1");
    return element;
}

TEST(TagTest, ANewAttributeComesLastAndAReplacedOneKeepsItsPlace) {
    Element element = with("cab");
    EXPECT_EQ(tagOf(element), "c a b");
    EXPECT_EQ(element.toString(), "a a=\"1\" b=\"1\" c=\"1\"");
    EXPECT_EQ(element.getAttribute(0)->getName(), "a");
    element.setAttribute("c", "2");
    element.setAttribute("a", "2");
    EXPECT_EQ(tagOf(element), "c a b");
    element.removeAttribute("c");
    element.setAttribute("c", "3");
    EXPECT_EQ(tagOf(element), "a b c");
    element.removeAttribute(1);
    element.removeAttribute("a");
    element.setAttribute("a", "3");
    EXPECT_EQ(tagOf(element), "c a");
}

TEST(TagTest, CopiesHaveTheSameOrder) {
    std::unique_ptr<Element> top = std::make_unique<Element>("top");
    for (int i = 0; i < 200; ++i) top->addChild(new Element(with("zyx")));
    const std::unique_ptr<Object> copy(top->clone());
    for (const Element* const each : {top.get(), copy->toElement()}) {
        EXPECT_EQ(tagOf(*each->getElement(150)), "z y x");
    }
    Element& one = *copy->toElement()->getElement(3);
    one.setAttribute("a", "");
    EXPECT_EQ(tagOf(one), "z y x a");
    EXPECT_EQ(tagOf(Element(one)), "z y x a");
}

TEST(TagTest, WhatTheDialectReadsIsInTheOrderOfTheNamesAndNewOnesFollow) {
    const std::unique_ptr<Element> top = readElement("<a><b y='1' x='2'/></a>");
    Element& b = *top->getElement(0);
    EXPECT_EQ(tagOf(b), "x y");
    b.setAttribute("w", "");
    b.setAttribute("a", "");
    EXPECT_EQ(tagOf(b), "x y w a");
}

// Beside a plain list of the names.
TEST(TagTest, IsInTheOrderOfSettingWhateverIsDone) {
    std::mt19937 dice(20261122);
    for (int round = 0; round < rounds(60); ++round) {
        const unsigned names = round % 3 == 0 ? 400 : 12;
        Element element("e");
        std::vector<std::string> model;
        for (int step = 0; step < 800; ++step) {
            const std::string name = "n" + std::to_string(dice() % names);
            const auto known = std::find(model.begin(), model.end(), name);
            if (dice() % 100 < (step % 400 < 250 ? 70 : 30)) {
                element.setAttribute(name, "1");
                if (known == model.end()) model.push_back(name);
            } else {
                element.removeAttribute(name);
                if (known != model.end()) model.erase(known);
            }
        }
        std::string expected;
        for (const std::string& name : model) expected += (expected.empty() ? "" : " ") + name;
        ASSERT_EQ(tagOf(element), expected);
    }
}

TEST(TagTest, TheMarkOfADefaultGoesWithANewValueAndStaysInCopies) {
    Element element("a");
    const auto mark = [&element]() -> Attribute& {
        element.setAttribute("x", "1");
        Attribute& attribute = *element.getAttribute("x");
        EXPECT_FALSE(isDefault(attribute));
        NodeAccess::setSupplied(attribute, true);
        EXPECT_TRUE(isDefault(attribute));
        return attribute;
    };
    mark().setValue("1");
    EXPECT_FALSE(isDefault(*element.getAttribute("x")));
    mark();
    element.setAttribute("x", "1");
    EXPECT_FALSE(isDefault(*element.getAttribute("x")));

    EXPECT_TRUE(isDefault(Attribute(mark())));
    EXPECT_TRUE(isDefault(*std::unique_ptr<Object>(mark().clone())->toAttribute()));
    EXPECT_TRUE(isDefault(*Element(element).getAttribute("x")));
    for (int i = 0; i < 200; ++i) element.addChild(new Element("b"));
    EXPECT_TRUE(isDefault(*Element(element).getAttribute("x")));
    Element top("top");
    top.addChild(new Element(element));
    EXPECT_TRUE(isDefault(*Element(top).getElement(0)->getAttribute("x"))) << "in memory of the tree";
}

}  // namespace
}  // namespace Xml::test
