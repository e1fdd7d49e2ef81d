#include "xml/dom/NodeKind.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

template <class Node>
struct Derived : Node {
    using Node::Node;
};

class OwnNode : public Object {
public:
    Object* clone() const override { return new OwnNode; }
    const std::string& toString() const override { return text; }
    void write(OutStream&) const override {}

private:
    std::string text;
};

TEST(NodeKindTest, IsThatOfTheClassOrOfTheOneItIsDerivedFrom) {
    const Element element("e");
    const Derived<Element> derivedElement("e");
    const CharData text("t");
    const Derived<CharData> derivedText("t");
    const CDataSection section("s");
    const Derived<CDataSection> derivedSection("s");
    const Comment comment("c");
    const Derived<Comment> derivedComment("c");
    const Instruction instruction("t", "c");
    const Derived<Instruction> derivedInstruction("t", "c");
    const Attribute attribute("a", "1");
    const Derived<Attribute> derivedAttribute("a", "1");
    const Document document(nullptr, nullptr);
    const Derived<Document> derivedDocument(nullptr, nullptr);
    const Dtd dtd("d");
    const Derived<Dtd> derivedDtd("d");
    const OwnNode own;
    const struct {
        const char* name;
        const Object& node;
        NodeKind expected;
    } kCases[] = {
        {"element", element, NodeKind::Element},
        {"derived element", derivedElement, NodeKind::Element},
        {"text", text, NodeKind::Text},
        {"derived text", derivedText, NodeKind::Text},
        {"section", section, NodeKind::CData},
        {"derived section", derivedSection, NodeKind::CData},
        {"comment", comment, NodeKind::Comment},
        {"derived comment", derivedComment, NodeKind::Comment},
        {"instruction", instruction, NodeKind::Instruction},
        {"derived instruction", derivedInstruction, NodeKind::Instruction},
        {"attribute", attribute, NodeKind::Attribute},
        {"derived attribute", derivedAttribute, NodeKind::Attribute},
        {"document", document, NodeKind::Document},
        {"derived document", derivedDocument, NodeKind::Document},
        {"Dtd", dtd, NodeKind::Dtd},
        {"derived Dtd", derivedDtd, NodeKind::Dtd},
        {"a caller's own class", own, NodeKind::Other},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(kindOf(c.node), c.expected);
    }
}

TEST(NodeKindTest, OfACopyIsItsOwn) {
    const Derived<CDataSection> section("s");
    EXPECT_EQ(kindOf(CharData(section)), NodeKind::Text);
    EXPECT_EQ(kindOf(CDataSection(section)), NodeKind::CData);
    EXPECT_EQ(kindOf(*std::unique_ptr<Object>(section.clone())), NodeKind::CData);
}

}  // namespace
}  // namespace Xml::test
