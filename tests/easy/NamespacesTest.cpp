#include "xml/easy/Namespaces.h"

#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Instruction.h"
#include "xml/dtd/Dtd.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Trees.h"
#include "xml/easy/Values.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

// "prefix|local|namespace".
std::string partsOf(const Object& node) { return prefixOf(node) + "|" + localNameOf(node) + "|" + namespaceOf(node); }

// Of all elements with their attributes, in document order and in that of the tags.
std::string allPartsOf(Element& top) {
    std::string all = partsOf(top);
    for (const Attribute& attribute : attributes(top)) all += " @" + partsOf(attribute);
    for (Element& element : elements(top)) all += " (" + allPartsOf(element) + ")";
    return all;
}

TEST(NamespacesTest, AreThoseOfTheDeclarationsAround) {
    const std::string kXml = "http://www.w3.org/XML/1998/namespace";
    const std::string kXmlns = "http://www.w3.org/2000/xmlns/";
    const struct {
        const char* text;
        std::string parts;
    } kCases[] = {
        {"<a k='v'/>", "|a| @|k|"},
        {"<a xmlns='u' k='v'/>", "|a|u @|xmlns|" + kXmlns + " @|k|"},
        {"<p:a xmlns:p='u' p:k='v'/>", "p|a|u @xmlns|p|" + kXmlns + " @p|k|u"},
        {"<a xmlns='u'><b><c/></b></a>", "|a|u @|xmlns|" + kXmlns + " (|b|u (|c|u))"},
        {"<a xmlns='u'><b xmlns=''><c/></b></a>", "|a|u @|xmlns|" + kXmlns + " (|b| @|xmlns|" + kXmlns + " (|c|))"},
        {"<p:a xmlns:p='u'><p:b xmlns:p='w'/><p:c/></p:a>",
         "p|a|u @xmlns|p|" + kXmlns + " (p|b|w @xmlns|p|" + kXmlns + ") (p|c|u)"},
        {"<a xml:lang='en'/>", "|a| @xml|lang|" + kXml},
        {"<\xC3\xB6:\xC3\xA4 xmlns:\xC3\xB6='u'/>", "\xC3\xB6|\xC3\xA4|u @xmlns|\xC3\xB6|" + kXmlns},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        ReadResult result = readText(c.text);
        ASSERT_TRUE(result) << result.message();
        EXPECT_EQ(allPartsOf(*result->getRoot()), c.parts);
    }
}

TEST(NamespacesTest, OfAnyNameAreWhatTheNameSays) {
    const struct {
        const char* name;
        const char* element;
        const char* attribute;
    } kCases[] = {
        {"p:a", "p|a|", "p|a|"},
        {"q:a", "q|a|u", "q|a|u"},
        {"xml:a", "xml|a|http://www.w3.org/XML/1998/namespace", "xml|a|http://www.w3.org/XML/1998/namespace"},
        {"xmlns:q", "xmlns|q|http://www.w3.org/2000/xmlns/", "xmlns|q|http://www.w3.org/2000/xmlns/"},
        {"xmlns", "|xmlns|d", "|xmlns|http://www.w3.org/2000/xmlns/"},
        {"q:a:b", "|q:a:b|d", "|q:a:b|"},
        {":a", "|:a|d", "|:a|"},
        {"q:", "|q:|d", "|q:|"},
        {"q:1", "|q:1|d", "|q:1|"},
        {"\xFF:a", "|\xFF:a|d", "|\xFF:a|"},
        {"", "||d", "||"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto document = makeDocument("r");
        setValue(*document->getRoot(), "xmlns:q", "u");
        setValue(*document->getRoot(), "xmlns:xml", "wrong");
        setValue(*document->getRoot(), "xmlns", "d");
        EXPECT_EQ(partsOf(append(*document->getRoot(), c.name)), c.element);
        Element& inner = append(*document->getRoot(), "r");
        setValue(inner, c.name, "q");
        EXPECT_EQ(partsOf(*inner.getAttribute(0)), c.attribute);
    }
}

TEST(NamespacesTest, DefaultsOfTheLinkedDtdCount) {
    Outcome outcome = readDocument(
        "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT p:a ANY><!ATTLIST r xmlns:p CDATA 'u' xmlns CDATA 'd'>]><r><p:a/></r>");
    ASSERT_TRUE(outcome.ok) << outcome.error;
    outcome.document->getRoot()->setDtd(outcome.document->getDtd());
    EXPECT_EQ(partsOf(*outcome.document->getRoot()), "|r|d");
    EXPECT_EQ(partsOf(*outcome.document->getRoot()->getChild(0)), "p|a|u");
}

TEST(NamespacesTest, OtherNodesHaveNone) {
    EXPECT_EQ(partsOf(Instruction("p:t", "c")), "p|t|");
    EXPECT_EQ(partsOf(Instruction("t", "c")), "|t|");
    EXPECT_EQ(partsOf(CharData("x")), "||");
    EXPECT_EQ(partsOf(Comment("x")), "||");
    EXPECT_EQ(partsOf(Document(new Element("r"), nullptr)), "||");
    EXPECT_EQ(partsOf(Dtd("r")), "||");
    const Attribute alone("p:k", "v");
    EXPECT_EQ(partsOf(alone), "p|k|");
}

}  // namespace
}  // namespace Xml::test
