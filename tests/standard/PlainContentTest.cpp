// Ordinary pieces of content are read into a tree without events, and give what events give.
#include "xml/standard/internal/PlainContent.h"

#include "standard/Documents.h"
#include "standard/Streamed.h"
#include "standard/WholeTree.h"
#include "standard/WithoutPlain.h"
#include "support/Dice.h"
#include "support/Places.h"
#include "support/Rounds.h"
#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/standard/Read.h"
#include "xml/standard/StreamReader.h"
#include "xml/text/internal/Utf8.h"
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

std::string shown(const Problem& problem) {
    return std::to_string(static_cast<int>(problem.kind)) + "|" + std::to_string(problem.place.offset) + "|" +
           problem.toString() + "|" + problem.rule + "|" + problem.path + "|" + problem.excerpt;
}

// All nodes, with their places where they have some, and the orders and defaults of attributes; or the problem.
std::string read(const std::string& text, const ReadOptions& options) {
    const ReadResult result = readText(text, options);
    if (!result) return shown(result.problems().front());
    return wholeTree(*result, AttributeOrder::OfTag, Sections::Nodes) + nodesOf(*result->getRoot()) +
           result->getRoot()->toString();
}

// The same of each element below the root, read as a whole from events.
std::string readElements(const std::string& text, const ReadOptions& options) {
    StreamReader reader(text, options);
    std::string result;
    for (auto event = reader.next(); event != StreamReader::Event::Finished; event = reader.next()) {
        if (event == StreamReader::Event::Failed) return result + shown(reader.problems().front());
        if (event != StreamReader::Event::Start || reader.depth() == 1) continue;
        if (const auto element = reader.readElement()) result += nodesOf(*element) + lineOf(reader, event);
    }
    return result;
}

void expectSame(const std::string& text, const ReadOptions& options) {
    const std::string plain = read(text, options);
    const std::string elements = readElements(text, options);
    const WithoutPlain without;
    ASSERT_EQ(plain, read(text, options)) << text;
    ASSERT_EQ(elements, readElements(text, options)) << text;
}

// Those of each number below kOptions.
constexpr unsigned kOptions = 3 * 2 * 2 * 2 * 2 * 2;
ReadOptions optionsOf(unsigned number) {
    const auto next = [&number](unsigned count) { return std::exchange(number, number / count) % count; };
    ReadOptions options;
    options.space = static_cast<Space>(next(3));
    options.keepComments = next(2) == 0;
    options.keepInstructions = next(2) == 0;
    options.keepCData = next(2) == 1;
    options.keepPlaces = next(2) == 1;
    options.namespaces = next(2) == 0;
    return options;
}

const std::string kRich =
    "<r xmlns:p='u' xmlns:q='u' xmlns:s='v'>\n <a x='1' b=\"2\" p:x='3'>text</a>\n <b/><!-- c --> t&amp;u &#65;\r\n"
    "<p:c s:y='&lt;\t&quot;\xC3\xB6' xml:space='preserve'> <d> </d>\n</p:c><e>\n<f>v</f>\n</e> <g/>]x> </r>";

