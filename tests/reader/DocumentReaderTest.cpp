#include "xml/reader/DocumentReader.h"

#include "reader/GrowthLimit.h"
#include "reader/Listening.h"
#include "reader/ReadCase.h"
#include "support/NodeTestAccess.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DoctypeReader.h"
#include "xml/reader/ElementDeclReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/reader/PIReader.h"
#include "xml/reader/VersionInfoReader.h"
#include "xml/stream/StringInStream.h"
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <utility>

namespace Xml::test {

namespace {

// The tree of the document with the declarations of its Dtd before it; "null" without a document.
Reading readWhole(InStream& in) {
    DocumentReader reader;
    const bool ok = reader.parse(in);
    const Document* document = reader.getDocument();
    std::string built = dump(document);
    if (document != nullptr && document->getDtd() != nullptr) built = declarationsOf(*document->getDtd()) + " " + built;
    return {ok, reader.getErrorMessage(), built};
}

}  // namespace

TEST(DocumentReaderTest, ReadsARootWithCommentsAndInstructionsAroundIt) {
    const Verdict tree = yes().builds("a");
    const Verdict noted = tree.notes(kEndOfStream);
    expectReadings(
        {
            {"root alone", "<a/>", tree, tree.goes()},
            {"white space around it", " \n<a/>\r\n ", tree, tree.goes()},
            {"declaration", "<?xml version=\"1.0\"?><a/>", tree, tree.goes()},
            {"declaration after white space", " <?xml version=\"1.0\"?> <a/>", tree, tree.goes()},
            {"encoding", "<?xml version='1.0' encoding='UTF-8'?>\n<a/>", tree, tree.goes()},
            {"comments and instructions", "<!-- c --><?x?> <!-- d -->\n<a/>", tree, tree.goes()},
            {"style sheet", "<?xml version='1.0'?><?xml-stylesheet href='x'?><a/>", tree, tree.goes()},
            {"a comment after the root leaves a note", "<a/> <!-- c -->", noted, noted.goes()},
            {"so does an instruction", "<a/><?x?>\n", noted, noted.goes()},
            {"and everything together", "<!-- c --><a/><!-- d --> <?x?> <!-- e --> ", noted, noted.goes()},
        },
        classOf<DocumentReader>(), readWhole);
}

TEST(DocumentReaderTest, LeavesWhatFollowsTheRoot) {
    const Verdict tree = yes().builds("a");
    expectReadings(
        {
            {"another element", "<a/><b/>", yes("<b/>").builds("a")},
            {"another element after white space", "<a/> \n <b/>", yes("<b/>").builds("a")},
            {"white space after a comment stays too", "<a/><!-- c --> <b/>", yes(" <b/>").builds("a")},
            {"text", "<a/>x y", yes("x y").builds("a")},
            {"a word that ends the data", "<a/>x", yes("x").builds("a"), tree.goes()},
            {"end tag", "<a/></a>", yes("</a>").builds("a")},
            {"declaration", "<a/><?xml version='1.0'?>", yes("<?xml version='1.0'?>").builds("a")},
            {"document type", "<a/><!DOCTYPE a>", yes("<!DOCTYPE a>").builds("a")},
            {"CDATA section", "<a/><![CDATA[]]>", yes("<![CDATA[]]>").builds("a")},
        },
        classOf<DocumentReader>(), readWhole);
}

TEST(DocumentReaderTest, KeepsTheDocumentWhenSomethingBehindTheRootFails) {
    const Verdict noted = yes().notes(kEndOfStream).builds("a");
    expectReadings(
        {
            {"comment", "<a/><!-- c ", ended().by<CommentReader>().builds("a")},
            {"instruction", "<a/> <?x ", ended().by<PIReader>().builds("a")},
            {"an open string counts as the end", "<a/> 'x", noted, noted.goes()},
            {"half a comment counts as the end, but in a file stream", "<a/><!-", noted, ended().goes().builds("a")},
            {"an open reference counts as the end", "<a/> &x", noted, noted.goes()},
        },
        classOf<DocumentReader>(), readWhole);
}

TEST(DocumentReaderTest, NotesAnEncodingThatIsNotSupported) {
    const std::string start = "<?xml version='1.0' encoding='L1'?>";
    const std::string note = "Unsupported encoding: 'L1'";
    const auto noted = [&note](const Verdict& verdict, const std::string& rest) {
        return verdict.notesBefore(note, "?>" + rest).by<VersionInfoReader>();
    };
    expectReadings(
        {
            {"the note stays", start + "<a/>", noted(yes().builds("a"), "<a/>"),
             noted(yes().goes().builds("a"), "<a/>")},
            {"a later note replaces it", start + "<a/><!-- c -->", yes().notes(kEndOfStream).builds("a"),
             yes().goes().notes(kEndOfStream).builds("a")},
            {"a later failure replaces it", start + "<a></b>",
             no("\"a\" expected", ">").by<ElementReader>().builds("null")},
            {"a silent failure of the declaration leaves it",
             "<?xml version='1.0' encoding='L1'" + std::string(16, '?') + ">",
             silent(">").builds("null").notesBefore(note, std::string(16, '?') + ">").by<VersionInfoReader>()},
        },
        classOf<DocumentReader>(), readWhole);
}

TEST(DocumentReaderTest, ReportsWhatThePrologLacks) {
    const Verdict end = ended().builds("null");
    expectReadings(
        {
            {"nothing", "", end},
            {"only white space", " \n ", end},
            {"only a declaration", "<?xml version='1.0'?>", end},
            {"only a comment", "<!-- c -->", end},
            {"comment without end", "<!-- c ", ended().by<CommentReader>().builds("null")},
            {"instruction without end", "<?x ", ended().by<PIReader>().builds("null")},
            {"declaration without end", "<?xml version='1.0' ", ended().by<VersionInfoReader>().builds("null")},
            {"another version", "<?xml version='1.1'?><a/>", silent("?><a/>").builds("null")},
            {"a second declaration", "<?xml version='1.0'?><?xml version='1.0'?><a/>",
             no("\"<\" expected", " version='1.0'?><a/>").by<ElementReader>().builds("null")},
            {"an instruction that ends with xml", "<?fooxml?><a/>",
             no("\"<\" expected", "?><a/>").by<ElementReader>().builds("null")},
            {"text", "x <a/>", no("\"<\" expected", " <a/>").by<ElementReader>().builds("null")},
            {"byte order mark", "\xEF\xBB\xBF<a/>", no("\"<\" expected", "<a/>").by<ElementReader>().builds("null")},
            {"only the document type's keyword", "<!DOCTYPE ", end},
            {"only the document type's name", "<!DOCTYPE a ", end},
            {"document type without subset", "<!DOCTYPE a><a/>",
             no("Unexpected token \">\"", "<a/>").by<DoctypeReader>().builds("null")},
            {"only a document type", "<!DOCTYPE a [<!-- c -->]> ", ended().by<ElementReader>().builds("null")},
        },
        classOf<DocumentReader>(), readWhole);
}

TEST(DocumentReaderTest, TakesOverTheMessagesOfTheReadersItRuns) {
    expectReadings(
        {
            {"start tag", "<a x=1/>", no("\"\"\" or \"'\" expected", "/>").by<ElementReader>().builds("null")},
            {"end tag", "<a><b></a>", no("\"b\" expected", ">").by<ElementReader>().builds("null")},
            {"silent start tag", "<a ?>", silent(">").builds("null")},
            {"silent comment", "<a><!-- c", silent().builds("null"), silent().goes().builds("null")},
            {"markup", "<a><?x?></a>", no("unexpected markup \"<?\"", "x?></a>").by<ElementReader>().builds("null")},
            {"subset", "<!DOCTYPE a []><a/>", no("unexpected token \"]\"", "]><a/>").by<DTDReader>().builds("null")},
            {"declaration", "<!DOCTYPE a [<!ELEMENT 1>]><a/>",
             no("not a name: 1", ">]><a/>").by<ElementDeclReader>().builds("null")},
            {"root after a document type", "<!DOCTYPE a [<!ELEMENT a ANY>]><a></b>",
             no("\"a\" expected", ">").by<ElementReader>().builds("null")},
        },
        classOf<DocumentReader>(), readWhole);
}

TEST(DocumentReaderTest, SkipsADocumentTypeWithAPublicIdentifier) {
    const Verdict tree = yes().builds("a");
    expectReadings(
        {
            {"with both names", "<!DOCTYPE a PUBLIC \"-//p\" \"s.dtd\">\n<a/>", tree, tree.goes()},
            {"angle bracket in a name", "<!DOCTYPE a PUBLIC 'p>' 's'><a/>", tree, tree.goes()},
            {"without names", "<!DOCTYPE a PUBLIC><a/>", tree, tree.goes()},
            {"comments before it", "<!-- c --><?x?><!DOCTYPE a PUBLIC 'p' 's'><a/>", tree, tree.goes()},
            {"any element is valid", "<!DOCTYPE b PUBLIC 'p' 's'><a x='1'>t</a>", yes().builds("a[x=1]('t')"),
             yes().goes().builds("a[x=1]('t')")},
            {"a comment after it is no root", "<!DOCTYPE a PUBLIC 'p' 's'><!-- c --><a/>",
             no("\"<\" expected", " c --><a/>").by<ElementReader>().builds("null")},
            {"ends with the first bracket", "<!DOCTYPE a PUBLIC 'p' 's' [<!ELEMENT a EMPTY>]><a/>",
             no("\"<\" expected", "><a/>").by<ElementReader>().builds("null")},
            {"never ends", "<!DOCTYPE a PUBLIC 'p' 's'", ended().builds("null")},
            {"only the keyword", "<!DOCTYPE a PUBLIC ", ended().builds("null")},
        },
        classOf<DocumentReader>(), readWhole);
}

TEST(DocumentReaderTest, ValidatesADocumentThatBringsItsType) {
    const std::string start = "<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b (#PCDATA)>]>";
    const std::string declarations = "<!ELEMENT a (b*)>\n<!ELEMENT b (#PCDATA)> ";
    const std::string invalid = "Doc could not be validated";
    expectReadings(
        {
            {"valid", start + "<a><b>t</b></a>", yes().builds(declarations + "a(b('t'))"),
             yes().goes().builds(declarations + "a(b('t'))")},
            {"comments and instructions around", "<!-- c -->" + start + "<!-- c --><?x?> <a/> <b/>",
             yes("<b/>").builds(declarations + "a")},
            {"undeclared child", start + "<a><c/></a> z", no(invalid, " z").builds(declarations + "a(c)")},
            {"undeclared attribute", start + "<a x='1'/>", no(invalid).builds(declarations + "a[x=1]")},
            {"text where elements belong", start + "<a>t</a><!-- c -->",
             no(invalid, "<!-- c -->").builds(declarations + "a('t')")},
            {"undeclared root", start + "<c/>", no(invalid).builds(declarations + "c")},
            {"the type's name need not be the root's", start + "<b>t</b>", yes().builds(declarations + "b('t')"),
             yes().goes().builds(declarations + "b('t')")},
            {"nothing declared", "<!DOCTYPE a [<!-- c -->]><a/>", no(invalid).builds(" a")},
        },
        classOf<DocumentReader>(), readWhole);
}

TEST(DocumentReaderTest, DecodesWithTheEntitiesOfTheDocumentType) {
    const std::string text =
        "<!DOCTYPE a [<!ENTITY e 'v&amp;'><!ELEMENT a (#PCDATA)><!ATTLIST a x CDATA #IMPLIED y CDATA 'd'>]>"
        "<a x='-&e;-'>+&e;+</a>\n";
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        const Outcome outcome = readDocument(text, source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        const Element* root = outcome.document->getRoot();
        EXPECT_EQ(dump(root), "a[x=-v&-]('+&e;+')");
        EXPECT_EQ(root->getCharData(), "+v&+");
        EXPECT_EQ(root->getAttributeValue("y"), "d");
    }
}

TEST(DocumentReaderTest, LinksTheWholeTreeToTheDocumentsDtd) {
    const struct {
        const char* name;
        const char* text;
        bool valid;
    } kCases[] = {
        {"valid", "<!DOCTYPE a [<!ELEMENT a ANY><!ATTLIST a x CDATA #IMPLIED>]><a x='1'>t<b y='2'/></a>", true},
        {"not valid", "<!DOCTYPE a [<!ELEMENT c ANY>]><a x='1'>t<b y='2'/></a>", false},
        {"without type", "<a x='1'>t<b y='2'/></a>", true},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Outcome outcome = readDocument(c.text);
        EXPECT_EQ(outcome.ok, c.valid);
        ASSERT_NE(outcome.document, nullptr);
        const Document& document = *outcome.document;
        const Dtd* dtd = document.getDtd();
        const Element* a = document.getRoot();
        ASSERT_EQ(a->getChildCount(), 2);
        const Object* b = a->getChild(1);
        EXPECT_EQ(a->getParent(), &document);
        EXPECT_EQ(b->getParent(), a);
        EXPECT_EQ(a->getAttribute(0)->getParent(), a);
        EXPECT_EQ(a->getChild(0)->getParent(), a);
        for (const Object* node : {static_cast<const Object*>(a), static_cast<const Object*>(a->getAttribute(0)),
                                   a->getChild(0), b, static_cast<const Object*>(b->toElement()->getAttribute(0))}) {
            EXPECT_EQ(NodeTestAccess::dtd(*node), dtd);
            EXPECT_TRUE(NodeTestAccess::dirty(*node));
        }
        EXPECT_EQ(NodeTestAccess::dtd(document), c.valid ? dtd : nullptr);
        if (dtd != nullptr) {
            EXPECT_EQ(dtd->getParent(), &document);
        }
    }
}

TEST(DocumentReaderTest, OffersItsThreeSteps) {
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        withSource(source, "<?xml version='1.0'?><!-- c --><!DOCTYPE a [<!ELEMENT a ANY>]> <a/> <!-- d --> <b/>",
                   [](InStream& in) {
                       DocumentReader reader;
                       ASSERT_TRUE(reader.parseProlog(in));
                       EXPECT_EQ(reader.getDocument(), nullptr);
                       EXPECT_EQ(in.getPosition(), 63);
                       ASSERT_TRUE(reader.parseElement(in));
                       EXPECT_EQ(in.getPosition(), 67);
                       EXPECT_EQ(dump(reader.getDocument()), "a");
                       ASSERT_TRUE(reader.parseMisc(in));
                       EXPECT_EQ(in.getPosition(), 78);
                       EXPECT_EQ(reader.getErrorMessage(), "");
                       ASSERT_TRUE(reader.parseMisc(in));
                       EXPECT_EQ(in.getPosition(), 79);
                   });
    }
}

