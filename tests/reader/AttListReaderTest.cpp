#include "xml/reader/AttListReader.h"

#include "reader/ReadCase.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

// The list is written only for an element that is declared.
Reading readAttList(InStream& in) {
    Dtd dtd("t");
    dtd.addElementDecl("a");
    AttListReader reader(&dtd);
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), attributesOf(dtd)};
}

}  // namespace

TEST(AttListReaderTest, DefinesEveryAttributeWithItsRule) {
    expectReadings(
        {
            {"none", "<!ATTLIST a>z", yes("z")},
            {"required", "<!ATTLIST a x CDATA #REQUIRED>z", yes("z").builds("x CDATA #REQUIRED")},
            {"implied", "<!ATTLIST a x CDATA #IMPLIED>z", yes("z").builds("x CDATA #IMPLIED")},
            {"fixed", "<!ATTLIST a x CDATA #FIXED \"1\">z", yes("z").builds("x CDATA #FIXED\"1\"")},
            {"fixed as it is written", "<!ATTLIST a x CDATA #FIXED\"1\">z", yes("z").builds("x CDATA #FIXED\"1\"")},
            {"default", "<!ATTLIST a x CDATA \"1\">z", yes("z").builds("x CDATA \"1\"")},
            {"default in single quotes", "<!ATTLIST a x CDATA '1'>z", yes("z").builds("x CDATA \"1\"")},
            {"empty default", "<!ATTLIST a x CDATA \"\">z", yes("z").builds("x CDATA \"\"")},
            {"several", "<!ATTLIST a\n\ty CDATA #IMPLIED\n\tx CDATA '1'\n>z",
             yes("z").builds("x CDATA \"1\"; y CDATA #IMPLIED")},
            {"no white space", "<!ATTLIST a x CDATA\"1\"y CDATA'2'>z", yes("z").builds("x CDATA \"1\"; y CDATA \"2\"")},
            {"the end of the type is enough", "<!ATTLIST a x NOCDATA '1'>z", yes("z").builds("x CDATA \"1\"")},
            {"references stay", "<!ATTLIST a x CDATA 'a&amp;b'>z", yes("z").builds("x CDATA \"a&amp;amp;b\"")},
            {"keywords are exact", "<!ATTLIST a x CDATA '#REQUIRED'>z", yes("z").builds("x CDATA \"#REQUIRED\"")},
            {"attribute named as a keyword", "<!ATTLIST a CDATA CDATA #IMPLIED>z",
             yes("z").builds("CDATA CDATA #IMPLIED")},
        },
        classOf<AttListReader>(), readAttList);
}

TEST(AttListReaderTest, KeepsTheFirstDefinitionOfAnAttribute) {
    const std::string text = "<Dtd::addAttlistDecl> alraedy added a x";
    expectReadings(
        {
            {"another default", "<!ATTLIST a x CDATA '1' x CDATA '2'>z",
             yes("z").builds("x CDATA \"1\"").reports(text)},
            {"another rule", "<!ATTLIST a x CDATA #REQUIRED x CDATA #IMPLIED y CDATA '1'>z",
             yes("z").builds("x CDATA #REQUIRED; y CDATA \"1\"").reports(text)},
        },
        classOf<AttListReader>(), readAttList);
}

TEST(AttListReaderTest, FailsSilentlyAtATokenThatIsNoName) {
    const std::string first = "<!ATTLIST a x CDATA '1' ";
    const std::string built = "x CDATA \"1\"";
    expectReadings(
        {
            {"digit", first + "2 CDATA '3'>z", silent(" CDATA '3'>z").builds(built)},
            {"string", first + "'y' CDATA '3'>z", silent(" CDATA '3'>z").builds(built)},
            {"an end like that of an empty element", first + "/>z", silent("z").builds(built)},
            {"at once", "<!ATTLIST a />z", silent("z")},
            {"keyword", first + "#REQUIRED>z", silent(">z").builds(built)},
            {"comment", first + "<!-- y -->>z", silent(" y -->>z").builds(built)},
            {"reference", first + "%y;>z", silent(">z").builds(built)},
        },
        classOf<AttListReader>(), readAttList);
}

TEST(AttListReaderTest, ReportsAValueThatIsNoStringAndFailsSilently) {
    const std::string text = "<AttListReader::parse> string   ";
    expectReadings(
        {
            {"word", "<!ATTLIST a x CDATA b>z", silent(">z").reports(text + "b")},
            {"nothing", "<!ATTLIST a x CDATA>z", silent("z").reports(text + ">")},
            {"keyword in lower case", "<!ATTLIST a x CDATA #required>z", silent(">z").reports(text + "#required")},
            {"fixed word", "<!ATTLIST a x CDATA #FIXED b>z", silent(">z").reports(text + "b")},
            {"fixed keyword", "<!ATTLIST a x CDATA #FIXED #IMPLIED>z", silent(">z").reports(text + "#IMPLIED")},
            {"after another", "<!ATTLIST a x CDATA '1' y CDATA 100%s>z",
             silent(">z").builds("x CDATA \"1\"").reports(text + "100%s")},
        },
        classOf<AttListReader>(), readAttList);
}

