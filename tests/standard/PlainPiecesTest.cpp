// Ordinary pieces of content are read in a faster way, and give what they give without it.
#include "standard/Documents.h"
#include "standard/Events.h"
#include "standard/Streamed.h"
#include "standard/WithoutPlain.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/standard/Read.h"
#include "xml/standard/internal/Lexer.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

std::string shown(const Lexed& lexed) {
    const Fault& fault = lexed.fault;
    return lexed.events + (lexed.isAccepted ? "accepted" : fault.rule) + " " + std::to_string(fault.offset) + " " +
           fault.text + " " + fault.element;
}

void expectSame(const std::string& text, const Lexer::Options& options, std::size_t chunk) {
    const std::string plain = shown(lex(text, options, chunk));
    const WithoutPlain without;
    ASSERT_EQ(plain, shown(lex(text, options, chunk))) << text;
}

// With the place, the depth and all that each event says.
void expectSameStream(const std::string& text, const ReadOptions& options) {
    const auto lines = [&] {
        StreamReader reader(text, options);
        return linesOf(reader);
    };
    const std::string plain = lines();
    const WithoutPlain without;
    ASSERT_EQ(plain, lines()) << text;
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
                Lexer::Options options;
                for (options.maxDepth = 0; options.maxDepth < 4; ++options.maxDepth) {
                    options.namespaces = options.maxDepth != 1;
                    for (std::size_t chunk = 0; chunk < 8; ++chunk)
                        ASSERT_NO_FATAL_FAILURE(expectSame(text, options, chunk));
                }
                ASSERT_NO_FATAL_FAILURE(expectSameStream(text, {}));
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
        Lexer::Options options;
        options.namespaces = dice.chance(70);
        options.maxDepth = dice.chance(20) ? 3 : 0;
        ASSERT_NO_FATAL_FAILURE(expectSame(text, options, dice.chance(50) ? 0 : 1 + dice.below(40)));
        ReadOptions reading;
        reading.keepComments = dice.chance(50);
        reading.keepInstructions = dice.chance(50);
        reading.keepCData = dice.chance(50);
        reading.space = dice.chance(70) ? Space::Content : Space::Dropped;
        ASSERT_NO_FATAL_FAILURE(expectSameStream(text, reading));
        ASSERT_NO_FATAL_FAILURE(expectSameTrees(text, reading));
        if (lex(text).isAccepted) ++accepted;
    }
    EXPECT_GE(accepted, atLeast(5000));
}

}  // namespace
}  // namespace Xml::test