TEST(DocumentReaderTest, EndsMiscellanyBeforeAnyOtherToken) {
    const auto misc = [](InStream& in) {
        DocumentReader reader;
        const bool ok = reader.parseMisc(in);
        return Reading{ok, reader.getErrorMessage(), ""};
    };
    expectReadings(
        {
            {"nothing", "", yes(), yes().goes()},
            {"white space", " \r\n ", yes(), yes().goes()},
            {"element", " <a/>", yes("<a/>")},
            {"comment and element", "<!-- c --> <a/>", yes(" <a/>")},
            {"comment and the end", "<!-- c --> ", yes().notes(kEndOfStream), yes().goes().notes(kEndOfStream)},
            {"declaration", "<?xml version='1.0'?>", yes("<?xml version='1.0'?>")},
            {"open comment", "<!-- c", ended().by<CommentReader>()},
            {"open instruction", "<?x ?", ended().by<PIReader>()},
        },
        classOf<DocumentReader>(), misc);
}

TEST(DocumentReaderTest, HandsTheDocumentOverOnce) {
    DocumentReader reader;
    EXPECT_EQ(reader.getDocument(), nullptr);
    EXPECT_EQ(reader.extractDocument(), nullptr);
    StringInStream in("<a/>");
    ASSERT_TRUE(reader.parse(in));
    EXPECT_EQ(const_cast<const DocumentReader&>(reader).getDocument(), reader.getDocument());
    const std::unique_ptr<Document> document(reader.extractDocument());
    EXPECT_EQ(dump(document.get()), "a");
    EXPECT_EQ(reader.getDocument(), nullptr);
    EXPECT_EQ(reader.extractDocument(), nullptr);
}

