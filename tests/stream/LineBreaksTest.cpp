#include "stream/OverSources.h"
#include "xml/stream/LineBreaks.h"
#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using internal::LineBreaks;

struct Place {
    int position;
    int line;
    int column;
};

// Reads the text byte by byte and asks for line and column after each.
template <class Tokenizer>
void expectPlaces(Tokenizer& in, const std::vector<Place>& places) {
    for (const Place& place : places) {
        SCOPED_TRACE(place.position);
        char c;
        while (in.getPosition() < place.position) ASSERT_TRUE(in.get(c));
        in.setPosition(place.position);
        EXPECT_EQ(in.getLine(), place.line);
        EXPECT_EQ(in.getColumn(), place.column);
    }
}

TEST(LineBreaksTest, RecordsABreakAtTheSecondByteOfAPairOnly) {
    const struct {
        const char* name;
        const char* text;
        std::vector<Place> places;  // of the whole text read once, in this order
    } kCases[] = {
        {"line feeds", "ab\nc\n\nd ", {{2, 1, 2}, {3, 1, 3}, {5, 1, 5}, {6, 1, 6}, {7, 1, 7}}},
        {"single carriage returns", "a\rb\rc ", {{2, 1, 2}, {4, 1, 4}, {5, 1, 5}}},
        {"CR LF",
         "ab\r\ncd\r\ne ",
         {{2, 1, 2},
          {3, 1, 3},
          {4, 1, 4},
          {5, 1, 1},
          {6, 1, 2},
          {7, 1, 3},
          {8, 2, 4},
          {9, 2, 1},
          {4, 1, 4},
          {2, 2, 2},
          {6, 2, 2}}},
        {"CR CR", "\r\ra ", {{1, 1, 1}, {2, 1, 2}, {3, 1, 1}}},
        {"CR CR LF", "\r\r\na ", {{2, 1, 2}, {3, 2, 1}, {4, 2, 1}}},
        {"CR CR CR", "\r\r\ra ", {{2, 1, 2}, {3, 2, 1}, {4, 2, 1}}},
        {"LF CR", "\n\ra ", {{1, 1, 1}, {2, 1, 2}, {3, 1, 3}}},
        {"CR LF LF", "\r\n\na ", {{2, 1, 2}, {3, 1, 1}, {4, 1, 2}}},
        {"tabs count as one", "\r\n\t\ta ", {{3, 1, 1}, {4, 1, 2}}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        everywhere(c.text, [&c](auto& in) { expectPlaces(in, c.places); });
    }
}

TEST(LineBreaksTest, CountsEachBreakOnceHoweverOftenItIsRead) {
    everywhere("'a'\r\n'b'\r\n'c' ", [](auto& in) {
        for (int round = 0; round < 3; ++round) {
            in.setPosition(0);
            std::string text;
            for (int i = 0; i < 3; ++i) EXPECT_TRUE(in.getString(text));
            EXPECT_EQ(text, "'c'");
            EXPECT_EQ(in.getLine(), 2);
            EXPECT_EQ(in.getColumn(), 3);
        }
    });
}

// The carriage return is read, stepped back over and read again: two in a row for the tracking.
TEST(LineBreaksTest, BreaksTwiceWhereAWordEndsAtCarriageReturnLineFeed) {
    everywhere("a\r\nb ", [](auto& in) {
        std::string token;
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(in.getLine(), 1);
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "b");
        EXPECT_EQ(in.getLine(), 2);
        EXPECT_EQ(in.getColumn(), 1);
        in.setPosition(2);
        EXPECT_EQ(in.getLine(), 1);
        EXPECT_EQ(in.getColumn(), 2);
        in.setPosition(3);
        EXPECT_EQ(in.getLine(), 2);
        EXPECT_EQ(in.getColumn(), 1);
    });
}

TEST(LineBreaksTest, TracksBreaksInTokensStringsReferencesDataAndWhatIsSkipped) {
    everywhere("'\r\n'&\r\n; \r\n<\r\n<\r\n-->  ", [](auto& in) {
        std::string token;
        DataHolder data;
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(in.getLine(), 1);
        EXPECT_EQ(in.getColumn(), 1);
        EXPECT_TRUE(in.getToken(token));
        EXPECT_EQ(token, "&\r\n;");
        EXPECT_EQ(in.getLine(), 2);
        EXPECT_TRUE(in.getCharData(data));
        EXPECT_EQ(in.getLine(), 3);
        EXPECT_TRUE(in.getToken(token));
        EXPECT_TRUE(in.getCharData(data));
        EXPECT_EQ(in.getLine(), 5);
        EXPECT_TRUE(in.skip("-->"));
        EXPECT_EQ(in.getLine(), 6);
        EXPECT_EQ(in.getColumn(), 3);
    });
}

