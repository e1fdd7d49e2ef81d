// Ordinary pieces of content are read in a faster way, and give what they give without it.
#include "standard/Documents.h"
#include "standard/Events.h"
#include "standard/Streamed.h"
#include "standard/WithoutPlain.h"
#include "stream/TextBuffer.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

std::string shown(const Problem& problem) {
    return std::to_string(static_cast<int>(problem.kind)) + "|" + std::to_string(problem.place.offset) + "|" +
           problem.toString() + "|" + problem.rule + "|" + problem.path + "|" + problem.excerpt;
}

// What each event says, what is read as a tree and what is passed over, as the dice has it; the problem.
std::string walked(StreamReader& reader, unsigned seed) {
    using Event = StreamReader::Event;
    Dice dice(seed);
    std::string lines;
    for (Event event = reader.next();; event = reader.next()) {
        lines += lineOf(reader, event) + std::string(reader.localName()) + " of " + std::string(reader.namespaceUri());
        if (event == Event::Finished) return lines;
        if (event == Event::Failed) return lines + shown(reader.problems().at(0));
        if (event != Event::Start || seed == 0) continue;
        if (dice.chance(20)) {
            const auto element = reader.readElement();
            lines += element ? nodesOf(*element) : "none";
        } else if (dice.chance(20)) {
            reader.skipElement();
        } else {
            lines += std::string(reader.attribute("x").value_or("none"));
            continue;
        }
        lines += lineOf(reader, reader.problems().empty() ? Event::End : Event::Failed);
    }
}

// From a text, or from a stream that gives so many bytes at a time.
std::string walkedBy(const std::string& text, const ReadOptions& options, std::size_t chunk, unsigned seed) {
    if (chunk == 0) {
        StreamReader reader(text, options);
        return walked(reader, seed);
    }
    BufferHabits habits;
    habits.chunk = chunk;
    TextStream stream(text, habits);
    StreamReader reader(stream, options);
    return walked(reader, seed);
}

void expectSameStream(const std::string& text, const ReadOptions& options, std::size_t chunk, unsigned seed) {
    const std::string plain = walkedBy(text, options, chunk, seed);
    const WithoutPlain without;
    ASSERT_EQ(plain, walkedBy(text, options, chunk, seed)) << text;
}

// All nodes with their places, or the problem.
void expectSameTree(const std::string& text, const ReadOptions& options) {
    const auto lines = [&]() -> std::string {
        const ReadResult result = readText(text, options);
        return result ? nodesOf(*result->getRoot()) : result.message();
    };
    const std::string plain = lines();
    const WithoutPlain without;
    ASSERT_EQ(plain, lines()) << text;
}

void expectSameTrees(const std::string& text, ReadOptions options) {
    for (const bool keepsPlaces : {false, true}) {
        options.keepPlaces = keepsPlaces;
        ASSERT_NO_FATAL_FAILURE(expectSameTree(text, options));
    }
}

TEST(PlainPiecesTest, GiveWhatOtherPiecesGive) {
    const std::string kPieces[] = {
        "<b/>",
        "<b x='1'/>",
        "<b x=\"1\" y='2'  z = \"3\" />",
        "<b\n\tx='1'\n>t</b >",
        "<b x='1' x='2'/>",
        "<b ab='1' ba='2' bb='3' aa='4'/>",
        "<b x='1'y='2'/>",
        "<b x/>",
        "<b x=1/>",
        "<b x='<'/>",
        "<b x='&lt;&#10;'/>",
        "<b x='a\tb\r\nc'/>",
        "<b x='\x01'/>",
        "<b x='\xEF\xBF\xBE'/>",
        "<b x='\xEF\xBC\xA1'/>",
        "<b x='größe &gt; €'/>",
        "<größe ß='1'/>",
        "<b größe='1'/>",
        "<p:b/>",
        "<b p:x='1'/>",
        "<p:b xmlns:p='u' p:x='1' xmlns:q='v' q:x='2'/>",
        "<b xmlns='u'><c/></b>",
        "<b xmlns=''/>",
        "<b xml:space='preserve'> </b>",
        "<b:/>",
        "<:b/>",
        "<-b/>",
        "<b/ >",
        "<b></c>",
        "<b></bb>",
        "<bb></b>",
        "</b>",
        "text",
        "a ]] b ]]> c",
        "a ] b",
        "a > b",
        "a\rb\r\nc",
        "\xEF\xBC\xA1 \xEF\xBF\xBF",
        "a &amp; b &e; c",
        "<!-- c --> <![CDATA[<b>]]>",
        "<?i x?>",
        "<",
        "<b",
        "<b><c/></b>",
        "<b>t</b> <b> t</b>\n<b>t </b>\n",
        "<b x='1' y='2'>a text of more than a few bytes</b>",
        "<b>t</b><!-- c -->u<b/>v<?i?>",
    };
    for (const std::string& piece : kPieces) {
        for (const std::string before : {"<a>", "<a><c><d>x</d>", "<!DOCTYPE a [<!ENTITY e '<b i=\"1\">t</b>'>]><a>",
                                         "<!DOCTYPE a [<!ATTLIST b x NMTOKEN ' 7  8 ' y CDATA '9'>]><a>"}) {
            for (const std::string after : {"</a>", "<b>some</b> text</c></a>", ""}) {
                const std::string text = before + piece + after;
                for (int way = 0; way < 8; ++way) {
                    ReadOptions options;
                    options.keepPlaces = true;
                    options.maxDepth = way % 4;
                    options.namespaces = way != 1;
                    options.space = way < 3 ? Space::All : way < 5 ? Space::Dropped : Space::Content;
                    options.keepComments = way % 2 == 0;
                    options.keepCData = way % 2 == 0;
                    options.keepInstructions = way % 2 == 0;
                    for (const std::size_t chunk : {0, 1, 7, way + 2}) {
                        ASSERT_NO_FATAL_FAILURE(expectSameStream(text, options, chunk, 0));
                        ASSERT_NO_FATAL_FAILURE(expectSameStream(text, options, chunk, 5));
                    }
                }
                ASSERT_NO_FATAL_FAILURE(expectSameTrees(text, {}));
            }
        }
    }
}

TEST(PlainPiecesTest, GiveWhatOtherPiecesGiveInRandomDocuments) {
    Dice dice(13);
    int accepted = 0;
    for (int round = rounds(20000); round > 0; --round) {
        const std::string text = brokenDocument(dice);
        ReadOptions reading;
        reading.keepPlaces = dice.chance(50);
        reading.namespaces = dice.chance(70);
        reading.maxDepth = dice.chance(20) ? 3 : 0;
        reading.keepComments = dice.chance(50);
        reading.keepInstructions = dice.chance(50);
        reading.keepCData = dice.chance(50);
        reading.space = dice.chance(40) ? Space::Content : dice.chance(50) ? Space::All : Space::Dropped;
        const std::size_t chunk = dice.chance(50) ? 0 : 1 + dice.below(40);
        ASSERT_NO_FATAL_FAILURE(
            expectSameStream(text, reading, chunk, dice.chance(50) ? 0 : 1 + static_cast<unsigned>(dice.below(100))));
        ASSERT_NO_FATAL_FAILURE(expectSameTrees(text, reading));
        if (lex(text).isAccepted) ++accepted;
    }
    EXPECT_GE(accepted, atLeast(5000));
}

}  // namespace
}  // namespace Xml::test
