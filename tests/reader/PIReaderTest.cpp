#include "xml/reader/PIReader.h"

#include "reader/ReadCase.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

Reading readInstruction(InStream& in) {
    PIReader reader;
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), ""};
}

}  // namespace

TEST(PIReaderTest, ConsumesAnInstructionUpToItsFirstEndAndNothingElse) {
    expectReadings(
        {
            {"plain", "<?php echo 1?> y", yes(" y")},
            {"white space before it", " \t\r\n <?x?>y", yes("y")},
            {"white space after the opening", "<? x ?>y", yes("y")},
            {"empty", "<?\?>y", yes("y")},
            {"the opening's mark does not end it", "<?>?>y", yes("y")},
            {"nor with more after it", "<?>x?>y", yes("y")},
            {"a mark inside", "<?x ? > ?>y", yes("y")},
            {"quotes and markup inside", "<?x '<a \"> & ?>y", yes("y")},
            {"style sheet", "<?xml-stylesheet href='a'?>y", yes("y")},
            {"a name that only begins with xml", "<?xmlx?>y", yes("y")},
            {"ends with the data", "<?x?>", yes("")},
            {"declaration", "<?xml version='1.0'?>", no("\"<?\" expected", " version='1.0'?>")},
            {"a name that ends with xml", "<?fooxml?>y", no("\"<?\" expected", "?>y")},
            {"comment", "<!-- x -->", no("\"<?\" expected", " x -->")},
            {"start tag", "<a>", no("\"<?\" expected", "a>")},
            {"not ended", "<?x", ended()},
            {"half ended", "<?x?", ended()},
            {"only opened", "<?", ended()},
            {"nothing", "", ended()},
        },
        classOf<PIReader>(), readInstruction);
}

TEST(PIReaderTest, LocatesAFailureByLineAndColumn) {
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        withSource(source, "\r\n\r\n  <a>", [](InStream& in) {
            EXPECT_EQ(readInstruction(in).error, located(2, 3, "\"<?\" expected", classOf<PIReader>()));
        });
    }
}

}  // namespace Xml::test
