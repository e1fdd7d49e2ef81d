// What stands beside elements and text: comments, instructions, sections, the prolog, the order of a tag.
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

std::string treeOf(const std::string& text, const ReadOptions& options = {}) {
    const ReadResult result = readText(text, options);
    return result ? dump(result.get()) : result.message();
}

struct KeepCase {
    const char* name;
    const char* text;
    const char* kept;     // everything()
    const char* dropped;  // of what stands beside text, nothing
};

TEST(ReadNodesTest, KeepsWhatStandsBesideTextAsAsked) {
    const KeepCase kCases[] = {
        {"comment", "<a><!-- c --></a>", "a(<!-- c -->)", "a"},
        {"empty comment", "<a><!----></a>", "a(<!---->)", "a"},
        {"instruction", "<a><?t c ?></a>", "a(<?t c ?>)", "a"},
        {"instruction without content", "<a><?t?></a>", "a(<?t?>)", "a"},
        {"section", "<a><![CDATA[<b>&]]></a>", "a([&lt;b&gt;&amp;])", "a('&lt;b&gt;&amp;')"},
        {"empty section", "<a><![CDATA[]]></a>", "a([])", "a"},
        {"sections side by side", "<a><![CDATA[x]]><![CDATA[y]]></a>", "a([x] [y])", "a('xy')"},
        {"text on both sides", "<a>x<!--c-->y<?t?>z<![CDATA[s]]>w</a>", "a('x' <!--c--> 'y' <?t?> 'z' [s] 'w')",
         "a('xyzsw')"},
        {"between elements", "<a><b/><!--c--><b/><?t?><b/></a>", "a(b <!--c--> b <?t?> b)", "a(b b b)"},
        {"line ends", "<a><!--1\r\n2\r3--><?t 1\r2?><![CDATA[1\r\n2]]></a>", "a(<!--1\n2\n3--> <?t 1\n2?> [1\n2])",
         "a('1\n2')"},
        {"in an entity", "<!DOCTYPE a [<!ENTITY e 'x<!--c--><?t?><![CDATA[s]]>y'>]><a>&e;</a>",
         "a('x' <!--c--> <?t?> [s] 'y')", "a('xsy')"},
        {"long", "<a><!--a comment that is longer than a short text is, and longer still--></a>",
         "a(<!--a comment that is longer than a short text is, and longer still-->)", "a"},
        {"deeper", "<a><b><c><!--c--></c></b></a>", "a(b(c(<!--c-->)))", "a(b(c))"},
    };
    for (const KeepCase& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(treeOf(c.text, everything()), c.kept);
        ReadOptions without;
        without.keepComments = without.keepInstructions = false;
        EXPECT_EQ(treeOf(c.text, without), c.dropped);
    }
}

TEST(ReadNodesTest, KeepsEachKindByItself) {
    const std::string text = "<a>1<!--c-->2<?t?>3<![CDATA[s]]>4</a>";
    EXPECT_EQ(treeOf(text), "a('1' <!--c--> '2' <?t?> '3s4')");
    ReadOptions options;
    options.keepComments = false;
    EXPECT_EQ(treeOf(text, options), "a('12' <?t?> '3s4')");
    options.keepInstructions = false;
    options.keepCData = true;
    EXPECT_EQ(treeOf(text, options), "a('123' [s] '4')");
    options.keepComments = true;
    EXPECT_EQ(treeOf(text, options), "a('1' <!--c--> '23' [s] '4')");
}

TEST(ReadNodesTest, EverythingIsKeptWithAllWhiteSpace) {
    const ReadOptions options = everything();
    EXPECT_EQ(options.space, Space::All);
    EXPECT_TRUE(options.keepComments && options.keepInstructions && options.keepCData);
    EXPECT_FALSE(options.keepPlaces || options.validate);
    EXPECT_EQ(treeOf("<a>\n <!--c-->\n</a>", options), "a('\n ' <!--c--> '\n')");
}

struct SpaceCase {
    const char* name;
    const char* text;
    const char* all;
    const char* content;
    const char* dropped;
};

