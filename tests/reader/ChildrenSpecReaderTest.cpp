#include "xml/reader/ChildrenSpecReader.h"

#include "reader/Listening.h"
#include "reader/ReadCase.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/stream/FileOutStream.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace Xml::test {

namespace {

std::string written(const std::unique_ptr<ChildrenSpec>& model) {
    if (model == nullptr) return "null";
    std::ostringstream text;
    FileOutStream out(&text);
    model->toStream(out);
    return text.str();
}

Reading readChildren(InStream& in) {
    Dtd dtd("t");
    ChildrenSpecReader reader(&dtd);
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), written(std::unique_ptr<ChildrenSpec>(reader.extractChildrenSpec()))};
}

const char* const kNotNull = "<ChildrenSpecReader::parse> cur not 0";

}  // namespace

TEST(ChildrenSpecReaderTest, ReadsNamesSequencesAndChoices) {
    expectReadings(
        {
            {"a name", "(b)>", yes(">").builds("(b)")},
            {"optional", "(b)?>", yes(">").builds("(b)?")},
            {"any number", "(b)*>", yes(">").builds("(b)*")},
            {"at least one", "( b ) + >", yes(" >").builds("(b)+")},
            {"a repeated name", "(b?)>", yes(">").builds("(b?)")},
            {"a repeated name, repeated", "(b*)+>", yes(">").builds("(b*)+")},
            {"a blank before the repetition", "(b * ) ?>", yes(">").builds("(b*)?")},
            {"sequence", "(b,c)>", yes(">").builds("(b, c)")},
            {"sequence of repeated names", "( b? , c* , d+ , e )*>", yes(">").builds("(b?, c*, d+, e)*")},
            {"choice", "(b|c)>", yes(">").builds("(b | c)")},
            {"choice of repeated names", "(b?|c*|d+|e)+>", yes(">").builds("(b? | c* | d+ | e)+")},
            {"a name twice", "(b,b|)>", no("unexpected \"|\"", ")>").builds("null")},
            {"what is after it stays", "(b) x>", yes(" x>").builds("(b)")},
        },
        classOf<ChildrenSpecReader>(), readChildren);
}

TEST(ChildrenSpecReaderTest, ReadsGroupsWithinGroups) {
    expectReadings(
        {
            {"a group alone", "((b))>", yes(">").builds("(b)")},
            {"deep", "((((b))))>", yes(">").builds("(b)")},
            {"repeated at each level", "((b)*)+>", yes(">").builds("(b*)+")},
            {"a sequence alone", "((b,c))>", yes(">").builds("((b, c))")},
            {"a choice first", "((b|c),d)>", yes(">").builds("((b | c), d)")},
            {"a choice within", "(b,(c|d)*,e)>", yes(">").builds("(b, (c | d)*, e)")},
            {"sequences as alternatives", "((b,c)?|(d,e))+>", yes(">").builds("((b, c)? | (d, e))+")},
            {"three levels", "(b,(c|(d,e*)+)?)>", yes(">").builds("(b, (c | (d, e*)+)?)")},
            {"a repeated name as a group", "(b,(c?))>", yes(">").builds("(b, c?)")},
        },
        classOf<ChildrenSpecReader>(), readChildren);
}

TEST(ChildrenSpecReaderTest, TakesCharacterDataInAnOpenChoice) {
    expectReadings(
        {
            {"last", "(b|c|#PCDATA)*>", yes(">").builds("(b | c | #PCDATA)*")},
            {"in the middle", "(b|#PCDATA|c)>", yes(">").builds("(b | c | #PCDATA)")},
            {"twice", "(b|#PCDATA|c|#PCDATA)>", yes(">").builds("(b | c | #PCDATA)")},
            {"without separator", "(b|c #PCDATA)>", yes(">").builds("(b | c | #PCDATA)")},
            {"with one name nothing is written", "(b|#PCDATA)>",
             yes(">").builds("").reports("<ChoiceSpec::toStream> need at least 2 items")},
            {"first", "(#PCDATA|b)>", no("unexpected \"#PCDATA\"", "|b)>").builds("null")},
            {"alone", "(#PCDATA)>", no("unexpected \"#PCDATA\"", ")>").builds("null")},
            {"in a sequence", "(b,#PCDATA)>", no("unexpected \"#PCDATA\"", ")>").builds("null")},
            {"after a name", "(b #PCDATA)>", no("unexpected \"#PCDATA\"", ")>").builds("null")},
            {"repeated", "(b|#PCDATA*)>", no("unexpected \"*\"", ")>").builds("null")},
        },
        classOf<ChildrenSpecReader>(), readChildren);
}

