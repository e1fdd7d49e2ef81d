// Random inputs, read by the library's readers and by the naive ones. Both must agree in everything that shows.
#include "models/NaiveReaders.h"
#include "models/Snapshot.h"
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

// --- Inputs ---

class Maker : public Dice {
public:
    using Dice::Dice;

    std::string blank() {
        static const char* const kBlanks[] = {"", "", "", " ", " ", "\n", "\r\n", "\t", "  \r\n", "\r", "\r\r"};
        return any(kBlanks);
    }

    std::string gap() {
        static const char* const kGaps[] = {" ", " ", " ", "\n", "\r\n", " \r\n\t", ""};
        return any(kGaps);
    }

    std::string name() {
        static const char* const kNames[] = {"a", "b", "c", "d", "a", "b", "ab", "c", "x:y", "1a", "_.-", "xml"};
        return chance(90) ? kNames[below(6)] : any(kNames);
    }

    std::string value() {
        static const char* const kValues[] = {"\"1\"",       "'2'",         "\"\"",        "\"&amp;\"",
                                              "'&lt;x&gt;'", "\"&e;&f;\"",  "'&unknown;'", "\"&#65;&#x42;\"",
                                              "\"it's\"",    "'say \"x\"'", "\"a&b\"",     "'\r\n'",
                                              "\"<b>\"",     "'&e;'",       "\"&\""};
        return any(kValues);
    }

    std::string comment() {
        static const char* const kComments[] = {"<!-- c -->",    "<!---->",       "<!-->",          "<!--->",
                                                "<!-- - -- -->", "<!--\r\nx-->",  "<!-- <a> ' -->", "<!--",
                                                "<!- x -->",     "<!-- \" & --->"};
        return chance(80) ? "<!-- c -->" : any(kComments);
    }

    std::string instruction() {
        static const char* const kInstructions[] = {"<?x y?>", "<?\?>",     "<?>?>",   "<?php ' ?>",
                                                    "<?x",     "<?xml-s?>", "<? x ?>", "<?fooxml?>"};
        return any(kInstructions);
    }

    std::string text() {
        static const char* const kTexts[] = {"t",   " t ", "it's",     "x & y", "&amp;",   "&e;",    "\"q\"",
                                             "'",   "&",   ";",        "1<2",   "/>",      "\r\n t", "=",
                                             "]]>", ">",   "\xC3\xA9", "t;",    "&lt;&u;", "!"};
        return chance(60) ? "t" : any(kTexts);
    }

    std::string attributes() {
        std::string result;
        static const char* const kNames[] = {"x", "y", "z", "x", "y"};
        while (chance(40)) {
            result += (chance(95) ? gap() : "") + any(kNames) + (chance(90) ? "=" : blank() + "=" + blank()) + value();
        }
        if (chance(2)) {
            static const char* const kBad[] = {" x",      " =", " 'x'", " x=1", " x 'y'", " x='",
                                               " 1x='2'", " /", " <",   " ?",   " x=y"};
            result += any(kBad);
        }
        return result;
    }

    std::string element(int depth) {
        const std::string own = name();
        std::string result = "<" + (chance(97) ? "" : blank()) + own + attributes() + blank();
        if (depth == 0 || chance(25)) return result + "/>";
        result += ">";
        while (chance(65)) {
            const std::size_t kind = below(100);
            if (kind < 45) {
                result += blank() + element(depth - 1);
            } else if (kind < 80) {
                result += text();
            } else if (kind < 95) {
                result += blank() + comment();
            } else if (kind < 97) {
                static const char* const kMarkup[] = {"<![CDATA[x]]>", "<!x>", "<!DOCTYPE a>", "<![",
                                                      "<! [ CDATA [",  "<!",   "<?xml?>"};
                result += blank() + any(kMarkup);
            } else if (kind < 98) {
                result += blank() + instruction();
            } else {
                result += blank();
            }
        }
        result += blank() + "</";
        result += chance(97) ? own : name();
        return result + (chance(95) ? "" : blank()) + (chance(98) ? ">" : "/>");
    }

