#include "xml/easy/Texts.h"

#include "easy/RandomTrees.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Instruction.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/internal/PlainText.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

std::string naiveText(const Object& node) {
    if (node.isCharData()) {
        std::string text;
        appendPlain(text, *node.toCharData());
        return text;
    }
    if (!node.isElement()) return "";
    std::string text;
    for (int i = 0; i < node.toElement()->getChildCount(); ++i) text += naiveText(*node.toElement()->getChild(i));
    return text;
}

TEST(TextsTest, HaveAllThatIsBelow) {
    Dice dice(4);
    for (int round = 0; round < rounds(300); ++round) {
        for (const auto& document : randomTrees(dice)) {
            for (const Element* element : elementsOf(*document->getRoot()))
                ASSERT_EQ(Xml::textOf(*element), naiveText(*element));
            ASSERT_EQ(Xml::textOf(*document), naiveText(*document->getRoot()));
        }
    }
}

TEST(TextsTest, OfEachKindOfNode) {
    const ReadResult result = readText("<a>1<b>2</b><!--3--><?t 4?><![CDATA[5 <&]]>&lt;&#233;</a>", everything());
    ASSERT_TRUE(result) << result.message();
    EXPECT_EQ(Xml::textOf(*result->getRoot()), "125 <&<\xC3\xA9");
    EXPECT_EQ(Xml::textOf(*result.get()), "125 <&<\xC3\xA9");
    EXPECT_EQ(Xml::textOf(Attribute("k", "<v>")), "<v>");
    EXPECT_EQ(Xml::textOf(Comment("c & d")), "c & d");
    EXPECT_EQ(Xml::textOf(Instruction("t", "c & d")), "c & d");
    EXPECT_EQ(Xml::textOf(CDataSection("<&>")), "<&>");
    EXPECT_EQ(Xml::textOf(CharData("<&>")), "<&>");
    EXPECT_EQ(Xml::textOf(Document(nullptr, nullptr)), "");
    EXPECT_EQ(Xml::textOf(Dtd("d")), "");
}

TEST(TextsTest, HaveEntitiesOfTheLinkedDtdInTreesOfTheDialect) {
    Outcome outcome =
        readDocument("<!DOCTYPE a [<!ELEMENT a ANY><!ELEMENT b ANY><!ENTITY e 'entity'>]><a>1<b>x&#233;</b></a>");
    ASSERT_TRUE(outcome.ok) << outcome.error;
    Element& root = *outcome.document->getRoot();
    root.getElement("b")->getChild(0)->toCharData()->data() = std::string("&e;&f;&#x20AC;");
    root.setDtd(outcome.document->getDtd());
    EXPECT_EQ(Xml::textOf(root), "1entity&f;\xE2\x82\xAC");
    root.setDtd(nullptr);
    EXPECT_EQ(Xml::textOf(root), "1&e;&f;\xE2\x82\xAC");
}

TEST(TextsTest, SetTextTakesThePlaceOfAllChildren) {
    const MessageCollector messages;
    Dice dice(5);
    const char* const kTexts[] = {"", "x", "<&>\"' &amp; ]]>", "\xC3\xB6 long enough for no short string at all"};
    for (int round = 0; round < rounds(300); ++round) {
        for (const auto& document : randomTrees(dice)) {
            Element& element = anyElement(dice, *document);
            const std::string text = dice.any(kTexts);
            setText(element, text);
            EXPECT_EQ(Xml::textOf(element), text);
            EXPECT_EQ(element.getChildCount(), text.empty() ? 0 : 1);
            for (int i = 0; i < element.getChildCount(); ++i) EXPECT_EQ(element.getChild(i)->getParent(), &element);
        }
    }
    EXPECT_TRUE(messages.texts().empty());
}

TEST(TextsTest, SetTextEscapes) {
    Element element("a");
    setText(element, "1 < 2 & &lt;");
    EXPECT_EQ(dump(&element), "a('1 &lt; 2 &amp; &amp;lt;')");
    EXPECT_EQ(element.getCharData(), "1 < 2 & &lt;");
    setText(element, Xml::textOf(element));
    EXPECT_EQ(Xml::textOf(element), "1 < 2 & &lt;");
}

}  // namespace
}  // namespace Xml::test