TEST(LineBreaksTest, DoesNotTrackTheSourcesOwnReads) {
    everywhere("\r\n\r\n x ", [](auto& in) {
        char c;
        for (int i = 0; i < 5; ++i) EXPECT_TRUE(in.getChar(c));
        EXPECT_EQ(in.getColumn(), 5);
        in.setPosition(0);
        in.eatWhite();
        EXPECT_EQ(in.getLine(), 2);
        EXPECT_EQ(in.getColumn(), 1);
    });
}

// Going back restores neither the breaks nor what the last byte was.
TEST(LineBreaksTest, RemembersACarriageReturnAcrossGoingBack) {
    everywhere("\ra\n ", [](auto& in) {
        char c;
        EXPECT_TRUE(in.get(c));
        in.setPosition(2);
        EXPECT_TRUE(in.get(c));
        EXPECT_EQ(in.getLine(), 1);
        EXPECT_EQ(in.getColumn(), 3);
        EXPECT_TRUE(in.get(c));
        EXPECT_EQ(in.getColumn(), 1);
    });
    everywhere("\r x", [](auto& in) {
        char c;
        EXPECT_TRUE(in.get(c));
        in.putBackChar();
        EXPECT_TRUE(in.get(c));
        EXPECT_TRUE(in.get(c));
        EXPECT_EQ(in.getPosition(), 2);
        EXPECT_EQ(in.getColumn(), 1);
    });
}

// Met in another order than they lie in, breaks are looked for from the first one met.
TEST(LineBreaksTest, LooksForBreaksInTheOrderTheyWereMet) {
    everywhere("'\r\n' '\r\n' '\r\n' ", [](auto& in) {
        std::string text;
        for (const int position : {10, 0, 5}) {
            in.setPosition(position);
            EXPECT_TRUE(in.getString(text));
        }
        const Place kPlaces[] = {{2, 3, 2}, {3, 2, 3},   {4, 3, 4},  {8, 3, 8},
                                 {9, 3, 9}, {13, 1, 13}, {14, 3, 6}, {15, 3, 7}};
        for (const Place& place : kPlaces) {
            SCOPED_TRACE(place.position);
            in.setPosition(place.position);
            EXPECT_EQ(in.getLine(), place.line);
            EXPECT_EQ(in.getColumn(), place.column);
        }
    });
}

// --- Alone ---

// What is kept, and looked up by looking at all of it.
struct NaiveBreaks {
    std::vector<int> positions;

    void record(int position) {
        if (std::find(positions.begin(), positions.end(), position) == positions.end()) positions.push_back(position);
    }
    int lineAt(int position) const {
        const auto found = std::find(positions.begin(), positions.end(), position);
        const auto number = found - positions.begin() + (found == positions.end() ? 0 : 1);
        return static_cast<int>(std::max<std::ptrdiff_t>(number, 1));
    }
    int columnAt(int position) const {
        const auto first =
            std::find_if(positions.begin(), positions.end(), [position](int kept) { return kept >= position; });
        return first == positions.begin() ? position : position - *(first - 1);
    }
};

void expectAlike(const LineBreaks& breaks, const NaiveBreaks& naive, int end) {
    EXPECT_EQ(breaks.empty(), naive.positions.empty());
    for (int position = -2; position <= end + 2; ++position) {
        SCOPED_TRACE(position);
        EXPECT_EQ(breaks.lineAt(position), naive.lineAt(position));
        EXPECT_EQ(breaks.columnAt(position), naive.columnAt(position));
    }
}

TEST(LineBreaksTest, FindsPositionsInWhateverOrderTheyWereMet) {
    const struct {
        const char* name;
        std::vector<int> met;
    } kCases[] = {
        {"none", {}},
        {"one", {5}},
        {"rising", {2, 4, 9, 20}},
        {"rising, some again", {2, 4, 2, 9, 4, 9, 20, 2}},
        {"falling", {20, 9, 4, 2}},
        {"ahead and back", {2, 20, 4, 9, 21, 3}},
        {"back, and all of them again", {10, 20, 5, 5, 20, 10, 30, 5}},
        {"at the start", {0, 3, 0}},
        {"far ahead at first", {30, 1, 2, 3, 31}},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        LineBreaks breaks;
        NaiveBreaks naive;
        expectAlike(breaks, naive, 3);
        for (const int position : c.met) {
            breaks.record(position);
            naive.record(position);
            expectAlike(breaks, naive, 35);
        }
    }
}

