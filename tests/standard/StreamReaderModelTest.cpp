// Events beside trees: random documents, and those of the page of constraints, from a text and from streams that give
// any number of bytes at a time.
#include "standard/ConstraintsPage.h"
#include "standard/Documents.h"
#include "standard/Encoded.h"
#include "standard/Streamed.h"
#include "stream/TextBuffer.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include "xml/standard/Read.h"
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Event = StreamReader::Event;

BufferHabits givingAtOnce(std::size_t chunk) {
    BufferHabits habits;
    habits.chunk = chunk;
    habits.seekable = false;
    return habits;
}

ReadOptions randomOptions(Dice& dice) {
    ReadOptions options;
    options.space = dice.chance(70) ? Space::All : Space::Dropped;
    options.keepComments = dice.chance(60);
    options.keepInstructions = dice.chance(60);
    options.keepCData = dice.chance(40);
    options.namespaces = dice.chance(70);
    options.keepPlaces = true;
    options.source = "source";
    return options;
}

std::string randomText(Dice& dice) {
    const std::string text = randomDocument(dice);
    return dice.chance(50) ? mutated(dice, text) : text;
}

// A path without its numbers: a stream does not count what is gone.
std::string withoutNumbers(const std::string& path) {
    std::string result;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (path[i] == '[')
            i = path.find(']', i);
        else
            result += path[i];
    }
    return result;
}

void expectSameProblem(const std::vector<Problem>& ofStream, const std::vector<Problem>& ofTree) {
    ASSERT_EQ(ofStream.size(), ofTree.size());
    for (std::size_t i = 0; i < ofTree.size(); ++i) {
        EXPECT_EQ(ofStream[i].toString(), ofTree[i].toString());
        EXPECT_EQ(ofStream[i].kind, ofTree[i].kind);
        EXPECT_EQ(ofStream[i].place.offset, ofTree[i].place.offset);
        EXPECT_EQ(ofStream[i].rule, ofTree[i].rule);
        EXPECT_EQ(ofStream[i].source, ofTree[i].source);
        EXPECT_EQ(ofStream[i].path, withoutNumbers(ofTree[i].path));
    }
}

// What a reader says of a text: the same as the tree, and the same problem without one.
std::string expectAsTree(const std::string& text, const ReadOptions& options) {
    const ReadResult tree = readText(text, options);
    StreamReader reader(std::string_view(text), options);
    const std::string lines = linesOf(reader);
    if (tree) {
        EXPECT_EQ(lines, linesOf(*tree)) << text;
        EXPECT_TRUE(reader.problems().empty());
    } else {
        EXPECT_EQ(lines.substr(lines.size() - 7), "failed\n") << text;
        expectSameProblem(reader.problems(), tree.problems());
        if (!reader.problems().empty() && !tree.problems().empty()) {
            EXPECT_EQ(reader.problems()[0].excerpt, tree.problems()[0].excerpt) << text;
        }
    }
    return lines;
}

void expectSameInPieces(const std::string& text, const ReadOptions& options, const std::string& lines,
                        std::size_t chunk) {
    SCOPED_TRACE(std::to_string(chunk) + " bytes at a time");
    StreamReader whole(std::string_view(text), options);
    linesOf(whole);
    TextStream stream(text, givingAtOnce(chunk));
    StreamReader reader(stream, options);
    EXPECT_EQ(linesOf(reader), lines) << text;
    ASSERT_EQ(reader.problems().size(), whole.problems().size());
    if (!whole.problems().empty()) {
        expectSameProblem(reader.problems(), {whole.problems()[0]});
        // The line goes on as far as it has come.
        const std::string shown = whole.problems()[0].excerpt;
        const std::string ours = reader.problems()[0].excerpt;
        const std::string line = ours.substr(0, ours.find('\n'));
        EXPECT_EQ(shown.substr(0, line.size()), line) << text;
        EXPECT_EQ(shown.substr(shown.find('\n')), ours.substr(ours.find('\n'))) << text;
    }
}

TEST(StreamReaderModelTest, GivesWhatTheTreeHas) {
    Dice dice(21);
    int accepted = 0;
    const int count = rounds(4000);
    for (int i = 0; i < count && !HasFailure(); ++i) {
        SCOPED_TRACE("document " + std::to_string(i));
        const std::string lines = expectAsTree(randomText(dice), randomOptions(dice));
        accepted += lines.find("finished\n") != std::string::npos;
    }
    EXPECT_GT(accepted, count / 3);
    EXPECT_LT(accepted, count);
}

TEST(StreamReaderModelTest, GivesTheSameFromStreamsThatGiveAnyNumberOfBytes) {
    Dice dice(22);
    for (int i = 0; i < rounds(300) && !HasFailure(); ++i) {
        SCOPED_TRACE("document " + std::to_string(i));
        const std::string text = randomText(dice);
        const ReadOptions options = randomOptions(dice);
        const std::string lines = expectAsTree(text, options);
        for (const std::size_t chunk : {0, 1, 2, 3, 5, 8, 13, 50, 1000})
            expectSameInPieces(text, options, lines, chunk);
    }
}

