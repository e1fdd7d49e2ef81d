#include "support/NodeTestAccess.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// <a>x<a>x ... <z>x</z> ... </a></a>: `depth` times a and a z at the bottom.
std::string deepText(int depth) { return repeated("<a>x", depth) + "<z>x</z>" + repeated("</a>", depth); }

void checkDeep(Element& root, int depth) {
    const std::string text = deepText(depth);
    EXPECT_TRUE(textOf(root) == text);

    Element* bottom = root.findElement("z");
    ASSERT_NE(bottom, nullptr);
    EXPECT_EQ(root.findElement("a", depth - 2), bottom->getParent());
    EXPECT_EQ(root.findElement("a", depth - 1), nullptr);
    int n = 2 * depth;
    EXPECT_EQ(root.findElement("a", &n), nullptr);
    EXPECT_EQ(n, depth + 1);
    EXPECT_EQ(root.findElementByAttribute("none", "", depth - 1), bottom);
    std::vector<Element*> found;
    root.findAllElements("a", found);
    EXPECT_EQ(found.size(), static_cast<std::size_t>(depth - 1));
    EXPECT_EQ(root.findElementCharData("z"), "x");

    const Dtd dtd("d");
    root.setDtd(&dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*bottom), &dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*bottom->getChild(0)), &dtd);
    {
        Element copy(root);
        EXPECT_TRUE(textOf(copy) == text);
        const Element* bottomOfCopy = copy.findElement("z");
        ASSERT_NE(bottomOfCopy, nullptr);
        EXPECT_NE(bottomOfCopy, bottom);
        EXPECT_EQ(NodeTestAccess::dtd(*bottomOfCopy), nullptr);
        EXPECT_EQ(NodeTestAccess::dtd(*bottomOfCopy->getChild(0)), &dtd);

        Element holder("h");
        holder.addChild(copy.extractChild(1));
        EXPECT_EQ(NodeTestAccess::dtd(*bottomOfCopy->getChild(0)), nullptr);
        holder.killChildren();
        EXPECT_EQ(copy.getChildCount(), 1);
    }
    EXPECT_FALSE(NodeTestAccess::dirty(root));
    bottom->setCharData("y");
    EXPECT_TRUE(NodeTestAccess::dirty(root));
    EXPECT_EQ(NodeTestAccess::dtd(root), nullptr);
    EXPECT_EQ(root.findElementCharData("z"), "y");
    root.setDtd(nullptr);
}

TEST(ElementDepthTest, ATreeBuiltFromTheTopDownIsFoundLinkedCopiedWrittenAndDestroyed) {
    constexpr int kDepth = 6000;  // each step marks the whole way up
    Element root("a", "x");
    Element* innermost = &root;
    for (int i = 1; i <= kDepth; ++i) {
        auto* child = new Element(i == kDepth ? "z" : "a", "x");
        innermost->addChild(child);
        innermost = child;
    }
    checkDeep(root, kDepth);
}

TEST(ElementDepthTest, ATreeThatWasReadIsFoundLinkedCopiedWrittenAndDestroyed) {
    constexpr int kDepth = 100000;
    Outcome outcome = readDocument(deepText(kDepth));
    ASSERT_TRUE(outcome.ok) << outcome.error;
    checkDeep(*outcome.document->getRoot(), kDepth);
    const Document copy(*outcome.document);
    EXPECT_TRUE(textOf(copy) == "<?xml version = \"1.0\" ?>\n" + textOf(*outcome.document->getRoot()) + "\n");
}

TEST(ElementDepthTest, WideTreesAreFoundCopiedWrittenAndDestroyed) {
    constexpr int kWidth = 50000;
    Element root("r");
    for (int i = 0; i < kWidth; ++i) root.addChild(new Element(i % 2 == 0 ? "a" : "b"));
    EXPECT_EQ(root.getElement(kWidth - 1), root.getChild(kWidth - 1));
    EXPECT_EQ(root.getElement("a", kWidth / 2 - 1), root.getChild(kWidth - 2));
    EXPECT_EQ(root.findElement("b", kWidth / 2), nullptr);
    const Element copy(root);
    EXPECT_EQ(copy.getChildCount(), kWidth);
    EXPECT_TRUE(textOf(copy) == "<r>\n" + repeated("\t<a/>\n\t<b/>\n", kWidth / 2) + "</r>");
    root.setDtd(nullptr);
    root.killChildren();
    EXPECT_EQ(root.getChildCount(), 0);
}

}  // namespace
}  // namespace Xml::test