TEST(ReadNodesTest, DropsWhiteSpaceBesideWhatItKeeps) {
    const SpaceCase kCases[] = {
        {"comment beside an element", "<a>\n<!--c-->\n<b/>\n</a>", "a('\n' <!--c--> '\n' b '\n')", "a(<!--c--> b)",
         "a(<!--c--> b)"},
        {"a comment is no child element", "<a>\n<!--c-->\n</a>", "a('\n' <!--c--> '\n')", "a('\n' <!--c--> '\n')",
         "a(<!--c-->)"},
        {"nor an instruction", "<a>\n<?t?>\n</a>", "a('\n' <?t?> '\n')", "a('\n' <?t?> '\n')", "a(<?t?>)"},
        {"without a line end", "<a> <!--c-->\n<b/></a>", "a(' ' <!--c--> '\n' b)", "a(' ' <!--c--> b)",
         "a(<!--c--> b)"},
        {"text before", "<a>x<!--c-->\n<b/></a>", "a('x' <!--c--> '\n' b)", "a('x' <!--c--> '\n' b)",
         "a('x' <!--c--> b)"},
        {"text after", "<a>\n<!--c-->\n<b/>x</a>", "a('\n' <!--c--> '\n' b 'x')", "a('\n' <!--c--> '\n' b 'x')",
         "a(<!--c--> b 'x')"},
        {"section after", "<a>\n<b/>\n<![CDATA[x]]></a>", "a('\n' b '\n' [x])", "a('\n' b '\n' [x])", "a(b [x])"},
        {"section of white space", "<a>\n<b/><![CDATA[\n]]></a>", "a('\n' b [\n])", "a('\n' b [\n])", "a(b [\n])"},
        {"empty section", "<a>\n<b/>\n<![CDATA[]]></a>", "a('\n' b '\n' [])", "a(b [])", "a(b [])"},
        {"by reference", "<a>&#10;<!--c-->\n<b/></a>", "a('\n' <!--c--> '\n' b)", "a('\n' <!--c--> '\n' b)",
         "a('\n' <!--c--> b)"},
        {"held in a deeper element", "<r><a>\n<!--c-->\n<b/>\n<?t?>x</a></r>",
         "r(a('\n' <!--c--> '\n' b '\n' <?t?> 'x'))", "r(a('\n' <!--c--> '\n' b '\n' <?t?> 'x'))",
         "r(a(<!--c--> b <?t?> 'x'))"},
        {"default of xml:space", "<!DOCTYPE a [<!ATTLIST a xml:space CDATA 'preserve'>]><a>\n<b/></a>",
         "a[xml:space=preserve]('\n' b)", "a[xml:space=preserve]('\n' b)", "a[xml:space=preserve](b)"},
    };
    for (const SpaceCase& c : kCases) {
        SCOPED_TRACE(c.name);
        ReadOptions options = everything();
        EXPECT_EQ(treeOf(c.text, options), c.all);
        options.space = Space::Content;
        EXPECT_EQ(treeOf(c.text, options), c.content);
        options.space = Space::Dropped;
        EXPECT_EQ(treeOf(c.text, options), c.dropped);
    }
}

// --- The prolog ---

std::string shown(const std::vector<std::unique_ptr<Object>>& nodes) {
    std::string text;
    for (const auto& node : nodes) {
        EXPECT_EQ(node->getParent(), nullptr);
        text += dump(node.get());
    }
    return text;
}

TEST(ReadNodesTest, FillsTheProlog) {
    const ReadResult result = readText(
        "\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8' standalone='no'?>\r\n<!--1--><?t 2?>\n<!DOCTYPE  a PUBLIC "
        "'-//P//' \"s'd\" [ <!--in-->\r\n<!ENTITY e 'x'> ] >\n<!--3--><a/><?t 4?>\n<!--5-->\n");
    ASSERT_TRUE(result) << result.message();
    const Prolog& prolog = prologOf(*result);
    EXPECT_EQ(prolog.encoding, "utf-8");
    EXPECT_EQ(prolog.standalone, std::optional<bool>(false));
    EXPECT_TRUE(prolog.hasDeclaration);
    EXPECT_TRUE(prolog.hasMark);
    EXPECT_EQ(prolog.newline, "\r\n");
    EXPECT_EQ(prolog.doctype, "a");
    EXPECT_EQ(prolog.publicId, "-//P//");
    EXPECT_EQ(prolog.systemId, "s'd");
    EXPECT_EQ(prolog.internalSubset, " <!--in-->\r\n<!ENTITY e 'x'> ");
    EXPECT_EQ(shown(prolog.beforeDoctype), "<!--1--><?t 2?>");
    EXPECT_EQ(shown(prolog.beforeRoot), "<!--3-->");
    EXPECT_EQ(shown(prolog.afterRoot), "<?t 4?><!--5-->");
    EXPECT_EQ(dump(result.get()), "a");
}

