// Inputs above 64 MB, up to the largest that a source takes. They need 12 GB of memory and minutes, so they run in
// campaigns only.
#include "hostile/Inputs.h"
#include "support/Texts.h"
#include "xml/xml.h"
#include <climits>
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

constexpr int kGigabyte = 1'000'000'000;
constexpr int kTenMillion = 10 * kMillion;
constexpr Bounds kBounds = {std::size_t{12} << 30, 600};

std::string in(const std::string& content) { return "<r>" + content + "</r>"; }

TEST(LargeTest, OneThingMayBeAsLongAsTheSource) {
    const std::string x(kGigabyte, 'x');
    expectOutcomes({
        {"text", [&] { return in(x); }, document, facts(1, 1, 0, 1, kGigabyte), kBounds},
        {"value", [&] { return "<r a='" + x + "'/>"; }, document, facts(1, 1, 1, 0, kGigabyte), kBounds},
        {"comment", [&] { return in("<!--" + x + "-->"); }, document, facts(1, 1), kBounds},
        {"white space", [] { return std::string(kGigabyte, ' ') + "<r/>"; }, document, facts(1, 1), kBounds},
        {"text of references", [] { return in(repeated("&amp;", kGigabyte / 5)); }, document,
         facts(1, 1, 0, 1, kGigabyte / 5 * 5), kBounds},
        {"lines", [] { return in(repeated("x\r\n", kGigabyte / 3)); }, document, facts(1, 1, 0, 1, kGigabyte / 3 * 3),
         kBounds},
        {"quote that nothing closes", [&] { return in("'" + x); }, document, ended<ElementReader>(kGigabyte + 8),
         kBounds},
        {"ampersands without a semicolon", [] { return in(repeated("&<b/>", kGigabyte / 5)); }, document,
         ended<ElementReader>(kGigabyte + 7), kBounds},
        {"document type that is skipped", [&] { return "<!DOCTYPE r PUBLIC '" + x + "'><r/>"; }, document, facts(1, 1),
         kBounds},
    });
}

TEST(LargeTest, NamesMayBeAsLong) {
    constexpr int kLength = kGigabyte / 4;
    const std::string name(kLength, 'n');
    expectOutcomes({
        {"of an element", [&] { return "<" + name + "></" + name + ">"; }, document, facts(1, 1), kBounds},
        {"of an attribute", [&] { return "<r " + name + "=''/>"; }, document, facts(1, 1, 1), kBounds},
    });
}

TEST(LargeTest, ThereMayBeTenMillionOfAThing) {
    expectOutcomes({
        {"siblings", [] { return in(repeated("<a b=''/>", kTenMillion)); }, document,
         facts(kTenMillion + 1, 2, kTenMillion), kBounds},
        {"levels", [] { return repeated("<a>x", kTenMillion) + repeated("</a>", kTenMillion); }, document,
         facts(kTenMillion, kTenMillion, 0, kTenMillion, kTenMillion), kBounds},
        {"attributes",
         [] {
             return "<r" +
                    pieces(kTenMillion,
                           [](int i) { return " a" + std::to_string(i * 7'919LL % kTenMillion) + "=''"; }) +
                    "/>";
         },
         document, facts(1, 1, kTenMillion), kBounds},
        {"siblings that are written", [] { return in(repeated("<a>x</a>", kTenMillion)); }, documentWritten,
         facts(kTenMillion + 1, 2, 0, kTenMillion, kTenMillion) + ", written", kBounds},
        {"children that are judged",
         [] { return "<!DOCTYPE r [<!ELEMENT r (a*)><!ELEMENT a EMPTY>]>" + in(repeated("<a/>", kTenMillion)); },
         validity, "valid", kBounds},
    });
}

TEST(LargeTest, MarkupIsReadBehindAParseBufferWhoseLengthAnIntJustHolds) {
    expectOutcomes({{"each kind",
                     [] {
                         std::string answer;
                         const std::string text = "<!a> <!--x <!-x <![CDATA[x <![a[ <?xml <?php <!<!<!x .";
                         StringInStream source(text);
                         for (std::size_t begin = 0; text[begin] != '.'; begin = text.find(' ', begin) + 1) {
                             source.RestorePosition({static_cast<int>(begin), INT_MAX});
                             if (!source.getTokenInParseBuffer()) return source.getErrorMessage();
                             const int length = source.getPosition() - static_cast<int>(begin);
                             const std::string token = text.substr(begin, static_cast<std::size_t>(length));
                             const bool whole = source.CheckParseBufferEnd(token.data(), length);
                             const bool alone = source.CheckParseBufferEnd(('\0' + token).data(), length + 1);
                             const bool full = source.StorePosition().second == INT_MAX;
                             answer += token + (whole && alone && full ? " " : " (not in the buffer) ");
                         }
                         return answer;
                     },
                     "<!a <!-- <! <![CDATA[ <![ <?xml <? <! ", kBounds}});
}

TEST(LargeTest, AStringThatIsTooLongForPositionsIsRefused) {
    const auto read = [](std::size_t count) {
        return [count] {
            StringInStream source("<r/>" + std::string(count - 4, ' '));
            return document(source);
        };
    };
    expectOutcomes(
        {{"as long as may be", read(INT_MAX), facts(1, 1), kBounds},
         {"a byte more", read(INT_MAX + std::size_t{1}), failed<DocumentReader>(0, "Source too large"), kBounds}});
}

TEST(LargeTest, TheLevelOfTabsEndsWhereItCanGrowNoMore) {
    expectOutcomes({{"one more than there are",
                     [] {
                         std::ostringstream text;
                         FileOutStream out(&text);
                         for (std::int64_t i = 0; i <= INT_MAX; ++i) out.incTab();
                         for (std::int64_t i = 3; i < INT_MAX; ++i) out.decTab();
                         out << 'x';
                         return text.str();
                     },
                     "\t\t\tx", kBounds}});
}

TEST(LargeTest, PathsFindTenMillionNodes) {
    expectOutcomes({{"on some axes",
                     [] {
                         StringInStream source(in(repeated("<a/>", kTenMillion)));
                         DocumentReader reader;
                         if (!reader.parse(source)) return std::string(reader.getErrorMessage());
                         XPath query(reader.getDocument());
                         std::string answer;
                         for (const char16_t* path :
                              {u"//a", u"/r/a[last()]/preceding-sibling::a", u"//a/..", u"/r/a[position() > 1]"}) {
                             answer += std::to_string(query.GetValues(path)) + " ";
                         }
                         return answer;
                     },
                     "10000000 9999999 1 9999999 ", kBounds}});
}

}  // namespace
}  // namespace Xml::test
