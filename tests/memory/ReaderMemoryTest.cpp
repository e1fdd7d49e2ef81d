// Reading documents and declarations while memory runs out.
#include "memory/Failing.h"
#include "memory/Usable.h"
#include "reader/GrowthLimit.h"
#include "support/BothWays.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/reader/AttListReader.h"
#include "xml/reader/ChildrenSpecReader.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/DTDReader.h"
#include "xml/reader/DoctypeReader.h"
#include "xml/reader/DocumentReader.h"
#include "xml/reader/ElementDeclReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/reader/EntityReader.h"
#include "xml/reader/MixedSpecReader.h"
#include "xml/reader/PIReader.h"
#include "xml/reader/VersionInfoReader.h"
#include "xml/stream/StringInStream.h"
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace Xml::test {

namespace {

const std::string kDeclarations =
    "<!-- the garden, once more --><!ELEMENT garden (bed | (note, note?)+ | shed)*>\r\n<!ELEMENT bed ((pea | bean), "
    "bed?)>\r\n"
    "<!ELEMENT pea EMPTY><!ELEMENT bean ANY><!ELEMENT shed (#PCDATA)><!ELEMENT note (#PCDATA | "
    "emphasised-text-in-a-note)*>"
    "<!ELEMENT emphasised-text-in-a-note (#PCDATA)><!ATTLIST pea place CDATA 'somewhere behind the house' "
    "colour-of-the-flowers CDATA #IMPLIED size CDATA #FIXED'neither large nor small'>"
    "<!ENTITY soil 'heavy, and wet for most of the year'><!ENTITY soils '&soil; &amp; &soil;'>";

const std::string kProlog =
    "<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\r\n<!-- a comment that is not short --><?style-sheet "
    "in='use'?>\r\n";

const std::string kRoot =
    "<garden><bed><pea size='&soils;' place=\"&lt;here&gt;\" colour-of-the-flowers='white &#38; red' place='over "
    "there'/><bed>"
    "<bean><unknown-element-without-declaration a='1'>text</unknown-element-without-declaration></bean></bed></bed>\r\n"
    "<!-- a comment in content --><note>sow &soil; <emphasised-text-in-a-note>early, but not too early"
    "</emphasised-text-in-a-note> indoors</note><shed>rakes, spades and &unknown-entity; pots</shed></garden>\r\n";

const std::string kDocument =
    kProlog + "<!DOCTYPE garden [" + kDeclarations + "]>\r\n" + kRoot + "<!-- the end --><?and-out?> ";

// The document with its declarations in a file of their own.
class SplitDocument {
public:
    SplitDocument() : path(scratchPath("declarations")) { writeFile(path, kDeclarations); }
    ~SplitDocument() { std::remove(path.c_str()); }
    SplitDocument(const SplitDocument&) = delete;
    SplitDocument& operator=(const SplitDocument&) = delete;

    std::string doctype() const { return "<!DOCTYPE garden SYSTEM \"" + path + "\">"; }
    std::string text() const { return kProlog + doctype() + kRoot; }

private:
    std::string path;
};

// What the document is: its tree and its declarations.
std::string contentOf(const Document* document) {
    if (document == nullptr) return "none";
    return dump(document) + (document->getDtd() != nullptr ? textOf(*document->getDtd()) : "");
}

using Read = std::function<bool(InStream&, Dtd&, std::string&)>;

// Reads with a reader made by `make`, and gives the message and what build(reader) makes of it.
template <class Make, class Build>
Read readWith(Make make, Build build) {
    return [make, build](InStream& in, Dtd& dtd, std::string& result) {
        auto reader = make(dtd);
        const bool ok = reader->parse(in);
        result = reader->getErrorMessage() + "|";
        build(*reader, result);
        return ok;
    };
}

template <class Reader>
Read readInto() {
    return readWith([](Dtd& dtd) { return std::make_unique<Reader>(&dtd); }, [](Reader&, std::string&) {});
}

template <class Reader>
Read readOver() {
    return readWith([](Dtd&) { return std::make_unique<Reader>(); }, [](Reader&, std::string&) {});
}

Read readDtd(bool internal) {
    return readWith(
        [internal](Dtd&) {
            auto reader = std::make_unique<DTDReader>("garden-behind-the-house");
            reader->setInternal(internal);
            return reader;
        },
        [](DTDReader& reader, std::string& result) {
            FixedSink out;
            reader.getDtd()->toStream(out);
            result += out.all();
        });
}

// Reads the text with every allocation failing once, and again after it, into the same Dtd.
void expectReading(const std::string& text, const Read& read, bool ok) {
    const QuietMessages quiet;
    std::string expected;
    std::string expectedDtd;
    {
        Dtd dtd("garden");
        StringInStream in(text);
        EXPECT_EQ(read(in, dtd, expected), ok) << expected;
        expectedDtd = textOf(dtd);
    }
    forEachFailingAllocation([&](Attempt& attempt) {
        Dtd dtd("garden");
        StringInStream in(text);
        std::string result;
        bool outcome = !ok;
        if (!attempt([&] { outcome = read(in, dtd, result); })) {
            const Dtd copy(dtd);  // of what had been declared
            EXPECT_EQ(textOf(copy), textOf(dtd));
            StringInStream again(text);
            outcome = read(again, dtd, result);
        }
        EXPECT_EQ(outcome, ok);
        EXPECT_EQ(result, expected);
        EXPECT_EQ(textOf(dtd), expectedDtd);
    });
}

}  // namespace

TEST(ReaderMemoryTest, ADocumentThatCouldNotBeReadIsReadTheNextTime) {
    const SplitDocument split;
    for (const auto& text : {kDocument, split.text(), kProlog + kRoot}) {
        for (const Source source : kAllSources) {
            SCOPED_TRACE(source);
            const auto readWithFailures = [&] {
                const Outcome whole = readDocument(text, source);
                EXPECT_TRUE(whole.ok) << whole.error;
                const std::string expected = contentOf(whole.document.get());
                forEachFailingAllocation([&](Attempt& attempt) {
                    DocumentReader reader;
                    const auto parse = [&reader](InStream& in) { return reader.parse(in); };
                    bool ok = false;
                    bool complete = false;
                    withSource(source, text, [&](InStream& in) { complete = attempt([&] { ok = parse(in); }); });
                    if (!complete) {
                        if (reader.getDocument() != nullptr) expectUsable(*reader.getDocument());
                        withSource(source, text, [&](InStream& in) { ok = parse(in); });
                    }
                    EXPECT_TRUE(ok) << reader.getErrorMessage();
                    const std::unique_ptr<Document> document(reader.extractDocument());
                    EXPECT_EQ(contentOf(document.get()), expected);
                    expectUsable(*document);
                });
            };
            bothWays(readWithFailures);
        }
    }
}

TEST(ReaderMemoryTest, WhatWasReadOfAnElementStaysWithTheReader) {
    const std::string text =
        "<garden size='large' place='here' colour-of-the-flowers='white' place='over there and further'" +
        kRoot.substr(kRoot.find('>'));
    for (const Source source : kAllSources) {
        SCOPED_TRACE(source);
        bothWays([&] {
            forEachFailingAllocation([&text, source](Attempt& attempt) {
                ElementReader reader;
                bool ok = false;
                withSource(source, text, [&](InStream& in) { attempt([&] { ok = reader.parse(in); }); });
                const std::unique_ptr<Element> root(reader.extractRoot());
                EXPECT_EQ(reader.getRoot(), nullptr);
                if (root == nullptr) return;
                EXPECT_EQ(root->getName(), "garden");
                const Outcome again = readDocument(textOf(*root));
                EXPECT_EQ(dump(again.document->getRoot()), dump(root.get()));
                if (ok) {
                    EXPECT_EQ(root->getChildCount(), 3);
                    EXPECT_EQ(root->getAttributeCount(), 3);
                }
                // Attributes are in order, each once, however far they were read.
                for (int i = 0; i < root->getAttributeCount(); ++i)
                    EXPECT_EQ(root->getAttribute(root->getAttribute(i)->getName()), root->getAttribute(i));
            });
        });
    }
}

TEST(ReaderMemoryTest, ADeclarationThatCouldNotBeReadIsReadTheNextTime) {
    const SplitDocument split;
    const auto model = [](auto& reader, std::string& result, auto extract) {
        const std::unique_ptr<ContentSpec> made((reader.*extract)());
        FixedSink out;
        if (made) made->toStream(out);
        result += out.all();
    };
    const Read mixed = readWith(
        [](Dtd& dtd) { return std::make_unique<MixedSpecReader>(&dtd); },
        [&](MixedSpecReader& reader, std::string& r) { model(reader, r, &MixedSpecReader::extractMixedSpec); });
    const Read children = readWith([](Dtd& dtd) { return std::make_unique<ChildrenSpecReader>(&dtd); },
                                   [&](ChildrenSpecReader& reader, std::string& r) {
                                       model(reader, r, &ChildrenSpecReader::extractChildrenSpec);
                                   });
    const Read element = readWith(
        [](Dtd& dtd) {
            dtd.setEntity("soil", kLong);
            return std::make_unique<ElementReader>(&dtd);
        },
        [](ElementReader& reader, std::string& result) {
            FixedSink out;
            if (reader.getRoot() != nullptr) reader.getRoot()->toStream(out);
            result += out.all();
        });
    const Read doctype = readWith([](Dtd&) { return std::make_unique<DoctypeReader>(); },
                                  [](DoctypeReader& reader, std::string& result) {
                                      const std::unique_ptr<Dtd> dtd(reader.extractDtd());
                                      FixedSink out;
                                      if (dtd) dtd->toStream(out);
                                      result += out.all();
                                  });
    struct Case {
        const char* name;
        Read read;
        std::string text;
    };
    const Case kCases[] = {
        {"comment", readOver<CommentReader>(), "<!-- " + kLong + " -->"},
        {"instruction", readOver<PIReader>(), "<?" + kLong + "?>"},
        {"declaration with a note", readOver<VersionInfoReader>(), "<?xml version='1.0' encoding='one of our own'?>"},
        {"mixed model", mixed, "(#PCDATA | emphasised-text-in-a-note | b | c)*"},
        {"characters", mixed, "(#PCDATA)*"},
        {"sequence", children, "(a-name-that-is-not-short, b?, (c, d)*, e+)"},
        {"choice", children, "(a-name-that-is-not-short | b? | (c | (d, e))* | f+ | #PCDATA)+"},
        {"groups in groups", children, "(((a-name-that-is-not-short)), ((b*)+ | (c, (d | e)?)))"},
        {"repeated first member", children, "(a-name-that-is-not-short*, b)"},
        {"repeated only member", children, "((a-name-that-is-not-short)* b)"},
        {"element", readInto<ElementDeclReader>(), "<!ELEMENT a-name-that-is-not-short (b, (c | d)*)>"},
        {"empty element", readInto<ElementDeclReader>(), "<!ELEMENT a-name-that-is-not-short EMPTY>"},
        {"any element", readInto<ElementDeclReader>(), "<!ELEMENT a-name-that-is-not-short ANY>"},
        {"mixed element", readInto<ElementDeclReader>(), "<!ELEMENT a-name-that-is-not-short (#PCDATA | b)*>"},
        {"entity", readInto<EntityReader>(),
         "<!ENTITY a-name-that-is-not-short '" + kLong + " &amp; &unknown-entity;'>"},
        {"attribute list", readInto<AttListReader>(),
         "<!ATTLIST a-name-that-is-not-short b CDATA '" + kLong +
             "' c CDATA #REQUIRED second-attribute-of-it CDATA #FIXED'd'>"},
        {"external subset", readDtd(false), kDeclarations},
        {"internal subset", readDtd(true), kDeclarations + "]"},
        {"document type", doctype, "<!DOCTYPE garden-behind-the-house [" + kDeclarations + "]>"},
        {"document type in a file", doctype, split.doctype()},
        {"element with everything", element, kRoot},
        {"attributes in no order", element, "<a f='1' b='2' e='3' a='4' d='5' c='6' b='7' g='8' a='9'/>"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        expectReading(c.text, c.read, true);
    }
}

TEST(ReaderMemoryTest, NoFailureIsAnotherOneForLackOfMemory) {
    const Read document = readWith([](Dtd&) { return std::make_unique<DocumentReader>(); },
                                   [](DocumentReader& reader, std::string& result) {
                                       FixedSink out;
                                       if (reader.getDocument() != nullptr) reader.getDocument()->toStream(out);
                                       result += out.all();
                                   });
    const std::string name = "a-name-that-is-not-short";
    const std::string inDtd = "<!DOCTYPE " + name + " [";
    const std::string nestedTags = "<" + name + "><" + name + ">text";
    const std::string kTexts[] = {
        "<",
        "<" + name,
        "<" + name + " 1",
        "<" + name + " a=" + name,
        "<1" + name,
        nestedTags + "</" + name + "s>",
        nestedTags + "<![CDATA[" + name + "]]>",
        nestedTags + "<?" + name + "?>",
        nestedTags + "<?&" + name + ";",
        nestedTags + "<" + name + " !",
        nestedTags + "<!-- " + name,
        nestedTags + " &" + name,
        "<?xml version='1.1'?>",
        "<!DOCTYPE " + name + " " + name + ">",
        "<!DOCTYPE " + name + " SYSTEM '/no/such/file/" + name + "'>",
        inDtd + name + " ",
        inDtd + "]>",
        inDtd + "<!ELEMENT " + name + " " + name + " ",
        inDtd + "<!ELEMENT " + name + " (#PCDATA)+>",
        inDtd + "<!ELEMENT " + name + " (#PCDATA " + name + ">",
        inDtd + "<!ELEMENT " + name + " (#PCDATA|" + name + "|" + name + ")>",
        inDtd + "<!ELEMENT " + name + " ((" + name + ",b)*,(c,(d|e,f)))>",
        inDtd + "<!ELEMENT " + name + " (a,b)><!ELEMENT " + name + " (a,b)>]><b/>",
        inDtd + "<!ATTLIST " + name + " " + name + " ID",
        inDtd + "<!ATTLIST " + name + " " + name + " CDATA " + name + " ",
        inDtd + "<!ATTLIST " + name + " " + name + " CDATA 'a'><!ATTLIST " + name + " " + name + " CDATA 'b'>",
        inDtd + "<!ENTITY " + name + " " + name,
        inDtd + "<!ELEMENT " + name + " EMPTY>]>" + nestedTags + "</" + name + "></" + name + ">",
        inDtd + "<!ENTITY e '" + std::string(300, 'e') + "'>]><" + name + " a='&e;&e;&e;&e;&e;&e;&e;&e;'/>",
    };
    const GrowthLimit limit(1'000);
    for (const auto& text : kTexts) {
        SCOPED_TRACE(text);
        expectReading(text, document, false);
    }
    const bool before = DoctypeReader::refuseExternalSubsets(true);
    expectReading("<!DOCTYPE " + name + " SYSTEM '" + name + "'>", document, false);
    DoctypeReader::refuseExternalSubsets(before);
}

}  // namespace Xml::test
