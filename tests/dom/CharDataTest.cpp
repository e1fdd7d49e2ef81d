#include "xml/dom/CharData.h"

#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Element.h"
#include "xml/dom/Entity.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/FileOutStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace Xml::test {
namespace {

struct TextCase {
    const char* name;
    std::string text;
    std::string held;
};

const TextCase kTexts[] = {
    {"empty", "", ""},
    {"plain", "text", "text"},
    {"less than", "a<b", "a&lt;b"},
    {"the five characters", "<a href='x'>\"&\"</a>", "&lt;a href=&apos;x&apos;&gt;&quot;&amp;&quot;&lt;/a&gt;"},
    {"a reference is text", "&lt;", "&amp;lt;"},
    {"beyond ASCII and control characters", "\xC3\xA4\x01\xFF", "\xC3\xA4\x01\xFF"},
    {"a zero byte", std::string("a\0<", 3), std::string("a\0&lt;", 6)},
    {"lines", "one\n\ttwo\r\n", "one\n\ttwo\r\n"},
};

TEST(CharDataTest, HoldsTheTextEscapedGivesItDecodedAndWritesItAsHeld) {
    for (const auto& c : kTexts) {
        SCOPED_TRACE(c.name);
        const CharData constructed{DataHolder(c.text)};
        CharData set{DataHolder("before")};
        set.setData(DataHolder(c.text));
        for (const CharData* node : {&constructed, static_cast<const CharData*>(&set)}) {
            EXPECT_EQ(node->data(), c.held);
            EXPECT_EQ(node->getData(), c.text);
            EXPECT_EQ(node->toString(), c.text);
            DataHolder holder("before");
            node->getData(&holder);
            EXPECT_EQ(holder, c.text);
            EXPECT_EQ(textOf(*node), c.held);
            EXPECT_EQ(node->data(), c.held);
            EXPECT_TRUE(node->isCharData());
        }
    }
}

TEST(CharDataTest, TheDefaultNodeIsEmpty) {
    const CharData node;
    EXPECT_EQ(node.data(), "");
    EXPECT_EQ(node.getData(), "");
    EXPECT_EQ(node.toString(), "");
    EXPECT_EQ(textOf(node), "");
}

TEST(CharDataTest, DecodesWhatIsHeldWithTheEntitiesOfTheDtdThatItLinksTo) {
    Dtd dtd("d");
    dtd.setEntity("e", "value&lt;");
    dtd.setEntity("void", "");
    dtd.setEntity("lt", "never asked");
    const struct {
        const char* name;
        const char* held;
        const char* without;
        const char* with;
    } kCases[] = {
        {"entity of the Dtd, one level", "&e;", "&e;", "value&lt;"},
        {"standard before the Dtd's", "&lt;", "<", "<"},
        {"several", "1 &lt; 2 &amp;&amp; 3&e;", "1 < 2 && 3&e;", "1 < 2 && 3value&lt;"},
        {"unknown", "&foo;", "&foo;", "&foo;"},
        {"unterminated", "x&y", "x&y;", "x&y;"},
        {"unterminated but known", "x&e", "x&e;", "xvalue&lt;"},
        {"character references", "&#65;&#x42;&#323;", "ABC", "ABC"},
        {"references to nothing", "&#0;&#X41;&#;&;", "&#0;&#X41;&#;&;", "&#0;&#X41;&#;&;"},
        {"everything expands to nothing", "&void;", "&void;", "&void;"},
        {"something expands to nothing", "a&void;", "a&void;", "a"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        CharData node;
        node.data() = c.held;
        EXPECT_EQ(node.getData(), c.without);
        node.setDtd(&dtd);
        EXPECT_EQ(node.getData(), c.with);
        EXPECT_EQ(node.toString(), c.with);
        DataHolder holder;
        node.getData(&holder);
        EXPECT_EQ(holder, c.with);
        EXPECT_EQ(textOf(node), c.held);
        node.setDtd(nullptr);
        EXPECT_EQ(node.getData(), c.without);
    }
}

TEST(CharDataTest, HoldsAnEntityAsItsReferenceAndExpandsItOnlyWhereTheLinkKnowsIt) {
    Dtd knowing("k");
    knowing.setEntity("e", "value");
    const Dtd other("o");
    CharData node{Entity("e")};
    EXPECT_EQ(node.data(), "&e;");
    EXPECT_EQ(textOf(node), "&e;");
    EXPECT_EQ(node.getData(), "&e;");
    node.setDtd(&other);
    EXPECT_EQ(node.getData(), "&e;");
    node.setDtd(&knowing);
    EXPECT_EQ(node.getData(), "value");

    CharData set{DataHolder("a<b")};
    set.setData(Entity("amp"));
    EXPECT_EQ(set.data(), "&amp;");
    EXPECT_EQ(set.getData(), "&");
}

TEST(CharDataTest, AskingForTheTextOfAnUnknownEntityReportsNothing) {
    const Dtd dtd("d");
    CharData node{Entity("e")};
    node.setDtd(&dtd);
    MessageCollector collector;
    EXPECT_EQ(node.getData(), "&e;");
    EXPECT_TRUE(collector.texts().empty());
}

TEST(CharDataTest, TheDecodedTextIsMadeAnewAtEachCall) {
    CharData node{DataHolder("one")};
    const DataHolder& text = node.getData();
    EXPECT_EQ(text, "one");
    node.data() = "&lt;";
    EXPECT_EQ(&node.getData(), &text);
    EXPECT_EQ(text, "<");
    EXPECT_EQ(&node.toString(), &text.toString());
}

TEST(CharDataTest, TakesItsOwnTextBack) {
    CharData node{DataHolder("a<b, and longer than a string keeps in itself")};
    node.setData(node.getData());
    EXPECT_EQ(node.data(), "a&lt;b, and longer than a string keeps in itself");
    node.setData(node.data());
    EXPECT_EQ(node.data(), "a&amp;lt;b, and longer than a string keeps in itself");
}

TEST(CharDataTest, SetDataMarksTheNodeAndItsAncestorsAndClearsTheirLinksWhereasDataDoesNot) {
    const Dtd dtd("d");
    Element element("e", "t");
    CharData& node = *element.getChild(0)->toCharData();
    auto reset = [&] {
        element.setDtd(&dtd);
        NodeTestAccess::setDirty(element, false);
        NodeTestAccess::setDirty(node, false);
    };
    auto changed = [&] {
        const bool marks = NodeTestAccess::dirty(node) && NodeTestAccess::dirty(element);
        const bool links = NodeTestAccess::dtd(node) == nullptr && NodeTestAccess::dtd(element) == nullptr;
        return marks && links;
    };
    reset();
    node.data() = "changed";
    EXPECT_FALSE(NodeTestAccess::dirty(node));
    EXPECT_FALSE(NodeTestAccess::dirty(element));
    EXPECT_EQ(NodeTestAccess::dtd(node), &dtd);
    node.setData(DataHolder("t"));
    EXPECT_TRUE(changed());
    reset();
    node.setData(DataHolder("t"));  // the same text is a change, too
    EXPECT_TRUE(changed());
    reset();
    node.setData(Entity("e"));
    EXPECT_TRUE(changed());
}

TEST(CharDataTest, ACopyKeepsTheLinkAndTheHeldText) {
    Dtd dtd("d");
    dtd.setEntity("e", "value");
    Element parent("p");
    auto* original = new CharData(Entity("e"));
    parent.addChild(original);
    parent.setDtd(&dtd);
    textOf(parent);
    ASSERT_EQ(original->getData(), "value");

    const CharData copy(*original);
    const std::unique_ptr<Object> cloned(original->clone());
    original->setData(DataHolder("other"));
    ASSERT_TRUE(cloned->isCharData());
    for (const CharData* node : {&copy, static_cast<const CharData*>(cloned->toCharData())}) {
        EXPECT_EQ(node->data(), "&e;");
        EXPECT_EQ(node->getData(), "value");
        EXPECT_EQ(NodeTestAccess::dtd(*node), &dtd);
        EXPECT_EQ(node->getParent(), nullptr);
        EXPECT_TRUE(NodeTestAccess::dirty(*node));
        EXPECT_EQ(NodeTestAccess::writeStart(*node), -1);
        EXPECT_EQ(NodeTestAccess::writeEnd(*node), -1);
    }
}

TEST(CharDataTest, WritesItsBytesWithoutIndentationAndWithoutBeginningALine) {
    std::ostringstream text;
    FileOutStream out(&text);
    out.incTab();
    CharData(DataHolder("one\ntwo\n")).toStream(out);
    EXPECT_EQ(text.str(), "one\ntwo\n");
    out.put('x');
    EXPECT_EQ(text.str(), "one\ntwo\n\tx");
    CharData(DataHolder("\n")).toStream(out);
    out.put('y');
    EXPECT_EQ(text.str(), "one\ntwo\n\tx\ny");
}

}  // namespace
}  // namespace Xml::test