TEST(LineBreaksTest, FindsManyPositionsInRandomOrder) {
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        SCOPED_TRACE(round);
        LineBreaks breaks;
        NaiveBreaks naive;
        int ahead = 0;
        for (int i = 0; i < 60; ++i) {
            // Mostly ahead, now and then anywhere.
            ahead += static_cast<int>(random() % 5);
            const int position = random() % 8 == 0 ? static_cast<int>(random() % 200) : ahead;
            breaks.record(position);
            naive.record(position);
        }
        expectAlike(breaks, naive, 250);
    }
}

// So many that this would not end if each were looked for among all.
TEST(LineBreaksTest, FindsManyPositionsThatFallAndThenRise) {
    const int kCount = 300'000;
    LineBreaks breaks;
    for (int i = kCount; i > 0; --i) breaks.record(2 * i);
    for (int i = kCount + 1; i <= 2 * kCount; ++i) breaks.record(2 * i);
    int wrong = 0;
    for (int i = 1; i <= 2 * kCount; ++i) {
        const int number = i <= kCount ? kCount - i + 1 : i;
        if (breaks.lineAt(2 * i) != number || breaks.lineAt(2 * i + 1) != 2 * kCount) ++wrong;
        // Before the first that rises all are less than it; the first one met is the greatest of those that fall.
        const int before = i <= kCount ? 0 : i == kCount + 1 ? 2 : 2 * (i - 1);
        if (breaks.columnAt(2 * i) != 2 * i - before) ++wrong;
    }
    EXPECT_EQ(wrong, 0);
}

TEST(LineBreaksTest, TakesARunAsItTakesEachByte) {
    std::mt19937 random(11);
    for (int round = 0; round < 500; ++round) {
        std::string text;
        for (int i = 0; i < 30; ++i) text += "\r\n\ra"[random() % 4];
        SCOPED_TRACE(round);
        LineBreaks run;
        LineBreaks bytes;
        LineBreaks hops;
        NaiveBreaks naive;
        const char* const begin = text.data();
        const std::size_t middle = random() % text.size();
        const auto positionOf = [begin](const char* byte) { return static_cast<int>(byte - begin); };
        run.noteRun(begin, begin + middle, positionOf);
        run.noteRun(begin + middle, begin + text.size(), positionOf);
        for (const char* at = begin; (at = std::find(at, begin + text.size(), '\r')) != begin + text.size();)
            at = hops.noteAfterReturn(at + 1, begin + text.size(), positionOf);
        for (std::size_t i = 0; i < text.size(); ++i) {
            const int after = static_cast<int>(i) + 1;
            if (text[i] == 'a') {
                bytes.noteOthers();
            } else {
                bytes.noteBreakByte(text[i], [after] { return after; });
            }
            if (i > 0 && text[i - 1] == '\r' && text[i] != 'a') naive.record(after);
        }
        EXPECT_EQ(run.isAfterReturn(), text.back() == '\r');
        EXPECT_EQ(bytes.isAfterReturn(), text.back() == '\r');
        EXPECT_EQ(hops.isAfterReturn(), text.back() == '\r');
        expectAlike(run, naive, 31);
        expectAlike(bytes, naive, 31);
        expectAlike(hops, naive, 31);
    }
}

TEST(LineBreaksTest, AsksForAPositionOnlyWhereThereIsABreak) {
    LineBreaks breaks;
    int asked = 0;
    const auto position = [&asked] { return ++asked; };
    for (const char c : {'\n', '\r'}) breaks.noteBreakByte(c, position);
    EXPECT_EQ(asked, 0);
    breaks.noteBreakByte('\n', position);
    EXPECT_EQ(asked, 1);
    breaks.setAfterReturn(true);
    breaks.noteOthers();
    breaks.noteBreakByte('\n', position);
    EXPECT_EQ(asked, 1);
    breaks.setAfterReturn(true);
    breaks.noteBreakByte('\n', position);
    EXPECT_EQ(asked, 2);
}

}  // namespace
}  // namespace Xml::test
