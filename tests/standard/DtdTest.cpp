// The Dtd in a document that was read: every kind of declaration, and what the rest of the library makes of it.
#include "models/Models.h"
#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

std::unique_ptr<Document> documentOf(const std::string& declarations, const std::string& root = "<a/>") {
    ReadResult result = readText("<!DOCTYPE a [" + declarations + "]>" + root);
    EXPECT_TRUE(result) << result.message();
    return result.take();
}

std::unique_ptr<Dtd> dtdRead(const std::string& declarations) {
    return std::unique_ptr<Dtd>(documentOf(declarations)->extractDtd());
}

TEST(StandardDtdTest, IsThereWhereADocumentTypeIsDeclared) {
    EXPECT_EQ(readText("<a/>").get()->getDtd(), nullptr);
    for (const char* text : {"<!DOCTYPE b><a/>", "<!DOCTYPE b SYSTEM 's'><a/>", "<!DOCTYPE b []><a/>"}) {
        const ReadResult result = readText(text);
        ASSERT_NE(result.get()->getDtd(), nullptr) << text;
        EXPECT_EQ(written(*result.get()->getDtd()), "<!DOCTYPE b [\n]>\n") << text;
        EXPECT_EQ(result.get()->getDtd()->getParent(), result.get());
    }
}

// --- Elements ---

std::string modelOf(const Dtd& dtd, const std::string& element) {
    const ContentSpec* const model = DtdAccess::findModel(dtd, element);
    return model != nullptr ? written(*model) : "none";
}

TEST(StandardDtdTest, HasContentModels) {
    const struct {
        const char* declared;
        const char* model;
    } kCases[] = {
        {"EMPTY", "EMPTY"},
        {"ANY", "ANY"},
        {"(#PCDATA)", "(#PCDATA)"},
        {"(#PCDATA)*", "(#PCDATA)"},
        {"( #PCDATA | b|c )*", "(#PCDATA | b | c)*"},
        {"(#PCDATA|b|c|b)*", "(#PCDATA | b | c)*"},
        {"(b)", "(b)"},
        {"(b?)", "(b)?"},
        {"(b)+", "(b)+"},
        {"(b,c)", "(b, c)"},
        {"( b , c? )*", "(b, c?)*"},
        {"(b|c*|d+)?", "(b | c* | d+)?"},
        {"(b,(c|d)+,(e,f)?)", "(b, (c | d)+, (e, f)?)"},
        {"((b,c)|(d,e))", "((b, c) | (d, e))"},
        {"((b|c),d)", "((b | c), d)"},
        {"(p:b,gr\xC3\xB6\xC3\x9F"
         "e)",
         "(p:b, gr\xC3\xB6\xC3\x9F"
         "e)"},
        {"(b,b)", "(b, b)"},
        {"(b?,b)", "(b?, b)"},
        // A group of one is what is in it.
        {"((b,c))", "(b, c)"},
        {"(((b)))", "(b)"},
        {"((b|c)?)+", "(b | c)*"},
        {"(b,(c))", "(b, c)"},
        {"(b,(c?))", "(b, c?)"},
        {"(b,(c)?)", "(b, c?)"},
        {"(b,(c?)?)", "(b, c?)"},
        {"(b,(c+)+)", "(b, c+)"},
        {"(b,(c?)+)", "(b, c*)"},
        {"(b,(c+)?)", "(b, c*)"},
        {"(b,(c*)+)", "(b, c*)"},
        {"(b,(c)*)", "(b, c*)"},
        {"(b,((c?)+)?)", "(b, c*)"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.declared);
        EXPECT_EQ(modelOf(*dtdRead(std::string("<!ELEMENT a ") + c.declared + ">"), "a"), c.model);
    }
}

