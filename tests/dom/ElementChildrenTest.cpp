#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

std::unique_ptr<Element> threeChildren() {
    auto root = std::make_unique<Element>("r");
    root->addChild(new Element("a"));
    root->addChild(new CharData(DataHolder("t")));
    root->addChild(new Element("b"));
    return root;
}

TEST(ElementChildrenTest, ChildrenStandInTheOrderInWhichTheyWereAdded) {
    auto root = threeChildren();
    EXPECT_EQ(dump(root.get()), "r(a 't' b)");
    EXPECT_EQ(root->getChildCount(), 3);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(root->getChild(i)->getParent(), root.get());
}

TEST(ElementChildrenTest, AnIndexOutOfRangeFindsNoChild) {
    auto root = threeChildren();
    const Element& constant = *root;
    for (int i : {-1, 3, 4, 2147483647, -2147483647 - 1}) {
        SCOPED_TRACE(i);
        EXPECT_EQ(root->getChild(i), nullptr);
        EXPECT_EQ(constant.getChild(i), nullptr);
    }
    EXPECT_EQ(root->getChild(1), constant.getChild(1));
    EXPECT_EQ(Element("e").getChild(0), nullptr);
}

TEST(ElementChildrenTest, InsertsBeforeAChildOrAtTheEnd) {
    const Element stranger("s");
    const struct {
        const char* name;
        const Object* (*before)(Element&, const Element& stranger);
        const char* tree;
    } kCases[] = {
        {"before the first", [](Element& r, const Element&) -> const Object* { return r.getChild(0); }, "r(n a 't' b)"},
        {"before a text", [](Element& r, const Element&) -> const Object* { return r.getChild(1); }, "r(a n 't' b)"},
        {"before the last", [](Element& r, const Element&) -> const Object* { return r.getChild(2); }, "r(a 't' n b)"},
        {"before null", [](Element&, const Element&) -> const Object* { return nullptr; }, "r(a 't' b n)"},
        {"before a stranger", [](Element&, const Element& s) -> const Object* { return &s; }, "r(a 't' b n)"},
        {"before itself", [](Element& r, const Element&) -> const Object* { return &r; }, "r(a 't' b n)"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        auto root = threeChildren();
        auto* child = new Element("n");
        root->insertChild(c.before(*root, stranger), child);
        EXPECT_EQ(dump(root.get()), c.tree);
        EXPECT_EQ(child->getParent(), root.get());
    }
}

TEST(ElementChildrenTest, InsertsIntoAnEmptyElement) {
    Element root("r");
    root.insertChild(nullptr, new Element("n"));
    EXPECT_EQ(dump(&root), "r(n)");
}

TEST(ElementChildrenTest, InsertingBeforeAGrandchildAppends) {
    auto root = threeChildren();
    auto* grandchild = new Element("g");
    root->getElement("a")->addChild(grandchild);
    root->insertChild(grandchild, new Element("n"));
    EXPECT_EQ(dump(root.get()), "r(a(g) 't' b n)");
}

TEST(ElementChildrenTest, OnlyDirectChildrenAreChildren) {
    auto root = threeChildren();
    auto* grandchild = new Element("g");
    root->getElement("a")->addChild(grandchild);
    root->setAttribute("x", "1");
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(root->isChild(root->getChild(i)));
    EXPECT_FALSE(root->isChild(grandchild));
    EXPECT_FALSE(root->isChild(root.get()));
    EXPECT_FALSE(root->isChild(nullptr));

    // A node that only names this element as its parent is none of its children.
    Element stranger("s");
    stranger.setParent(root.get());
    EXPECT_FALSE(root->isChild(&stranger));
    EXPECT_EQ(root->extractChild(&stranger), nullptr);
    EXPECT_EQ(stranger.getParent(), root.get());
}

TEST(ElementChildrenTest, AChildIsTakenOutByIndexOrPointer) {
    const struct {
        const char* name;
        Object* (*extract)(Element&);
        const char* taken;
        const char* left;
    } kCases[] = {
        {"first", [](Element& r) { return r.extractChild(0); }, "a", "r('t' b)"},
        {"middle", [](Element& r) { return r.extractChild(1); }, "'t'", "r(a b)"},
        {"last", [](Element& r) { return r.extractChild(2); }, "b", "r(a 't')"},
        {"index -1", [](Element& r) { return r.extractChild(-1); }, "null", "r(a 't' b)"},
        {"index at the count", [](Element& r) { return r.extractChild(3); }, "null", "r(a 't' b)"},
        {"pointer to the first", [](Element& r) { return r.extractChild(r.getChild(0)); }, "a", "r('t' b)"},
        {"pointer to the last", [](Element& r) { return r.extractChild(r.getChild(2)); }, "b", "r(a 't')"},
        {"null", [](Element& r) { return r.extractChild(static_cast<Object*>(nullptr)); }, "null", "r(a 't' b)"},
        {"itself", [](Element& r) { return r.extractChild(&r); }, "null", "r(a 't' b)"},
    };
    const Dtd dtd("d");
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        auto root = threeChildren();
        root->setDtd(&dtd);
        NodeTestAccess::setDirty(*root, false);
        const std::unique_ptr<Object> taken(c.extract(*root));
        EXPECT_EQ(dump(taken.get()), c.taken);
        EXPECT_EQ(dump(root.get()), c.left);
        EXPECT_EQ(NodeTestAccess::dirty(*root), taken != nullptr);
        EXPECT_EQ(NodeTestAccess::dtd(*root), taken != nullptr ? nullptr : &dtd);
        if (taken == nullptr) continue;
        EXPECT_EQ(taken->getParent(), nullptr);
        EXPECT_EQ(NodeTestAccess::dtd(*taken), nullptr);
    }
}

