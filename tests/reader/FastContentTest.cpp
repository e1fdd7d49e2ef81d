// What is read straight from the window, beside what is read by tokens alone: everything that shows must be the same.
#include "xml/reader/internal/FastContent.h"

#include "models/Snapshot.h"
#include "reader/GrowthLimit.h"
#include "stream/LendingSource.h"
#include "support/Dice.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Sources.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "support/WithoutFastContent.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/internal/TreeBuilder.h"
#include "xml/dtd/Dtd.h"
#include "xml/reader/DocumentReader.h"
#include "xml/reader/ElementReader.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/stream/FileInStream.h"
#include "xml/stream/StringInStream.h"
#include "xml/stream/internal/StreamAccess.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>

namespace Xml::test {

namespace {

// --- What shows ---

std::string stateAndBufferOf(InStream& in) { return stateOf(in) + " [" + StreamAccess::token(in) + "]\n"; }

void fillEntities(Dtd& dtd) {
    dtd.setEntity("e", "v & more");
    dtd.setEntity("f", "");
    dtd.setEntity("g", std::string(40, 'g'));
    dtd.setEntity("h", std::string(400, 'h'));
}

using Read = std::function<std::string(InStream&)>;

// Elements until one fails, at most three, and the tokens after them.
std::string elementsIn(InStream& in) {
    Dtd dtd("t");
    fillEntities(dtd);
    ElementReader reader(&dtd);
    std::string text;
    bool ok = true;
    for (int i = 0; ok && i < 3; ++i) {
        ok = reader.parse(in);
        const std::unique_ptr<Element> root(reader.extractRoot());
        text += (ok ? "true " : "false ") + reader.getErrorMessage() + "\n" + linksOf(root.get(), &dtd) + "\n" +
                stateAndBufferOf(in);
    }
    std::string token;
    for (int i = 0; i < 3; ++i) text += (in.getToken(token) ? token : "none") + " " + stateAndBufferOf(in);
    return text;
}

std::string documentIn(InStream& in) {
    const MessageCollector diagnostics;
    DocumentReader reader;
    const bool ok = reader.parse(in);
    const Document* const document = reader.getDocument();
    std::string text = (ok ? "true " : "false ") + reader.getErrorMessage() + "\n" +
                       linksOf(document, document != nullptr ? document->getDtd() : nullptr) + "\n" +
                       stateAndBufferOf(in);
    for (const std::string& line : diagnostics.texts()) text += line + "\n";
    return text;
}

// --- Over sources that lend all, some, or few bytes at a time ---

struct Lender {
    const char* name;
    std::function<std::unique_ptr<InStream>(const std::string&)> make;
};

template <std::size_t Piece>
std::unique_ptr<InStream> inPieces(const std::string& text) {
    return std::make_unique<LendingSource>(text, Piece, Window::Loan::ForNow, false);
}

const Lender kLenders[] = {
    {"string", [](const std::string& text) { return std::make_unique<StringInStream>(text); }},
    {"for now", [](const std::string& text) { return std::make_unique<LendingSource>(text, text.size() + 1); }},
    {"pieces of 1", inPieces<1>},
    {"pieces of 3", inPieces<3>},
    {"pieces of 7", inPieces<7>},
    {"pieces of 20", inPieces<20>},
    {"pieces of 64", inPieces<64>},
};

// The first place where two texts differ.
std::string difference(const std::string& fast, const std::string& byTokens) {
    std::size_t i = 0;
    while (i < fast.size() && i < byTokens.size() && fast[i] == byTokens[i]) ++i;
    const std::size_t from = i < 100 ? 0 : i - 100;
    return "fast: " + ::testing::PrintToString(fast.substr(from, 300)) +
           "\nby tokens: " + ::testing::PrintToString(byTokens.substr(from, 300));
}

// Whether the text is read alike with and without, whatever lends its bytes; false after a failure.
bool isReadAlike(const std::string& text, const Read& read) {
    const auto over = [&](InStream& in) {
        const std::string outcome = read(in);
        return outcome + placesOf(in, text.size());
    };
    const auto compare = [&](const char* name, const std::function<std::string()>& run) {
        const std::string fast = run();
        const WithoutFastContent off;
        const std::string byTokens = run();
        if (fast == byTokens) return true;
        ADD_FAILURE() << name << " over " << ::testing::PrintToString(text) << "\n" << difference(fast, byTokens);
        return false;
    };
    for (const Lender& lender : kLenders) {
        if (!compare(lender.name, [&] { return over(*lender.make(text)); })) return false;
    }
    return compare("standard stream", [&] {
        std::istringstream stream(text);
        FileInStream in(&stream);
        return over(in);
    });
}

// --- Inputs ---

class Maker : public Dice {
public:
    using Dice::Dice;