TEST(PlainContentTest, TakesWhatIsOrdinary) {
    const struct {
        const char* content;
        const char* left;
    } kCases[] = {
        {"text<b/>", ""},
        {"<b x='1' y=\"2\"/>", ""},
        {"<b  y = '1'\n\tx='2' ></b>", ""},
        {"<b>t</b> <c>\n</c>\r\n<d><e/></d>", ""},
        {"<p:b p:x='1' q:y='2' x='3'/>", ""},
        {"<b p:x='1' q:x='2'/>", ""},
        {"<b xml:space='preserve'> <c/></b>", ""},
        {"<gr\xC3\xB6\xC3\x9F"
         "e \xC3\xB6='\xE2\x82\xAC'>\xEF\xBC\xA1</gr\xC3\xB6\xC3\x9F"
         "e>",
         ""},
        {"a &amp; &lt; &gt; &quot; &apos; &#65; &#x41; > ] ]] b\r\n<b/>", ""},
        {"<b x='&amp;&lt;&gt;&quot;&apos;&#65;&#x10FFFF;\t\n\r\n'/>", ""},
        {"<!-- c -->", ""},
        {"t<!-- c --><b/>", "t<!-- c --><b/>"},
        {"<b/>text", "text"},
        {"<b/><b", "<b"},
        {"<b/><b x='", "<b x='"},
        {"<b/><b x", "<b x"},
        {"<b/></b>", "</b>"},
        {"<b><c>t</c></d>", "</d>"},
        {"<b>t</b >", "</b >"},
        {"<b x='1' x='2'/>", "<b x='1' x='2'/>"},
        {"<b p:x='1' o:x='2'/>", "<b p:x='1' o:x='2'/>"},
        {"<b n:x='1'/>", "<b n:x='1'/>"},
        {"<n:b/>", "<n:b/>"},
        {"<xmlns:b/>", "<xmlns:b/>"},
        {"<b xmlns='w'/>", "<b xmlns='w'/>"},
        {"<b xmlns:w='w'/>", "<b xmlns:w='w'/>"},
        {"<:b/>", "<:b/>"},
        {"<b:/>", "<b:/>"},
        {"<p:b:c/>", "<p:b:c/>"},
        {"<1/>", "<1/>"},
        {"<b\xC3\x97/>", "<b\xC3\x97/>"},
        {"<b x='1'y='2'/>", "<b x='1'y='2'/>"},
        {"<b x='<'/>", "<b x='<'/>"},
        {"<b x='\x01'/>", "<b x='\x01'/>"},
        {"<b x='\xEF\xBF\xBF'/>", "<b x='\xEF\xBF\xBF'/>"},
        {"<b x='&e;'/>", "<b x='&e;'/>"},
        {"<b x='&#0;'/>", "<b x='&#0;'/>"},
        {"<b x/>", "<b x/>"},
        {"<b x=1/>", "<b x=1/>"},
        {"<b/ >", "<b/ >"},
        {"a ]]> b<b/>", "a ]]> b<b/>"},
        {"a &e; b<b/>", "a &e; b<b/>"},
        {"a &#xD800; b<b/>", "a &#xD800; b<b/>"},
        {"a &amp b<b/>", "a &amp b<b/>"},
        {"a \x01 b<b/>", "a \x01 b<b/>"},
        {"a \xEF\xBF\xBE<b/>", "a \xEF\xBF\xBE<b/>"},
        {"<!-- a -- b -->", "<!-- a -- b -->"},
        {"<!-- a \x01 -->", "<!-- a \x01 -->"},
        {"<!-- a\r\n -->", "<!-- a\r\n -->"},
        {"<![CDATA[a]]>", "<![CDATA[a]]>"},
        {"<?i c?>", "<?i c?>"},
        {"<v/>", "<v/>"},
        {"<w v='1'/>", ""},
    };
    for (const auto& c : kCases) {
        const std::string text =
            "<!DOCTYPE r [<!ATTLIST v x CDATA '1'>]><r xmlns:p='u' xmlns:q='v' xmlns:o='u'>" + std::string(c.content);
        ReadOptions options;
        options.keepCData = true;
        options.keepInstructions = false;
        Lexer lexer((Lexer::Options()));
        std::unique_ptr<Element> root;
        TreeBuilder tree(root);
        WhiteSpace white(tree, options.space);
        PlainContent plain(lexer, options, tree, white, nullptr);
        lexer.setWindow(text, false);
        ASSERT_EQ(lexer.next(), Lexer::Event::Doctype);
        ASSERT_EQ(lexer.next(), Lexer::Event::Start);
        tree.begin("r");
        white.begin({});
        plain.take();
        EXPECT_EQ(lexer.ahead(), c.left) << c.content;
        EXPECT_EQ(lexer.depth(), tree.depth());
        const WithoutPlain without;
        EXPECT_TRUE(lexer.plainAhead().empty());
    }
}

TEST(PlainContentTest, LeavesTheEndOfTheOutermostElement) {
    for (const bool isWhole : {false, true}) {
        const std::string text = "<r><a>\n<b/>\n</a></r><!-- c -->";
        const ReadOptions options;
        Lexer lexer((Lexer::Options()));
        lexer.setWindow(text, true);
        std::unique_ptr<Element> root;
        TreeBuilder tree(root);
        WhiteSpace white(tree, options.space);
        PlainContent plain(lexer, options, tree, white, nullptr);
        for (int i = isWhole ? 1 : 2; i > 0; --i) ASSERT_EQ(lexer.next(), Lexer::Event::Start);
        tree.begin("r");
        white.begin({});
        plain.take();
        EXPECT_EQ(lexer.ahead(), isWhole ? "</r><!-- c -->" : "</a></r><!-- c -->");
        ASSERT_EQ(lexer.next(), Lexer::Event::End);
        EXPECT_TRUE(isWhole || lexer.name() == "a");
        EXPECT_EQ(lexer.depth(), isWhole ? 1U : 2U);
    }
}