TEST(StandardDtdTest, SaysNothingAndKeepsTheFirstDeclaration) {
    MessageCollector messages;
    const auto dtd = dtdRead(
        "<!ELEMENT a EMPTY><!ELEMENT a ANY>"
        "<!ATTLIST a x CDATA '1' x ID #IMPLIED><!ATTLIST a x CDATA '2'>"
        "<!ENTITY e '1'><!ENTITY e '2'><!ENTITY % e '3'><!ENTITY % e '4'>"
        "<!NOTATION n SYSTEM '5'><!NOTATION n SYSTEM '6'>");
    EXPECT_EQ(modelOf(*dtd, "a"), "EMPTY");
    EXPECT_EQ(dtd->getDefaultValue("a", "x"), "1");
    EXPECT_EQ(dtd->getEntityValue("e"), "1");
    EXPECT_EQ(dtd->getParameterEntityDecls().at("e").text, "3");
    EXPECT_EQ(dtd->getNotationDecls().at("n").systemId, "5");
    EXPECT_EQ(messages.texts(), std::vector<std::string>());
}

// --- Attributes ---

std::string definitionOf(const std::string& declared) {
    const auto dtd = dtdRead("<!NOTATION n SYSTEM 'n'><!ATTLIST a x " + declared + ">");
    return written(*DtdAccess::findList(*dtd, "a")->definitions.at("x"));
}

TEST(StandardDtdTest, HasAttributesOfEveryType) {
    const struct {
        const char* declared;
        const char* definition;
    } kCases[] = {
        {"CDATA #REQUIRED", "CDATA #REQUIRED"},
        {"CDATA #IMPLIED", "CDATA #IMPLIED"},
        {"CDATA 'v'", "CDATA \"v\""},
        {"CDATA ''", "CDATA \"\""},
        {"CDATA #FIXED 'v'", "CDATA #FIXED\"v\""},
        {"CDATA ' &lt; \t&#9; '", "CDATA \" &lt;  \t \""},
        {"ID #IMPLIED", "ID #IMPLIED"},
        {"IDREF #IMPLIED", "IDREF #IMPLIED"},
        {"IDREFS #IMPLIED", "IDREFS #IMPLIED"},
        {"ENTITY #IMPLIED", "ENTITY #IMPLIED"},
        {"ENTITIES #IMPLIED", "ENTITIES #IMPLIED"},
        {"NMTOKEN #IMPLIED", "NMTOKEN #IMPLIED"},
        {"NMTOKENS ' p  q '", "NMTOKENS \"p q\""},
        {"(b|1|-) 'b'", "(b | 1 | -) \"b\""},
        {"( b ) #REQUIRED", "(b) #REQUIRED"},
        {"NOTATION ( n | m ) #IMPLIED", "NOTATION (n | m) #IMPLIED"},
        {"NOTATION (n) 'n'", "NOTATION (n) \"n\""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.declared);
        EXPECT_EQ(definitionOf(c.declared), c.definition);
    }
}

// --- Entities and notations ---