TEST(DocumentReaderTest, HandsOverADocumentThatIsNotValid) {
    StringInStream in("<!DOCTYPE a [<!ELEMENT a EMPTY>]><a>t</a>");
    DocumentReader reader;
    EXPECT_FALSE(reader.parse(in));
    EXPECT_EQ(reader.getErrorMessage(), located(1, 41, "Doc could not be validated", classOf<DocumentReader>()));
    const std::unique_ptr<Document> document(reader.extractDocument());
    ASSERT_NE(document, nullptr);
    EXPECT_FALSE(document->validate());
    document->getRoot()->killChildren();
    EXPECT_TRUE(document->validate());
}

TEST(DocumentReaderTest, ReadsOneDocumentAfterAnother) {
    DocumentReader reader;
    StringInStream first("<!DOCTYPE a [<!ELEMENT a EMPTY>]><a/>");
    ASSERT_TRUE(reader.parse(first));
    EXPECT_EQ(dump(reader.getDocument()), "a");
    StringInStream second("<b>t</b>");
    ASSERT_TRUE(reader.parse(second));
    EXPECT_EQ(dump(reader.getDocument()), "b('t')");
    EXPECT_EQ(reader.getDocument()->getDtd(), nullptr);
    StringInStream bad("<c></d>");
    EXPECT_FALSE(reader.parse(bad));
    const std::string message = located(1, 6, "\"c\" expected", classOf<ElementReader>());
    EXPECT_EQ(reader.getErrorMessage(), message);
    StringInStream good("<e/>");
    ASSERT_TRUE(reader.parse(good));
    EXPECT_EQ(dump(reader.getDocument()), "e");
    EXPECT_EQ(reader.getErrorMessage(), message);
    StringInStream silentlyBad("<f ?>");
    EXPECT_FALSE(reader.parse(silentlyBad));
    EXPECT_EQ(reader.getErrorMessage(), "");
}

