// What reading a document and writing it again keeps and loses, and what else surprises at first: the sentences of
// README.md and the table of docs/dialect.md.
#include "support/Sources.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/reader/DocumentReader.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace {

using namespace Xml;
using namespace Xml::test;

// The document as it is written again after it was read; the error text where it cannot be read.
std::string saved(const std::string& text) {
    StringInStream in(text);
    DocumentReader reader;
    if (!reader.parse(in)) return reader.getErrorMessage();
    const std::unique_ptr<Document> document(reader.extractDocument());
    std::ostringstream out;
    FileOutStream sink(&out);
    document->toStream(sink);
    return out.str();
}

std::string body(const std::string& text) { return "<?xml version = \"1.0\" ?>\n" + text + "\n"; }

TEST(SaveTest, KeepsAndLosesWhatTheTableSays) {
    struct {
        const char* what;
        std::string text, written;
    } const kCases[] = {
        {"elements and names", "<x:b><a/><x:a/></x:b>", body("<x:b>\n\t<a/>\n\t<x:a/>\n</x:b>")},
        {"text", "<a> &lt; &#65; &e; \xC3\xA9 </a>", body("<a> &lt; &#65; &e; \xC3\xA9 </a>")},
        {"a line feed in a value", "<a><b c='1\n2'/></a>", body("<a>\n\t<b c=\"1\n\t2\"/>\n</a>")},
        {"references in a value", "<a b='&#9;&lt;&#x41;'/>", body("<a b=\"\t&lt;A\"/>")},
        {"an entity in a value",
         "<!DOCTYPE a [<!ENTITY e \"x\"><!ELEMENT a ANY><!ATTLIST a b CDATA #IMPLIED>]><a b='&e;'/>",
         body("<!DOCTYPE a [\n<!ELEMENT a ANY>\n<!ATTLIST a\n\tb CDATA #IMPLIED\n>\n<!ENTITY e \"x\">\n]>\n<a "
              "b=\"x\"/>")},
        {"the order of attributes", "<a c='1' b='2'/>", body("<a b=\"2\" c=\"1\"/>")},
        {"two attributes with one name", "<a b='1' b='2'/>", body("<a b=\"2\"/>")},
        {"white space between tags", "<a>  <b/>\r\n\r\n<c/></a>", body("<a>\n\t<b/>\n\t<c/>\n</a>")},
        {"white space beside text", "<a>x <b/> </a>", body("<a>x <b/></a>")},
        {"an empty element", "<a></a>", body("<a/>")},
        {"comments and instructions", "<!--x--><?y z?><a><!--x--><b/></a>", body("<a>\n\t<b/>\n</a>")},
        {"the XML declaration", "<?xml version='1.0' encoding='UTF-8' standalone='yes'?><a/>", body("<a/>")},
        {"a subset",
         "<!DOCTYPE a [<!ELEMENT b EMPTY><!--x--><!ELEMENT a (b)><!ATTLIST c d CDATA #IMPLIED>]><a><b/></a>",
         body("<!DOCTYPE a [\n<!ELEMENT a (b)>\n<!ELEMENT b EMPTY>\n]>\n<a>\n\t<b/>\n</a>")},
        {"a PUBLIC identifier", "<!DOCTYPE a PUBLIC \"x\" \"y\"><a/>", body("<a/>")},
        {"line ends", "<a>x\r\ny</a>", body("<a>x\r\ny</a>")},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(saved(c.text), c.written);
    }

    const ScratchFile subset("subset.dtd", "<!ELEMENT a EMPTY>");
    EXPECT_EQ(saved("<!DOCTYPE a SYSTEM \"" + subset.path + "\"><a/>"),
              body("<!DOCTYPE a [\n<!ELEMENT a EMPTY>\n]>\n<a/>"));
}

TEST(SaveTest, WhatIsWrittenIsWrittenTheSameAgainButForLineFeedsInValues) {
    for (const char* text : {"<a c='1' b='&#9;'>x <b/></a>", "<a>  <b>&lt;</b>\n<c></c></a>"}) {
        const std::string once = saved(text);
        EXPECT_EQ(saved(once), once);
    }
    const std::string once = saved("<a><b c='1\n2'/></a>");
    EXPECT_EQ(saved(once), body("<a>\n\t<b c=\"1\n\t\t2\"/>\n</a>"));
}

TEST(SurprisesTest, LinesEndWithTwoBytes) {
    struct {
        const char* text;
        int line, column;
    } const kCases[] = {
        {"<a>\n\n\n</b>", 1, 9}, {"<a>\r\n</b>", 1, 3}, {"<a>\r\n\r\n</b>", 2, 3}, {"<a>\r\r</b>", 1, 3}};
    for (const auto& c : kCases) {
        StringInStream in(c.text);
        DocumentReader reader;
        ASSERT_FALSE(reader.parse(in));
        const std::string place =
            "(line = " + std::to_string(c.line) + ", column = " + std::to_string(c.column) + ") \"a\" expected";
        EXPECT_EQ(reader.getErrorMessage().substr(0, place.size()), place);
    }
}

TEST(SurprisesTest, TextThatBeginsWithAQuoteOrAnAmpersandNeedsTheClosingOne) {
    struct {
        const char* text;
        bool read;
    } const kCases[] = {{"<a>'tis</a>", false}, {"<a>it's</a>", true}, {"<a>\"x\"</a>", true},
                        {"<a>\"x</a>", false},  {"<a>& b</a>", false}, {"<a>a & b</a>", true}};
    for (const auto& c : kCases) {
        StringInStream in(c.text);
        EXPECT_EQ(DocumentReader().parse(in), c.read) << c.text;
    }
}

TEST(SurprisesTest, ACharacterReferenceIsOneByte) {
    struct {
        const char* text;
        std::string value;
    } const kCases[] = {{"<a b='&#233;'/>", "\xE9"}, {"<a b='&#8364;'/>", "\xAC"}, {"<a b='&#256;'/>", "&#256;"}};
    for (const auto& c : kCases) {
        StringInStream in(c.text);
        DocumentReader reader;
        ASSERT_TRUE(reader.parse(in));
        const std::unique_ptr<Document> document(reader.extractDocument());
        EXPECT_EQ(document->getRoot()->getAttributeValue("b"), c.value) << c.text;
    }
}

}  // namespace
