#include "xml/reader/MixedSpecReader.h"

#include "reader/Listening.h"
#include "reader/ReadCase.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace Xml::test {

namespace {

std::string written(const std::unique_ptr<MixedSpec>& model) {
    if (model == nullptr) return "null";
    std::ostringstream text;
    FileOutStream out(&text);
    model->toStream(out);
    return text.str();
}

Reading readMixed(InStream& in) {
    Dtd dtd("t");
    MixedSpecReader reader(&dtd);
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), written(std::unique_ptr<MixedSpec>(reader.extractMixedSpec()))};
}

}  // namespace

TEST(MixedSpecReaderTest, ReadsTextAloneAndTextWithNames) {
    expectReadings(
        {
            {"text", "(#PCDATA)>", yes(">").builds("(#PCDATA)")},
            {"text with a star", "(#PCDATA)*>", yes(">").builds("(#PCDATA)")},
            {"white space", " ( #PCDATA ) * >", yes(" >").builds("(#PCDATA)")},
            {"one name", "(#PCDATA|b)*>", yes(">").builds("(#PCDATA | b)*")},
            {"names in their order", "( #PCDATA | c | a | b ) * >", yes(" >").builds("(#PCDATA | c | a | b)*")},
            {"what is after it stays", "(#PCDATA) x>", yes(" x>").builds("(#PCDATA)")},
            {"the end of the keyword is enough", "(x#PCDATA)>", yes(">").builds("(#PCDATA)")},
            {"a name twice", "(#PCDATA|b|c|b)*>",
             yes(">").builds("(#PCDATA | b | c)*").reports("<MixedSpec::MixedSpec> name already added b")},
        },
        classOf<MixedSpecReader>(), readMixed);
}

TEST(MixedSpecReaderTest, RejectsOtherRepetitions) {
    expectReadings(
        {
            {"text with a plus", "(#PCDATA)+>", no("unexpected repetition type", ">").builds("(#PCDATA)")},
            {"text with a question mark", "(#PCDATA)?>", no("unexpected repetition type", ">").builds("(#PCDATA)")},
            {"names without a star", "(#PCDATA|b)>z", no("\"*\" expected", "z").builds("(#PCDATA | b)*")},
            {"names with a plus", "(#PCDATA|b)+>", no("\"*\" expected", ">").builds("(#PCDATA | b)*")},
        },
        classOf<MixedSpecReader>(), readMixed);
}

TEST(MixedSpecReaderTest, ReportsWhatTheModelLacks) {
    expectReadings(
        {
            {"no parenthesis", "#PCDATA)>", no("\"(\" expected", ")>").builds("null")},
            {"a name first", "(b|#PCDATA)>", no("\"#PCDATA\" expected", "|#PCDATA)>").builds("null")},
            {"no bar", "(#PCDATA b)*>", no("\"|\" expected", ")*>").builds("(#PCDATA)")},
            {"a comma", "(#PCDATA,b)*>", no("\"|\" expected", "b)*>").builds("(#PCDATA)")},
            {"no bar further on", "(#PCDATA|b c)*>", no("\"|\" expected", ")*>").builds("(#PCDATA | b)*")},
            {"no name", "(#PCDATA|)*>", no("not a name: )", "*>").builds("(#PCDATA)")},
            {"no name further on", "(#PCDATA|b|1)*>", no("not a name: 1", ")*>").builds("(#PCDATA | b)*")},
            {"a group", "(#PCDATA|(b))*>", no("not a name: (", "b))*>").builds("(#PCDATA)")},
            {"a repetition of a name", "(#PCDATA|b?)*>", no("\"|\" expected", ")*>").builds("(#PCDATA | b)*")},
        },
        classOf<MixedSpecReader>(), readMixed);
}

TEST(MixedSpecReaderTest, ReportsTheEndOfTheData) {
    expectReadings(
        {
            {"nothing", "", ended().builds("null")},
            {"a parenthesis", "(", ended().builds("null")},
            {"the keyword", "(#PCDATA", ended().builds("(#PCDATA)"), no("\"#PCDATA\" expected").goes().builds("null")},
            {"the keyword and a blank", "(#PCDATA ", ended().builds("(#PCDATA)")},
            {"a bar", "(#PCDATA|", ended().builds("(#PCDATA)")},
            {"a name", "(#PCDATA|b", ended().builds("(#PCDATA | b)*"), no("not a name: b").goes().builds("(#PCDATA)")},
            {"names without a star", "(#PCDATA|b)", ended().builds("(#PCDATA | b)*")},
            {"text alone is complete, with a note", "(#PCDATA)", yes().notes(kEndOfStream).builds("(#PCDATA)"),
             yes().goes().notes(kEndOfStream).builds("(#PCDATA)")},
        },
        classOf<MixedSpecReader>(), readMixed);
}

TEST(MixedSpecReaderTest, HandsTheModelOverOnce) {
    Dtd dtd("t");
    MixedSpecReader reader(&dtd);
    EXPECT_EQ(reader.extractMixedSpec(), nullptr);
    StringInStream in("(#PCDATA|a)* (#PCDATA|b)* (#PCDATA|c)* ");
    ASSERT_TRUE(reader.parse(in));
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(written(std::unique_ptr<MixedSpec>(reader.extractMixedSpec())), "(#PCDATA | b)*");
    EXPECT_EQ(reader.extractMixedSpec(), nullptr);
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(reader.getErrorMessage(), "");
}

TEST(MixedSpecReaderTest, TellsASubclassOfFailuresAndNotes) {
    Dtd dtd("t");
    Listening<MixedSpecReader> reader(&dtd);
    StringInStream plus("(#PCDATA)+ ");
    EXPECT_FALSE(reader.parse(plus));
    StringInStream bar("(#PCDATA b)");
    EXPECT_FALSE(reader.parse(bar));
    StringInStream end("(#PCDATA)");
    EXPECT_TRUE(reader.parse(end));
    EXPECT_EQ(reader.heard, std::string("unexpected repetition type;\"|\" expected;") + kEndOfStream + ";");
    EXPECT_EQ(reader.getErrorMessage(), "");
}

}  // namespace Xml::test