TEST(DocumentReaderTest, ForgetsTheDocumentTypeOfADocumentThatFailed) {
    const char* const kNext[] = {"<s/>", "<!DOCTYPE s PUBLIC 'p' 's'><s/>", "<!DOCTYPE s [<!ELEMENT s EMPTY>]><s/>"};
    for (const std::string next : kNext) {
        SCOPED_TRACE(next);
        DocumentReader reader;
        StringInStream bad("<!DOCTYPE r [<!ELEMENT r EMPTY>]><r");
        EXPECT_FALSE(reader.parse(bad));
        StringInStream in(next);
        EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
        ASSERT_NE(reader.getDocument(), nullptr);
        EXPECT_EQ(reader.getDocument()->getDtd() != nullptr, next.find('[') != std::string::npos);
    }
}

TEST(DocumentReaderTest, ReadsTheDocumentTypeFromAFile) {
    const std::string path = scratchPath("type of a.dtd");
    writeFile(path, "<!ELEMENT a (b?)>\n<!ELEMENT b EMPTY>\n<!ENTITY e 'v'>");
    const std::string start = "<!DOCTYPE a SYSTEM '" + path + "'>\n";
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        EXPECT_EQ(treeOf(start + "<a><b/></a>", source), "a(b)");
        EXPECT_EQ(errorOf(start + "<a>\n<c/></a>\n", source),
                  "(line = 1, column = " + std::to_string(start.size() + 12) + ") Doc could not be validated");
        EXPECT_EQ(errorOf("<!DOCTYPE a SYSTEM 'no such file'><a/>", source),
                  "(line = 1, column = 33) Could not open file: no such file");
    }
    std::remove(path.c_str());
}

