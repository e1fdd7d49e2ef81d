#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

TEST(CommentTest, HoldsItsTextAsItIs) {
    Comment comment("a & b < 'c'");
    EXPECT_EQ(comment.getText(), "a & b < 'c'");
    EXPECT_EQ(comment.toString(), "a & b < 'c'");
    EXPECT_EQ(textOf(comment), "<!--a & b < 'c'-->");
    comment.setText(std::string_view("\0x", 2));
    EXPECT_EQ(comment.getText(), std::string("\0x", 2));
    comment.setText("");
    EXPECT_EQ(textOf(comment), "<!---->");
}

TEST(CommentTest, IsOfNoKindThatTheOperationsOfNodesKnow) {
    const Comment comment("c");
    EXPECT_FALSE(comment.isElement() || comment.isAttribute() || comment.isCharData());
    EXPECT_FALSE(comment.isDtd() || comment.isDocument());
    EXPECT_EQ(kindOf(comment), NodeKind::Comment);
}

TEST(CommentTest, AChangedTextMarksTheNodeAndWhatIsAboveIt) {
    const Dtd dtd("d");
    Element top("a");
    auto* const comment = new Comment("before");
    top.addChild(comment);
    top.setDtd(&dtd);
    textOf(top);
    EXPECT_EQ(NodeTestAccess::dtd(*comment), &dtd);
    EXPECT_FALSE(NodeTestAccess::dirty(*comment));
    comment->setText("after");
    for (const Object* const node : {static_cast<const Object*>(comment), static_cast<const Object*>(&top)}) {
        EXPECT_TRUE(NodeTestAccess::dirty(*node));
        EXPECT_EQ(NodeTestAccess::dtd(*node), nullptr);
    }
}

TEST(CommentTest, CopiesHaveTheTextAndTheLink) {
    const Dtd dtd("d");
    Comment comment("a text that is longer than what a string holds in itself");
    comment.setDtd(&dtd);
    const Comment copy(comment);
    const std::unique_ptr<Object> clone(comment.clone());
    for (const Object* const made : {static_cast<const Object*>(&copy), static_cast<const Object*>(clone.get())}) {
        EXPECT_EQ(dump(made), dump(&comment));
        EXPECT_EQ(kindOf(*made), NodeKind::Comment);
        EXPECT_EQ(NodeTestAccess::dtd(*made), &dtd);
    }
}

TEST(CommentTest, IsAChildLikeOthersAndNoText) {
    Element top("a");
    auto* const comment = new Comment("c");
    top.addChild(comment);
    top.addChild(new CharData("text"));
    top.insertChild(comment, new Comment("first"));
    EXPECT_EQ(dump(&top), "a(<!--first--> <!--c--> 'text')");
    EXPECT_EQ(top.getChildCount(), 3);
    EXPECT_EQ(top.getChild(1), comment);
    EXPECT_TRUE(top.isChild(comment));
    EXPECT_EQ(comment->getParent(), &top);
    EXPECT_EQ(top.getCharData(), "text");
    EXPECT_EQ(top.getElement(0), nullptr);
    top.setCharData("new");
    EXPECT_EQ(dump(&top), "a(<!--first--> <!--c--> 'new')");
    const std::unique_ptr<Object> taken(top.extractChild(1));
    EXPECT_EQ(taken.get(), comment);
    EXPECT_EQ(comment->getParent(), nullptr);
}

}  // namespace
}  // namespace Xml::test
