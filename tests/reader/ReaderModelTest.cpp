// Random inputs, read by the library's readers and by the naive ones. Both must agree in everything that shows.
#include "models/NaiveReaders.h"
#include "models/Snapshot.h"
#include "reader/DialectMaker.h"
#include "support/Dice.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Sources.h"
#include "support/WithoutFastContent.h"
#include "support/WithoutReadAhead.h"
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
#include "xml/stream/FileOutStream.h"
#include "xml/stream/StringInStream.h"
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

namespace Xml::test {

namespace {

// --- Comparing ---

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
        // Whether a missing file is reported besides the reader's message may differ.
        if (line.find("<Xml::FileInStream::FileInStream>") != 0) text += line + "\n";
    }
    return text;
}

// One run: everything that shows afterwards, in one text.
using Run = std::function<std::string(InStream&)>;

std::string outcome(const Run& run, InStream& in) {
    MessageCollector diagnostics;
    const std::string result = run(in);
    return result + "\n" + stateOf(in) + "\n" + joined(diagnostics.texts());
}

// Runs both over every kind of source. The text is in the file once for both file sources.
class Comparison {
public:
    Comparison() : path(scratchPath("model")) {}
    ~Comparison() { std::remove(path.c_str()); }
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    // False after a failure.
    bool agree(const std::string& text, const Run& library, const Run& naive) {
        // A new file each time: to empty one that is there waits for the disk.
        std::remove(path.c_str());
        writeFile(path, text);
        for (auto source : kAllSources) {
            const std::string expected = over(source, text, naive);
            const std::string actual = over(source, text, library);
            if (actual == expected) continue;
            ADD_FAILURE() << source << " over\n"
                          << ::testing::PrintToString(text) << "\nlibrary: " << actual << "\nnaive: " << expected;
            return false;
        }
        return true;
    }

private:
    std::string over(Source source, const std::string& text, const Run& run) const {
        std::string result;
        withSource(source, text, path, [&](InStream& in) { result = outcome(run, in); });
        return result;
    }

    std::string path;
};

std::string outcomeOf(bool ok, const std::string& error) { return (ok ? "true " : "false ") + error + "\n"; }

std::string libraryDocument(InStream& in) {
    DocumentReader reader;
    const bool ok = reader.parse(in);
    const Document* document = reader.getDocument();
    const Dtd* dtd = document != nullptr ? document->getDtd() : nullptr;
    return outcomeOf(ok, reader.getErrorMessage()) + linksOf(document, dtd) + "\n" + fullText(dtd);
}

std::string naiveDocument(InStream& in) {
    NaiveDocumentReader reader;
    const bool ok = reader.parse(in);
    const Document* document = reader.document.get();
    const Dtd* dtd = document != nullptr ? document->getDtd() : nullptr;
    return outcomeOf(ok, reader.error()) + linksOf(document, dtd) + "\n" + fullText(dtd);
}

void fillEntities(Dtd& dtd) {
    dtd.setEntity("e", "v & more");
    dtd.setEntity("f", "");
}

// Elements until one fails, at most four, by one reader.
std::string libraryElements(InStream& in) {
    Dtd dtd("t");
    fillEntities(dtd);
    ElementReader reader(&dtd);
    std::string text;
    for (int i = 0; i < 4; ++i) {
        const bool ok = reader.parse(in);
        text += outcomeOf(ok, reader.getErrorMessage());
        const std::unique_ptr<Element> root(reader.extractRoot());
        text += linksOf(root.get(), &dtd);
        if (!ok) break;
    }
    return text;
}

std::string naiveElements(InStream& in) {
    Dtd dtd("t");
    fillEntities(dtd);
    NaiveElementReader reader(&dtd);
    std::string text;
    for (int i = 0; i < 4; ++i) {
        const bool ok = reader.parse(in);
        text += outcomeOf(ok, reader.error());
        const std::unique_ptr<Element> root(std::move(reader.root));
        text += linksOf(root.get(), &dtd);
        if (!ok) break;
    }
    return text;
}

template <class R>
std::string librarySmall(InStream& in) {
    R reader;
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.getErrorMessage());
}

template <class R>
std::string naiveSmall(InStream& in) {
    R reader;
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.error());
}

