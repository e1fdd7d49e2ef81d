#include "xml/reader/VersionInfoReader.h"

#include "reader/ReadCase.h"
#include "support/Texts.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

Reading readDeclaration(InStream& in) {
    VersionInfoReader reader;
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), ""};
}

}  // namespace

TEST(VersionInfoReaderTest, AcceptsVersionOneInEitherQuotes) {
    expectReadings(
        {
            {"double quotes", "<?xml version=\"1.0\"?>z", yes("z")},
            {"single quotes", "<?xml version='1.0'?>z", yes("z")},
            {"blanks", " <?xml  version = \"1.0\" ? >z", yes("z")},
            {"a blank in the opening", "<? xml version=\"1.0\"?>z", yes("z")},
            {"ends with the data", "<?xml version=\"1.0\"?>", yes("")},
        },
        classOf<VersionInfoReader>(), readDeclaration);
}

TEST(VersionInfoReaderTest, NotesAnEncodingThatIsNotSupportedAndGoesOn) {
    const std::string start = "<?xml version=\"1.0\" encoding=";
    const std::string note = "Unsupported encoding: ";
    expectReadings(
        {
            {"supported", start + "\"UTF-8\"?>z", yes("z")},
            {"supported in single quotes", start + "'UTF-8'?>z", yes("z")},
            {"blanks", "<?xml version=\"1.0\" encoding = 'UTF-8' ?>z", yes("z")},
            {"lower case", start + "\"utf-8\"?>z", yes("z").notesBefore(note + "\"utf-8\"", "?>z")},
            {"another", start + "'ISO-8859-1'?>z", yes("z").notesBefore(note + "'ISO-8859-1'", "?>z")},
            {"empty", start + "\"\"?>z", yes("z").notesBefore(note + "\"\"", "?>z")},
            {"without quotes", start + "UTF-8?>z", yes("z").notesBefore(note + "UTF-8", "?>z")},
            {"standalone after it", start + "\"L1\" standalone=\"no\"?>z",
             yes("z").notesBefore(note + "\"L1\"", " standalone=\"no\"?>z")},
            {"the token after the value is not looked at", start + "\"UTF-8\">>z", yes("z")},
            {"a later failure replaces the note", start + "\"L1\"", ended()},
            {"a silent failure leaves it", start + "\"L1\" ?" + repeated("x ", 15) + ">z",
             silent(" >z").notesBefore(note + "\"L1\"", " ?" + repeated("x ", 15) + ">z")},
        },
        classOf<VersionInfoReader>(), readDeclaration);
}

TEST(VersionInfoReaderTest, FailsSilentlyAtATokenThatDoesNotBelongThere) {
    expectReadings(
        {
            {"version 1.1", "<?xml version=\"1.1\"?>z", silent("?>z")},
            {"version 1.0 with a blank", "<?xml version=\"1.0 \"?>z", silent("?>z")},
            {"version without quotes", "<?xml version=1.0?>z", silent("?>z")},
            {"no version", "<?xml?>z", silent(">z")},
            {"encoding first", "<?xml encoding=\"UTF-8\"?>z", silent("=\"UTF-8\"?>z")},
            {"no equals sign", "<?xml version \"1.0\"?>z", silent("?>z")},
            {"standalone without encoding", "<?xml version=\"1.0\" standalone=\"yes\"?>z", silent("=\"yes\"?>z")},
            {"no question mark", "<?xml version=\"1.0\">z", silent("z")},
            {"another instruction", "<?php version=\"1.0\"?>z", silent("php version=\"1.0\"?>z")},
            {"a name that ends with xml", "<?fooxml version=\"1.0\"?>z", silent(" version=\"1.0\"?>z")},
            {"start tag", "<a>", silent("a>")},
            {"upper case", "<?xml VERSION=\"1.0\"?>z", silent("=\"1.0\"?>z")},
        },
        classOf<VersionInfoReader>(), readDeclaration);
}

TEST(VersionInfoReaderTest, ToleratesFourteenUnknownTokensBeforeTheEnd) {
    const std::string start = "<?xml version=\"1.0\"?";
    const std::string encoded = "<?xml version=\"1.0\" encoding=\"UTF-8\"";
    expectReadings(
        {
            {"one", start + "x>z", yes("z")},
            {"fourteen", start + repeated("x ", 14) + ">z", yes("z")},
            {"fifteen", start + repeated("x ", 15) + ">z", silent(" >z")},
            {"fourteen after an encoding", encoded + "?" + repeated("x ", 14) + ">z", yes("z")},
            {"fifteen after an encoding", encoded + "?" + repeated("x ", 15) + ">z", silent(" >z")},
            {"an empty element's end is not the end", start + "/> >z", yes("z")},
        },
        classOf<VersionInfoReader>(), readDeclaration);
}

TEST(VersionInfoReaderTest, ReportsTheStreamsFailures) {
    const std::string start = "<?xml version=\"1.0\"";
    expectReadings(
        {
            {"nothing", "", ended()},
            {"only the opening", "<?xml", ended(), silent().goes()},
            {"no value", "<?xml version=", ended()},
            {"unfinished value", "<?xml version=\"1.0", ended()},
            {"only the version", start, ended()},
            {"no angle bracket", start + "?", ended()},
            {"only the encoding's name", start + " encoding", ended(), silent().goes()},
            {"no encoding", start + " encoding=", ended()},
            {"nothing after the encoding", start + " encoding=\"UTF-8\"", ended()},
            {"nothing after the question mark", start + " encoding=\"UTF-8\"?", ended()},
            {"encoding without equals sign", start + " encoding \"UTF-8\"?>z", no("\"=\" expected", "?>z")},
            {"lone quote", start + " \"?>z", ended()},
        },
        classOf<VersionInfoReader>(), readDeclaration);
}

TEST(VersionInfoReaderTest, LeavesAnEarlierMessageAfterASilentFailure) {
    VersionInfoReader reader;
    reader.setMessage("before");
    StringInStream in("<?xml version=\"2.0\"?>");
    EXPECT_FALSE(reader.parse(in));
    EXPECT_EQ(reader.getErrorMessage(), "before");
}

}  // namespace Xml::test
