// Documents that were written to break a reader.
#include "hostile/Inputs.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Xml::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLarge = {400 * kMiB};

// For what is not the point of its row.
constexpr int kMany = kMillion / 10;

std::string in(const std::string& content) { return "<r>" + content + "</r>"; }

TEST(HostileReadingTest, WhatIsNotContentIsNamedAtOnce) {
    // None of the text after it is looked at.
    const std::string rest = repeated("x", kLongName);
    expectOutcomes({
        {"instruction", [&] { return "<r><?b?>" + rest; }, document,
         failed<ElementReader>(5, "unexpected markup \"<?\"")},
        {"an XML declaration", [&] { return "<r><?xml version='1.0'?>" + rest; }, document,
         failed<ElementReader>(8, "unexpected markup \"<?xml\"")},
        {"CDATA section", [&] { return "<r><![CDATA[" + rest; }, document,
         failed<ElementReader>(12, "unexpected markup \"<![CDATA[\"")},
        {"another section", [&] { return "<r><![x [" + rest; }, document,
         failed<ElementReader>(6, "unexpected markup \"<![\"")},
        {"declaration", [&] { return "<r><!ELEMENT r ANY>" + rest; }, document,
         failed<ElementReader>(12, "unexpected markup \"<!ELEMENT\"")},
        {"document type", [&] { return "<r><!DOCTYPE r [" + rest; }, document,
         failed<ElementReader>(12, "unexpected markup \"<!DOCTYPE\"")},
        {"after siblings", [&] { return "<r>" + repeated("<a/>", kMany) + "<?b?>" + rest; }, document,
         failed<ElementReader>(4 * kMany + 5, "unexpected markup \"<?\""), kLarge},
        {"wrong end tag", [&] { return "<r></s>" + rest; }, document, failed<ElementReader>(6, "\"r\" expected")},
        {"no element at all", [&] { return ">" + rest; }, document, failed<ElementReader>(1, "\"<\" expected")},
        {"a second root", [&] { return "<r/><r>" + rest; }, document, facts(1, 1)},
        {"end tags without elements", [&] { return "<r/>" + repeated("</r>", kMillion); }, document, facts(1, 1)},
        {"a byte order mark", [&] { return "\xEF\xBB\xBF<r/>" + rest; }, document,
         failed<ElementReader>(3, "\"<\" expected")},
        {"16-bit text", [&] { return std::string("\xFF\xFE<\0r\0/\0>\0", 10) + rest; }, document,
         failed<ElementReader>(2, "\"<\" expected")},
    });
}

TEST(HostileReadingTest, MarkupThatOpensWithinMarkupIsReadOnce) {
    // What stands after "<!" and "<?" is found by trial, each of which reads a token, which may begin so itself.
    const auto opened = [](const char* markup) {
        return [markup] { return in(repeated(markup, kBrackets) + "<b/>"); };
    };
    expectOutcomes({
        {"<!", opened("<!"), document, failed<ElementReader>(5, "unexpected markup \"<!\"")},
        {"<?", opened("<?"), document, failed<ElementReader>(5, "unexpected markup \"<?\"")},
        {"<! and <?", opened("<!<?"), document, failed<ElementReader>(5, "unexpected markup \"<!\"")},
        {"<![", opened("<!["), document, failed<ElementReader>(6, "unexpected markup \"<![\"")},
        // Only the end of what follows CDATA is compared with "[", so that each of these goes on with the next one.
        {"<![CDATA", opened("<![CDATA"), document,
         failed<ElementReader>(8 * kBrackets - 2,
                               "unexpected markup \"" + repeated("<![CDATA", kBrackets - 1) + "<![\"")},
        {"<![CDATA[", opened("<![CDATA["), document, failed<ElementReader>(12, "unexpected markup \"<![CDATA[\"")},
        {"<!-", opened("<!-"), document, failed<ElementReader>(5, "unexpected markup \"<!\"")},
        {"<!\"", opened("<!\""), document, failed<ElementReader>(5, "unexpected markup \"<!\"")},
        {"comments that open within comments", [] { return in(repeated("<!--", kBrackets) + "-->"); }, document,
         facts(1, 1)},
        {"in a document type", [] { return "<!DOCTYPE r [" + repeated("<!", kBrackets) + ">"; }, document,
         failed<DTDReader>(13, "unexpected token \"<!\"")},
        {"in front of the root", [] { return repeated("<!", kBrackets) + ">"; }, document,
         failed<ElementReader>(2, "\"<\" expected")},
    });
}