TEST(StandardDtdTest, HasEntitiesAndNotations) {
    using Kind = EntityDecl::Kind;
    const auto dtd = dtdRead(
        "<!ENTITY e '&f;<b>&#38;#60;</b>'><!ENTITY f \"x\">"
        "<!ENTITY g SYSTEM 's'><!ENTITY h PUBLIC 'p' 's'><!ENTITY i SYSTEM 's' NDATA n>"
        "<!ENTITY % j '&#37;k;'><!ENTITY % k PUBLIC 'p' 's'>"
        "<!NOTATION n SYSTEM 's'><!NOTATION m PUBLIC 'p'><!NOTATION o PUBLIC 'p' 's'>");
    EXPECT_EQ(dtd->getEntityValue("e"), "x<b><</b>");
    EXPECT_EQ(dtd->getEntityValue("f"), "x");
    for (const char* name : {"g", "h", "i", "j", "k"}) EXPECT_FALSE(dtd->isEntityName(name)) << name;

    const auto& general = dtd->getEntityDecls();
    EXPECT_EQ(general.size(), 5u);
    EXPECT_EQ(general.at("e").kind, Kind::Internal);
    EXPECT_EQ(general.at("e").text, "&f;<b>&#60;</b>");
    EXPECT_EQ(general.at("g").kind, Kind::External);
    EXPECT_EQ(general.at("g").publicId + "|" + general.at("g").systemId, "|s");
    EXPECT_EQ(general.at("h").publicId + "|" + general.at("h").systemId, "p|s");
    EXPECT_EQ(general.at("i").kind, Kind::Unparsed);
    EXPECT_EQ(general.at("i").notation, "n");

    const auto& parameter = dtd->getParameterEntityDecls();
    EXPECT_EQ(parameter.size(), 2u);
    EXPECT_EQ(parameter.at("j").text, "%k;");
    EXPECT_EQ(parameter.at("k").kind, Kind::External);

    const auto& notations = dtd->getNotationDecls();
    EXPECT_EQ(notations.size(), 3u);
    EXPECT_EQ(notations.at("n").publicId + "|" + notations.at("n").systemId, "|s");
    EXPECT_EQ(notations.at("m").publicId + "|" + notations.at("m").systemId, "p|");
    EXPECT_EQ(notations.at("o").publicId + "|" + notations.at("o").systemId, "p|s");
}

TEST(StandardDtdTest, HasWhatStandsInParameterEntities) {
    const auto dtd = dtdRead("<!ENTITY % p '<!ELEMENT a (b,(c|d))><!ATTLIST a x (y|z) #IMPLIED>'>%p;");
    EXPECT_EQ(modelOf(*dtd, "a"), "(b, (c | d))");
    EXPECT_TRUE(DtdAccess::findList(*dtd, "a") != nullptr);
}

// Attributes and entities that come after something that is not read may be declared there in another way: the first
// declaration binds. Elements and notations are declared once in all.
TEST(StandardDtdTest, HasWhatCountsAlone) {
    const std::string declarations =
        "<!ELEMENT a ANY><!ENTITY % p SYSTEM 'p'>%p;"
        "<!ELEMENT b ANY><!ATTLIST a x CDATA 'd'><!ENTITY e 'x'><!NOTATION n SYSTEM 'n'>";
    EXPECT_EQ(written(*dtdRead(declarations)), "<!DOCTYPE a [\n<!ELEMENT a ANY>\n<!ELEMENT b ANY>\n]>\n");
    EXPECT_EQ(dtdRead(declarations)->getNotationDecls().size(), 1U);
    const ReadResult alone = readText("<?xml version='1.0' standalone='yes'?><!DOCTYPE a [" + declarations + "]><a/>");
    ASSERT_TRUE(alone) << alone.message();
    EXPECT_EQ(modelOf(*alone.get()->getDtd(), "b"), "ANY");
}

// --- What the rest of the library makes of it ---

TEST(StandardDtdTest, GovernsTheTree) {
    const auto document =
        documentOf("<!ENTITY e 'x&f;'><!ENTITY f '\xE2\x82\xAC'><!ATTLIST a y CDATA 'd'>", "<a>1<b z=''>2</b></a>");
    EXPECT_EQ(linksOf(*document->getRoot(), {document->getDtd()}), "a*[y*]('1'* b*[z*]('2'*))");
    CharData* const text = document->getRoot()->getChild(0)->toCharData();
    text->data() = "&e;&lt;";
    EXPECT_EQ(text->getData(), "x\xE2\x82\xAC<");
}