    std::string white() {
        static const char* const kWhite[] = {"", "", "", " ", "\n", "\r\n", "\r\n\t", "\r", "\n\r", "\r\r", "\t  "};
        return any(kWhite);
    }

    std::string value() {
        static const char* const kValues[] = {"\"1\"",         "'2'",      "\"\"",          "'&lt;&e;'",
                                              "\"&g;&g;&g;\"", "'a\r\nb'", "\"\r\"",        "'\"'",
                                              "\"<>/&#65;\"",  "'&'",      "\"\xff\x80\"",  "'0123456789abcdef&f;'",
                                              "\"&;'\"",       "'\n\r\r'", "\"0123456789\""};
        return any(kValues);
    }

    std::string attributes() {
        static const char* const kNames[] = {"x", "y", "z", "a-b.c:d_", "_", "name", "x"};
        std::string result;
        while (chance(45)) {
            result += (chance(60) ? " " : white()) + any(kNames) + (chance(85) ? "=" : white() + "=" + white());
            result += value();
        }
        return result;
    }

    std::string text() {
        static const char* const kFirst[] = {"t",          "word",     "\"",          "'",          "&",   "/",
                                             "\r\nword\r", "word\r\n", "\r",          "\n",         "=",   "]]",
                                             ">",          "\"q\"",    "&amp;",       "\r\nx\r\ny", "/\r", "\nx\r",
                                             "'\r\n'",     "&e",       "\r\n\"q\r\"", "\r&\r;",     "t\r"};
        static const char* const kRest[] = {"", "", " more", "\r\n", ";", "'", "\"", "\r", "\n", "\xc3\xa9", "&lt;"};
        return white() + any(kFirst) + any(kRest) + any(kRest);
    }

    std::string comment() {
        static const char* const kComments[] = {"<!-- c -->",    "<!---->",           "<!-->",
                                                "<!--->",        "<!--\r\n-->",       "<!--x\r--\n-->",
                                                "<!-- - -- -->", "<!--word\r\n\r-->", "<!--[x]-->"};
        return any(kComments);
    }

    std::string element(int depth) {
        static const char* const kNames[] = {"a", "b", "ab", "long-name.x:y_1", "_", "c"};
        const std::string name = any(kNames);
        std::string result = "<" + name + attributes() + white();
        if (depth == 0 || chance(15)) return result + "/>";
        result += ">";
        while (chance(70)) {
            const std::size_t kind = below(10);
            result += kind < 4 ? white() + element(depth - 1) : kind < 8 ? text() : white() + comment();
        }
        return result + white() + "</" + name + (chance(90) ? "" : white()) + ">";
    }

    std::string fragment() {
        static const char* const kFragments[] = {
            "<", "</",   "<a",   "<a>",     "</a>", "/>",  ">",    "<!--", "-->", "<?",   "<!", "<![CDATA[",
            "&", ";",    "\"",   "'",       "\r\n", "\n",  "\r",   " ",    "=",   "x=''", "a",  "-",
            "[", "\x80", "\xff", "x='&e;'", "< ",   "</ ", "<b/>", "t",    "/",   "&e;",  "--", "<!-- c -->"};
        return chance(4) ? std::string(1, '\0') : any(kFragments);
    }