TEST(DocumentReaderTest, BoundsTheTextMadeFromOneLargeValueInManyAttributes) {
    const std::string text =
        "<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b EMPTY><!ATTLIST b x CDATA #IMPLIED><!ENTITY e '" +
        std::string(5000, 'x') + "'>]><a>" + repeated("<b x='&e;'/>", 400) + "</a>";
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        {
            const GrowthLimit limit(1000);
            const Outcome outcome = readDocument(text, source);
            EXPECT_FALSE(outcome.ok);
            EXPECT_EQ(outcome.error.find("(line = 1, column = "), 0U) << outcome.error;
            EXPECT_NE(outcome.error.find(std::string(") entity text too large <") + classOf<ElementReader>() + ">"),
                      std::string::npos)
                << outcome.error;
        }
        for (const std::int64_t bytes : {std::int64_t{0}, std::int64_t{3000000}}) {
            const GrowthLimit limit(bytes);
            const Outcome outcome = readDocument(text, source);
            EXPECT_TRUE(outcome.ok) << outcome.error;
        }
    }
}

// A document with one value of so many references to an entity of that length.
std::string referringTo5000Bytes(int references) {
    return "<!DOCTYPE a [<!ELEMENT a EMPTY><!ATTLIST a x CDATA #IMPLIED><!ENTITY e '" + std::string(5000, 'x') +
           "'>]><a x='" + repeated("&e;", references) + "'/>";
}

