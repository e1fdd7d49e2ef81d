#include "models/Models.h"
#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/stream/FileOutStream.h"
#include <gtest/gtest.h>
#include <sstream>

namespace Xml::test {

using Texts = std::vector<std::string>;

TEST(DtdWriteTest, WritesElementsAttributesAndEntitiesLineByLine) {
    Dtd dtd("doc");
    dtd.addElementDecl("doc");
    dtd.addAttDecl("doc", "id", REQUIRED);
    dtd.setEntity("e", "x");
    EXPECT_EQ(written(dtd),
              "<!DOCTYPE doc [\n"
              "<!ELEMENT doc (#PCDATA)>\n"
              "<!ATTLIST doc\n"
              "\tid CDATA #REQUIRED\n"
              ">\n"
              "<!ENTITY e \"x\">\n"
              "]>\n");
}

TEST(DtdWriteTest, WritesOnlyTheFrameOfAnEmptyOne) {
    EXPECT_EQ(written(Dtd("doc")), "<!DOCTYPE doc [\n]>\n");
    EXPECT_EQ(written(Dtd("")), "<!DOCTYPE  [\n]>\n");
    EXPECT_EQ(written(Dtd("1 & 2")), "<!DOCTYPE 1 & 2 [\n]>\n") << "the name is written as it is";
}

TEST(DtdWriteTest, OrdersByTheBytesOfTheNames) {
    const auto dtd =
        dtdOf("b: ANY; a: EMPTY; B: CHARS; a-b: (a); a@y IMPLIED; a@X FIXED 1; a@x DEFAULT 2; b@z REQUIRED");
    dtd->setEntity("z", "1");
    dtd->setEntity("Z", "2");
    dtd->setEntity("\xC3\xA4", "3");
    EXPECT_EQ(written(*dtd),
              "<!DOCTYPE test [\n"
              "<!ELEMENT B (#PCDATA)>\n"
              "<!ELEMENT a EMPTY>\n"
              "<!ATTLIST a\n"
              "\tX CDATA #FIXED\"1\"\n"
              "\tx CDATA \"2\"\n"
              "\ty CDATA #IMPLIED\n"
              ">\n"
              "<!ELEMENT a-b (a)>\n"
              "<!ELEMENT b ANY>\n"
              "<!ATTLIST b\n"
              "\tz CDATA #REQUIRED\n"
              ">\n"
              "<!ENTITY Z \"2\">\n"
              "<!ENTITY z \"1\">\n"
              "<!ENTITY \xC3\xA4 \"3\">\n"
              "]>\n");
}

TEST(DtdWriteTest, LeavesOutAttributeListsOfElementsThatAreNotDeclared) {
    const auto dtd = dtdOf("a: EMPTY; b@x REQUIRED");
    EXPECT_EQ(written(*dtd), "<!DOCTYPE test [\n<!ELEMENT a EMPTY>\n]>\n");
}

TEST(DtdWriteTest, LeavesOutAttributeListsWithoutDefinitions) {
    const auto dtd = dtdOf("a: EMPTY");
    DtdAccess::makeList(*dtd, "a");
    EXPECT_EQ(written(*dtd), "<!DOCTYPE test [\n<!ELEMENT a EMPTY>\n]>\n");
}

TEST(DtdWriteTest, WritesEachKindOfModel) {
    const auto dtd = dtdOf(
        "a: EMPTY; b: ANY; c: CHARS; d: (#PCDATA); e: (#PCDATA | a | b)*; f: (b, c*, (d | e)+); g: b?; "
        "h: (a | b | #PCDATA)*; i: ((a, b)+ | (c)?)");
    EXPECT_EQ(written(*dtd),
              "<!DOCTYPE test [\n"
              "<!ELEMENT a EMPTY>\n"
              "<!ELEMENT b ANY>\n"
              "<!ELEMENT c (#PCDATA)>\n"
              "<!ELEMENT d (#PCDATA)>\n"
              "<!ELEMENT e (#PCDATA | a | b)*>\n"
              "<!ELEMENT f (b, c*, (d | e)+)>\n"
              "<!ELEMENT g (b)?>\n"
              "<!ELEMENT h (a | b | #PCDATA)*>\n"
              "<!ELEMENT i ((a, b)+ | c?)>\n"
              "]>\n");
}

TEST(DtdWriteTest, EscapesValues) {
    Dtd dtd("doc");
    dtd.addElementDecl("a");
    dtd.addAttDecl("a", "x", new AttStringType(DEFAULT, "a&b \"c\" <d> 'e'"));
    dtd.setEntity("all", "a&b \"c\" <d> 'e'");
    dtd.setEntity("none", "");
    EXPECT_EQ(written(dtd),
              "<!DOCTYPE doc [\n<!ELEMENT a (#PCDATA)>\n<!ATTLIST a\n"
              "\tx CDATA \"a&amp;b &quot;c&quot; &lt;d&gt; &apos;e&apos;\"\n>\n"
              "<!ENTITY all \"a&amp;b &quot;c&quot; &lt;d&gt; &apos;e&apos;\">\n"
              "<!ENTITY none \"\">\n]>\n");
}

TEST(DtdWriteTest, IndentsEveryLineByTheLevelOfTheStream) {
    const auto dtd = dtdOf("a: EMPTY; a@x IMPLIED");
    dtd->addAttDecl("a", "y", new AttStringType(FIXED, "1\n2"));
    dtd->setEntity("e", "1\n2");
    std::ostringstream text;
    FileOutStream out(&text);
    out.incTab();
    dtd->toStream(out);
    out << "after";
    EXPECT_EQ(text.str(),
              "\t<!DOCTYPE test [\n"
              "\t<!ELEMENT a EMPTY>\n"
              "\t<!ATTLIST a\n"
              "\t\tx CDATA #IMPLIED\n"
              "\t\ty CDATA #FIXED\"1\n"
              "\t\t2\"\n"
              "\t>\n"
              "\t<!ENTITY e \"1\n"
              "\t2\">\n"
              "\t]>\n"
              "\tafter");
}

TEST(DtdWriteTest, RecordsWhereItWasWritten) {
    const auto dtd = dtdOf("a: EMPTY");
    std::ostringstream text;
    FileOutStream out(&text);
    out << "front\n";
    dtd->toStream(out);
    EXPECT_EQ(NodeTestAccess::writeStart(*dtd), 6);
    EXPECT_EQ(NodeTestAccess::writeEnd(*dtd), static_cast<int>(text.str().size()));
    EXPECT_FALSE(NodeTestAccess::dirty(*dtd));
}

TEST(DtdWriteTest, WritesAroundAModelThatWritesNothing) {
    MessageCollector messages;
    const auto dtd = dtdOf("a: (|); b: (); c: ANY");
    EXPECT_EQ(written(*dtd), "<!DOCTYPE test [\n<!ELEMENT a >\n<!ELEMENT b >\n<!ELEMENT c ANY>\n]>\n");
    EXPECT_EQ(messages.take(),
              (Texts{"<ChoiceSpec::toStream> need at least 2 items", "<SeqSpec::toStream> need at least 1 element"}));
}

TEST(DtdWriteTest, WritesToASinkThatOffersTheListedOperationsOnly) {
    class Sink : public OutStream {
    public:
        void putChar(char c) override { text += c; }
        int getPosition() const override { return static_cast<int>(text.size()); }
        void setPosition(int position) override { text.resize(static_cast<std::size_t>(position)); }
        std::string text;
    };
    const auto dtd = dtdOf("a: (b?, (c | #PCDATA | d)*); a@x FIXED 1; b: (#PCDATA | a)*; c: EMPTY; d: CHARS");
    dtd->setEntity("e", "&");
    Sink sink;
    dtd->write(sink);
    EXPECT_EQ(sink.text, written(*dtd));
    EXPECT_NE(sink.text.find("<!ELEMENT a (b?, (c | d | #PCDATA)*)>\n"), std::string::npos);
}

TEST(DtdWriteTest, IsPartOfWhatADocumentWrites) {
    auto* dtd = new Dtd("r");
    dtd->addElementDecl("r");
    const Document document(new Element("r"), dtd);
    EXPECT_EQ(written(static_cast<const Object&>(document)),
              "<?xml version = \"1.0\" ?>\n<!DOCTYPE r [\n<!ELEMENT r (#PCDATA)>\n]>\n<r/>\n");
}

}  // namespace Xml::test