TEST(StandardDtdTest, IsCopiedWithTheDocument) {
    const std::string declarations =
        "<!ELEMENT a (\xC3\xB6)><!ATTLIST a x (y|z) 'y'><!ENTITY e '&f;'><!ENTITY f SYSTEM 's'>"
        "<!ENTITY % p 'q'><!NOTATION n SYSTEM 's'>";
    auto document = documentOf(declarations);
    const std::string before = textOf(*document);
    const std::unique_ptr<Object> copy(document->clone());
    document.reset();
    EXPECT_EQ(textOf(*copy), before);
    const Dtd* const dtd = copy->toDocument()->getDtd();
    EXPECT_EQ(modelOf(*dtd, "a"), "(\xC3\xB6)");
    EXPECT_EQ(dtd->getEntityDecls().size(), 2u);
    EXPECT_EQ(dtd->getParameterEntityDecls().size(), 1u);
    EXPECT_EQ(dtd->getNotationDecls().size(), 1u);

    Dtd merged("m");
    merged.merge(*dtd, false);
    EXPECT_EQ(modelOf(merged, "a"), "(\xC3\xB6)");
    EXPECT_EQ(merged.getEntityDecls().size(), 2u);
}

TEST(StandardDtdTest, IsWrittenAsTheDialectWritesOne) {
    EXPECT_EQ(textOf(*documentOf("<!ELEMENT a (#PCDATA)><!ATTLIST a x CDATA 'd' y ID #IMPLIED><!ENTITY e '&#38;#38;'>"
                                 "<!ENTITY f SYSTEM 's'><!NOTATION n SYSTEM 's'><!ENTITY % p ''>",
                                 "<a>&e;</a>")),
              "<?xml version = \"1.0\" ?>\n<!DOCTYPE a [\n<!ELEMENT a (#PCDATA)>\n<!ATTLIST a\n\tx CDATA \"d\"\n\ty ID "
              "#IMPLIED\n>\n<!ENTITY e \"&amp;\">\n]>\n<a x=\"d\">&amp;</a>\n");
}

// What the dialect can read of it is read as it was written.
TEST(StandardDtdTest, IsReadByTheDialectAsWritten) {
    const auto document = documentOf(
        "<!ELEMENT a (b?,(c|d)*,e+)><!ELEMENT b EMPTY><!ELEMENT c ANY><!ELEMENT d (#PCDATA)><!ELEMENT e (#PCDATA|b)*>"
        "<!ATTLIST e x CDATA #REQUIRED y CDATA #IMPLIED z CDATA 'd' f CDATA #FIXED 'v'><!ENTITY e '&f;y'>"
        "<!ENTITY f 'a&#38;#38;b'>",
        "<a><c/><e x='1'>t<b/></e></a>");
    const std::string text = textOf(*document);
    const Outcome again = readDocument(text);
    EXPECT_TRUE(again.ok) << again.error;
    ASSERT_NE(again.document, nullptr);
    EXPECT_EQ(textOf(*again.document), text);
    EXPECT_EQ(again.document->getDtd()->getEntityValue("e"), "a&by");
}

TEST(StandardDtdTest, Validates) {
    const std::string declarations =
        "<!ELEMENT a (gr\xC3\xB6,(b|c)*,d?)><!ELEMENT gr\xC3\xB6 EMPTY><!ELEMENT b (#PCDATA)><!ELEMENT c ANY>"
        "<!ELEMENT d (#PCDATA|b)*><!ATTLIST b x (y|z) #REQUIRED>";
    const struct {
        const char* content;
        bool isValid;
    } kCases[] = {
        {"<gr\xC3\xB6/>", true},
        {"<gr\xC3\xB6/><b x='y'>t</b><c/><b x='z'/><d>t<b x='y'/></d>", true},
        {"<!--c--><gr\xC3\xB6/><?p i?><d/>", true},
        {"", false},
        {"<gro/>", false},
        {"<gr\xC3\xB6/><b/>", false},
        {"<gr\xC3\xB6/><d/><c/>", false},
        {"<gr\xC3\xB6/><e/>", false},
        {"<gr\xC3\xB6>t</gr\xC3\xB6>", false},
        {"<gr\xC3\xB6/><c y='1'/>", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.content);
        EXPECT_EQ(documentOf(declarations, std::string("<a>") + c.content + "</a>")->validate(), c.isValid);
    }
    EXPECT_FALSE(documentOf("")->validate());
}

}  // namespace
}  // namespace Xml::test
