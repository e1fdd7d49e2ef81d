#include "xml/standard/Write.h"

#include "standard/Written.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/Prolog.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/Read.h"
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <type_traits>

namespace Xml::test {
namespace {

static_assert(!std::is_constructible_v<WriteResult, std::string> && !std::is_constructible_v<WriteResult, Problem>,
              "only writing makes one");

WriteOptions bare() {
    WriteOptions options;
    options.indent.clear();
    options.declaration = false;
    return options;
}

std::unique_ptr<Document> documentOf(const std::string& text, const ReadOptions& options = everything()) {
    ReadResult result = readText(text, options);
    EXPECT_TRUE(result) << result.message();
    return result.take();
}

std::string written(const Object& node, const WriteOptions& options = bare()) {
    const WriteResult result = writeText(node, options);
    return result ? result.text() : result.message();
}

TEST(WriteTest, WritesWhatWasReadAsItWas) {
    const char* const kDocuments[] = {
        "<a/>",
        "<?xml version=\"1.0\"?>\n<a/>",
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<a/>",
        "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"no\"?>\n<a/>",
        "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<a/>",
        "<!--1-->\n<?t i?>\n<!DOCTYPE a PUBLIC \"p\" \"s\" [<!ENTITY e \"'\">\n]>\n<!--2-->\n<a/>\n<!--3-->\n<?t?>",
        "<!DOCTYPE a SYSTEM 's\"'>\n<a/>",
        "<!DOCTYPE html>\n<html/>",
        "<!DOCTYPE a [<!ATTLIST a x CDATA '1'>]>\n<a y=\"2\"/>",
        "<a z=\"1\" y=\"2\" x=\"3\"><c/> <!--c--><?t i?>\n<![CDATA[<&>]]>text</a>",
        "<a x=\"&#9;&#10;&#13;&amp;&lt;&quot;'>\">&#13;&amp;&lt;&gt;\"'\t\n</a>",
        "<gr\u00F6\u00DFe \u00E4=\"\u20AC\">\U0001F600</gr\u00F6\u00DFe>",
        "<a x=\"\"/>",
        "<a>\r\n<b/>\r\n<!--1\r\n2--></a>",
        "<a>\r<b/></a>",
    };
    for (const std::string text : kDocuments) {
        SCOPED_TRACE(text);
        const auto document = documentOf(text);
        const bool hasReturn = text.find('\r') != std::string::npos && text.find("&#13;") == std::string::npos;
        const std::string end = !hasReturn ? "\n" : text.find('\n') != std::string::npos ? "\r\n" : "\r";
        EXPECT_EQ(written(*document, asRead(*document)), text + end);
    }
}

TEST(WriteTest, ChangesWhatATreeDoesNotKeep) {
    struct Case {
        const char* text;
        const char* written;
    };
    const Case kCases[] = {
        {"<a  b='1'\nc = \"2\" ></a >", "<a b=\"1\" c=\"2\"/>\n"},
        {"<a x='\"'>&#233;&#x20AC;</a>", "<a x=\"&quot;\">\u00E9\u20AC</a>\n"},
        {"<a x='1\n2'>x > y</a>", "<a x=\"1 2\">x &gt; y</a>\n"},
        {"<!DOCTYPE a [<!ENTITY e '<b/>'>]><a>&e;</a>", "<!DOCTYPE a [<!ENTITY e '<b/>'>]>\n<a><b/></a>\n"},
        {"<?xml version='1.1'?><a/>", "<?xml version=\"1.0\"?>\n<a/>\n"},
        {"<!--1--> <a/> <!--2-->", "<!--1-->\n<a/>\n<!--2-->\n"},
        {"<!DOCTYPE a  [ ]><a/>", "<!DOCTYPE a [ ]>\n<a/>\n"},
        {"<a>\r\n\n</a>", "<a>\r\n\r\n</a>\r\n"},
        {"<?t   i ?><a/>", "<?t i ?>\n<a/>\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        const auto document = documentOf(c.text);
        EXPECT_EQ(written(*document, asRead(*document)), c.written);
    }
}

TEST(WriteTest, IndentsElementsWithoutText) {
    struct Case {
        const char* name;
        const char* text;
        const char* written;
    };
    const Case kCases[] = {
        {"children", "<a><b><c/></b><d>1</d></a>", "<a>\n\t<b>\n\t\t<c/>\n\t</b>\n\t<d>1</d>\n</a>"},
        {"comments beside children", "<a><!--1--><b/><?t?></a>", "<a>\n\t<!--1-->\n\t<b/>\n\t<?t?>\n</a>"},
        {"comments alone", "<a><!--1--></a>", "<a><!--1--></a>"},
        {"mixed", "<a>1<b><c/></b></a>", "<a>1<b><c/></b></a>"},
        {"white space is text", "<a> <b/></a>", "<a> <b/></a>"},
        {"a section is text", "<a><b/><![CDATA[1]]></a>", "<a><b/><![CDATA[1]]></a>"},
        {"an empty section is none", "<a><b/><![CDATA[]]></a>", "<a>\n\t<b/>\n\t<![CDATA[]]>\n</a>"},
        {"preserved", "<a xml:space='preserve'><b><c/></b></a>", "<a xml:space=\"preserve\"><b><c/></b></a>"},
        {"default", "<a xml:space='default'><b/></a>", "<a xml:space=\"default\">\n\t<b/>\n</a>"},
        {"preserved within", "<a><b xml:space='preserve'><c/></b><d/></a>",
         "<a>\n\t<b xml:space=\"preserve\"><c/></b>\n\t<d/>\n</a>"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        WriteOptions options = bare();
        options.indent = "\t";
        const auto document = documentOf(c.text);
        EXPECT_EQ(written(*document->getRoot(), options), c.written);
        EXPECT_EQ(written(*document, options), std::string(c.written) + "\n");
        options.indent.clear();
        EXPECT_EQ(written(*documentOf(c.written)->getRoot(), options), c.written);
    }
}

TEST(WriteTest, PartsAreIndentedAsTheyAreInTheWhole) {
    const auto document =
        documentOf("<a xml:space='preserve'><b><c><d/></c></b><e xml:space='default'><c><d/></c></e></a>");
    WriteOptions options = bare();
    options.indent = " ";
    const Element& preserved = *document->find("b");
    EXPECT_EQ(written(preserved, options), "<b><c><d/></c></b>");
    EXPECT_EQ(written(*preserved.getChild(0), options), "<c><d/></c>");
    EXPECT_EQ(written(*document->find("e")->toElement()->getChild(0), options), "<c>\n <d/>\n</c>");
}

TEST(WriteTest, IndentationEndsAtSixtyFourLevels) {
    std::string text;
    for (int i = 0; i < 70; ++i) text += "<a>";
    text += "<b/>";
    for (int i = 0; i < 70; ++i) text += "</a>";
    WriteOptions options = bare();
    options.indent = "  ";
    const std::string lines = written(*documentOf(text)->getRoot(), options);
    EXPECT_NE(lines.find("\n" + std::string(126, ' ') + "<a>\n" + std::string(128, ' ') + "<a>\n"), std::string::npos);
    EXPECT_NE(lines.find("\n" + std::string(128, ' ') + "<b/>\n"), std::string::npos);
    EXPECT_EQ(lines.find(std::string(129, ' ')), std::string::npos);
}

TEST(WriteTest, DefaultsAreWrittenThatTheDocumentTypeDoesNotSupply) {
    const std::string from = "<!DOCTYPE a [<!ATTLIST b x CDATA '1'>]><a><b/></a>";
    const auto source = documentOf(from);
    WriteOptions options;
    options.declaration = false;
    options.indent.clear();
    const auto copiedInto = [&](const std::string& prolog) {
        const auto target = documentOf(prolog + "<a/>");
        target->getRoot()->addChild(source->getRoot()->getChild(0)->clone());
        return written(*target, options);
    };
    const std::string plain = "<!DOCTYPE a>";
    const std::string other = "<!DOCTYPE a [<!ATTLIST b x CDATA '2'>]>";
    const std::string ofOther = "<!DOCTYPE a [<!ATTLIST c x CDATA '1'>]>";
    const std::string required = "<!DOCTYPE a [<!ATTLIST b x CDATA #REQUIRED>]>";
    const std::string same = "<!DOCTYPE a [<!ATTLIST b x NMTOKEN #FIXED '1'>]>";
    EXPECT_EQ(copiedInto(""), "<a><b x=\"1\"/></a>\n");
    for (const std::string& doctype : {plain, other, ofOther, required})
        EXPECT_EQ(copiedInto(doctype), doctype + "\n<a><b x=\"1\"/></a>\n");
    EXPECT_EQ(copiedInto(same), same + "\n<a><b/></a>\n");

    const auto document = documentOf(from);
    static_cast<Element*>(document->getRoot()->getChild(0))->setName("c");
    EXPECT_EQ(written(*document, options), "<!DOCTYPE a [<!ATTLIST b x CDATA '1'>]>\n<a><c x=\"1\"/></a>\n");
    prologOf(*document).internalSubset.clear();
    EXPECT_EQ(written(*document, options), "<!DOCTYPE a>\n<a><c x=\"1\"/></a>\n");

    // After an entity that is not read declarations count only in a document that stands alone.
    const std::string unread = "<!DOCTYPE a [%e;<!ATTLIST b x CDATA '1'>]>";
    const auto alone = documentOf("<?xml version='1.0' standalone='yes'?>" + unread + "<a><b/></a>");
    EXPECT_EQ(written(*alone, options), unread + "\n<a><b x=\"1\"/></a>\n");
    options.declaration = true;
    EXPECT_EQ(written(*alone, options),
              "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n" + unread + "\n<a><b/></a>\n");
}

// Namespaces are an option of the reader, and a document type may have been read without it.
TEST(WriteTest, NamesInADocumentTypeMayHaveAnyColons) {
    ReadOptions options = everything();
    options.namespaces = false;
    const std::string text =
        "<!DOCTYPE :a:b [<!ELEMENT a:b:c ANY><!ENTITY e:f ''><!NOTATION n: SYSTEM 's'>]>\n<:a:b/>\n";
    const auto document = documentOf(text, options);
    EXPECT_EQ(written(*document, asRead(*document)), text);
}

TEST(WriteTest, OptionsSayTheForm) {
    const auto document = documentOf(
        "<?xml version='1.0' standalone='yes'?><!DOCTYPE a [<!ATTLIST a x CDATA '1'>]>"
        "<a><b></b>\n<c/></a>");
    const auto writes = [&](void (*change)(WriteOptions&)) {
        WriteOptions options;
        change(options);
        return written(*document, options);
    };
    const std::string start = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
    const std::string doctype = "<!DOCTYPE a [<!ATTLIST a x CDATA '1'>]>\n";
    const std::string root = "<a><b/>\n<c/></a>\n";
    EXPECT_EQ(writes([](WriteOptions&) {}), start + doctype + root);
    EXPECT_EQ(writes([](WriteOptions& o) { o.declaration = false; }), doctype + root);
    EXPECT_EQ(writes([](WriteOptions& o) { o.mark = true; }), "\xEF\xBB\xBF" + start + doctype + root);
    EXPECT_EQ(writes([](WriteOptions& o) { o.defaults = true; }), start + doctype + "<a x=\"1\"><b/>\n<c/></a>\n");
    EXPECT_EQ(writes([](WriteOptions& o) { o.shortEmptyTags = false; }), start + doctype + "<a><b></b>\n<c></c></a>\n");
    EXPECT_EQ(writes([](WriteOptions& o) { o.encoding.clear(); }),
              "<?xml version=\"1.0\" standalone=\"yes\"?>\n" + doctype + root);
    EXPECT_EQ(writes([](WriteOptions& o) { o.encoding = "utf8"; }),
              "<?xml version=\"1.0\" encoding=\"utf8\" standalone=\"yes\"?>\n" + doctype + root);
    std::string returns = start + doctype + root;
    for (std::size_t at = returns.find('\n'); at != std::string::npos; at = returns.find('\n', at + 2))
        returns.insert(at, 1, '\r');
    EXPECT_EQ(writes([](WriteOptions& o) { o.newline = "\r\n"; }), returns);
    // Without the document type nothing supplies the attribute any more.
    EXPECT_EQ(writes([](WriteOptions& o) { o.doctype = false; }), start + "<a x=\"1\"><b/>\n<c/></a>\n");
    EXPECT_EQ(written(*document->getRoot()), "<a x=\"1\"><b/>\n<c/></a>");
}

TEST(WriteTest, OptionsOfNoUseAreUnsupported) {
    struct Case {
        void (*change)(WriteOptions&);
        const char* rule;
        const char* message;
    };
    const Case kCases[] = {
        {[](WriteOptions& o) { o.newline = ""; }, "newline", "error: the option newline is no line end"},
        {[](WriteOptions& o) { o.newline = "\n\n"; }, "newline", "error: the option newline is no line end"},
        {[](WriteOptions& o) { o.indent = "--"; }, "indent",
         "error: the option indent has other characters than blanks and tabs"},
        {[](WriteOptions& o) { o.encoding = "klingon"; }, "encoding", "error: the encoding klingon cannot be written"},
        {[](WriteOptions& o) { o.encoding = "a b"; }, "encoding", "error: the encoding a b cannot be written"},
        {[](WriteOptions& o) { o.encoding = "IBM037"; }, "encoding", "error: the encoding IBM037 cannot be written"},
        {[](WriteOptions& o) { o.encoding = "UTF-7"; }, "encoding", "error: the encoding UTF-7 cannot be written"},
        {[](WriteOptions& o) {
             o.encoding = "ISO-8859-1";
             o.mark = true;
         },
         "mark", "error: the encoding ISO-8859-1 has no byte order mark"},
    };
    const auto document = documentOf("<a/>");
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.message);
        WriteOptions options;
        c.change(options);
        const WriteResult result = writeText(*document, options);
        EXPECT_FALSE(result);
        ASSERT_EQ(result.problems().size(), 1U);
        EXPECT_EQ(result.problems()[0].kind, Problem::Kind::Unsupported);
        EXPECT_EQ(result.problems()[0].rule, c.rule);
        EXPECT_EQ(result.message(), c.message);
        EXPECT_EQ(result.text(), "");
    }
}

// What was known from outside when it was read is said in what is written.
TEST(WriteTest, WhatIsWrittenSaysItsEncoding) {
    ReadOptions options = everything();
    options.encoding = "UTF-16";
    const auto wide = documentOf(std::string("<\0a\0/\0>\0", 8), options);
    EXPECT_EQ(written(*wide, asRead(*wide)), std::string("\xFF\xFE<\0a\0/\0>\0\n\0", 12));
    options.encoding = "ISO-8859-1";
    const auto narrow = documentOf("<a>\xE4</a>", options);
    const std::string latin = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xE4</a>\n";
    EXPECT_EQ(written(*narrow, asRead(*narrow)), latin);
    const auto declared = documentOf("<?xml version='1.0' encoding='US-ASCII'?><a>\xE4</a>", options);
    EXPECT_EQ(written(*declared, asRead(*declared)), latin);
    const auto again = documentOf(latin, options);
    EXPECT_EQ(written(*again, asRead(*again)), latin) << "as often as it is saved";
    options.encoding = "Shift_JIS";
    const auto foreign = documentOf("<a>\x82\xA0</a>", options);
    EXPECT_EQ(written(*foreign, asRead(*foreign)), "<?xml version=\"1.0\" encoding=\"Shift_JIS\"?>\n<a>\x82\xA0</a>\n");
    const auto wrong = documentOf("<?xml version='1.0' encoding='EUC-JP'?><a>\x82\xA0</a>", options);
    EXPECT_EQ(written(*wrong, asRead(*wrong)), written(*foreign, asRead(*foreign)));
    options.encoding = "UTF-8";
    const auto misnamed = documentOf("<?xml version='1.0' encoding='ISO-8859-1'?><a>\u00E4</a>", options);
    EXPECT_EQ(written(*misnamed, asRead(*misnamed)), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\u00E4</a>\n");
    const auto spelled = documentOf("<?xml version='1.0' encoding='utf8'?><a/>", options);
    EXPECT_EQ(written(*spelled, asRead(*spelled)), "<?xml version=\"1.0\" encoding=\"utf8\"?>\n<a/>\n");
}

// Some encodings have another character in the place of one of ASCII.
TEST(WriteTest, CharactersOfAsciiThatTheEncodingLacksAreReferences) {
    const auto document = documentOf("<a x=\"\\\">1\\2<!--3--></a>");
    WriteOptions options = bare();
    options.encoding = "Shift_JIS";
    const WriteResult result = writeText(*document, options);
    if (!result && result.problems()[0].kind == Problem::Kind::Unsupported) GTEST_SKIP() << result.message();
    EXPECT_EQ(result.text(), "<a x=\"&#92;\">1&#92;2<!--3--></a>\n");
    document->getRoot()->addChild(new Comment("\\"));
    EXPECT_EQ(writeText(*document, options).message(),
              "error: the comment has a character that Shift_JIS lacks: U+005C");
}

// --- Nodes alone ---

TEST(WriteTest, WritesPartsAsTheyAre) {
    const auto document = documentOf(
        "<!DOCTYPE p:a [<!ELEMENT b ANY><!ENTITY e 'x'>]><p:a xmlns:p='u'><p:b>1</p:b>t&amp;<![CDATA[<]]><!--c--><?i "
        "x?></p:a>");
    const Element& root = *document->getRoot();
    EXPECT_EQ(written(*root.getChild(0)), "<p:b>1</p:b>");
    EXPECT_EQ(written(*root.getChild(1)), "t&amp;");
    EXPECT_EQ(written(*root.getChild(2)), "<![CDATA[<]]>");
    EXPECT_EQ(written(*root.getChild(3)), "<!--c-->");
    EXPECT_EQ(written(*root.getChild(4)), "<?i x?>");
    EXPECT_EQ(written(*document->getDtd()), "<!ENTITY e \"x\">\n<!ELEMENT b ANY>\n");
    EXPECT_EQ(written(Dtd("a")), "");
}

// --- Text as nodes hold it ---

TEST(WriteTest, DecodesTextByTheRulesOfXml) {
    struct Case {
        const char* held;
        const char* written;
    };
    const Case kCases[] = {
        {"", ""},
        {"a&amp;b&lt;c&gt;d", "a&amp;b&lt;c&gt;d"},
        {"&quot;&apos;", "\"'"},
        {"&#65;&#x41;&#xe9;&#8364;&#x1F600;", "AA\u00E9\u20AC\U0001F600"},
        {"&#38;&#60;&#62;", "&amp;&lt;&gt;"},
        {"&#13;&#10;&#9;", "&#13;\n\t"},
        {"<b>\r", "&lt;b&gt;&#13;"},
        {"&e;&ampere;", "x&lt;y&amp;ampere;"},
        {"&", "&amp;"},
        {"&&amp", "&amp;&amp;amp"},
        {"&;&#;&#x;&#xg;&#12a;", "&amp;;&amp;#;&amp;#x;&amp;#xg;&amp;#12a;"},
        {"&#0;&#1;&#xFFFE;&#xD800;&#x110000;&#99999999999;",
         "&amp;#0;&amp;#1;&amp;#xFFFE;&amp;#xD800;&amp;#x110000;&amp;#99999999999;"},
        {"&unknown;", "&amp;unknown;"},
        {"]]>", "]]&gt;"},
        {"\u00E4&#228;&amp;\u00E4", "\u00E4\u00E4&amp;\u00E4"},
        {"a long text without anything &amp; then &lt; and \u20AC &apos;quoted&apos; text of more than a few bytes",
         "a long text without anything &amp; then &lt; and \u20AC 'quoted' text of more than a few bytes"},
    };
    Dtd dtd("a");
    dtd.setEntity("e", "x<y");
    dtd.setEntity("ampere", "&ampere;");
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.held);
        CharData text;
        text.data() = c.held;
        text.setDtd(&dtd);
        EXPECT_EQ(written(text), c.written);

        // A section means the same.
        Element element("a");
        auto* const section = new CDataSection("");
        element.addChild(section);
        section->data() = c.held;
        section->setDtd(&dtd);
        const auto asText = readText("<a>" + std::string(c.written) + "</a>");
        const auto asSection = readText(written(element));
        ASSERT_TRUE(asText && asSection) << asText.message() << asSection.message();
        EXPECT_EQ(asSection->getRoot()->getCharData(), asText->getRoot()->getCharData());
    }
}

}  // namespace
}  // namespace Xml::test