TEST(ReadNodesTest, LeavesOutOfThePrologWhatIsNotThere) {
    const ReadResult result = readText("<!--1--><a><!--2--></a><!--3-->");
    const Prolog& prolog = prologOf(*result);
    EXPECT_EQ(prolog.encoding + prolog.doctype + prolog.publicId + prolog.systemId + prolog.internalSubset, "");
    EXPECT_EQ(prolog.standalone, std::nullopt);
    EXPECT_FALSE(prolog.hasDeclaration || prolog.hasMark);
    EXPECT_EQ(prolog.newline, "\n");
    EXPECT_EQ(shown(prolog.beforeDoctype), "");
    EXPECT_EQ(shown(prolog.beforeRoot), "<!--1-->") << "without a document type the root is what it stands before";
    EXPECT_EQ(shown(prolog.afterRoot), "<!--3-->");

    ReadOptions options;
    options.keepComments = false;
    const ReadResult without = readText("<!--1--><?t?><a/><!--3-->", options);
    EXPECT_EQ(shown(prologOf(*without).beforeRoot), "<?t?>");
    EXPECT_EQ(shown(prologOf(*without).afterRoot), "");
    const ReadResult alone = readText("<?xml version='1.0' standalone='yes'?><a/>");
    EXPECT_EQ(prologOf(*alone).standalone, std::optional<bool>(true));
}

TEST(ReadNodesTest, TakesTheNewlineOfTheFirstLineEnd) {
    const char* const kCases[][2] = {
        {"<a>\n\r\n</a>", "\n"}, {"<a>\r\n\n</a>", "\r\n"}, {"<a>\r\n</a>\r", "\r\n"},
        {"<a>\rx\n</a>", "\r"},  {"<a/>\r", "\r"},          {"<a/>\r\n", "\r\n"},
        {"<a/>", "\n"},          {"<a>&#13;</a>", "\n"},    {"<a x='\r\n'/>", "\r\n"},
    };
    for (const auto& [text, newline] : kCases) {
        const ReadResult result = readText(text);
        EXPECT_EQ(prologOf(*result).newline, newline) << text;
    }
}

TEST(ReadNodesTest, IsCopiedWithItsProlog) {
    const ReadResult result = readText("<!--1--><a/>", everything());
    const Document copy(*result);
    EXPECT_EQ(shown(prologOf(copy).beforeRoot), "<!--1-->");
}

// --- Attributes ---

std::string tagOf(const Element& element) {
    std::vector<const Attribute*> all(static_cast<std::size_t>(element.getAttributeCount()));
    for (int i = 0; i < element.getAttributeCount(); ++i) {
        const Attribute* const attribute = element.getAttribute(i);
        all[NodeAccess::order(*attribute)] = attribute;
    }
    std::string text;
    for (const Attribute* attribute : all) text += attribute->getName() + (isDefault(*attribute) ? "* " : " ");
    return text;
}

TEST(ReadNodesTest, KnowsTheOrderOfTheTagAndWhatItSupplied) {
    const std::string dtd = "<!DOCTYPE a [<!ATTLIST b y CDATA '1' c CDATA '2' x CDATA #IMPLIED>]>";
    const ReadResult result = readText(dtd + "<a z='' b='' m=''><b x='' a=''/><b c=''/></a>");
    const Element& root = *result->getRoot();
    EXPECT_EQ(tagOf(root), "z b m ");
    EXPECT_EQ(tagOf(*root.getChild(0)->toElement()), "x a y* c* ");
    EXPECT_EQ(tagOf(*root.getChild(1)->toElement()), "c y* ");
    EXPECT_EQ(dump(&root), "a[b= m= z=](b[a= c=2 x= y=1] b[c= y=1])");
}

}  // namespace
}  // namespace Xml::test
