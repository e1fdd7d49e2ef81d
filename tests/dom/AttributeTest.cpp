#include "xml/dom/Attribute.h"

#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/FileOutStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Texts = std::vector<std::string>;

TEST(AttributeTest, ANameThatIsNoNameIsReportedAndKept) {
    const struct {
        const char* description;
        std::string name;
        bool reported;
        bool ok;
    } kCases[] = {
        {"name", "a-b.c:d_e", false, true},
        {"underscore", "_", false, true},
        {"digit first", "1a", true, true},
        {"blank within", "a b", true, true},
        {"beyond ASCII", "\xC3\xA4", true, true},
        {"a zero byte within", std::string("a\0b", 3), true, true},
        {"empty", "", true, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.description);
        MessageCollector collector;
        const Attribute attribute(c.name, "v");
        EXPECT_EQ(collector.texts(), c.reported ? Texts{"<Attribute::Attribute> not a valid name"} : Texts{});
        EXPECT_EQ(attribute.getName(), c.name);
        EXPECT_EQ(attribute.getValue(), "v");
        EXPECT_EQ(attribute.isOk(), c.ok);
    }
}

TEST(AttributeTest, TheDefaultAttributeIsNotOkAndReportsNothing) {
    MessageCollector collector;
    const Attribute attribute;
    EXPECT_TRUE(collector.texts().empty());
    EXPECT_FALSE(attribute.isOk());
    EXPECT_EQ(attribute.getName(), "");
    EXPECT_EQ(attribute.getValue(), "");
    EXPECT_EQ(attribute.toString(), "=\"\"");
    EXPECT_TRUE(attribute.isAttribute());
}

TEST(AttributeTest, TheValueIsHeldAsGivenAndWrittenEscapedInDoubleQuotes) {
    const struct {
        const char* name;
        const char* value;
        const char* text;
    } kCases[] = {
        {"empty", "", "x=\"\""},
        {"plain", "v", "x=\"v\""},
        {"the five characters", "<a href='x'>\"&\"</a>",
         "x=\"&lt;a href=&apos;x&apos;&gt;&quot;&amp;&quot;&lt;/a&gt;\""},
        {"a reference is text", "&amp;", "x=\"&amp;amp;\""},
        {"beyond ASCII", "\xC3\xA4", "x=\"\xC3\xA4\""},
        {"line feed", "a\nb", "x=\"a\nb\""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Attribute attribute("x", c.value);
        EXPECT_EQ(attribute.getValue(), c.value);
        EXPECT_EQ(attribute.toString(), c.text);
        EXPECT_EQ(textOf(attribute), c.text);
        EXPECT_EQ(attribute.getValue(), c.value);
    }
}

TEST(AttributeTest, WritesWithTheIndentationOfTheStreamAlsoAfterALineFeedInTheValue) {
    std::ostringstream text;
    FileOutStream out(&text);
    out.incTab();
    Attribute("x", "a\nb").toStream(out);
    EXPECT_EQ(text.str(), "\tx=\"a\n\tb\"");
}

TEST(AttributeTest, TheTextIsMadeAnewAtEachCall) {
    Attribute attribute("x", "1");
    const std::string& text = attribute.toString();
    EXPECT_EQ(text, "x=\"1\"");
    attribute.setValue("22");
    EXPECT_EQ(&attribute.toString(), &text);
    EXPECT_EQ(text, "x=\"22\"");
}

TEST(AttributeTest, SetValueMarksNothing) {
    const Dtd dtd("d");
    Element element("e");
    element.setAttribute("x", "1");
    element.setDtd(&dtd);
    NodeTestAccess::setDirty(element, false);
    Attribute& attribute = *element.getAttribute("x");
    NodeTestAccess::setDirty(attribute, false);
    attribute.setValue("2");
    EXPECT_EQ(element.getAttributeValue("x"), "2");
    EXPECT_FALSE(NodeTestAccess::dirty(attribute));
    EXPECT_FALSE(NodeTestAccess::dirty(element));
    EXPECT_EQ(NodeTestAccess::dtd(attribute), &dtd);
    EXPECT_EQ(NodeTestAccess::dtd(element), &dtd);
}

TEST(AttributeTest, TheValueCanBeSetToItself) {
    Attribute attribute("x", "a value that is longer than a string keeps in itself");
    attribute.setValue(attribute.getValue());
    EXPECT_EQ(attribute.getValue(), "a value that is longer than a string keeps in itself");
}

TEST(AttributeTest, ACopyKeepsNameValueAndLinkReportsNothingAndIsIndependent) {
    const Dtd dtd("d");
    Element element("e");
    MessageCollector collector;
    element.setAttribute("1a", "v");
    Attribute& original = *element.getAttribute("1a");
    original.setDtd(&dtd);
    EXPECT_EQ(textOf(original), "1a=\"v\"");
    ASSERT_FALSE(NodeTestAccess::dirty(original));
    ASSERT_EQ(collector.take().size(), 1U);

    const Attribute copy(original);
    const std::unique_ptr<Object> cloned(original.clone());
    EXPECT_TRUE(collector.texts().empty());
    original.setValue("other");
    ASSERT_NE(cloned->toAttribute(), nullptr);
    for (const Attribute* attribute : {&copy, static_cast<const Attribute*>(cloned->toAttribute())}) {
        EXPECT_EQ(attribute->getName(), "1a");
        EXPECT_EQ(attribute->getValue(), "v");
        EXPECT_EQ(attribute->toString(), "1a=\"v\"");
        EXPECT_EQ(NodeTestAccess::dtd(*attribute), &dtd);
        EXPECT_EQ(attribute->getParent(), nullptr);
        EXPECT_TRUE(NodeTestAccess::dirty(*attribute));
        EXPECT_EQ(NodeTestAccess::writeStart(*attribute), -1);
    }
}

}  // namespace
}  // namespace Xml::test
