#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dtd/Dtd.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

TEST(InstructionTest, HoldsTargetAndContentAsTheyAre) {
    const struct {
        const char* target;
        const char* content;
        const char* text;
    } kCases[] = {
        {"go", "to='b' & back", "go to='b' & back"},
        {"go", "", "go"},
        {"gr\xC3\xB6\xC3\x9F", "1", "gr\xC3\xB6\xC3\x9F 1"},
        {"", "", ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        const Instruction instruction(c.target, c.content);
        EXPECT_EQ(instruction.getTarget(), c.target);
        EXPECT_EQ(instruction.getContent(), c.content);
        EXPECT_EQ(instruction.toString(), c.text);
        EXPECT_EQ(textOf(instruction), "<?" + std::string(c.text) + "?>");
        EXPECT_EQ(kindOf(instruction), NodeKind::Instruction);
        EXPECT_FALSE(instruction.isElement() || instruction.isAttribute() || instruction.isCharData());
        EXPECT_FALSE(instruction.isDtd() || instruction.isDocument());
    }
}

TEST(InstructionTest, AChangedContentMarksTheNodeAndWhatIsAboveIt) {
    const Dtd dtd("d");
    Element top("a");
    auto* const instruction = new Instruction("go", "there");
    top.addChild(instruction);
    top.setDtd(&dtd);
    textOf(top);
    instruction->setContent("back, and then to where it was before");
    EXPECT_EQ(instruction->getContent(), "back, and then to where it was before");
    EXPECT_EQ(instruction->getTarget(), "go");
    for (const Object* const node : {static_cast<const Object*>(instruction), static_cast<const Object*>(&top)}) {
        EXPECT_TRUE(NodeTestAccess::dirty(*node));
        EXPECT_EQ(NodeTestAccess::dtd(*node), nullptr);
    }
}

TEST(InstructionTest, CopiesHaveAllAndTheLink) {
    const Dtd dtd("d");
    Instruction instruction("a-target-that-is-not-short",
                            "a content that is longer than what a string holds in itself");
    instruction.setDtd(&dtd);
    const Instruction copy(instruction);
    const std::unique_ptr<Object> clone(instruction.clone());
    for (const Object* const made : {static_cast<const Object*>(&copy), static_cast<const Object*>(clone.get())}) {
        EXPECT_EQ(dump(made), dump(&instruction));
        EXPECT_EQ(kindOf(*made), NodeKind::Instruction);
        EXPECT_EQ(NodeTestAccess::dtd(*made), &dtd);
    }
}

}  // namespace
}  // namespace Xml::test
