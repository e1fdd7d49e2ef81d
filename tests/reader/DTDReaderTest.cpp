#include "xml/reader/DTDReader.h"

#include "reader/ReadCase.h"
#include "support/Trees.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/AttListReader.h"
#include "xml/reader/ChildrenSpecReader.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/ElementDeclReader.h"
#include "xml/reader/EntityReader.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>
#include <memory>

namespace Xml::test {

namespace {

Reading readSubset(InStream& in, bool internal) {
    DTDReader reader("t");
    reader.setInternal(internal);
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), declarationsOf(*reader.getDtd())};
}

Reading readInternal(InStream& in) { return readSubset(in, true); }
Reading readExternal(InStream& in) { return readSubset(in, false); }

const char* const kEmpty = "<!ELEMENT a EMPTY>";

}  // namespace

TEST(DTDReaderTest, ReadsEveryDeclaration) {
    const std::string text =
        "<!-- first --> <!ENTITY e 'v'> <!ELEMENT a (b, c?)>\n<!ATTLIST a x CDATA '1'><!ELEMENT b EMPTY> <!-- last -->";
    const std::string built =
        "<!ELEMENT a (b, c?)>\n<!ATTLIST a\n\tx CDATA \"1\"\n>\n<!ELEMENT b EMPTY>\n<!ENTITY e \"v\">";
    expectReadings({{"internal", text + "]z", yes("z").builds(built)},
                    {"white space before the bracket", text + " \r\n\t ]z", yes("z").builds(built)}},
                   classOf<DTDReader>(), readInternal);
    expectReadings(
        {{"external", text, yes().builds(built), yes().goes().builds(built)},
         {"external with white space after it", text + " \r\n", yes().builds(built), yes().goes().builds(built)}},
        classOf<DTDReader>(), readExternal);
}

// A file stream does not notice its end while white space is skipped: what the stream says then is what it said last.
TEST(DTDReaderTest, EndsAnInternalSubsetWithItsBracket) {
    const std::string kA = kEmpty;
    expectReadings(
        {
            {"one declaration", kA + "]z", yes("z").builds(kA)},
            {"the bracket ends the data", kA + "]", yes().builds(kA)},
            {"one comment", "<!-- c -->]z", yes("z")},
            {"nothing", "]z", no("unexpected token \"]\"", "]z")},
            {"only white space", " \n]z", no("unexpected token \"]\"", " \n]z")},
            {"no data", "", ended()},
            {"no bracket", kA, ended().builds(kA), no("").goes().builds(kA)},
            {"no bracket after white space", kA + " \n ", ended().builds(kA), no("").goes().builds(kA)},
            {"no bracket after a comment", "<!-- c -->", ended(), no("\"[\" expected").goes()},
            {"an unfinished token instead", kA + " 'x", ended().builds(kA)},
            {"a word instead", kA + " x", ended().builds(kA)},
        },
        classOf<DTDReader>(), readInternal);
}

TEST(DTDReaderTest, EndsAnExternalSubsetWithTheData) {
    const std::string kA = kEmpty;
    const Verdict good = yes().builds(kA);
    expectReadings(
        {
            {"right after a declaration", kA, good, good.goes()},
            {"after a comment", kA + "<!-- c -->", good, good.goes()},
            {"only a comment", "<!-- c -->", yes(), yes().goes()},
            {"a last word is not looked at", kA + " x", good, good.goes()},
            {"no data", "", ended()},
            {"only white space", " \n ", ended()},
            {"an unfinished token", kA + " 'x", ended().builds(kA)},
            {"a last bracket is not looked at, but by a file stream", kA + "]", good,
             no("unexpected token \"]\"", "]").builds(kA)},
            {"a bracket and a line end", kA + "]\n", no("unexpected token \"]\"", "]\n").builds(kA)},
        },
        classOf<DTDReader>(), readExternal);
}

