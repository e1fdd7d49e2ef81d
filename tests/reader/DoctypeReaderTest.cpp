#include "xml/reader/DoctypeReader.h"

#include "reader/GrowthLimit.h"
#include "reader/Listening.h"
#include "reader/ReadCase.h"
#include "support/Places.h"
#include "support/Trees.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/ElementDeclReader.h"
#include "xml/reader/EntityReader.h"
#include "xml/stream/StringInStream.h"
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace Xml::test {

namespace {

// The Dtd as it is written, in one line; "none" without one.
Reading readDoctype(InStream& in) {
    DoctypeReader reader;
    const bool ok = reader.parse(in);
    const std::unique_ptr<Dtd> dtd(reader.extractDtd());
    if (dtd == nullptr) return {ok, reader.getErrorMessage(), "none"};
    std::string text = textOf(*dtd);
    for (char& c : text) c = c == '\n' ? ' ' : c;
    return {ok, reader.getErrorMessage(), text};
}

std::string systemDoctype(const std::string& path) { return "<!DOCTYPE t SYSTEM \"" + path + "\">z"; }

// Ends the process when a test hangs, as it does when a reader opens a pipe that nothing writes to.
class Alarm {
public:
    explicit Alarm(unsigned seconds) { alarm(seconds); }
    ~Alarm() { alarm(0); }
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;
};

}  // namespace

TEST(DoctypeReaderTest, ReadsAnInternalSubset) {
    expectReadings(
        {
            {"one declaration", "<!DOCTYPE t [<!ELEMENT a EMPTY>]>z",
             yes("z").builds("<!DOCTYPE t [ <!ELEMENT a EMPTY> ]> ")},
            {"white space", " <!DOCTYPE t\n[\n<!ELEMENT a EMPTY>\n]\n>z",
             yes("z").builds("<!DOCTYPE t [ <!ELEMENT a EMPTY> ]> ")},
            {"no white space", "<!DOCTYPE t[<!ENTITY e 'v'>]>z",
             yes("z").builds("<!DOCTYPE t [ <!ENTITY e \"v\"> ]> ")},
            {"one comment", "<!DOCTYPE t [<!-- c -->]>z", yes("z").builds("<!DOCTYPE t [ ]> ")},
            {"an end like that of an empty element", "<!DOCTYPE t [<!-- c -->]/>z",
             yes("z").builds("<!DOCTYPE t [ ]> ")},
            {"nothing", "<!DOCTYPE t []>z", no("unexpected token \"]\"", "]>z").by<DTDReader>().builds("none")},
            {"no bracket", "<!DOCTYPE t [<!-- c -->", ended().by<DTDReader>().builds("none"),
             no("\"[\" expected").goes().by<DTDReader>().builds("none")},
            {"no bracket but the end", "<!DOCTYPE t [<!-- c -->>z",
             no("unexpected token \">\"", ">z").by<DTDReader>().builds("none")},
            {"a bad declaration", "<!DOCTYPE t [<!ELEMENT a EMPTY x>]>z",
             no("\">\" expected", ">]>z").by<ElementDeclReader>().builds("none")},
            {"an open comment", "<!DOCTYPE t [<!-- c ", ended().by<CommentReader>().builds("none")},
            {"silent", "<!DOCTYPE t [<!ATTLIST a 1>]>z", silent(">]>z").builds("none")},
        },
        classOf<DoctypeReader>(), readDoctype);
}

TEST(DoctypeReaderTest, ReportsWhatTheDeclarationLacks) {
    expectReadings(
        {
            {"nothing", "", ended().builds("none")},
            {"another declaration", "<!ELEMENT t>z", no("\"<!DOCTYPE\" expected", " t>z").builds("none")},
            {"digit first", "<!DOCTYPE 1t []>z", no("not a name: 1t", " []>z").builds("none")},
            {"only the keyword", "<!DOCTYPE ", ended().builds("none")},
            {"only a name", "<!DOCTYPE t ", ended().builds("none")},
            {"neither subset", "<!DOCTYPE t>z", no("Unexpected token \">\"", "z").builds("none")},
            {"public identifier", "<!DOCTYPE t PUBLIC 'p' 's'>z",
             no("Unexpected token \"PUBLIC\"", " 'p' 's'>z").builds("none")},
            {"lower case", "<!DOCTYPE t system 's'>z", no("Unexpected token \"system\"", " 's'>z").builds("none")},
            {"system without a name", "<!DOCTYPE t SYSTEM>z", no("\"\"\" or \"'\" expected", "z").builds("none")},
            {"system name without quotes", "<!DOCTYPE t SYSTEM s>z",
             no("\"\"\" or \"'\" expected", ">z").builds("none")},
            {"unfinished system name", "<!DOCTYPE t SYSTEM 's>z", ended().builds("none")},
            {"the Dtd stays when the end is missing", "<!DOCTYPE t [<!-- c -->] x>z",
             no("\">\" expected", ">z").builds("<!DOCTYPE t [ ]> ")},
            {"or the data ends", "<!DOCTYPE t [<!-- c -->] ", ended().builds("<!DOCTYPE t [ ]> ")},
        },
        classOf<DoctypeReader>(), readDoctype);
}

TEST(DoctypeReaderTest, ReadsAnExternalSubset) {
    const std::string written = "<!DOCTYPE t [ <!ELEMENT a EMPTY> ]> ";
    const struct {
        const char* name;
        const char* fileName;
        const char* text;
        Verdict verdict;
    } kCases[] = {
        {"line end after the last declaration", "external.dtd", "<!ELEMENT a EMPTY>\n", yes("z").builds(written)},
        {"ends right after its last declaration", "external.dtd", "<!ELEMENT a EMPTY>", yes("z").builds(written)},
        {"comments", "external.dtd", "<!-- c --><!ELEMENT a EMPTY><!-- d -->", yes("z").builds(written)},
        {"a name with spaces", "external with spaces.dtd", "<!ELEMENT a EMPTY>\n", yes("z").builds(written)},
        {"a name with percent signs", "100%s%n.dtd", "<!ELEMENT a EMPTY>\n", yes("z").builds(written)},
        {"a last word is not looked at", "external.dtd", "<!ELEMENT a EMPTY> x", yes("z").builds(written)},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const ScratchFile file(c.fileName, c.text);
        expectReadings({{c.name, systemDoctype(file.path), c.verdict},
                        {"single quotes", "<!DOCTYPE t SYSTEM '" + file.path + "' >z", c.verdict}},
                       classOf<DoctypeReader>(), readDoctype);
    }
}

TEST(DoctypeReaderTest, LocatesAFailureInAnExternalSubsetInItsFile) {
    const struct {
        const char* name;
        const char* text;
        std::string error;
    } kCases[] = {
        {"empty", "", located(1, -1, kEndOfStream, classOf<DTDReader>())},
        {"only white space", " \r\n ", located(1, -1, kEndOfStream, classOf<DTDReader>())},
        {"unexpected token", "\r\n  x y", located(1, 0, "unexpected token \"x\"", classOf<DTDReader>())},
        {"bracket", "<!-- c -->\r\n] ", located(1, 12, "unexpected token \"]\"", classOf<DTDReader>())},
        {"declaration", "<!-- c -->\r\n<!ELEMENT 1>", located(1, 11, "not a name: 1", classOf<ElementDeclReader>())},
        {"open comment", "<!-- c ", located(1, -1, kEndOfStream, classOf<CommentReader>())},
        {"silent", "<!ATTLIST a 1>", ""},
        {"a document type", "<!DOCTYPE t [<!-- c -->]>",
         located(1, 0, "unexpected token \"<!DOCTYPE\"", classOf<DTDReader>())},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const ScratchFile file("external.dtd", c.text);
        for (auto source : kAllSources) {
            SCOPED_TRACE(::testing::Message() << source);
            withSource(source, systemDoctype(file.path), [&c](InStream& in) {
                const Reading reading = readDoctype(in);
                EXPECT_FALSE(reading.ok);
                EXPECT_EQ(reading.error, c.error);
                EXPECT_EQ(reading.built, "none");
                std::string rest;
                EXPECT_TRUE(in.getToken(rest));
                EXPECT_EQ(rest, ">");
            });
        }
    }
}

TEST(DoctypeReaderTest, TakesNoInternalSubsetBehindAnExternalOne) {
    const ScratchFile file("external.dtd", "<!ELEMENT a EMPTY>");
    expectReadings({{"both", "<!DOCTYPE t SYSTEM '" + file.path + "' [<!ELEMENT b EMPTY>]>z",
                     no("\">\" expected", "<!ELEMENT b EMPTY>]>z").builds("<!DOCTYPE t [ <!ELEMENT a EMPTY> ]> ")}},
                   classOf<DoctypeReader>(), readDoctype);
}

TEST(DoctypeReaderTest, ReportsAFileThatCannotBeOpenedByItsName) {
    const std::string missing = scratchPath("missing.dtd");
    const std::string pipe = scratchPath("pipe.dtd");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const Alarm alarm(60);
    for (const std::string& name : {missing, pipe, scratchFolder(), std::string("/dev/zero"), std::string("/dev/null"),
                                    std::string("no such file"), std::string("%s%n%d")}) {
        SCOPED_TRACE(name);
        for (auto source : kAllSources) {
            SCOPED_TRACE(::testing::Message() << source);
            const std::string text = systemDoctype(name);
            withSource(source, text, [&](InStream& in) {
                const Reading reading = readDoctype(in);
                EXPECT_FALSE(reading.ok);
                EXPECT_EQ(reading.error, located(1, static_cast<int>(text.size()) - 2, "Could not open file: " + name,
                                                 classOf<DoctypeReader>()));
                EXPECT_EQ(reading.built, "none");
                EXPECT_EQ(in.getPosition(), static_cast<int>(text.size()) - 2);
            });
        }
    }
    std::remove(pipe.c_str());
}

TEST(DoctypeReaderTest, ReportsAnEmptyFileName) {
    StringInStream in("<!DOCTYPE t SYSTEM \"\">");
    DoctypeReader reader;
    EXPECT_FALSE(reader.parse(in));
    EXPECT_EQ(reader.getErrorMessage(), located(1, 21, "Could not open file: ", classOf<DoctypeReader>()));
}

TEST(DoctypeReaderTest, CutsTheMessageAboutALongFileName) {
    const std::string name(300, 'x');
    StringInStream in(systemDoctype(name));
    const Reading reading = readDoctype(in);
    EXPECT_FALSE(reading.ok);
    EXPECT_EQ(reading.error, located(1, 321, "Could not open file: " + name, classOf<DoctypeReader>()));
    EXPECT_EQ(reading.error.size(), 255U);
}

TEST(DoctypeReaderTest, LooksForTheFileInTheWorkingDirectory) {
    const ScratchFile file("relative.dtd", "<!ELEMENT a EMPTY>");
    const std::string folder = scratchFolder();
    const std::string name = file.path.substr(folder.size() + 1);
    std::unique_ptr<char, void (*)(void*)> before(getcwd(nullptr, 0), std::free);
    ASSERT_NE(before, nullptr);

    const std::string elsewhere = scratchPath("elsewhere");
    ASSERT_EQ(mkdir(elsewhere.c_str(), 0700), 0);
    ASSERT_EQ(chdir(elsewhere.c_str()), 0);
    StringInStream wrong(systemDoctype(name));
    const Reading notThere = readDoctype(wrong);
    StringInStream up(systemDoctype("../" + name));
    const Reading above = readDoctype(up);
    ASSERT_EQ(chdir(folder.c_str()), 0);
    StringInStream right(systemDoctype(name));
    const Reading there = readDoctype(right);
    ASSERT_EQ(chdir(before.get()), 0);
    rmdir(elsewhere.c_str());

    EXPECT_FALSE(notThere.ok);
    EXPECT_TRUE(above.ok) << above.error;
    EXPECT_TRUE(there.ok) << there.error;
    EXPECT_EQ(there.built, "<!DOCTYPE t [ <!ELEMENT a EMPTY> ]> ");
}

TEST(DoctypeReaderTest, RefusesExternalSubsetsWhenSetTo) {
    const ScratchFile file("external.dtd", "<!ELEMENT a EMPTY>");
    const std::string missing = scratchPath("missing.dtd");
    EXPECT_FALSE(DoctypeReader::refuseExternalSubsets(true));
    for (const std::string& name : {file.path, missing, std::string("/dev/zero")}) {
        expectReadings({{"refused", systemDoctype(name), no("external subset refused: " + name, ">z").builds("none")}},
                       classOf<DoctypeReader>(), readDoctype);
    }
    expectReadings({{"internal", "<!DOCTYPE t [<!-- c -->]>z", yes("z").builds("<!DOCTYPE t [ ]> ")}},
                   classOf<DoctypeReader>(), readDoctype);
    EXPECT_TRUE(DoctypeReader::refuseExternalSubsets(false));
    EXPECT_FALSE(DoctypeReader::refuseExternalSubsets(false));
    StringInStream in(systemDoctype(file.path));
    EXPECT_TRUE(readDoctype(in).ok);
}

TEST(DoctypeReaderTest, BoundsTheTextMadeInAnExternalSubset) {
    std::string text = "<!ENTITY e1 'xxxxxxxxxx'>";
    for (int i = 2; i < 7; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " '";
        for (int k = 0; k < 10; ++k) text += "&e" + std::to_string(i - 1) + ";";
        text += "'>";
    }
    const ScratchFile file("external.dtd", text);
    const GrowthLimit limit(1000);
    StringInStream in(systemDoctype(file.path));
    const Reading reading = readDoctype(in);
    EXPECT_FALSE(reading.ok);
    EXPECT_NE(reading.error.find(std::string(") entity text too large <") + classOf<EntityReader>() + ">"),
              std::string::npos)
        << reading.error;
}

TEST(DoctypeReaderTest, HandsTheDtdOverOnce) {
    DoctypeReader reader;
    EXPECT_EQ(reader.extractDtd(), nullptr);
    StringInStream in("<!DOCTYPE t [<!ELEMENT a EMPTY>]> <!DOCTYPE u [<!ELEMENT b EMPTY>]>");
    ASSERT_TRUE(reader.parse(in));
    ASSERT_TRUE(reader.parse(in));
    const std::unique_ptr<Dtd> dtd(reader.extractDtd());
    EXPECT_EQ(textOf(*dtd), "<!DOCTYPE u [\n<!ELEMENT b EMPTY>\n]>\n");
    EXPECT_EQ(reader.extractDtd(), nullptr);
}

TEST(DoctypeReaderTest, ReadsBackWhatADtdWrites) {
    Dtd written("t");
    written.addElementDecl("a", "b", REP_ZERO_OR_MORE);
    written.addElementDecl("b");
    written.addElementDecl("c", new AnySpec(&written));
    written.addAttDecl("a", "x", new AttStringType(FIXED, "1.0"));
    written.addAttDecl("a", "y", REQUIRED);
    written.addAttDecl("b", "z", new AttStringType(DEFAULT, ""));
    written.setEntity("e", "a & b < \"c\"");
    written.setEntity("f", "it's");
    const std::string text = textOf(written);
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        withSource(source, text + " ", [&text](InStream& in) {
            DoctypeReader reader;
            ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage();
            const std::unique_ptr<Dtd> dtd(reader.extractDtd());
            EXPECT_EQ(textOf(*dtd), text);
            EXPECT_EQ(dtd->getEntityValue("e"), "a & b < \"c\"");
        });
    }
}

TEST(DoctypeReaderTest, TellsASubclassOnlyOfItsOwnFailures) {
    const struct {
        std::string text;
        const char* heard;
        std::string message;
    } kCases[] = {
        {"<!DOCTYPE t>", "Unexpected token \">\";", ""},
        {"<!DOCTYPE t SYSTEM 'no such file'>", "Could not open file: no such file;", ""},
        {"<!DOCTYPE t [<!-- c -->] x>", "\">\" expected;", ""},
        {"<!DOCTYPE t []>", "", located(1, 13, "unexpected token \"]\"", classOf<DTDReader>())},
        {"<!DOCTYPE t [<!ELEMENT 1>]>", "", located(1, 24, "not a name: 1", classOf<ElementDeclReader>())},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        StringInStream in(c.text);
        Listening<DoctypeReader> reader;
        EXPECT_FALSE(reader.parse(in));
        EXPECT_EQ(reader.heard, c.heard);
        EXPECT_EQ(reader.getErrorMessage(), c.message);
    }
}

}  // namespace Xml::test