TEST(DocumentReaderTest, TakesNoBytesThatWereSkippedForBytesReadInTheBound) {
    const GrowthLimit limit(1000);
    const auto read = [](std::size_t skipped, int references, Source source) {
        bool ok = false;
        withSource(source, std::string(skipped, '#') + referringTo5000Bytes(references), [&](InStream& in) {
            in.setPosition(static_cast<int>(skipped));
            ok = DocumentReader().parse(in);
        });
        return ok;
    };
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        for (const std::size_t skipped : {std::size_t{0}, std::size_t{20000}}) {
            SCOPED_TRACE(skipped);
            EXPECT_TRUE(read(skipped, 100, source));
            EXPECT_FALSE(read(skipped, 200, source));
        }
    }
}

TEST(DocumentReaderTest, CountsTheBytesOfAllItsStepsInTheBound) {
    const GrowthLimit limit(1000);
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        withSource(source, referringTo5000Bytes(100), [](InStream& in) {
            DocumentReader reader;
            ASSERT_TRUE(reader.parseProlog(in)) << reader.getErrorMessage();
            ASSERT_TRUE(reader.parseElement(in)) << reader.getErrorMessage();
        });
    }
}

// The entities `e`, 5000 bytes, and `f`, that many references to it.
std::string declaring(int references) {
    return "<!ENTITY e '" + std::string(5000, 'x') + "'><!ENTITY f '" + repeated("&e;", references) + "'>";
}

TEST(DocumentReaderTest, CountsTheTextOfAllItsStepsInTheBound) {
    const ScratchFile few("few.dtd", declaring(60));
    const GrowthLimit limit(1000);
    const struct {
        const char* name;
        std::string doctype;
    } kDoctypes[] = {
        {"internal", "<!DOCTYPE a [<!ELEMENT a EMPTY><!ATTLIST a x CDATA #IMPLIED>" + declaring(60) + "]>"},
        {"external", "<!DOCTYPE a SYSTEM '" + few.path + "'>"},
    };
    for (const auto& doctype : kDoctypes) {
        for (const bool inSteps : {false, true}) {
            for (const auto& [references, within] : {std::pair(40, true), std::pair(80, false)}) {
                const std::string text = doctype.doctype + "<a x='" + repeated("&e;", references) + "'/>";
                for (auto source : kAllSources) {
                    SCOPED_TRACE(::testing::Message()
                                 << doctype.name << ", " << inSteps << ", " << references << ", " << source);
                    withSource(source, text, [&, allowed = within](InStream& in) {
                        DocumentReader reader;
                        if (inSteps) {
                            EXPECT_TRUE(reader.parseProlog(in)) << reader.getErrorMessage();
                            reader.parseElement(in);
                        } else {
                            reader.parse(in);
                        }
                        const bool refused =
                            reader.getErrorMessage().find("entity text too large") != std::string::npos;
                        EXPECT_EQ(refused, !allowed) << reader.getErrorMessage();
                    });
                }
            }
        }
    }
}

TEST(DocumentReaderTest, LetsEachDocumentMakeAsMuchTextAsTheFirst) {
    const GrowthLimit limit(1000);
    DocumentReader reader;
    for (int documents = 0; documents < 5; ++documents) {
        SCOPED_TRACE(documents);
        StringInStream in(referringTo5000Bytes(80));
        EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
    }
}

