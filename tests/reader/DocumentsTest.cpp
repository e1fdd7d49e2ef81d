// The seven documents that ship with the examples: whole, written back, validated, and damaged at random places.
#include "models/NaiveReaders.h"
#include "models/Snapshot.h"
#include "orvsys/Files.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/reader/DocumentReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/FileSpecInStream.h"
#include "xml/stream/StringInStream.h"
#include <cctype>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace Xml::test {

namespace {

class DocumentsTest : public ::testing::TestWithParam<const char*> {};

// Those that come with a document type.
const char* const kTypedDocuments[] = {"vk.xml", "cldr-cs.xml", "mame-nes.xml", "fugue1.mscx.xml"};
class DocumentTypesTest : public ::testing::TestWithParam<const char*> {};

std::string testName(const ::testing::TestParamInfo<const char*>& info) {
    std::string name;
    for (const char* c = info.param; *c != '\0'; ++c)
        name += std::isalnum(static_cast<unsigned char>(*c)) != 0 ? *c : '_';
    return name;
}

// What a whole parse leaves, in one text: verdict, message, tree with its links, place and message of the stream.
std::string libraryOutcome(InStream& in) {
    MessageCollector diagnostics;
    DocumentReader reader;
    const bool ok = reader.parse(in);
    const std::string& error = reader.getErrorMessage();
    if (!ok && !error.empty() && error.find("(line = ") != 0) ADD_FAILURE() << "no place in: " << error;
    std::string text =
        (ok ? "true " : "false ") + error + "\n" + stateOf(in) + "\n" + linksOf(reader.getDocument(), nullptr);
    for (const auto& line : diagnostics.texts()) text += "\n" + line;
    return text;
}

std::string naiveOutcome(InStream& in) {
    MessageCollector diagnostics;
    NaiveDocumentReader reader;
    const bool ok = reader.parse(in);
    std::string text = (ok ? "true " : "false ") + reader.error() + "\n" + stateOf(in) + "\n" +
                       linksOf(reader.document.get(), nullptr);
    for (const auto& line : diagnostics.texts()) text += "\n" + line;
    return text;
}

std::string naiveOutcome(const std::string& text) {
    StringInStream in(text);
    return naiveOutcome(in);
}

// The first lines of two long texts where they differ.
std::string difference(const std::string& a, const std::string& b) {
    std::size_t i = 0;
    while (i < a.size() && i < b.size() && a[i] == b[i]) ++i;
    const std::size_t from = i < 60 ? 0 : i - 60;
    return ::testing::PrintToString(a.substr(from, 200)) + "\n" + ::testing::PrintToString(b.substr(from, 200));
}

// Whether the library makes of the text what the naive readers make of it, from every source; a file stream's late end
// is compared with the naive readers over a file stream.
bool alikeEverywhere(const std::string& text) {
    const std::string expected = naiveOutcome(text);
    bool alike = true;
    for (auto source : kAllSources) {
        std::string wanted = expected;
        if (source == Source::FileStream)
            withSource(source, text, [&wanted](InStream& in) { wanted = naiveOutcome(in); });
        withSource(source, text, [&](InStream& in) {
            const std::string actual = libraryOutcome(in);
            if (actual == wanted) return;
            alike = false;
            ADD_FAILURE() << source << ":\n" << difference(actual, wanted);
        });
    }
    return alike;
}

std::string damaged(std::string text, std::size_t place, std::mt19937& random) {
    static const char* const kFragments[] = {
        "<",    ">", "</",  "/>",   "<!--",      "-->",           "<?", "&",     ";",  "\"", "'",
        "\r\n", " ", "<x>", "</x>", "<![CDATA[", "<!DOCTYPE a [", "=",  "x='1'", "]]>"};
    const auto below = [&random](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    switch (below(4)) {
    case 0: text[place] = static_cast<char>(text[place] ^ (1 << below(8))); break;
    case 1: text.erase(place, 1 + below(4)); break;
    case 2: text.insert(place, kFragments[below(sizeof kFragments / sizeof *kFragments)]); break;
    default: text.resize(place); break;
    }
    return text;
}

// Some 20 KB from the start tag after a random place.
std::string pieceAt(const std::string& text, std::mt19937& random) {
    std::size_t place = std::uniform_int_distribution<std::size_t>(0, text.size() - 1)(random);
    do {
        place = text.find('<', place + 1);
        if (place == std::string::npos || place + 1 >= text.size()) place = text.find('<');
    } while (std::isalpha(static_cast<unsigned char>(text[place + 1])) == 0);
    return text.substr(place, 20000);
}

// How much of the text its first element takes.
std::size_t elementLength(const std::string& text) {
    StringInStream in(text);
    ElementReader reader;
    reader.parse(in);
    return static_cast<std::size_t>(in.getPosition());
}

// The piece of several whose first element takes most of it: most elements are small, and what comes after is not read.
std::string longestPieceOf(const std::string& text, std::mt19937& random, std::size_t& length) {
    std::string longest = pieceAt(text, random);
    length = elementLength(longest);
    for (int i = 0; i < 4; ++i) {
        std::string piece = pieceAt(text, random);
        const std::size_t pieceLength = elementLength(piece);
        if (pieceLength <= length) continue;
        length = pieceLength;
        longest.swap(piece);
    }
    return longest;
}

const Element* rootOf(const Document* document) { return document != nullptr ? document->getRoot() : nullptr; }

// Node by node, for trees whose texts would be long.
bool sameTree(const Object* a, const Object* b) {
    if (a == nullptr || b == nullptr) return a == b;
    if (a->isCharData() || b->isCharData()) {
        return a->isCharData() && b->isCharData() && a->toCharData()->data() == b->toCharData()->data();
    }
    const Element& first = *a->toElement();
    const Element& second = *b->toElement();
    if (first.getName() != second.getName() || first.getChildCount() != second.getChildCount() ||
        first.getAttributeCount() != second.getAttributeCount()) {
        return false;
    }
    for (int i = 0; i < first.getAttributeCount(); ++i) {
        const Attribute& attribute = *first.getAttribute(i);
        const Attribute& other = *second.getAttribute(i);
        if (attribute.getName() != other.getName() || attribute.getValue() != other.getValue()) return false;
    }
    for (int i = 0; i < first.getChildCount(); ++i) {
        if (!sameTree(first.getChild(i), second.getChild(i))) return false;
    }
    return true;
}

// The document with a document type of the file put before its root element.
std::string withType(const std::string& text, const std::string& typePath) {
    std::size_t root = 0;
    do {
        root = text.find('<', root + 1);
        if (text.compare(root, 4, "<!--") == 0) root = text.find("-->", root);
    } while (std::isalpha(static_cast<unsigned char>(text[root + 1])) == 0);
    const std::size_t nameEnd = text.find_first_of(" \r\n\t/>", root);
    return text.substr(0, root) + "<!DOCTYPE " + text.substr(root + 1, nameEnd - root - 1) + " SYSTEM \"" + typePath +
           "\">\n" + text.substr(root);
}

std::string typePathOf(const std::string& document) {
    return documentPath(document.substr(0, document.rfind(".xml")) + ".dtd");
}

}  // namespace

TEST_P(DocumentsTest, ParsesFromEverySourceAlike) {
    const std::string& text = documentText(GetParam());
    const Outcome expected = readDocument(text);
    ASSERT_TRUE(expected.ok) << expected.error;
    const std::string tree = dump(expected.document.get());
    const std::string written = textOf(*expected.document);
    EXPECT_GT(tree.size(), text.size() / 4);
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        const Outcome outcome = readDocument(text, source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        EXPECT_TRUE(dump(outcome.document.get()) == tree);
        EXPECT_TRUE(textOf(*outcome.document) == written);
    }
}

TEST_P(DocumentsTest, IsWhatTheNaiveReadersMakeOfIt) {
    StringInStream in(documentText(GetParam()));
    const std::string actual = libraryOutcome(in);
    const std::string expected = naiveOutcome(documentText(GetParam()));
    EXPECT_TRUE(actual == expected) << difference(actual, expected);
}

TEST_P(DocumentsTest, IsWrittenTheSameOnceItHasBeenWritten) {
    const Outcome first = readDocument(documentText(GetParam()));
    ASSERT_TRUE(first.ok) << first.error;
    const std::string written = textOf(*first.document);
    const Outcome second = readDocument(written);
    ASSERT_TRUE(second.ok) << second.error;
    const std::string again = textOf(*second.document);
    EXPECT_TRUE(again == written) << difference(again, written);
    const std::string tree = dump(second.document.get());
    EXPECT_TRUE(tree == dump(first.document.get())) << difference(tree, dump(first.document.get()));
}

TEST_P(DocumentsTest, EndsAlikeFromEverySourceWhenAPieceOfItIsDamaged) {
    std::mt19937 random(5);
    const std::string& text = documentText(GetParam());
    for (int i = 0; i < rounds(1000); ++i) {
        std::size_t length = 0;
        const std::string piece = longestPieceOf(text, random, length);
        const std::size_t place = std::uniform_int_distribution<std::size_t>(0, length - 1)(random);
        ASSERT_TRUE(alikeEverywhere(damaged(piece, place, random))) << "piece " << i << " damaged at " << place;
    }
}

TEST_P(DocumentsTest, EndsAlikeFromEverySourceWhenItIsDamaged) {
    std::mt19937 random(52);
    const std::string& text = documentText(GetParam());
    for (int i = 0; i < rounds(20); ++i) {
        const std::size_t place = std::uniform_int_distribution<std::size_t>(0, text.size() - 1)(random);
        const std::string bad = damaged(text, place, random);
        StringInStream naiveIn(bad);
        NaiveDocumentReader naive;
        const bool ok = naive.parse(naiveIn);
        for (auto source : kPromptSources) {
            SCOPED_TRACE(::testing::Message() << source << ", damaged at " << place);
            withSource(source, bad, [&](InStream& in) {
                DocumentReader reader;
                ASSERT_EQ(reader.parse(in), ok);
                ASSERT_EQ(reader.getErrorMessage(), naive.error());
                ASSERT_EQ(stateOf(in), stateOf(naiveIn));
                ASSERT_TRUE(sameTree(rootOf(reader.getDocument()), rootOf(naive.document.get())));
            });
        }
        if (HasFatalFailure()) return;
    }
}

TEST_P(DocumentTypesTest, AcceptTheirDocuments) {
    const std::string document = GetParam();
    const std::string typePath = typePathOf(document);
    const std::string text = withType(documentText(document), typePath);
    for (auto source : kAllSources) {
        SCOPED_TRACE(::testing::Message() << source);
        const Outcome outcome = readDocument(text, source);
        ASSERT_TRUE(outcome.ok) << outcome.error;
        EXPECT_NE(outcome.document->getDtd(), nullptr);
    }

    const Outcome first = readDocument(text);
    const std::string written = textOf(*first.document);
    const Outcome second = readDocument(written);
    ASSERT_TRUE(second.ok) << second.error;
    const std::string again = textOf(*second.document);
    EXPECT_TRUE(again == written) << difference(again, written);
}

TEST_P(DocumentTypesTest, RefuseAnUndeclaredElementOrAttribute) {
    const std::string document = GetParam();
    const std::string typePath = typePathOf(document);
    const std::string text = withType(documentText(document), typePath);
    const std::size_t lastEndTag = text.rfind("</");
    for (const std::string& bad : {text.substr(0, lastEndTag) + "<undeclared/>" + text.substr(lastEndTag), [&text] {
                                       const std::size_t root = text.find('<', text.find("<!DOCTYPE") + 1);
                                       const std::size_t nameEnd = text.find_first_of(" \r\n\t/>", root);
                                       return text.substr(0, nameEnd) + " undeclared=''" + text.substr(nameEnd);
                                   }()}) {
        const Outcome outcome = readDocument(bad);
        EXPECT_FALSE(outcome.ok);
        EXPECT_NE(outcome.error.find("Doc could not be validated"), std::string::npos) << outcome.error;
        EXPECT_NE(outcome.document, nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(Shipped, DocumentsTest, ::testing::ValuesIn(kDocuments), testName);
INSTANTIATE_TEST_SUITE_P(Shipped, DocumentTypesTest, ::testing::ValuesIn(kTypedDocuments), testName);

}  // namespace Xml::test