TEST(DTDReaderTest, StopsBeforeATokenThatBeginsNoDeclaration) {
    const std::string kA = kEmpty;
    for (const bool internal : {true, false}) {
        SCOPED_TRACE(internal ? "internal" : "external");
        const auto unexpected = [&kA](const std::string& token, const std::string& left) {
            return no("unexpected token \"" + token + "\"", left).builds(kA);
        };
        expectReadings(
            {
                {"notation", kA + " <!NOTATION n>]", unexpected("<!NOTATION", "<!NOTATION n>]")},
                {"parameter entity", kA + "%p;]", unexpected("%p;", "%p;]")},
                {"instruction", kA + "<?x?>]", unexpected("<?", "<?x?>]")},
                {"text declaration", kA + "<?xml?>]", unexpected("<?xml", "<?xml?>]")},
                {"element", kA + "<a/>]", unexpected("<", "<a/>]")},
                {"conditional section", kA + "<![INCLUDE[]]>]", unexpected("<![", "<![INCLUDE[]]>]")},
                {"word", kA + "\n x ]", unexpected("x", "x ]")},
                {"string", kA + "'100 %s' ]", unexpected("'100 %s'", "'100 %s' ]")},
                {"document type", kA + "<!DOCTYPE a>]", unexpected("<!DOCTYPE", "<!DOCTYPE a>]")},
                {"as the first token", " x ]", no("unexpected token \"x\"", " x ]")},
            },
            classOf<DTDReader>(), [internal](InStream& in) { return readSubset(in, internal); });
    }
}

TEST(DTDReaderTest, TakesOverTheMessageOfADeclarationsReaderAndKeepsWhatWasDeclared) {
    const std::string kA = kEmpty;
    const std::string unknown = "<ElementDeclReader::parse> don't know what to do ";
    for (const bool internal : {true, false}) {
        SCOPED_TRACE(internal ? "internal" : "external");
        expectReadings(
            {
                {"element", kA + "<!ELEMENT 1>]", no("not a name: 1", ">]").by<ElementDeclReader>().builds(kA)},
                {"element's model", kA + "<!ELEMENT b ()>]",
                 no("unexpected \")\"", ">]").by<ChildrenSpecReader>().builds(kA)},
                {"attribute list", kA + "<!ATTLIST a x ID>]",
                 no("\"CDATA\" expected", ">]").by<AttListReader>().builds(kA)},
                {"entity", kA + "<!ENTITY % p ''>]", no("not a name: %", " p ''>]").by<EntityReader>().builds(kA)},
                {"comment", kA + "<!-- c ", ended().by<CommentReader>().builds(kA)},
                {"silent element", kA + "<!ELEMENT b b>]", silent(">]").builds(kA).reports(unknown + "b")},
                {"silent attribute list", kA + "<!ATTLIST a 1>]", silent(">]").builds(kA)},
                {"silent attribute value", kA + "<!ATTLIST a x CDATA 1>]",
                 silent(">]").builds(kA).reports("<AttListReader::parse> string   1")},
            },
            classOf<DTDReader>(), [internal](InStream& in) { return readSubset(in, internal); });
    }
}

TEST(DTDReaderTest, TakesOverAnEmptyMessage) {
    DTDReader reader("t");
    reader.setMessage("before");
    StringInStream in("<!ATTLIST a 1>");
    EXPECT_FALSE(reader.parse(in));
    EXPECT_EQ(reader.getErrorMessage(), "");
}

TEST(DTDReaderTest, HandsTheDtdOverOnce) {
    DTDReader reader("name");
    ASSERT_NE(reader.getDtd(), nullptr);
    EXPECT_EQ(textOf(*reader.getDtd()), "<!DOCTYPE name [\n]>\n");
    StringInStream in("<!ELEMENT a EMPTY>");
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(const_cast<const DTDReader&>(reader).getDtd(), reader.getDtd());
    const std::unique_ptr<Dtd> dtd(reader.extractDtd());
    EXPECT_EQ(textOf(*dtd), "<!DOCTYPE name [\n<!ELEMENT a EMPTY>\n]>\n");
    EXPECT_EQ(reader.getDtd(), nullptr);
    EXPECT_EQ(reader.extractDtd(), nullptr);
}

TEST(DTDReaderTest, IsExternalAtFirst) {
    DTDReader reader("t");
    StringInStream in("<!ELEMENT a EMPTY>");
    EXPECT_TRUE(reader.parse(in));
}

TEST(DTDReaderTest, LocatesAFailureByTheLinesItRead) {
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        withSource(source, "<!ELEMENT a EMPTY>\r\n<!-- \r\n -->\r\n <!ELEMENT 1 EMPTY>]", [](InStream& in) {
            EXPECT_EQ(readInternal(in).error, located(3, 12, "not a name: 1", classOf<ElementDeclReader>()));
        });
    }
}

}  // namespace Xml::test