    std::string model(int depth) {
        static const char* const kReps[] = {"", "", "", "?", "*", "+", " *"};
        static const char* const kSeparators[] = {",", "|", " , ", " | "};
        std::string result = "(" + blank();
        const std::string separator = any(kSeparators);
        std::size_t items = 1 + below(3);
        if (chance(3)) items = 0;
        for (std::size_t i = 0; i < items; ++i) {
            if (i > 0) result += chance(92) ? separator : chance(50) ? " " : any(kSeparators);
            if (depth > 0 && chance(25)) {
                result += model(depth - 1);
            } else if (chance(92)) {
                result += name() + any(kReps);
            } else {
                result += "#PCDATA";
            }
        }
        return result + blank() + ")" + any(kReps);
    }

    std::string mixed() {
        static const char* const kEnds[] = {")", ")*", ")", ")*", ") *", ")+", ")?"};
        std::string result = "(" + blank() + "#PCDATA" + blank();
        bool names = false;
        while (chance(50)) {
            result += (chance(95) ? "|" : ",") + blank() + name() + blank();
            names = true;
        }
        return result + (names && chance(90) ? ")*" : any(kEnds));
    }

    std::string declaration() {
        const std::size_t kind = below(100);
        const std::string end = chance(96) ? blank() + ">" : chance(50) ? " x>" : "";
        if (kind < 45) {
            static const char* const kModels[] = {"EMPTY", "ANY", "ANY", "ANY", "NONE", "(#PCDATA)"};
            const std::string own = chance(40) ? any(kModels) : chance(40) ? mixed() : model(2);
            return "<!ELEMENT" + gap() + name() + gap() + own + end;
        }
        if (kind < 70) {
            static const char* const kAttributes[] = {"x", "y", "z", "x"};
            static const char* const kRules[] = {"#REQUIRED",    "#IMPLIED",  "#IMPLIED", "\"d\"",  "'&amp;'",
                                                 "#FIXED \"f\"", "#FIXED'f'", "\"\"",     "#FIXED", "d"};
            std::string result = "<!ATTLIST" + gap() + name();
            while (chance(60)) {
                result += gap() + any(kAttributes) + gap() + (chance(97) ? "CDATA" : "ID") + gap() +
                          (chance(95) ? kRules[below(8)] : any(kRules));
            }
            return result + (chance(3) ? " 1" : "") + end;
        }
        if (kind < 85) {
            static const char* const kEntities[] = {"e", "f", "e", "lt", "%"};
            return "<!ENTITY" + gap() + any(kEntities) + gap() + value() + end;
        }
        if (kind < 96) return comment();
        static const char* const kOther[] = {"<!NOTATION n>", "%p;",  "]",           "<?x?>", "x",
                                             "'s'",           "<a/>", "<![INCLUDE[", "<!",    "/"};
        return any(kOther);
    }

    std::string subset() {
        std::string result;
        const std::size_t count = below(5);
        for (std::size_t i = 0; i < count || (i == 0 && chance(90)); ++i) result += blank() + declaration();
        return result + blank();
    }

    // Declares what documents hold, so that some are valid.
    std::string richSubset() {
        std::string result;
        for (const char* own : {"a", "b", "c", "d"}) {
            static const char* const kModels[] = {"ANY",     "ANY",  "(#PCDATA|a|b|c|d)*", "(a|b|c|d)*", "(#PCDATA)",
                                                  "(b?,c*)", "EMPTY"};
            if (chance(90)) result += "<!ELEMENT " + std::string(own) + " " + any(kModels) + ">" + blank();
            if (chance(70))
                result += "<!ATTLIST " + std::string(own) + " x CDATA #IMPLIED y CDATA 'd' z CDATA #IMPLIED>" + blank();
        }
        if (chance(50)) result += "<!ENTITY e 'v&amp;'>";
        if (chance(50)) result += "<!ENTITY f \"\">";
        if (chance(10)) result += declaration();
        return result;
    }