TEST(HostileReadingTest, WhatMayEndFarAwayIsLookedForOnce) {
    expectOutcomes({
        {"ampersands whose semicolon is far", [] { return in(repeated("&<b/>", kMany) + ";"); }, document,
         facts(kMany + 1, 2, 0, kMany + 1, kMany + 1), kLarge},
        {"ampersands without a semicolon", [] { return in(repeated("&<b/>", kMillion)); }, document,
         ended<ElementReader>(5 * kMillion + 7)},
        {"elements, then an ampersand without one", [] { return in(repeated("<b/>", kMany) + "&"); }, document,
         ended<ElementReader>(4 * kMany + 8), kLarge},
        {"quotes in turn, the last of which have no other",
         [] { return in(repeated("\"<b/>'<b/>", kMany / 2) + "x'\""); }, document,
         facts(kMany + 1, 2, 0, kMany + 1, kMany + 3), kLarge},
        {"a lone quote", [] { return in("'" + repeated("<b/>", kMillion)); }, document,
         ended<ElementReader>(4 * kMillion + 8)},
        {"elements, then a lone quote", [] { return in(repeated("<b/>", kMany) + "\""); }, document,
         ended<ElementReader>(4 * kMany + 8), kLarge},
        {"a value that never ends", [] { return "<r a='" + repeated("<b c=\"\"/>", kMillion); }, document,
         ended<ElementReader>(9 * kMillion + 6)},
        {"a comment that never ends", [] { return "<r><!--" + repeated("- ->", kMillion); }, document, "silent"},
        {"a comment that never ends in front of the root", [] { return "<!--" + repeated("--\r", kMillion); }, document,
         ended<CommentReader>(3 * kMillion + 4)},
        {"an instruction that never ends", [] { return "<?p " + repeated("? >", kMillion); }, document,
         ended<PIReader>(3 * kMillion + 4)},
        {"an XML declaration that never ends", [] { return "<?xml version='1.0'?" + repeated(" a", kMillion); },
         document, "silent"},
        {"a document type that is skipped and never ends",
         [] { return "<!DOCTYPE r PUBLIC" + repeated(" 'a'", kMillion); }, document,
         ended<DocumentReader>(4 * kMillion + 18)},
        {"a document type that is skipped", [] { return "<!DOCTYPE r PUBLIC" + repeated(" '>'", kMillion) + "><r/>"; },
         document, facts(1, 1)},
    });
}