TEST(ChildrenSpecReaderTest, ToleratesMissingSeparators) {
    expectReadings(
        {
            {"the last name stays", "(b c)>", yes(">").builds("(c)")},
            {"of three", "(b c d)>", yes(">").builds("(d)")},
            {"in a sequence", "(b,c d)>", yes(">").builds("(b, c, d)")},
            {"in a choice", "(b|c d)>", yes(">").builds("(b | c | d)")},
            {"a sequence begins with the last name", "(b c,d)>", yes(">").builds("(c, d)")},
            {"a repeated name after a name", "(b c?)>", yes(">").builds("(c?)").reports(kNotNull)},
            {"a name after a repeated name", "(b? c)>", yes(">").builds("(b?)").reports(kNotNull)},
            {"two repeated names", "(b? c*)>", yes(">").builds("(c*)")},
            {"a group after a name", "(b (c|d))>", yes(">").builds("((c | d))").reports(kNotNull)},
            {"a name after a group", "((b|c) d)>", yes(">").builds("((b | c))").reports(kNotNull)},
            {"two groups", "((b) (c))>", yes(">").builds("(c)")},
            {"a sequence takes the name first", "(b? c,d)>", yes(">").builds("(c, b?, d)")},
            {"so does a choice", "(b? c|d)>", yes(">").builds("(c | b? | d)")},
            {"a group in a sequence", "(b,c (d|e))>", yes(">").builds("(b, c, (d | e))")},
        },
        classOf<ChildrenSpecReader>(), readChildren);
}

TEST(ChildrenSpecReaderTest, RejectsWhatIsNoItem) {
    const auto unexpected = [](const std::string& token, const std::string& left) {
        return no("unexpected \"" + token + "\"", left).builds("null");
    };
    expectReadings(
        {
            {"nothing", "()>", unexpected(")", ">")},
            {"nothing in a group", "(b,())>", unexpected(")", ")>")},
            {"nothing after a comma", "(b,)>", unexpected(")", ">")},
            {"nothing after a bar", "(b|)>", unexpected(")", ">")},
            {"comma first", "(,b)>", unexpected(",", "b)>")},
            {"two commas", "(b,,c)>", unexpected(",", "c)>")},
            {"comma and bar", "(b,c|d)>", unexpected("|", "d)>")},
            {"bar and comma", "(b|c,d)>", unexpected(",", "d)>")},
            {"comma and bar in a group", "(a|(b,c|d))>", unexpected("|", "d))>")},
            {"comma after a group in a choice", "((a,b)|c,d)>", unexpected(",", "d)>")},
            {"digit first", "(b|1c)>", unexpected("1c", ")>")},
            {"string", "(\"b\")>", unexpected("\"b\"", ")>")},
            {"reference", "(&b;)>", unexpected("&b;", ")>")},
            {"markup", "(<b>)>", unexpected("<", "b>)>")},
            {"comment", "(b <!-- c -->)>", unexpected("<!--", " c -->)>")},
            {"two repetitions", "(b**)>", unexpected("*", ")>")},
            {"end of the declaration", "(b,c>", unexpected(">", "")},
            {"no parenthesis", "b)>", no("\"(\" expected", ")>").builds("null")},
        },
        classOf<ChildrenSpecReader>(), readChildren);
}

TEST(ChildrenSpecReaderTest, ReportsTheEndOfTheData) {
    const Verdict end = ended().builds("null");
    const Verdict wordsEnd = no("unexpected \"b").goes().builds("null");
    expectReadings(
        {
            {"nothing", "", end},
            {"a parenthesis", "(", end},
            {"a name", "(b", end, wordsEnd},
            {"a name and a blank", "(b ", end},
            {"a comma", "(b,", end},
            {"an open group", "(b|(c,d)", end},
            {"an open string", "(b|'c)", end},
            {"an open reference", "(b&c)", no("unexpected \"b&c\"", ")").builds("null")},
            {"a whole model, with a note", "(b,c)", yes().notes(kEndOfStream).builds("(b, c)"),
             yes().goes().notes(kEndOfStream).builds("(b, c)")},
            {"a repeated model has none", "(b,c)*", yes().builds("(b, c)*")},
        },
        classOf<ChildrenSpecReader>(), readChildren);
}

TEST(ChildrenSpecReaderTest, HandsTheModelOverOnce) {
    Dtd dtd("t");
    ChildrenSpecReader reader(&dtd);
    EXPECT_EQ(reader.extractChildrenSpec(), nullptr);
    StringInStream in("(a) (b?,c) (d|e)* ");
    ASSERT_TRUE(reader.parse(in));
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(written(std::unique_ptr<ChildrenSpec>(reader.extractChildrenSpec())), "(b?, c)");
    EXPECT_EQ(reader.extractChildrenSpec(), nullptr);
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(reader.getErrorMessage(), "");
}

TEST(ChildrenSpecReaderTest, TellsASubclassOnlyOfItsOwnFailures) {
    const struct {
        const char* text;
        const char* heard;
        std::string message;
    } kCases[] = {
        {"(a,)", "unexpected \")\";", ""},
        {"a", "\"(\" expected;", ""},
        {"(a,(b,))", "", located(1, 7, "unexpected \")\"", classOf<ChildrenSpecReader>())},
        {"(a,((b|c,d)))", "", located(1, 9, "unexpected \",\"", classOf<ChildrenSpecReader>())},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        Dtd dtd("t");
        StringInStream in(c.text);
        Listening<ChildrenSpecReader> reader(&dtd);
        EXPECT_FALSE(reader.parse(in));
        EXPECT_EQ(reader.heard, c.heard);
        EXPECT_EQ(reader.getErrorMessage(), c.message);
    }
}

}  // namespace Xml::test
