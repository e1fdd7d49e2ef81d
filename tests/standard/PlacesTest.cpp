#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/standard/internal/Places.h"
#include "xml/text/internal/Utf8.h"
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Xml::Places;
using Xml::TextPosition;

// The places of all characters of a text and of its end, one after the other.
std::vector<TextPosition> naivePlaces(const std::string& text) {
    std::vector<TextPosition> places;
    TextPosition place;
    for (std::size_t at = 0;;) {
        place.offset = static_cast<std::int64_t>(at);
        places.push_back(place);
        if (at == text.size()) return places;
        const auto c = Xml::Utf8::at(text.data() + at);
        at += static_cast<std::size_t>(c.size);
        ++place.characters;
        if (c.value > 0xFFFF) ++place.wide;
        const bool ends = c.value == '\n' || (c.value == '\r' && (at == text.size() || text[at] != '\n'));
        ++place.column;
        if (ends) {
            ++place.line;
            place.column = 1;
        }
    }
}

void expectSame(const TextPosition& place, const TextPosition& expected) {
    EXPECT_EQ(place.offset, expected.offset);
    EXPECT_EQ(place.line, expected.line);
    EXPECT_EQ(place.column, expected.column);
    EXPECT_EQ(place.characters, expected.characters);
    EXPECT_EQ(place.wide, expected.wide);
}

std::string randomText(Xml::test::Dice& dice) {
    const char* const kPieces[] = {"a", "bcdefghijklmnopq", "\n", "\r", "\r\n", "\n\r", "ä", "€",
                                   "😀", "0123456789012345"};
    std::string text;
    for (auto left = dice.below(30); left > 0; --left) text += kPieces[dice.below(std::size(kPieces))];
    return text;
}

TEST(PlacesTest, CountsLinesAndColumns) {
    const struct {
        const char* what;
        std::string text;  // the place is at its end, and "x" follows
        std::int64_t line;
        std::int64_t column;
    } kCases[] = {
        {"the beginning", "", 1, 1},
        {"within a line", "abc", 1, 4},
        {"after LF", "abc\n", 2, 1},
        {"after CR", "abc\r", 2, 1},
        {"after CR LF", "abc\r\n", 2, 1},
        {"after LF CR", "abc\n\r", 3, 1},
        {"after two CR", "\r\r", 3, 1},
        {"a tab is a column", "\t\t", 1, 3},
        {"characters of several bytes", "aä€😀", 1, 5},
        {"a line end in the middle of a block", "0123456\n89012345678", 2, 12},
        {"a line end at the end of a block", "012345678901234\nä", 2, 2},
        {"CR LF over the edge of a block", "012345678901234\r\nab", 2, 3},
        {"CR at the edge of a block", "012345678901234\rab", 2, 3},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        for (const std::string after : {"x", "x234567890123456789"}) {
            Places places;
            const auto place = places.at(static_cast<std::int64_t>(c.text.size()), c.text + after);
            EXPECT_EQ(place.line, c.line);
            EXPECT_EQ(place.column, c.column);
        }
    }
}

TEST(PlacesTest, BetweenReturnAndLineFeedIsStillInTheLine) {
    Places places;
    const std::string text = "ab\r\ncd";
    EXPECT_EQ(places.at(3, text).column, 4);
    EXPECT_EQ(places.at(3, text).line, 1);
    EXPECT_EQ(places.at(4, text).column, 1);
    EXPECT_EQ(places.at(4, text).line, 2);
}

TEST(PlacesTest, FindsPlacesInAnyOrder) {
    Xml::test::Dice dice(3);
    for (int round = Xml::test::rounds(3000); round > 0; --round) {
        const std::string text = randomText(dice);
        const auto all = naivePlaces(text);
        SCOPED_TRACE(testing::PrintToString(text));
        Places rising;
        Places some;
        Places any;
        for (const auto& expected : all) {
            expectSame(rising.at(expected.offset, text), expected);
            if (dice.chance(20)) expectSame(some.at(expected.offset, text), expected);
            const auto& other = all[dice.below(all.size())];
            expectSame(any.at(other.offset, text), other);
        }
        if (testing::Test::HasFailure()) return;
    }
}

// Only a part of the text is held: from a place that was forgotten to somewhere after the place that is asked. Where
// that ends between CR and LF the CR may count as a line end, so the part then ends after the LF.
TEST(PlacesTest, FindsPlacesInAStream) {
    Xml::test::Dice dice(4);
    for (int round = Xml::test::rounds(3000); round > 0; --round) {
        const std::string text = randomText(dice);
        const auto all = naivePlaces(text);
        SCOPED_TRACE(testing::PrintToString(text));
        Places places;
        std::size_t first = 0;
        for (std::size_t i = 0; i < all.size(); ++i) {
            std::size_t last = i + dice.below(all.size() - i);
            while (last + 1 < all.size() && text[static_cast<std::size_t>(all[last].offset)] == '\n') ++last;
            const std::int64_t from = all[first].offset;
            const std::string held =
                text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(all[last].offset - from));
            expectSame(places.at(all[i].offset, held, from), all[i]);
            const std::size_t earlier = first + dice.below(i - first + 1);
            expectSame(places.at(all[earlier].offset, held, from), all[earlier]);
            if (dice.chance(40)) {
                first = first + dice.below(i - first + 1);
                places.forget(all[first].offset, held, from);
            }
        }
        if (testing::Test::HasFailure()) return;
    }
}

TEST(PlacesTest, ForgettingBetweenReturnAndLineFeedEndsOneLine) {
    Places places;
    places.forget(2, "a\r", 0);
    EXPECT_EQ(places.at(2, "\nb", 2).line, 1);
    EXPECT_EQ(places.at(3, "\nb", 2).line, 2);
    EXPECT_EQ(places.at(4, "\nb", 2).line, 2);
    EXPECT_EQ(places.at(4, "\nb", 2).column, 2);
}

}  // namespace