template <class R>
std::string libraryDeclaration(InStream& in) {
    Dtd dtd("t");
    fillEntities(dtd);
    R reader(&dtd);
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.getErrorMessage()) + fullText(&dtd);
}

template <class R>
std::string naiveDeclaration(InStream& in) {
    Dtd dtd("t");
    fillEntities(dtd);
    R reader(&dtd);
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.error()) + fullText(&dtd);
}

template <class Model>
std::string written(const Model* model) {
    if (model == nullptr) return "null";
    std::ostringstream text;
    FileOutStream out(&text);
    model->toStream(out);
    return text.str();
}

std::string libraryMixed(InStream& in) {
    Dtd dtd("t");
    MixedSpecReader reader(&dtd);
    const bool ok = reader.parse(in);
    const std::unique_ptr<MixedSpec> model(reader.extractMixedSpec());
    return outcomeOf(ok, reader.getErrorMessage()) + written(model.get());
}

std::string naiveMixed(InStream& in) {
    Dtd dtd("t");
    NaiveMixedSpecReader reader(&dtd);
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.error()) + written(reader.model.get());
}

std::string libraryChildren(InStream& in) {
    Dtd dtd("t");
    ChildrenSpecReader reader(&dtd);
    const bool ok = reader.parse(in);
    const std::unique_ptr<ChildrenSpec> model(reader.extractChildrenSpec());
    return outcomeOf(ok, reader.getErrorMessage()) + written(model.get());
}

std::string naiveChildren(InStream& in) {
    Dtd dtd("t");
    NaiveChildrenSpecReader reader(&dtd);
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.error()) + written(reader.model.get());
}

template <bool Internal>
std::string librarySubset(InStream& in) {
    DTDReader reader("t");
    reader.setInternal(Internal);
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.getErrorMessage()) + fullText(reader.getDtd());
}

template <bool Internal>
std::string naiveSubset(InStream& in) {
    NaiveDTDReader reader("t", Internal);
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.error()) + fullText(reader.dtd.get());
}

std::string libraryDoctype(InStream& in) {
    DoctypeReader reader;
    const bool ok = reader.parse(in);
    const std::unique_ptr<Dtd> dtd(reader.extractDtd());
    return outcomeOf(ok, reader.getErrorMessage()) + fullText(dtd.get());
}

std::string naiveDoctype(InStream& in) {
    NaiveDoctypeReader reader;
    const bool ok = reader.parse(in);
    return outcomeOf(ok, reader.error()) + fullText(reader.dtd.get());
}

}  // namespace

TEST(ReaderModelTest, AgreesWithTheNaiveReadersOnDocuments) {
    DialectMaker make(5);
    Comparison comparison;
    int wellFormed = 0;
    for (int i = 0; i < rounds(50000); ++i) {
        const std::string text = make.chance(10) ? make.soup() : make.damaged(make.document());
        ASSERT_TRUE(comparison.agree(text, libraryDocument, naiveDocument)) << "input " << i;
        StringInStream in(text);
        DocumentReader reader;
        MessageCollector quiet;
        wellFormed += reader.parse(in) ? 1 : 0;
    }
    // Neither good nor bad inputs may be rare.
    EXPECT_GT(wellFormed, atLeast(10000));
    EXPECT_LT(wellFormed, rounds(40000));
}

TEST(ReaderModelTest, AgreesWithTheNaiveReadersOnElements) {
    DialectMaker make(52);
    Comparison comparison;
    for (int i = 0; i < rounds(15000); ++i) {
        std::string text = make.element(3);
        while (make.chance(40)) text += make.blank() + make.element(2);
        ASSERT_TRUE(comparison.agree(make.damaged(text), libraryElements, naiveElements)) << "input " << i;
    }
}

TEST(ReaderModelTest, AgreesWithTheNaiveReadersOnTheSmallConstructs) {
    DialectMaker make(51);
    Comparison comparison;
    for (int i = 0; i < rounds(1500); ++i) {
        SCOPED_TRACE(i);
        const std::string rest = make.gap() + "z";
        ASSERT_TRUE(comparison.agree(make.damaged(make.comment() + rest), librarySmall<CommentReader>,
                                     naiveSmall<NaiveCommentReader>));
        ASSERT_TRUE(comparison.agree(make.damaged(make.instruction() + rest), librarySmall<PIReader>,
                                     naiveSmall<NaivePIReader>));
        ASSERT_TRUE(comparison.agree(make.damaged(make.header() + rest), librarySmall<VersionInfoReader>,
                                     naiveSmall<NaiveVersionInfoReader>));
    }
}

