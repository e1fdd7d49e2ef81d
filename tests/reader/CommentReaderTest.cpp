#include "xml/reader/CommentReader.h"

#include "reader/ReadCase.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

Reading readComment(InStream& in) {
    CommentReader reader;
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), ""};
}

}  // namespace

TEST(CommentReaderTest, ConsumesACommentUpToItsFirstEndAndNothingElse) {
    expectReadings(
        {
            {"plain", "<!-- x --> y", yes(" y")},
            {"white space before it", " \t\r\n <!-- x -->y", yes("y")},
            {"empty", "<!---->y", yes("y")},
            {"two dashes inside", "<!-- a -- b -->y", yes("y")},
            {"three dashes at the end", "<!-- a --->y", yes("y")},
            {"markup, quotes and references inside", "<!-- <a x='1\"> & ]]> -->y", yes("y")},
            {"first of two", "<!--a--><!--b-->", yes("<!--b-->")},
            {"the opening's dashes do not end it", "<!-->y-->z", yes("z")},
            {"one dash more does not end it", "<!--->y-->z", yes("z")},
            {"ends with the data", "<!-- x -->", yes("")},
            {"start tag", "<a>", no("\"<!--\" expected", "a>")},
            {"one dash", "<!-x-->", no("\"<!--\" expected", "-x-->")},
            {"declaration", "<!DOCTYPE a>", no("\"<!--\" expected", " a>")},
            {"word", "x y", no("\"<!--\" expected", " y")},
            {"not ended", "<!-- x", ended()},
            {"half ended", "<!-- x --", ended()},
            {"only opened", "<!--", ended()},
            {"half opened", "<!-", ended()},
            {"nothing", "", ended()},
            {"only white space", " \n ", ended()},
        },
        classOf<CommentReader>(), readComment);
}

TEST(CommentReaderTest, LocatesAFailureByLineAndColumn) {
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        const int column = source == Source::FileStream ? -1 : 7;
        withSource(source, "\r\n\r\n\r\n<!-- xx", [column](InStream& in) {
            EXPECT_EQ(readComment(in).error, located(3, column, kEndOfStream, classOf<CommentReader>()));
        });
    }
}

TEST(CommentReaderTest, KeepsItsMessageWhenALaterCommentIsFine) {
    CommentReader reader;
    StringInStream bad("x ");
    EXPECT_FALSE(reader.parse(bad));
    const std::string message = located(1, 1, "\"<!--\" expected", classOf<CommentReader>());
    EXPECT_EQ(reader.getErrorMessage(), message);
    StringInStream good("<!-- x -->");
    EXPECT_TRUE(reader.parse(good));
    EXPECT_EQ(reader.getErrorMessage(), message);
}

}  // namespace Xml::test