TEST(DocumentReaderTest, CountsTheBytesOfTheDocumentTypeForAFragmentReadWithIt) {
    const ScratchFile declarations("declarations.dtd", declaring(0));
    const GrowthLimit limit(1000);
    StringInStream in("<!DOCTYPE a SYSTEM '" + declarations.path + "'><a/>");
    DocumentReader reader;
    reader.parse(in);
    ASSERT_NE(reader.getDocument(), nullptr) << reader.getErrorMessage();
    for (const auto& [references, ok] : {std::pair(90, true), std::pair(110, false), std::pair(90, true)}) {
        StringInStream fragment("<a x='" + repeated("&e;", references) + "'/>");
        EXPECT_EQ(ElementReader(reader.getDocument()->getDtd()).parse(fragment), ok) << references;
    }
}

TEST(DocumentReaderTest, TellsASubclassOnlyOfItsOwnFailures) {
    const struct {
        const char* text;
        bool ok;
        std::string heard;
        std::string message;
    } kCases[] = {
        {"", false, std::string(kEndOfStream) + ";", ""},
        {"<a/><!-- c -->", true, std::string(kEndOfStream) + ";", ""},
        {"<!DOCTYPE a [<!ELEMENT a EMPTY>]><a>t</a>", false, "Doc could not be validated;", ""},
        {"<a></b>", false, "", located(1, 6, "\"a\" expected", classOf<ElementReader>())},
        {"<!DOCTYPE a>", false, "", located(1, 12, "Unexpected token \">\"", classOf<DoctypeReader>())},
        {"<!-- c", false, std::string(), located(1, 6, kEndOfStream, classOf<CommentReader>())},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        StringInStream in(c.text);
        Listening<DocumentReader> reader;
        EXPECT_EQ(reader.parse(in), c.ok);
        EXPECT_EQ(reader.heard, c.heard);
        EXPECT_EQ(reader.getErrorMessage(), c.message);
    }
}

// The opening after "<!" is met three times here: tried as the name, tried as the bracket, then read as a token of its
// own, which says nothing.
TEST(DocumentReaderTest, LeavesTheStreamsMessageWhenAnOpeningIsReadAgain) {
    for (const std::string text : {"<?xml version='1.0'?<!<?y><a ?>z", "<?xml version='1.0'?<!<!b><a ?>z"}) {
        SCOPED_TRACE(text);
        for (auto source : kAllSources) {
            SCOPED_TRACE(::testing::Message() << source);
            withSource(source, text, [](InStream& in) {
                DocumentReader reader;
                EXPECT_FALSE(reader.parse(in));
                EXPECT_EQ(reader.getErrorMessage(), "");
                EXPECT_EQ(in.getErrorMessage(), "\"[\" expected");
            });
        }
    }
}

// The end of a file stream leaves no way back to the bytes that the message names. It shows one read late, as a zero
// byte, so that the document fails without a message of its own.
TEST(DocumentReaderTest, LeavesTheStreamsMessageOfAReferenceWhereAFileEnds) {
    withSource(Source::FileStream, "<!DOCTYPE a PUBLIC<?&<?&#65;><a/", [](InStream& in) {
        DocumentReader reader;
        EXPECT_FALSE(reader.parse(in));
        EXPECT_EQ(in.getErrorMessage(), "not a name: &<?&#65;");
    });
}

TEST(DocumentReaderTest, ReadsBackWhatADocumentWrites) {
    const char* const kTexts[] = {
        "<a/>",
        "<a x='1&amp;2' y='it&apos;s'><b>t &lt; u</b> <c> mixed <d/> text </c><e/></a>",
        "<!DOCTYPE a [<!ELEMENT a (b*)><!ELEMENT b (#PCDATA)><!ATTLIST b x CDATA 'd'><!ENTITY e "
        "'v'>]><a><b>&e;</b></a>",
    };
    for (const char* text : kTexts) {
        SCOPED_TRACE(text);
        const Outcome first = readDocument(text);
        ASSERT_TRUE(first.ok) << first.error;
        const std::string written = textOf(*first.document);
        for (auto source : kAllSources) {
            const Outcome again = readDocument(written, source);
            ASSERT_TRUE(again.ok) << again.error;
            EXPECT_EQ(dump(again.document.get()), dump(first.document.get()));
            EXPECT_EQ(textOf(*again.document), written);
        }
    }
}

}  // namespace Xml::test