    std::string damaged(std::string text) {
        for (std::size_t times = below(3); times > 0 && !text.empty(); --times) {
            const std::size_t place = below(text.size());
            switch (below(5)) {
            case 0: text.erase(place, 1 + below(3)); break;
            case 1: text.insert(place, fragment()); break;
            case 2: text.resize(place); break;
            case 3: text[place] = static_cast<char>(below(256)); break;
            default: text.replace(place, 1 + below(8), fragment()); break;
            }
        }
        return text;
    }

    std::string soup() {
        std::string result = "<a>";
        for (std::size_t count = 1 + below(25); count > 0; --count) result += fragment();
        return result;
    }
};

// --- One piece after the other ---

// A reading under way of a text after its first byte.
struct Reading {
    explicit Reading(const std::string& text) : in(text) { in.get(first); }

    void readFast() { FastContent(in, tree, nullptr, budget, referenceEnd).read(); }

    StringInStream in;
    std::unique_ptr<Element> root;
    StreamAccess::Session session{in};
    TreeBuilder tree{root};
    EntityBudget budget;
    int referenceEnd = 0;
    char first = 0;
};

struct Taken {
    std::string tree;
    std::string left;
    std::string message;
};

// What is read of the content of an open <r>: the open elements with what stands in them, and what is left.
Taken takenOf(const std::string& content) {
    Reading reading("x" + content);
    reading.tree.begin("r");
    reading.readFast();
    Taken taken;
    taken.left = content.substr(static_cast<std::size_t>(StreamAccess::tell(reading.in)) - 1);
    taken.message = reading.in.getErrorMessage();
    while (reading.tree.isOpen()) reading.tree.end();
    taken.tree = dump(reading.root.get());
    return taken;
}

}  // namespace

TEST(FastContentTest, TakesWholeOrdinaryPieces) {
    const struct {
        const char* name;
        std::string content;
        std::string tree;
    } kCases[] = {
        {"nothing", "", "r"},
        {"empty elements", "<a/><b />", "r(a b)"},
        {"attributes", "<a z='1'  y=\"2\"\n\tx='3'/>", "r(a[x=3 y=2 z=1])"},
        {"the last of a name", "<a x='1' x='2'/>", "r(a[x=2])"},
        {"attributes without white space between", "<a x='1'y='2'/>", "r(a[x=1 y=2])"},
        {"white space around =", "<a x = '1' y\r\n=\r\n'2'/>", "r(a[x=1 y=2])"},
        {"references in values", "<a x='&lt;&#65;&e;&' y=''/>", "r(a[x=<A&e;&; y=])"},
        {"long values", "<a x='" + std::string(100, 'v') + "&lt;'/>", "r(a[x=" + std::string(100, 'v') + "<])"},
        {"markup in values", "<a x='</r>' y=\"<!--'\"/>", "r(a[x=</r> y=<!--'])"},
        {"nested elements", "<a><b></b><ab><ab/></ab></a>", "r(a(b ab(ab)))"},
        {"texts", "t<a> u </a> v w <b/>", "r('t' a(' u ') ' v w ' b)"},
        {"texts of punctuation", "=<a/>><b/>/x<a/>/><b/>", "r('=' a '>' b '/x' a '/>' b)"},
        {"texts in quotes", "\"t\"<a/>'t\"' u<b/>", "r('\"t\"' a ''t\"' u' b)"},
        {"a quote that closes in another text", "\"t<a/>\"<b/>\"", "r('\"t' a '\"' b '\"')"},
        {"texts that begin with references", "&amp;<a/> &x y;z<b/>", "r('&amp;' a ' &x y;z' b)"},
        {"a reference that ends in another text", "&x<a/>&y;<b/>", "r('&x' a '&y;' b)"},
        {"comments", "<!-- <a> --><a/> <!----> <!--> <!--->t<!---->", "r(a 't')"},
        {"white space", " \r\n\t<a> </a>\n\n<b/>", "r(a b)"},
        {"CR LF", "\r\n<a\r\nx='1'>\r\nt\r\n</a>\r\n<b/>", "r(a[x=1]('\r\nt\r\n') b)"},
        {"bytes of no class", std::string("\x80\xff\0t<a/>", 8), std::string("r('\x80\xff\0t' a)", 11)},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        // The second quote of a case that needs one after the content stands after the end tag.
        const std::string end = c.content == "\"t<a/>\"<b/>\"" ? "</r>\"" : "</r>";
        const Taken taken = takenOf(c.content + end);
        EXPECT_EQ(taken.tree, c.tree);
        EXPECT_EQ(taken.left, end.substr(std::string("</r>").size()));
    }
}

TEST(FastContentTest, TakesTheFirstStartTagOfAnElementWithContent) {
    const struct {
        const char* text;
        bool isTaken;
    } kCases[] = {
        {" \r\n<a>", true}, {"<a x='&lt;'\r\n>t", true}, {"<a/>", false}, {"<a x=''/>", false}, {"t<a>", false},
        {"</a>", false},    {"<!-- c --><a>", false},    {"< a>", false}, {"<a", false},        {"", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        Reading reading(std::string("x") + c.text);
        reading.readFast();
        EXPECT_EQ(reading.tree.depth(), c.isTaken ? 1U : 0U);
        const std::string text = c.text;
        EXPECT_EQ(StreamAccess::tell(reading.in), c.isTaken ? static_cast<int>(text.find('>')) + 2 : 1);
    }
}

TEST(FastContentTest, TakesTheEndTagOfTheOutermostElementAndNothingAfterIt) {
    for (const char* const after : {"", " ", "<r>", "</r>", "t", "<!-- c -->"}) {
        Reading reading(std::string("x<r>t</r>") + after);
        reading.readFast();
        EXPECT_TRUE(reading.tree.isComplete());
        EXPECT_EQ(StreamAccess::tell(reading.in), 9);
        EXPECT_EQ(StreamAccess::token(reading.in), ">") << "what the tokens leave";
        EXPECT_EQ(reading.in.getErrorMessage(), "");
    }
}

TEST(FastContentTest, TakesNothingAfterAReturn) {
    for (const char before : {'\r', '\n'}) {
        Reading reading(before + std::string("\n<a>\n<b/>"));
        reading.readFast();
        EXPECT_EQ(reading.tree.isOpen(), before == '\n');
    }
}

TEST(FastContentTest, LeavesWhatIsNotOrdinaryFromItsFirstByteOn) {
    const char* const kPieces[] = {
        "</r >",         "</ r>",     "< a/>", "<a/ >",        "<a x/>",     "<a x=1/>",    "<a&/>",
        "<1/>",          "<a\"x\"/>", "<a=/>", "<a x='1' =/>", "<a x='1'?>", "<a x&='1'/>", "<a \x80/>",
        "<![CDATA[x]]>", "<?x?>",     "<!x>",  "<!-x-->",      "<!--x->",    "\"t<b/>",     "'t\"<b/>",
        "&t<b/>",        "t",         "<",
    };
    for (const std::string piece : kPieces) {
        for (const char* const before : {"", "\r\n ", "<b/>", "t<b/>\n", "<!-- c -->"}) {
            SCOPED_TRACE(before + piece);
            const std::string white = std::string(before).find_first_not_of(" \r\n") == std::string::npos ? before : "";
            EXPECT_EQ(takenOf(before + piece).left, (*before == 't' ? "\n" : white) + piece);
        }
    }
    EXPECT_EQ(takenOf("<a></b>").left, "</b>");
    EXPECT_EQ(takenOf("<a></a >").left, "</a >");
    EXPECT_EQ(takenOf("<a></xa>").left, "</xa>");
    EXPECT_EQ(takenOf("<a></ab>").left, "</ab>");
}

TEST(FastContentTest, LeavesWhatDoesNotEndInTheWindow) {
    for (const std::string piece : {"<a  xy='v&lt;' z=\"\"/>", "<a >", "\r\n<!-- x -- >-->", "\n</a>"}) {
        for (std::size_t length = 0; length < piece.size(); ++length) {
            const std::string prefix = piece.substr(0, length);
            EXPECT_EQ(takenOf("<a>" + prefix).left, prefix);
        }
        EXPECT_EQ(takenOf("<a>" + piece).left, "");
    }
}

TEST(FastContentTest, LeavesTheMessageOfACommentAndNoOther) {
    EXPECT_EQ(takenOf("<a x='&;' y='1'>t</a>\"t\"<b/>&;<a/>").message, "");
    EXPECT_EQ(takenOf("<a/><!-- c --><b/>").message, "\"[\" expected");
}

// Bytes that are read twice: where the byte before them is a CR the second time, one more line ends.
TEST(FastContentTest, RecordsTheLineBreaksOfWhatTokensReadTwice) {
    const struct {
        const char* name;
        std::string text;
        std::vector<int> breaks;  // in the order met
    } kCases[] = {
        {"a text", "<a>\r\nt</a>", {5}},
        {"a text after white space that is one word", "<a>\r\nt\r\n</a>", {5, 4, 8}},
        {"the same with a line feed first", "<a>\nt\r</a>", {4}},
        {"the same with a blank first", "<a> \r\nt\r\n</a>", {6, 9}},
        {"a word at the beginning of a text", "<a>t\r\n</a>", {6}},
        {"a word that something else ends", "<a>\r\nt \r\n</a>", {5, 9}},
        {"a slash", "<a>\r\n/\r\n</a>", {5, 4, 8}},
        {"a slash and a bracket", "<a>\r\n/>\r\n</a>", {5, 9}},
        {"punctuation", "<a>\r\n=\r\n</a>", {5, 8}},
        {"a text in quotes", "<a>\r\n\"\r\"\r\n</a>", {5, 10}},
        {"a quote that closes in another text", "<a>\"<b\r\n/>x\"</a>", {8, 7}},
        {"a reference", "<a>\r\n&\r\n;\r</a>", {5, 8}},
        {"a reference that ends in another text", "<a>&<b\r\n/>\r\n&\r;</a>", {8, 12, 7}},
        {"an element's name", "<a><b\r\n/></a>", {6, 7}},
        {"the name of one with content", "<a><b\r\n></b\r></a>", {6, 7, 12}},
        {"a value", "<a><b x='\r\r\n'\r\n/></a>", {11, 12, 15}},
        {"the name of an attribute", "<a><b x\r\n=\r\n'1' y\r\r=''/></a>", {8, 9, 12, 18, 19}},
        {"comments", "<a>\r\n<!--\r\n-->\r\n<!--x\r\n--></a>", {5, 11, 16, 23}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        internal::LineBreaks expected;
        for (const int position : c.breaks) expected.record(position);
        std::string expectedText;
        for (int position = 0; position <= static_cast<int>(c.text.size()) + 1; ++position) {
            const int line = expected.empty() ? 1 : expected.lineAt(position);
            expectedText += std::to_string(line) + ":" + std::to_string(expected.columnAt(position)) + " ";
        }
        const auto breaks = [&c] {
            StringInStream in(c.text);
            ElementReader reader;
            EXPECT_TRUE(reader.parse(in)) << reader.getErrorMessage();
            return placesOf(in, c.text.size());
        };
        EXPECT_EQ(breaks(), expectedText);
        const WithoutFastContent off;
        EXPECT_EQ(breaks(), expectedText);
    }
}

TEST(FastContentTest, ReadsElementsAsTokensDo) {
    Maker make(61);
    for (int i = 0; i < rounds(6000); ++i) {
        std::string text = make.element(3);
        while (make.chance(20)) text += make.white() + make.element(1);
        ASSERT_TRUE(isReadAlike(make.damaged(text), elementsIn)) << i;
    }
}

TEST(FastContentTest, ReadsSoupsAsTokensDo) {
    Maker make(62);
    for (int i = 0; i < rounds(10000); ++i) ASSERT_TRUE(isReadAlike(make.soup(), elementsIn)) << i;
}

TEST(FastContentTest, ReadsDocumentsAsTokensDo) {
    Maker make(63);
    for (int i = 0; i < rounds(1000); ++i) {
        const std::string text = "<?xml version='1.0'?>\r\n<!DOCTYPE a [<!ENTITY e 'v&amp;'><!ELEMENT a ANY>]>\r" +
                                 make.white() + make.damaged(make.element(3)) + make.white() + make.comment();
        ASSERT_TRUE(isReadAlike(text, documentIn)) << i;
    }
}

TEST(FastContentTest, ReadsEveryPrefixAsTokensDo) {
    const std::string kTexts[] = {
        "\r\n<a x='1'>\r\n<b y=\"&e;\r\n\"\r\nz\r='2' />\rt\r\n</a>\r\n",
        "<a><!-- c -->\r\n\"q\"<b/>'<b>'</b>&<b/>&e;<!---->&f\r\n<ab></ab></a>t",
        "<a>\r\nt\r\n<b>/\r<b>\n=\r</b></b >u<b></xb><![CDATA[",
    };
    for (const std::string& text : kTexts) {
        for (std::size_t length = 0; length <= text.size(); ++length)
            ASSERT_TRUE(isReadAlike(text.substr(0, length), elementsIn));
    }
}

// What is expected after the same tags before it may be there or not, and what comes then may be anything.
TEST(FastContentTest, ReadsTagsThatAreMostlyTheSameAsTokensDo) {
    for (const std::string& text : documentsOfSimilarTags()) ASSERT_TRUE(isReadAlike(text, elementsIn)) << text;
}

// A reference to `h` makes 400 bytes, of which its own length allows 300: more of them pass the bound byte by byte.
TEST(FastContentTest, MakesAsMuchTextFromReferencesAsTokensDo) {
    const GrowthLimit limit(1);
    int refused = 0;
    for (int count = 0; count < 60; ++count) {
        const std::string references = pieces(count, [](int) { return std::string("&h;"); });
        for (const std::string& text : {
                 "<a><b x='" + references + "'/></a>",
                 "<a><b x='" + references + "' y='" + references + "'/></a>",
                 "<a>t<b x='&lt;&h;' y='" + references + "' z='&h;&h;'/>\r\n<b\r\nx='&h;'/></a>",
                 "<a><b x='" + references + "'/>" + references + "<b y='" + references + "'>&h;</b></a>",
             }) {
            ASSERT_TRUE(isReadAlike(text, elementsIn)) << text;
            StringInStream in(text);
            refused += elementsIn(in).find("entity text too large") != std::string::npos ? 1 : 0;
        }
    }
    EXPECT_GT(refused, 20);
    EXPECT_LT(refused, 220);
}

TEST(FastContentTest, ReadsTheShippedDocumentsAsTokensDo) {
    for (const char* const name : kDocuments) {
        const std::string& lines = documentText(name);
        std::string withReturns;
        for (const char c : lines) withReturns += c == '\n' ? std::string("\r\n") : std::string(1, c);
        for (const std::string& text : {lines, withReturns}) {
            for (const Source source : {Source::String, Source::FileStream, Source::PlatformFile}) {
                SCOPED_TRACE(::testing::Message() << name << ", " << source);
                const auto outcome = [&] {
                    std::string shown;
                    withSource(source, text, [&](InStream& in) {
                        shown = documentIn(in);
                        shown += placesOf(in, text.size(), 97);
                    });
                    return shown;
                };
                const std::string fast = outcome();
                const WithoutFastContent off;
                const std::string byTokens = outcome();
                ASSERT_TRUE(fast == byTokens) << difference(fast, byTokens);
            }
        }
    }
}

}  // namespace Xml::test