TEST(StreamReaderModelTest, GivesTheSameOfASmallDocumentFromAllChunkSizes) {
    Dice dice(23);
    int compared = 0;
    for (int i = 0; compared < rounds(40) && !HasFailure(); ++i) {
        const std::string text = randomText(dice);
        if (text.size() > 200) continue;
        ++compared;
        const ReadOptions options = randomOptions(dice);
        const std::string lines = expectAsTree(text, options);
        for (std::size_t chunk = 1; chunk <= text.size(); ++chunk) expectSameInPieces(text, options, lines, chunk);
    }
}

TEST(StreamReaderModelTest, FindsTheSameWhereverADocumentIsCutOff) {
    Dice dice(24);
    for (int i = 0; i < rounds(24) && !HasFailure(); ++i) {
        const std::string text = randomDocument(dice);
        const ReadOptions options = randomOptions(dice);
        for (std::size_t size = 0; size < text.size() && !HasFailure(); ++size) {
            SCOPED_TRACE(std::to_string(size) + " bytes");
            const std::string part = text.substr(0, size);
            const std::string lines = expectAsTree(part, options);
            expectSameInPieces(part, options, lines, 1 + size % 11);
        }
    }
}

TEST(StreamReaderModelTest, ReadsTheDocumentsOfThePageAsTheTree) {
    for (const ConstraintRow& row : constraintsPage().rows) {
        if (row.setting != Setting::Whole) continue;
        for (const auto* document : {&row.accepted, &row.refused}) {
            if (!*document) continue;
            SCOPED_TRACE((*document)->cell);
            ReadOptions options;
            options.keepPlaces = true;
            options.space = Space::All;
            const std::string& bytes = (*document)->bytes;
            const std::string lines = expectAsTree(bytes, options);
            for (const std::size_t chunk : {1, 3, 7}) expectSameInPieces(bytes, options, lines, chunk);
        }
    }
}

TEST(StreamReaderModelTest, ReadsOtherEncodingsAsTheTree) {
    Dice dice(25);
    for (const EncodingUnderTest& encoding : encodingsUnderTest()) {
        SCOPED_TRACE(encoding.name);
        ReadOptions options;
        options.keepPlaces = true;
        options.space = Space::All;
        options.encoding = encoding.name;
        const std::string own = encoding.own;
        const std::string kText =
            "<a>\r\n" + own + "<b x='" + own + "'>" + own + own + "</b>\n<!--" + own + "--> &#65;" + own + "<c/></a>";
        const std::string broken = kText + "<d/>";
        for (const std::string& text : {kText, broken}) {
            const std::string bytes = encode(text, encoding).bytes;
            const std::string lines = expectAsTree(bytes, options);
            for (const std::size_t chunk : {1, 2, 3, 5, 100}) expectSameInPieces(bytes, options, lines, chunk);
        }
    }
}

// Elements in the order of their beginnings.
void collect(const Element& element, std::vector<const Element*>& all) {
    all.push_back(&element);
    for (int i = 0; i < element.getChildCount(); ++i) {
        const Object& child = *element.getChild(i);
        if (kindOf(child) == NodeKind::Element) collect(static_cast<const Element&>(child), all);
    }
}

std::size_t countOf(const Element& element) {
    std::vector<const Element*> all;
    collect(element, all);
    return all.size();
}

// Reads some elements as trees and passes over others; each is as in the tree of the whole.
void expectElements(StreamReader& reader, const Document& document, Dice& dice) {
    std::vector<const Element*> all;
    collect(*document.getRoot(), all);
    std::size_t next = 0;
    for (Event event = reader.next(); event != Event::Finished; event = reader.next()) {
        ASSERT_NE(event, Event::Failed);
        if (event != Event::Start) continue;
        const Element& expected = *all.at(next);
        const std::string name = expected.getName();
        const int depth = reader.depth();
        const Place place = reader.place();
        EXPECT_EQ(place.offset, placeOf(expected).offset);
        const bool isRead = dice.chance(30);
        const bool isSkipped = !isRead && dice.chance(20);
        next += isRead || isSkipped ? countOf(expected) : 1;
        if (isSkipped) reader.skipElement();
        if (isRead) {
            const std::unique_ptr<Element> element = reader.readElement();
            ASSERT_NE(element, nullptr);
            std::string lines = nodesOf(expected);
            EXPECT_EQ(nodesOf(*element), lines);
        }
        if (!isRead && !isSkipped) continue;
        EXPECT_EQ(reader.name(), name);
        EXPECT_EQ(reader.depth(), depth);
        EXPECT_EQ(reader.attributeCount(), 0);
        EXPECT_EQ(reader.readElement(), nullptr);
    }
    EXPECT_EQ(next, all.size());
}

TEST(StreamReaderModelTest, ReadsElementsAsTheyAreInTheTree) {
    Dice dice(26);
    int compared = 0;
    for (int i = 0; i < rounds(2000) && !HasFailure(); ++i) {
        const std::string text = randomDocument(dice);
        ReadOptions options = randomOptions(dice);
        if (dice.chance(60)) options.space = Space::Content;
        const ReadResult tree = readText(text, options);
        if (!tree) continue;
        ++compared;
        SCOPED_TRACE(text);
        StreamReader whole(std::string_view(text), options);
        expectElements(whole, *tree, dice);
        TextStream stream(text, givingAtOnce(1 + dice.below(20)));
        StreamReader reader(stream, options);
        expectElements(reader, *tree, dice);
    }
    EXPECT_GT(compared, rounds(2000) / 2);
}

}  // namespace
}  // namespace Xml::test