TEST(ReaderModelTest, AgreesWithTheNaiveReadersOnDeclarations) {
    DialectMaker make(54);
    Comparison comparison;
    for (int i = 0; i < rounds(2500); ++i) {
        SCOPED_TRACE(i);
        const std::string declaration = make.damaged(make.declaration() + make.gap());
        ASSERT_TRUE(comparison.agree(declaration, libraryDeclaration<ElementDeclReader>,
                                     naiveDeclaration<NaiveElementDeclReader>));
        ASSERT_TRUE(
            comparison.agree(declaration, libraryDeclaration<AttListReader>, naiveDeclaration<NaiveAttListReader>));
        ASSERT_TRUE(
            comparison.agree(declaration, libraryDeclaration<EntityReader>, naiveDeclaration<NaiveEntityReader>));
        ASSERT_TRUE(comparison.agree(make.damaged(make.mixed() + make.gap()), libraryMixed, naiveMixed));
        ASSERT_TRUE(comparison.agree(make.damaged(make.model(3) + make.gap()), libraryChildren, naiveChildren));
    }
}

TEST(ReaderModelTest, AgreesWithTheNaiveReadersOnSubsets) {
    DialectMaker make(53);
    Comparison comparison;
    for (int i = 0; i < rounds(4000); ++i) {
        SCOPED_TRACE(i);
        const std::string subset =
            make.damaged((make.chance(50) ? make.subset() : make.richSubset()) + (make.chance(50) ? "]" : ""));
        ASSERT_TRUE(comparison.agree(subset, librarySubset<true>, naiveSubset<true>));
        ASSERT_TRUE(comparison.agree(subset, librarySubset<false>, naiveSubset<false>));
        ASSERT_TRUE(comparison.agree(make.damaged(make.doctype()), libraryDoctype, naiveDoctype));
    }
}

TEST(ReaderModelTest, AgreesWithTheNaiveReadersOnSubsetsInFiles) {
    DialectMaker make(531);
    Comparison comparison;
    const std::string path = scratchPath("model.dtd");
    for (int i = 0; i < rounds(1500); ++i) {
        std::remove(path.c_str());
        writeFile(path, make.damaged(make.chance(50) ? make.subset() : make.richSubset()));
        const std::string text = "<!DOCTYPE a SYSTEM '" + path + "'>" + make.misc() + make.element(2);
        ASSERT_TRUE(comparison.agree(text, libraryDocument, naiveDocument)) << i << ": " << readFile(path);
    }
    std::remove(path.c_str());
}

TEST(ReaderModelTest, AgreesWithTheNaiveReadersWhereAllContentIsReadByTokens) {
    const WithoutFastContent off;
    DialectMaker make(56);
    Comparison comparison;
    for (int i = 0; i < rounds(3000); ++i) {
        SCOPED_TRACE(i);
        const std::string document = make.chance(10) ? make.soup() : make.damaged(make.document());
        ASSERT_TRUE(comparison.agree(document, libraryDocument, naiveDocument));
        ASSERT_TRUE(comparison.agree(make.damaged(make.element(2)), libraryElements, naiveElements));
    }
}

TEST(ReaderModelTest, AgreesWithTheNaiveReadersWithoutWhatIsReadAhead) {
    const WithoutReadAhead off;
    DialectMaker make(55);
    Comparison comparison;
    for (int i = 0; i < rounds(2500); ++i) {
        SCOPED_TRACE(i);
        const std::string document = make.chance(10) ? make.soup() : make.damaged(make.document());
        ASSERT_TRUE(comparison.agree(document, libraryDocument, naiveDocument));
        ASSERT_TRUE(comparison.agree(make.damaged(make.element(3)), libraryElements, naiveElements));
        ASSERT_TRUE(comparison.agree(make.damaged(make.richSubset()), librarySubset<true>, naiveSubset<true>));
        ASSERT_TRUE(comparison.agree(make.damaged(make.doctype()), libraryDoctype, naiveDoctype));
    }
}

}  // namespace Xml::test