TEST(HostileReadingTest, ManyThingsAreReadInTurn) {
    const auto name = [](int i) { return "a" + std::to_string(i * 7'919LL % kMillion); };
    expectOutcomes({
        {"siblings", [] { return in(repeated("<a/>", kMillion)); }, document, facts(kMillion + 1, 2), kLarge},
        {"attributes in any order",
         [&] { return "<r" + pieces(kMillion, [&](int i) { return " " + name(i) + "=''"; }) + "/>"; }, document,
         facts(1, 1, kMillion), kLarge},
        {"attributes of one name",
         [] { return "<r" + pieces(kMany, [](int i) { return " a='" + std::to_string(kMany + i) + "'"; }) + "/>"; },
         document, facts(1, 1, 1, 0, static_cast<int>(std::to_string(kMany).size())), kLarge},
        {"line ends", [] { return "<r>" + repeated("\r\n", kMillion) + "</s>"; }, document,
         failed<ElementReader>(3, "\"r\" expected", kMillion)},
        {"carriage returns", [] { return "<r>" + repeated("\r", kMillion) + "</s>"; }, document,
         failed<ElementReader>(3, "\"r\" expected", kMillion - 1)},
        {"comments", [] { return repeated("<!---->", kMany) + "<r>" + repeated("<!-->", kMany) + "</r>"; }, document,
         facts(1, 1)},
        {"instructions", [] { return repeated("<?\?>", kMany) + "<r/>" + repeated("<?a?>", kMany) + "<r/>"; }, document,
         facts(1, 1)},
        {"texts", [] { return in(repeated("x<a/>", kMany)); }, document, facts(kMany + 1, 2, 0, kMany, kMany), kLarge},
        {"white space", [] { return repeated("\n", kLongName) + "<r" + repeated("\t", kLongName) + "/>"; }, document,
         facts(1, 1)},
        {"nothing but white space", [] { return repeated(" ", kLongName); }, document,
         ended<DocumentReader>(kLongName)},
        {"nothing", [] { return std::string(); }, document, ended<DocumentReader>(0)},
    });
}

TEST(HostileReadingTest, LongThingsAreReadWhole) {
    constexpr int kLong = kLongName / 4;
    const std::string name = repeated("n", kLong);
    const std::string longName = repeated("n", kLongName);
    const std::string text = repeated("x&amp;", kLongText / 6);
    const auto bytes = [](int count) { return Bounds{static_cast<std::size_t>(count) + 64 * kMiB}; };
    expectOutcomes({
        {"names", [&] { return "<" + longName + " " + longName + "=''></" + longName + ">"; }, document, facts(1, 1, 1),
         bytes(8 * kLongName)},
        {"a name that another should end", [&] { return "<" + name + "></n>"; }, document,
         failed<ElementReader>(kLong + 5, "\"" + name + "\" expected"), bytes(12 * kLong)},
        {"a name that is none", [&] { return "<1" + name + ">"; }, document,
         failed<ElementReader>(kLong + 2, "not a name: 1" + name), bytes(12 * kLong)},
        {"a value", [&] { return "<r a='" + name + "'/>"; }, document, facts(1, 1, 1, 0, kLong), bytes(12 * kLong)},
        {"a value of references", [&] { return "<r a='" + repeated("&#65;", kLong / 5) + "'/>"; }, document,
         facts(1, 1, 1, 0, kLong / 5), bytes(12 * kLong)},
        {"a value of ampersands", [&] { return "<r a='" + repeated("&", kLong) + "'/>"; }, document,
         facts(1, 1, 1, 0, kLong + 1), bytes(12 * kLong)},
        {"a text", [&] { return in(text); }, document, facts(1, 1, 0, 1, kLongText / 6 * 6), bytes(8 * kLongText)},
        {"a text in quotes", [&] { return in("'" + name + "'"); }, document, facts(1, 1, 0, 1, kLong + 2),
         bytes(12 * kLong)},
        {"a comment of dashes", [] { return in("<!--" + repeated("-", kLong) + "-->"); }, document, facts(1, 1),
         bytes(8 * kLong)},
        {"an encoding", [&] { return "<?xml version='1.0' encoding='" + name + "'?><r/>"; }, document,
         facts(1, 1) + "; " + failed<VersionInfoReader>(kLong + 31, "Unsupported encoding: '" + name + "'"),
         bytes(12 * kLong)},
        {"markup", [&] { return "<r><!" + name + ">"; }, document,
         failed<ElementReader>(kLong + 5, "unexpected markup \"<!" + name + "\""), bytes(16 * kLong)},
        {"a word in front of the root", [&] { return name + "<r/>"; }, document,
         failed<ElementReader>(kLong, "\"<\" expected"), bytes(12 * kLong)},
    });
}

TEST(HostileReadingTest, MemoryThatRunsOutReachesTheCallerAndNothingIsLost) {
    if (!kMemoryIsBounded) GTEST_SKIP() << "memory has no bound here";
    constexpr Bounds kSmall = {16 * kMiB};
    expectOutcomes({
        {"levels", [] { return repeated("<a>", kMillion); }, document, "threw std::bad_alloc", kSmall},
        {"siblings", [] { return in(repeated("<a/>", kMillion)); }, document, "threw std::bad_alloc", kSmall},
        {"attributes",
         [] { return "<r" + pieces(kMillion, [](int i) { return " a" + std::to_string(i) + "=''"; }) + "/>"; },
         document, "threw std::bad_alloc", kSmall},
        {"a text", [] { return in(repeated("x", kLongText)); }, document, "threw std::bad_alloc", kSmall},
        {"a document type",
         [] {
             return "<!DOCTYPE r [" +
                    pieces(kMillion / 4, [](int i) { return "<!ENTITY e" + std::to_string(i) + " 'v'>"; }) + "]><r/>";
         },
         document, "threw std::bad_alloc", kSmall},
        {"nested groups", [] { return "<!DOCTYPE r [<!ELEMENT r " + repeated("(", kGroups); }, document,
         "threw std::bad_alloc", kSmall},
    });
}

TEST(HostileReadingTest, NumbersAndFormatsInTextsAreText) {
    const std::string digits = repeated("9", 300);
    const std::string many = repeated("7", kLongName);
    expectOutcomes({
        {"a character number of 300 digits", [&] { return "<r a='&#" + digits + ";&#x" + digits + ";'/>"; },
         [](InStream& source) {
             ElementReader reader;
             if (!reader.parse(source)) return std::string("not read");
             const std::string& value = reader.getRoot()->getAttributeValue("a");
             return value == "&#" + repeated("9", 300) + ";&#x" + repeated("9", 300) + ";" ? std::string("as it was")
                    : value == std::string(2, '\0')                                        ? "two zero bytes"
                                                                                           : "something else";
         },
         "as it was"},
        {"one of 16 million digits", [&] { return "<r a='&#" + many + ";'>&#x" + many + ";</r>"; }, document,
         facts(1, 1, 1, 1, 2 * kLongName + 7), Bounds{static_cast<std::size_t>(20) * kLongName + 64 * kMiB}},
        {"formats as a name", [] { return "<%s%n%d%1000000d>"; }, document,
         failed<ElementReader>(16, "not a name: %s%n%d%1000000d")},
        {"formats as markup", [] { return "<r><!ELEMENT%n%n>"; }, document,
         failed<ElementReader>(5, "unexpected markup \"<!\"")},
        {"formats as an end tag", [] { return "<r></%s%s%s%n>"; }, document,
         failed<ElementReader>(13, "\"r\" expected")},
        {"formats as an encoding", [] { return "<?xml version='1.0' encoding='%s%n'?><r/>"; }, document,
         facts(1, 1) + "; " + failed<VersionInfoReader>(35, "Unsupported encoding: '%s%n'")},
        {"formats in a diagnostic", [] { return "<!DOCTYPE r [<!ELEMENT r %s%n%d "; },
         [](InStream& source) {
             const std::string answer = document(source);
             return answer + ": " + Message::lastMessage();
         },
         "silent: <ElementDeclReader::parse> don't know what to do %s%n%d"},
    });
}

// Every byte in great number, in every place: nothing but the four kinds of source is compared here.
TEST(HostileReadingTest, RunsOfAnyByteEndAlikeFromEveryPromptSource) {
    const std::string path = scratchPath("run");
    const std::string answer = runGuarded(
        [&path] {
            constexpr int kRun = 5'000;
            const char* const kPlaces[][2] = {{"", ""},        {"<r>", "</r>"},         {"<r ", "/>"},
                                              {"<r a=", "/>"}, {"<!DOCTYPE r [", "]>"}, {"<", ">"}};
            int differences = 0;
            for (int byte = 0; byte < 256; ++byte) {
                for (const auto& place : kPlaces) {
                    const std::string text = place[0] + std::string(kRun, static_cast<char>(byte)) + place[1];
                    nowAt("byte " + std::to_string(byte) + " after " + place[0]);
                    std::remove(path.c_str());
                    writeFile(path, text);
                    std::string first;
                    for (const Source source : kAllSources) {
                        std::string outcome;
                        withSource(source, text, path, [&](InStream& stream) { outcome = document(stream); });
                        if (source == Source::String) first = outcome;
                        if (source != Source::FileStream && outcome != first) ++differences;
                        if (outcome.empty()) ++differences;
                    }
                }
            }
            std::remove(path.c_str());
            return std::to_string(differences) + " differences";
        },
        Bounds{});
    std::remove(path.c_str());
    EXPECT_EQ(answer, "0 differences");
}

}  // namespace
}  // namespace Xml::test