TEST(ElementChildrenTest, AChildTakenOutCanBePutBackElsewhere) {
    auto root = threeChildren();
    Object* child = root->extractChild(2);
    root->getElement("a")->addChild(child);
    EXPECT_EQ(dump(root.get()), "r(a(b) 't')");
    EXPECT_EQ(child->getParent(), root->getElement("a"));
    root->insertChild(root->getChild(0), root->getElement("a")->extractChild(child));
    EXPECT_EQ(dump(root.get()), "r(b a 't')");
}

TEST(ElementChildrenTest, KillingTheChildrenLeavesNone) {
    auto root = threeChildren();
    root->setAttribute("x", "1");
    root->killChildren();
    EXPECT_EQ(dump(root.get()), "r[x=1]");
    EXPECT_EQ(root->getChildCount(), 0);
    EXPECT_EQ(root->getChild(0), nullptr);
    root->killChildren();
    root->addChild(new Element("n"));
    EXPECT_EQ(dump(root.get()), "r[x=1](n)");
}

TEST(ElementChildrenTest, AnElementIsAddedWithItsText) {
    MessageCollector collector;
    Element root("r");
    root.addElement("a", "x<y");
    root.addElement("a", "");
    EXPECT_TRUE(collector.texts().empty());
    root.addElement("9", "bad");
    EXPECT_EQ(collector.texts(), std::vector<std::string>{"<Element::setName> not a valid name 9"});
    EXPECT_EQ(dump(&root), "r(a('x&lt;y') a('') ('bad'))");
    EXPECT_EQ(root.getChild(0)->getParent(), &root);
}

TEST(ElementChildrenTest, TheTextOfAnElementMayComeFromTheElementItself) {
    Element root("r", "a text that is longer than a string keeps in itself");
    root.addElement(root.getName(), root.getCharData());
    EXPECT_EQ(dump(&root),
              "r('a text that is longer than a string keeps in itself' "
              "r('a text that is longer than a string keeps in itself'))");
}

}  // namespace
}  // namespace Xml::test