TEST(PlainContentTest, GivesWhatEventsGiveForEveryPrefix) {
    for (unsigned number = 0; number < kOptions; ++number) {
        for (std::size_t size = 0; size <= kRich.size(); ++size) {
            if (size < kRich.size() && Utf8::goesOn(kRich[size])) continue;
            ASSERT_NO_FATAL_FAILURE(expectSame(kRich.substr(0, size), optionsOf(number)));
        }
    }
}

TEST(PlainContentTest, GivesWhatEventsGiveWhateverAByteIs) {
    const std::string kBytes("<>/&;'\"=!?-[]: \t\n\rabpxr1#\x01\0", 27);
    for (std::size_t i = 0; i < kRich.size(); ++i) {
        if (!Utf8::isAscii(kRich[i])) continue;
        for (const char c : kBytes) {
            std::string text = kRich;
            text[i] = c;
            ASSERT_NO_FATAL_FAILURE(expectSame(text, {}));
            ReadOptions all = everything();
            all.keepPlaces = true;
            ASSERT_NO_FATAL_FAILURE(expectSame(text, all));
            text.insert(i, 1, kRich[i]);
            ASSERT_NO_FATAL_FAILURE(expectSame(text, {}));
        }
    }
}

// What is expected after the same tags before it may be there or not, and what comes then may be anything.
TEST(PlainContentTest, GivesWhatEventsGiveOfTagsThatAreMostlyTheSame) {
    for (const std::string& text : documentsOfSimilarTags()) ASSERT_NO_FATAL_FAILURE(expectSame(text, {}));
}

TEST(PlainContentTest, GivesWhatEventsGiveForEverydayDocuments) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(sourceFolder() + "/tests/standard/everyday")) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(in), {}};
        ++count;
        for (unsigned number = 0; number < kOptions; ++number)
            ASSERT_NO_FATAL_FAILURE(expectSame(text, optionsOf(number)));
    }
    EXPECT_GE(count, 20);
}

TEST(PlainContentTest, GivesWhatEventsGiveInRandomDocuments) {
    Dice dice(7);
    for (int round = rounds(20000); round > 0; --round) {
        const std::string text = brokenDocument(dice);
        ReadOptions options = optionsOf(static_cast<unsigned>(dice.below(kOptions)));
        options.maxDepth = dice.chance(20) ? 3 : 0;
        ASSERT_NO_FATAL_FAILURE(expectSame(text, options));
    }
}

TEST(PlainContentTest, KeepsNothingOfATagThatIsNotOrdinary) {
    const std::string kLeft[] = {"<b xml:space='preserve' xmlns='u'/>", "<b x='&lt;' p:y='&#65;' xmlns:p='u'/>",
                                 "<b x='1' y='2' xmlns='u'/>"};
    for (const std::string& left : kLeft) {
        for (unsigned number = 0; number < kOptions; ++number) {
            ASSERT_NO_FATAL_FAILURE(
                expectSame("<r>" + left + "<c y='preserve'>\n<d/>\n</c>" + left + "<c/></r>", optionsOf(number)));
        }
    }
}

// As many attributes as there may be room for, in either order, with one name twice or not.
TEST(PlainContentTest, TakesAnyNumberOfAttributes) {
    for (const int count : {1, 2, 7, 8, 9, 16, 17, 40, 200}) {
        for (const int repeated : {-1, 0, count / 2, count - 1}) {
            for (const bool isRising : {false, true}) {
                std::string text = "<r><b";
                for (int i = 0; i < count; ++i) {
                    const int number = isRising ? i : count - i;
                    text += " a" + std::to_string(1000 + number) + "='" + std::to_string(i) + "'";
                    if (i == repeated) text += " a" + std::to_string(1000 + number) + "='again'";
                }
                text += "/></r>";
                EXPECT_EQ(static_cast<bool>(readText(text)), repeated < 0);
                ASSERT_NO_FATAL_FAILURE(expectSame(text, {}));
            }
        }
    }
}

}  // namespace
}  // namespace Xml::test
