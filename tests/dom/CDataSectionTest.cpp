#include "support/Trees.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include <gtest/gtest.h>
#include <memory>

namespace Xml::test {
namespace {

TEST(CDataSectionTest, IsTextThatIsHeldEscaped) {
    CDataSection section("a < b && \"c\" ]]>");
    EXPECT_EQ(section.data(), "a &lt; b &amp;&amp; &quot;c&quot; ]]&gt;");
    EXPECT_EQ(section.getData(), "a < b && \"c\" ]]>");
    EXPECT_EQ(section.toString(), "a < b && \"c\" ]]>");
    EXPECT_EQ(textOf(section), "a &lt; b &amp;&amp; &quot;c&quot; ]]&gt;");
    EXPECT_TRUE(section.isCharData());
    EXPECT_EQ(section.toCharData(), &section);
    EXPECT_EQ(kindOf(section), NodeKind::CData);
    section.setData("<");
    EXPECT_EQ(section.data(), "&lt;");
}

TEST(CDataSectionTest, CopiesAreSectionsAndCopiesAsTextAreText) {
    CDataSection section("a text that is longer than what a string holds in itself & more");
    const CDataSection copy(section);
    const std::unique_ptr<Object> clone(section.clone());
    const CharData text(section);
    EXPECT_EQ(dump(&copy), dump(&section));
    EXPECT_EQ(dump(clone.get()), dump(&section));
    EXPECT_EQ(kindOf(*clone), NodeKind::CData);
    EXPECT_EQ(kindOf(text), NodeKind::Text);
    EXPECT_EQ(text.data(), section.data());
}

TEST(CDataSectionTest, CountsAsTheTextOfAnElement) {
    Element top("a");
    top.addChild(new CDataSection("1 < 2"));
    top.addChild(new CharData("more"));
    EXPECT_EQ(dump(&top), "a([1 &lt; 2] 'more')");
    EXPECT_EQ(top.getCharData(), "1 < 2");
    EXPECT_EQ(textOf(top), "<a>1 &lt; 2more</a>");
    top.setCharData("new");
    EXPECT_EQ(dump(&top), "a('more' 'new')") << "the node after a removed one is skipped";
}

}  // namespace
}  // namespace Xml::test