    std::string doctype() {
        const std::size_t kind = below(100);
        const std::string start = "<!DOCTYPE" + gap() + name() + gap();
        if (kind < 85)
            return start + "[" + (chance(60) ? richSubset() : subset()) + (chance(97) ? "]" : "") + blank() +
                   (chance(97) ? ">" : "");
        if (kind < 92)
            return start + "PUBLIC" + gap() + value() + gap() + value() + (chance(20) ? "[" + subset() + "]" : "") +
                   ">";
        static const char* const kOthers[] = {">",     "SYSTEM 'no such file'>", "SYSTEM", "SYSTEM x>", "x>", "[]>",
                                              "PUBLIC"};
        return start + any(kOthers);
    }

    std::string header() {
        static const char* const kHeaders[] = {"<?xml version=\"1.0\"?>",
                                               "<?xml version='1.0' encoding='UTF-8'?>",
                                               "<?xml version='1.0' encoding=\"utf-8\" standalone='no'?>",
                                               "<?xml\r\nversion = \"1.0\" ?>",
                                               "<?xml version='1.1'?>",
                                               "<?xml?>",
                                               "<?xml version='1.0' standalone='yes'?>",
                                               "<?xml version='1.0' encoding='L1'? x x x x x x x x x x x x x x>",
                                               "<?xml version='1.0' encoding='L1'? x x x x x x x x x x x x x x x>"};
        return chance(80) ? kHeaders[below(4)] : any(kHeaders);
    }

    std::string misc() {
        std::string result = blank();
        while (chance(25)) result += (chance(70) ? comment() : instruction()) + blank();
        return result;
    }

    std::string document() {
        std::string result = blank();
        if (chance(40)) result += header();
        result += misc();
        if (chance(50)) result += doctype() + misc();
        result += element(3) + misc();
        if (chance(5)) result += element(1);
        return result;
    }

    std::string fragment() {
        static const char* const kFragments[] = {"<",
                                                 "</",
                                                 "<a",
                                                 "<a>",
                                                 "</a>",
                                                 "/>",
                                                 ">",
                                                 "<!--",
                                                 "-->",
                                                 "<?",
                                                 "?>",
                                                 "<!",
                                                 "<![CDATA[",
                                                 "]]>",
                                                 "&",
                                                 ";",
                                                 "\"",
                                                 "'",
                                                 " ",
                                                 "\r\n",
                                                 "\n",
                                                 "=",
                                                 "x='1'",
                                                 "a",
                                                 "-",
                                                 "[",
                                                 "]",
                                                 "(",
                                                 ")",
                                                 "|",
                                                 ",",
                                                 "*",
                                                 "<!DOCTYPE a [",
                                                 "<!ELEMENT a",
                                                 "<!ATTLIST a",
                                                 "<!ENTITY e",
                                                 "CDATA",
                                                 "#PCDATA",
                                                 "EMPTY",
                                                 "\"v\"",
                                                 "<?xml",
                                                 "<b/>",
                                                 "t"};
        return chance(3) ? std::string(1, '\0') : any(kFragments);
    }

    // Some bytes or fragments wrong, so that failures come from every place.
    std::string damaged(std::string text) {
        std::size_t times = chance(45) ? 0 : 1 + below(2);
        while (times-- > 0 && !text.empty()) {
            const std::size_t place = below(text.size());
            switch (below(5)) {
            case 0: text.erase(place, 1 + below(3)); break;
            case 1: text.insert(place, fragment()); break;
            case 2: text.resize(place); break;
            case 3: text[place] = fragment()[0]; break;
            default: text.replace(place, 1 + below(8), fragment()); break;
            }
        }
        return text;
    }

    std::string soup() {
        std::string result;
        const std::size_t count = 1 + below(16);
        for (std::size_t i = 0; i < count; ++i) result += fragment();
        return result;
    }
};

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
    Maker make(5);
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
    Maker make(52);
    Comparison comparison;
    for (int i = 0; i < rounds(15000); ++i) {
        std::string text = make.element(3);
        while (make.chance(40)) text += make.blank() + make.element(2);
        ASSERT_TRUE(comparison.agree(make.damaged(text), libraryElements, naiveElements)) << "input " << i;
    }
}

TEST(ReaderModelTest, AgreesWithTheNaiveReadersOnTheSmallConstructs) {
    Maker make(51);
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
    Maker make(54);
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
    Maker make(53);
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
    Maker make(531);
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
    Maker make(56);
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
    Maker make(55);
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
