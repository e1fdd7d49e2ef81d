// Which nodes loops treat themselves. What that means for nodes of callers' classes is in SubclassTest.
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>

namespace Xml::test {
namespace {

class OwnElement : public Element {
public:
    OwnElement() : Element("own") {}
    OwnElement(const OwnElement&) = default;
};
class OwnText : public CharData {};
class OwnSection : public CDataSection {
public:
    OwnSection() : CDataSection("own") {}
};
class OwnComment : public Comment {
public:
    OwnComment() : Comment("own") {}
};
class OwnInstruction : public Instruction {
public:
    OwnInstruction() : Instruction("own", "") {}
};
class OwnAttribute : public Attribute {};
class OwnDocument : public Document {
public:
    OwnDocument() : Document(nullptr, nullptr) {}
};

bool isKnown(const Object& node) { return NodeAccess::marks(node).exactClass.known() != NodeClass::Unknown; }

TEST(ExactClassTest, IsFoundOutForNodesThatAreMadeByCallers) {
    const Element element("e");
    const CharData text;
    const CDataSection section("s");
    const Comment comment("c");
    const Instruction instruction("i", "");
    const Attribute attribute;
    const Document document(nullptr, nullptr);
    const Dtd dtd("d");
    const OwnElement ownElement;
    const OwnText ownText;
    const OwnSection ownSection;
    const OwnComment ownComment;
    const OwnInstruction ownInstruction;
    const OwnAttribute ownAttribute;
    const OwnDocument ownDocument;
    const struct {
        const char* name;
        const Object& node;
        NodeClass expected;
    } kCases[] = {
        {"element", element, NodeClass::Element},
        {"text", text, NodeClass::CharData},
        {"section", section, NodeClass::CDataSection},
        {"comment", comment, NodeClass::Comment},
        {"instruction", instruction, NodeClass::Instruction},
        {"attribute", attribute, NodeClass::Attribute},
        {"document", document, NodeClass::Other},
        {"Dtd", dtd, NodeClass::Other},
        {"element of a caller's class", ownElement, NodeClass::Other},
        {"text of a caller's class", ownText, NodeClass::Other},
        {"section of a caller's class", ownSection, NodeClass::Other},
        {"comment of a caller's class", ownComment, NodeClass::Other},
        {"instruction of a caller's class", ownInstruction, NodeClass::Other},
        {"attribute of a caller's class", ownAttribute, NodeClass::Other},
        {"document of a caller's class", ownDocument, NodeClass::Other},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(isKnown(c.node)) << "the constructors cannot know";
        for (int asked = 0; asked < 2; ++asked) {
            EXPECT_EQ(exactClassOf(c.node), c.expected);
            EXPECT_TRUE(isKnown(c.node));
        }
    }
}

TEST(ExactClassTest, IsKnownOfNodesThatTheLibraryMakes) {
    const std::unique_ptr<Element> read = readElement("<a x='1'>text<b/></a>");
    Element built("a");
    built.setAttribute("x", "1");
    built.addChild(new CharData("text"));
    built.addChild(new Element("b"));
    built.addChild(new CDataSection("section"));
    built.addChild(new Comment("comment"));
    built.addChild(new Instruction("go", ""));
    const std::unique_ptr<Object> copy(built.clone());
    const Element& copied = *copy->toElement();
    EXPECT_EQ(NodeAccess::marks(*copied.getChild(2)).exactClass.known(), NodeClass::CDataSection);
    EXPECT_EQ(NodeAccess::marks(*copied.getChild(3)).exactClass.known(), NodeClass::Comment);
    EXPECT_EQ(NodeAccess::marks(*copied.getChild(4)).exactClass.known(), NodeClass::Instruction);
    for (const Element* const top : {read.get(), copy->toElement()}) {
        const struct {
            const Object* node;
            NodeClass expected;
        } kCases[] = {
            {top, NodeClass::Element},
            {top->getChild(0), NodeClass::CharData},
            {top->getChild(1), NodeClass::Element},
        };
        for (const auto& c : kCases) {
            EXPECT_TRUE(isKnown(*c.node));
            EXPECT_EQ(exactClassOf(*c.node), c.expected);
        }
        EXPECT_EQ(exactClassOf(*top->getAttribute(0)), NodeClass::Attribute);
    }
}

TEST(ExactClassTest, OfACopyIsItsOwn) {
    // The copies are objects of another class than what they were copied from, in both directions.
    class Raised : public Element {
    public:
        explicit Raised(const Element& other) : Element(other) {}
    };
    const OwnElement own;
    const Element plain("e");
    for (const bool asked : {false, true}) {
        SCOPED_TRACE(asked);
        if (asked) {
            EXPECT_EQ(exactClassOf(own), NodeClass::Other);
            EXPECT_EQ(exactClassOf(plain), NodeClass::Element);
        }
        EXPECT_EQ(exactClassOf(Element(own)), NodeClass::Element);
        EXPECT_EQ(exactClassOf(OwnElement(own)), NodeClass::Other);
        EXPECT_EQ(exactClassOf(Raised(plain)), NodeClass::Other);

        const std::unique_ptr<Object> clone(own.clone());  // which the class does not override
        EXPECT_EQ(exactClassOf(*clone), NodeClass::Element);
        EXPECT_EQ(dynamic_cast<OwnElement*>(clone.get()), nullptr);
    }
}

}  // namespace
}  // namespace Xml::test