TEST(AttListReaderTest, ReportsWhatTheDeclarationLacks) {
    const std::string first = "<!ATTLIST a x CDATA '1' ";
    const std::string built = "x CDATA \"1\"";
    const std::string text = "<AttListReader::parse> string   ";
    expectReadings(
        {
            {"another declaration", "<!ELEMENT a>z", no("\"<!ATTLIST\" expected", " a>z")},
            {"digit first", "<!ATTLIST 1a>z", no("not a name: 1a", ">z")},
            {"no name", "<!ATTLIST>z", no("not a name: >", "z")},
            {"another type", "<!ATTLIST a x ID #REQUIRED>z", no("\"CDATA\" expected", " #REQUIRED>z")},
            {"type in lower case", "<!ATTLIST a x cdata #REQUIRED>z", no("\"CDATA\" expected", " #REQUIRED>z")},
            {"enumeration", "<!ATTLIST a x (b|c) 'b'>z", no("\"CDATA\" expected", "b|c) 'b'>z")},
            {"another type after an attribute", first + "y NMTOKEN '1'>z",
             no("\"CDATA\" expected", " '1'>z").builds(built)},
            {"nothing", "", ended()},
            {"only the keyword", "<!ATTLIST ", ended()},
            {"only the element", "<!ATTLIST a ", ended()},
            {"the element's name ends the data", "<!ATTLIST a", ended(), no("not a name: a").goes()},
            {"only an attribute", first + "y ", ended().builds(built)},
            {"the attribute's name ends the data", first + "y", ended().builds(built), silent().goes().builds(built)},
            {"no rule", first + "y CDATA ", ended().builds(built)},
            {"the type ends the data", first + "y CDATA", ended().builds(built),
             no("\"CDATA\" expected").goes().builds(built)},
            {"no fixed value", first + "y CDATA #FIXED ", ended().builds(built)},
            {"a keyword ends the data", "<!ATTLIST a x CDATA #REQUIRED", ended().builds("x CDATA #REQUIRED"),
             silent().goes().reports(text + "#REQUIRED")},
            {"unfinished value", first + "y CDATA '2>", ended().builds(built)},
            {"no end", first, ended().builds(built)},
        },
        classOf<AttListReader>(), readAttList);
}

TEST(AttListReaderTest, DefinesAttributesOfElementsThatAreNotDeclared) {
    for (auto source : kAllSources) {
        withSource(source, "<!ATTLIST b x CDATA 'a&lt;b' y CDATA #FIXED '' z CDATA #IMPLIED>", [](InStream& in) {
            Dtd dtd("t");
            AttListReader reader(&dtd);
            ASSERT_TRUE(reader.parse(in));
            EXPECT_EQ(dtd.getDefaultValue("b", "x"), "a&lt;b");
            EXPECT_TRUE(dtd.hasDefaultValue("b", "x"));
            EXPECT_TRUE(dtd.hasDefaultValue("b", "y"));
            EXPECT_FALSE(dtd.hasDefaultValue("b", "z"));
            EXPECT_EQ(declarationsOf(dtd), "");
        });
    }
}

TEST(AttListReaderTest, ReadsBackEveryDefinitionThatADtdWrites) {
    const std::string text =
        "<!ELEMENT a (#PCDATA)>\n<!ATTLIST a\n\td CDATA \"1\"\n\te CDATA \"\"\n\tf CDATA #FIXED\"1.0\"\n\ti CDATA "
        "#IMPLIED\n\tr CDATA #REQUIRED\n>";
    Dtd dtd("t");
    dtd.addElementDecl("a");
    AttListReader reader(&dtd);
    StringInStream in(text.substr(text.find("<!ATTLIST")));
    ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage();
    EXPECT_EQ(declarationsOf(dtd), text);
}

TEST(AttListReaderTest, LeavesAnEarlierMessageAfterASilentFailure) {
    Dtd dtd("t");
    AttListReader reader(&dtd);
    StringInStream bad("<!ATTLIST a x ID>");
    EXPECT_FALSE(reader.parse(bad));
    const std::string message = reader.getErrorMessage();
    EXPECT_EQ(message, located(1, 16, "\"CDATA\" expected", classOf<AttListReader>()));
    StringInStream silentlyBad("<!ATTLIST a 1>");
    EXPECT_FALSE(reader.parse(silentlyBad));
    EXPECT_EQ(reader.getErrorMessage(), message);
}

}  // namespace Xml::test
