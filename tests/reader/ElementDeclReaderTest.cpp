#include "xml/reader/ElementDeclReader.h"

#include "reader/Listening.h"
#include "reader/ReadCase.h"
#include "support/Trees.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/reader/ChildrenSpecReader.h"
#include "xml/reader/MixedSpecReader.h"
#include "xml/stream/StringInStream.h"
#include <gtest/gtest.h>

namespace Xml::test {

namespace {

Reading readElementDecl(InStream& in) {
    Dtd dtd("t");
    ElementDeclReader reader(&dtd);
    const bool ok = reader.parse(in);
    return {ok, reader.getErrorMessage(), declarationsOf(dtd)};
}

}  // namespace

TEST(ElementDeclReaderTest, DeclaresTheElementWithItsModel) {
    expectReadings(
        {
            {"nothing", "<!ELEMENT a EMPTY>z", yes("z").builds("<!ELEMENT a EMPTY>")},
            {"anything", "<!ELEMENT a ANY>z", yes("z").builds("<!ELEMENT a ANY>")},
            {"text", "<!ELEMENT a (#PCDATA)>z", yes("z").builds("<!ELEMENT a (#PCDATA)>")},
            {"text with a star", "<!ELEMENT a ( #PCDATA )*>z", yes("z").builds("<!ELEMENT a (#PCDATA)>")},
            {"mixed", "<!ELEMENT a (#PCDATA|b | c)*>z", yes("z").builds("<!ELEMENT a (#PCDATA | b | c)*>")},
            {"children", "<!ELEMENT a (b,c*,(d|e)+)?>z", yes("z").builds("<!ELEMENT a (b, c*, (d | e)+)?>")},
            {"white space everywhere", " <!ELEMENT\n\ta\n\tEMPTY\n\t>z", yes("z").builds("<!ELEMENT a EMPTY>")},
            {"white space in the keyword", "<! ELEMENT a EMPTY>z", yes("z").builds("<!ELEMENT a EMPTY>")},
            {"no white space before a group", "<!ELEMENT a(b)>z", yes("z").builds("<!ELEMENT a (b)>")},
            {"an end like that of an empty element", "<!ELEMENT a EMPTY/>z", yes("z").builds("<!ELEMENT a EMPTY>")},
        },
        classOf<ElementDeclReader>(), readElementDecl);
}

TEST(ElementDeclReaderTest, ReportsAModelThatItDoesNotKnowAndFailsSilently) {
    const std::string text = "<ElementDeclReader::parse> don't know what to do ";
    expectReadings(
        {
            {"lower case", "<!ELEMENT a empty>z", silent(">z").reports(text + "empty")},
            {"only ends like EMPTY", "<!ELEMENT a NOTEMPTY>z", silent(">z").reports(text + "NOTEMPTY")},
            {"a name", "<!ELEMENT a b>z", silent(">z").reports(text + "b")},
            {"no model", "<!ELEMENT a >z", silent("z").reports(text + ">")},
            {"text without parentheses", "<!ELEMENT a #PCDATA>z", silent(">z").reports(text + "#PCDATA")},
            {"string", "<!ELEMENT a \"100 %s\">z", silent(">z").reports(text + "\"100 %s\"")},
        },
        classOf<ElementDeclReader>(), readElementDecl);
}

TEST(ElementDeclReaderTest, ReportsWhatTheDeclarationLacks) {
    const std::string unknown = "<ElementDeclReader::parse> don't know what to do ";
    expectReadings(
        {
            {"nothing", "", ended()},
            {"another declaration", "<!ATTLIST a>z", no("\"<!ELEMENT\" expected", " a>z")},
            {"start tag", "<a>z", no("\"<!ELEMENT\" expected", "a>z")},
            {"digit first", "<!ELEMENT 1a EMPTY>z", no("not a name: 1a", " EMPTY>z")},
            {"no name", "<!ELEMENT>z", no("not a name: >", "z")},
            {"only the keyword", "<!ELEMENT ", ended()},
            {"only a name", "<!ELEMENT a ", ended()},
            {"something after the model", "<!ELEMENT a EMPTY b>z",
             no("\">\" expected", ">z").builds("<!ELEMENT a EMPTY>")},
            {"something after a group", "<!ELEMENT a (b) c>z", no("\">\" expected", ">z").builds("<!ELEMENT a (b)>")},
            {"ends after the model", "<!ELEMENT a EMPTY ", ended().builds("<!ELEMENT a EMPTY>")},
            {"ends within the model's word", "<!ELEMENT a EMPTY", ended().builds("<!ELEMENT a EMPTY>"),
             silent().goes().reports(unknown + "EMPTY")},
            {"ends after the parenthesis", "<!ELEMENT a (", ended()},
            {"ends within mixed content", "<!ELEMENT a (#PCDATA ", ended().by<MixedSpecReader>()},
            {"ends within a group", "<!ELEMENT a (b ", ended().by<ChildrenSpecReader>()},
            {"ends after a group", "<!ELEMENT a (b)", ended().builds("<!ELEMENT a (b)>")},
        },
        classOf<ElementDeclReader>(), readElementDecl);
}

TEST(ElementDeclReaderTest, TakesOverTheMessageOfTheModelsReader) {
    expectReadings(
        {
            {"mixed content without star", "<!ELEMENT a (#PCDATA|b)>z",
             no("\"*\" expected", "z").by<MixedSpecReader>()},
            {"text with a plus", "<!ELEMENT a (#PCDATA)+>z",
             no("unexpected repetition type", ">z").by<MixedSpecReader>()},
            {"empty group", "<!ELEMENT a ()>z", no("unexpected \")\"", ">z").by<ChildrenSpecReader>()},
            {"two separators", "<!ELEMENT a (b,c|d)>z", no("unexpected \"|\"", "d)>z").by<ChildrenSpecReader>()},
            {"text that is not first", "<!ELEMENT a (b,#PCDATA)>z",
             no("unexpected \"#PCDATA\"", ")>z").by<ChildrenSpecReader>()},
            {"only ends like text", "<!ELEMENT a (x#PCDATA)>z",
             no("unexpected \"x#PCDATA\"", ")>z").by<ChildrenSpecReader>()},
        },
        classOf<ElementDeclReader>(), readElementDecl);
}

TEST(ElementDeclReaderTest, KeepsTheFirstDeclarationOfAnElement) {
    const auto readTwo = [](InStream& in) {
        Dtd dtd("t");
        ElementDeclReader reader(&dtd);
        const bool first = reader.parse(in);
        return Reading{first && reader.parse(in), reader.getErrorMessage(), declarationsOf(dtd)};
    };
    const std::string text = "<Dtd::addElementDecl> already added a";
    for (const std::string model : {"EMPTY", "ANY", "(#PCDATA)", "(#PCDATA | c)*", "(c, d?)", "(c | (d, e)+)*"}) {
        const std::string first = "<!ELEMENT a (b)>";
        expectReadings({{"refused", first + "<!ELEMENT a " + model + ">z", yes("z").builds(first).reports(text)},
                        {"kept", "<!ELEMENT a " + model + ">" + first + "z",
                         yes("z").builds("<!ELEMENT a " + model + ">").reports(text)}},
                       classOf<ElementDeclReader>(), readTwo);
    }
}

TEST(ElementDeclReaderTest, ReadsBackEveryModelThatADtdWrites) {
    Dtd written("t");
    written.addElementDecl("empty", new EmptySpec(&written));
    written.addElementDecl("any", new AnySpec(&written));
    written.addElementDecl("text");
    auto* mixed = new MixedSpec(&written);
    mixed->addName("b");
    mixed->addName("c");
    written.addElementDecl("mixed", mixed);
    for (std::uint32_t repetition = 0; repetition < 4; ++repetition) {
        const auto rep = static_cast<RepType>(repetition);
        const std::string suffix = std::to_string(repetition);
        written.addElementDecl("name" + suffix, "b", rep);
        auto* seq = new SeqSpec(&written);
        seq->add("b", rep);
        written.addElementDecl("one" + suffix, seq, REP_ONCE);
        auto* inner = new ChoiceSpec(&written);
        inner->addChoice("c", rep);
        inner->addChoice("d", REP_ONCE);
        inner->addCharDataAsChoice(true);
        auto* outer = new SeqSpec(&written);
        outer->add("b", rep);
        outer->add(inner, rep);
        written.addElementDecl("group" + suffix, outer, rep);
    }
    const std::string text = declarationsOf(written);
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        withSource(source, text + " ", [&text](InStream& in) {
            Dtd dtd("t");
            ElementDeclReader reader(&dtd);
            for (std::size_t lines = 0; lines < 16; ++lines) ASSERT_TRUE(reader.parse(in)) << reader.getErrorMessage();
            EXPECT_EQ(declarationsOf(dtd), text);
        });
    }
}

TEST(ElementDeclReaderTest, TellsASubclassOnlyOfItsOwnFailures) {
    const struct {
        const char* text;
        const char* heard;
        std::string message;
    } kCases[] = {
        {"<!ELEMENT a EMPTY x>", "\">\" expected;", ""},
        {"<!ELEMENT 1>", "not a name: 1;", ""},
        {"<!ELEMENT a ()>", "", located(1, 14, "unexpected \")\"", classOf<ChildrenSpecReader>())},
        {"<!ELEMENT a (#PCDATA)+>", "", located(1, 22, "unexpected repetition type", classOf<MixedSpecReader>())},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        Dtd dtd("t");
        StringInStream in(c.text);
        Listening<ElementDeclReader> reader(&dtd);
        EXPECT_FALSE(reader.parse(in));
        EXPECT_EQ(reader.heard, c.heard);
        EXPECT_EQ(reader.getErrorMessage(), c.message);
    }
}

}  // namespace Xml::test
