// What is written and read again writes the same once more, but for a few cases. Here they are with what becomes of
// them.
#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DoctypeReader.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

// What the declarations write.
std::string written(const std::string& declarations) {
    const MessageCollector quiet;
    StringInStream in(declarations);
    DTDReader reader("d");
    EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
    return textOf(*reader.getDtd());
}

// What a document type that was written writes once it was read again. Where it cannot be: "refused: " and the message
// without its place, or the diagnostic where there is no message.
std::string writtenAgain(const std::string& text) {
    const MessageCollector diagnostics;
    StringInStream in(text);
    DoctypeReader reader;
    if (reader.parse(in)) return textOf(*std::unique_ptr<Dtd>(reader.extractDtd()));
    const std::string& message = reader.getErrorMessage();
    if (message.empty()) return "refused: " + diagnostics.texts().at(0);
    const std::size_t from = message.find(") ") + 2;
    return "refused: " + message.substr(from, message.rfind(" <") - from);
}

std::string doctype(const std::string& declarations) { return "<!DOCTYPE d [\n" + declarations + "]>\n"; }

TEST(WriteReadTest, DocumentTypesChangeWhereTheirTextSaysLessOrMoreThanTheyHold) {
    const struct {
        const char* name;
        const char* declarations;
        const char* first;   // between the brackets
        const char* second;  // the same, or what a reader says
    } kCases[] = {
        {"a default that is escaped grows on every round", "<!ELEMENT a EMPTY><!ATTLIST a x CDATA '&lt;'>",
         "<!ELEMENT a EMPTY>\n<!ATTLIST a\n\tx CDATA \"&amp;lt;\"\n>\n",
         "<!ELEMENT a EMPTY>\n<!ATTLIST a\n\tx CDATA \"&amp;amp;lt;\"\n>\n"},
        {"the further lines of a default are indented on every round",
         "<!ELEMENT a EMPTY><!ATTLIST a x CDATA #FIXED '1\n\n2\n'>",
         "<!ELEMENT a EMPTY>\n<!ATTLIST a\n\tx CDATA #FIXED\"1\n\n\t2\n\t\"\n>\n",
         "<!ELEMENT a EMPTY>\n<!ATTLIST a\n\tx CDATA #FIXED\"1\n\n\t\t2\n\t\t\"\n>\n"},
        {"entities stand at the margin, and their references are decoded", "<!ENTITY e '1\n&amp;2'>",
         "<!ENTITY e \"1\n&amp;2\">\n", "<!ENTITY e \"1\n&amp;2\">\n"},
        {"attribute lists of undeclared elements are not written",
         "<!ATTLIST b x CDATA '1'><!ELEMENT a EMPTY><!ATTLIST a y CDATA #IMPLIED>",
         "<!ELEMENT a EMPTY>\n<!ATTLIST a\n\ty CDATA #IMPLIED\n>\n",
         "<!ELEMENT a EMPTY>\n<!ATTLIST a\n\ty CDATA #IMPLIED\n>\n"},
        {"a subset without declarations is refused", "<!ATTLIST b x CDATA '1'>", "", "refused: unexpected token \"]\""},
        {"a choice of one name and character data writes nothing", "<!ELEMENT a (b | #PCDATA)*>", "<!ELEMENT a *>\n",
         "refused: <ElementDeclReader::parse> don't know what to do *"},
        {"so it does in a group", "<!ELEMENT a (c, (b | #PCDATA))>", "<!ELEMENT a (c, )>\n",
         "refused: unexpected \")\""},
        {"marks in a row are refused", "<!ELEMENT a ((b*)+, c)>", "<!ELEMENT a (b*+, c)>\n",
         "refused: unexpected \"+\""},
        {"a lone member with a mark loses its brackets", "<!ELEMENT a ((b)*, c)>", "<!ELEMENT a (b*, c)>\n",
         "<!ELEMENT a (b*, c)>\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(written(c.declarations), doctype(c.first));
        const bool refused = std::string(c.second).rfind("refused: ", 0) == 0;
        EXPECT_EQ(writtenAgain(doctype(c.first)), refused ? c.second : doctype(c.second));
    }
}

TEST(WriteReadTest, TheFurtherLinesOfAnAttributeValueAreIndentedByTheElementsLevelOnEveryRound) {
    const Outcome first = readDocument("<r x='1\n2'><a y='1\n\n2\n'><b z='\n'/></a></r>");
    const std::string header = "<?xml version = \"1.0\" ?>\n";
    const std::string once = textOf(*first.document);
    EXPECT_EQ(once, header + "<r x=\"1\n2\">\n\t<a y=\"1\n\n\t2\n\t\">\n\t\t<b z=\"\n\t\t\"/>\n\t</a>\n</r>\n");
    const Outcome second = readDocument(once);
    EXPECT_EQ(second.document->getRoot()->findElement("b")->getAttributeValue("z"), "\n\t\t");
    EXPECT_EQ(textOf(*second.document),
              header + "<r x=\"1\n2\">\n\t<a y=\"1\n\n\t\t2\n\t\t\">\n\t\t<b z=\"\n\t\t\t\t\"/>\n\t</a>\n</r>\n");
}

TEST(WriteReadTest, TextThatBeginsWithAQuoteOrAReferenceIsRefusedOnceWhatClosedItIsNotWritten) {
    // A reader looks for the end of the token that the text begins with, wherever that is.
    const struct {
        const char* name;
        const char* text;
        const char* written;
    } kCases[] = {
        {"closed in a comment after the root", "<a>'b</a><!-- ' -->", "<a>'b</a>\n"},
        {"closed in a comment beside it", "<a>\"b<!-- \" --></a>", "<a>\"b</a>\n"},
        {"closed by the quotes of a value", "<a>'b<c x='1'/></a>", "<a>'b<c x=\"1\"/></a>\n"},
        {"a reference", "<a>&b<c/><!-- ; --></a>", "<a>&b<c/></a>\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Outcome first = readDocument(c.text);
        ASSERT_TRUE(first.ok) << first.error;
        const std::string written = textOf(*first.document);
        EXPECT_EQ(written, std::string("<?xml version = \"1.0\" ?>\n") + c.written);
        const Outcome second = readDocument(written);
        EXPECT_EQ(second.document, nullptr);
        EXPECT_NE(second.error.find("Unexpected end of stream"), std::string::npos) << second.error;
    }
}

TEST(WriteReadTest, TextsWithACommentBetweenThemBecomeOne) {
    const Outcome first = readDocument("<a>b<!-- c -->'d</a><!-- ' -->");
    EXPECT_EQ(dump(first.document.get()), "a('b' ''d')");
    EXPECT_EQ(treeOf(textOf(*first.document)), "a('b'd')");
}

}  // namespace
}  // namespace Xml::test
