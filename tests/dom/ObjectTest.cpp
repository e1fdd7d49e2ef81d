#include "xml/dom/Object.h"

#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/FileOutStream.h"
#include "xml/text/Message.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace Xml::test {
namespace {

// A node that is none of the library's kinds.
class Plain : public Object {
public:
    Plain() = default;
    Plain(const Plain&) = default;

    Object* clone() const override { return new Plain(*this); }
    const std::string& toString() const override { return text; }
    void write(OutStream& out) const override { out << text; }

private:
    std::string text = "plain";
};

struct Kinds {
    Element element{"e"};
    Attribute attribute{"a", "v"};
    CharData charData{DataHolder("t")};
    Dtd dtd{"d"};
    Document document{nullptr, nullptr};
    Plain plain;
};

struct KindCase {
    const char* name;
    Object& (*node)(Kinds&);
    const char* queries;  // of isElement, isAttribute, isCharData, isDtd, isDocument those that are true
};

const KindCase kKinds[] = {
    {"element", [](Kinds& k) -> Object& { return k.element; }, "E"},
    {"attribute", [](Kinds& k) -> Object& { return k.attribute; }, "A"},
    {"character data", [](Kinds& k) -> Object& { return k.charData; }, "C"},
    {"Dtd", [](Kinds& k) -> Object& { return k.dtd; }, "D"},
    {"document", [](Kinds& k) -> Object& { return k.document; }, "O"},
    {"a caller's own", [](Kinds& k) -> Object& { return k.plain; }, ""},
};

TEST(ObjectTest, EachKindAnswersItsOwnTypeQueryAlone) {
    Kinds kinds;
    for (const auto& c : kKinds) {
        SCOPED_TRACE(c.name);
        const Object& node = c.node(kinds);
        const std::string yes = std::string(node.isElement() ? "E" : "") + (node.isAttribute() ? "A" : "") +
                                (node.isCharData() ? "C" : "") + (node.isDtd() ? "D" : "") +
                                (node.isDocument() ? "O" : "");
        EXPECT_EQ(yes, c.queries);
    }
}

struct CastCase {
    const char* name;
    const void* (*cast)(Object&);
    const void* (*constCast)(const Object&);
    const char* query;
    const char* message;
};

const CastCase kCasts[] = {
    {"toElement", [](Object& o) -> const void* { return static_cast<Object*>(o.toElement()); },
     [](const Object& o) -> const void* { return static_cast<const Object*>(o.toElement()); }, "E",
     "<Object::toElement> Not a Element"},
    {"toAttribute", [](Object& o) -> const void* { return static_cast<Object*>(o.toAttribute()); },
     [](const Object& o) -> const void* { return static_cast<const Object*>(o.toAttribute()); }, "A",
     "<Object::toAttribute> Not an Attribute"},
    {"toCharData", [](Object& o) -> const void* { return static_cast<Object*>(o.toCharData()); },
     [](const Object& o) -> const void* { return static_cast<const Object*>(o.toCharData()); }, "C",
     "<Object::toCharData> Not a CharData"},
    {"toDtd", [](Object& o) -> const void* { return static_cast<Object*>(o.toDtd()); },
     [](const Object& o) -> const void* { return static_cast<const Object*>(o.toDtd()); }, "D",
     "<Object::toDtd> Not a Dtd"},
    {"toDocument", [](Object& o) -> const void* { return static_cast<Object*>(o.toDocument()); },
     [](const Object& o) -> const void* { return static_cast<const Object*>(o.toDocument()); }, "O",
     "<Object::toDocument> Not a Document"},
};

TEST(ObjectTest, ACastGivesTheNodeItselfOrNullAndItsOwnDiagnostic) {
    Kinds kinds;
    for (const auto& kind : kKinds) {
        for (const auto& cast : kCasts) {
            SCOPED_TRACE(std::string(cast.name) + " of " + kind.name);
            Object& node = kind.node(kinds);
            const bool fits = kind.queries == std::string(cast.query);
            const std::vector<std::string> messages =
                fits ? std::vector<std::string>{} : std::vector<std::string>{cast.message};
            MessageCollector collector;
            EXPECT_EQ(cast.cast(node), fits ? &node : nullptr);
            EXPECT_EQ(collector.take(), messages);
            EXPECT_EQ(cast.constCast(node), fits ? &node : nullptr);
            EXPECT_EQ(collector.take(), messages);
            if (!fits) {
                EXPECT_EQ(Message::lastMessage(), cast.message);
            }
        }
    }
}

TEST(ObjectTest, ANewNodeHasNoLinksIsMarkedAndWasNeverWritten) {
    Kinds kinds;
    for (const auto& c : kKinds) {
        SCOPED_TRACE(c.name);
        const Object& node = c.node(kinds);
        EXPECT_EQ(node.getParent(), nullptr);
        EXPECT_EQ(NodeTestAccess::dtd(node), nullptr);
        EXPECT_TRUE(NodeTestAccess::dirty(node));
        EXPECT_EQ(NodeTestAccess::writeStart(node), -1);
        EXPECT_EQ(NodeTestAccess::writeEnd(node), -1);
    }
}

TEST(ObjectTest, TheCopyOfANodeKeepsTheLinkToTheDtdOnly) {
    const Dtd dtd("d");
    Element parent("p");
    Plain original;
    original.setDtd(&dtd);
    original.setParent(&parent);
    std::ostringstream text;
    FileOutStream out(&text);
    original.toStream(out);
    ASSERT_FALSE(NodeTestAccess::dirty(original));
    ASSERT_EQ(NodeTestAccess::writeEnd(original), 5);

    const Plain copy(original);
    EXPECT_EQ(NodeTestAccess::dtd(copy), &dtd);
    EXPECT_EQ(copy.getParent(), nullptr);
    EXPECT_TRUE(NodeTestAccess::dirty(copy));
    EXPECT_EQ(NodeTestAccess::writeStart(copy), -1);
    EXPECT_EQ(NodeTestAccess::writeEnd(copy), -1);
}

TEST(ObjectTest, NodesCannotBeAssigned) {
    EXPECT_FALSE(std::is_copy_assignable_v<Attribute>);
    EXPECT_FALSE(std::is_copy_assignable_v<CharData>);
    EXPECT_FALSE(std::is_copy_assignable_v<Element>);
    EXPECT_FALSE(std::is_copy_assignable_v<Document>);
    EXPECT_FALSE(std::is_copy_assignable_v<Dtd>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Object>);
}

TEST(ObjectTest, SetParentOnlySetsTheLink) {
    Element parent("p");
    CharData child(DataHolder("t"));
    NodeTestAccess::setDirty(parent, false);
    NodeTestAccess::setDirty(child, false);
    child.setParent(&parent);
    EXPECT_EQ(child.getParent(), &parent);
    const CharData& constant = child;
    EXPECT_EQ(constant.getParent(), &parent);
    EXPECT_EQ(parent.getChildCount(), 0);
    EXPECT_FALSE(NodeTestAccess::dirty(parent));
    EXPECT_FALSE(NodeTestAccess::dirty(child));
    child.setParent(nullptr);
    EXPECT_EQ(child.getParent(), nullptr);
}

TEST(ObjectTest, TouchMarksTheNodeAndAllItsAncestorsAndClearsTheirLinks) {
    const Dtd dtd("d");
    auto* root = new Element("r");
    Document document(root, nullptr);
    root->addElement("a", "one");
    root->addElement("b", "two");
    Object* leaf = root->getElement("a")->getChild(0);
    document.setDtd(&dtd);
    root->setDtd(&dtd);
    std::ostringstream text;
    FileOutStream out(&text);
    document.toStream(out);

    leaf->touch();
    for (const Object* node = leaf; node != nullptr; node = node->getParent()) {
        EXPECT_TRUE(NodeTestAccess::dirty(*node));
        EXPECT_EQ(NodeTestAccess::dtd(*node), nullptr);
    }
    const Element& other = *root->getElement("b");
    EXPECT_FALSE(NodeTestAccess::dirty(other));
    EXPECT_EQ(NodeTestAccess::dtd(other), &dtd);
    EXPECT_EQ(NodeTestAccess::dtd(*other.getChild(0)), &dtd);
}

TEST(ObjectTest, ATouchGoesThroughAncestorsThatAreMarkedAlready) {
    const Dtd dtd("d");
    Element root("r");
    auto* middle = new Element("m");
    root.addChild(middle);
    auto* leaf = new Element("l");
    middle->addChild(leaf);
    // Marked or without a link in the middle says nothing about what is above.
    for (bool markedInTheMiddle : {false, true}) {
        for (bool linkedInTheMiddle : {false, true}) {
            SCOPED_TRACE(markedInTheMiddle);
            SCOPED_TRACE(linkedInTheMiddle);
            root.setDtd(&dtd);
            if (!linkedInTheMiddle) middle->setDtd(nullptr);
            NodeTestAccess::setDirty(root, false);
            NodeTestAccess::setDirty(*middle, markedInTheMiddle);
            NodeTestAccess::setDirty(*leaf, true);
            leaf->touch();
            EXPECT_TRUE(NodeTestAccess::dirty(root));
            EXPECT_EQ(NodeTestAccess::dtd(root), nullptr);
            EXPECT_TRUE(NodeTestAccess::dirty(*middle));
            EXPECT_EQ(NodeTestAccess::dtd(*middle), nullptr);
        }
    }
}

TEST(ObjectTest, ToStreamGoesToTheVirtualWrite) {
    const Plain node;
    std::ostringstream text;
    FileOutStream out(&text);
    node.toStream(out);
    node.toStream(out);
    EXPECT_EQ(text.str(), "plainplain");
    EXPECT_EQ(NodeTestAccess::writeStart(node), 5);
    EXPECT_EQ(NodeTestAccess::writeEnd(node), 10);
    EXPECT_FALSE(NodeTestAccess::dirty(node));
}

}  // namespace
}  // namespace Xml::test
