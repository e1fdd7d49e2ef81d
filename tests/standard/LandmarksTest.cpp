#include "xml/standard/internal/Landmarks.h"

#include "support/Dice.h"
#include "support/Rounds.h"
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

std::string shown(const Place& place) {
    return std::to_string(place.offset) + " " + std::to_string(place.line) + ":" + std::to_string(place.column);
}

TEST(LandmarksTest, GiveEachPlaceThatWasAdded) {
    Dice dice(7);
    for (int round = rounds(2000); round > 0; --round) {
        Landmarks landmarks;
        std::vector<Place> added;
        Place place{static_cast<std::int64_t>(dice.below(10)), 1, 1};
        for (auto left = 1 + dice.below(30); left > 0; --left) {
            added.push_back(place);
            landmarks.add(place);
            const int columns = static_cast<int>(dice.below(5));
            place.offset += columns;
            place.column += columns;
            if (dice.chance(4)) place = {place.offset + 1, place.line + 1, 1};
            if (dice.chance(4)) place = {place.offset + 2, place.line, place.column + 1};
            if (dice.chance(20)) place.offset += std::int64_t{1} << 40;
        }
        for (const Place& known : added) ASSERT_EQ(shown(landmarks.of(known.offset)), shown(known));
    }
}

TEST(LandmarksTest, ColumnsEndAtTheLargest) {
    constexpr int kMost = std::numeric_limits<int>::max();
    Landmarks landmarks;
    landmarks.add({5, kMost, kMost - 1});
    for (const std::int64_t offset : {std::int64_t{6}, std::int64_t{7}, std::int64_t{1} << 33})
        landmarks.add({offset, kMost, kMost});
    EXPECT_EQ(landmarks.of(5).column, kMost - 1);
    for (const std::int64_t offset : {std::int64_t{6}, std::int64_t{7}, std::int64_t{1} << 33})
        EXPECT_EQ(shown(landmarks.of(offset)), shown({offset, kMost, kMost}));
}

}  // namespace
}  // namespace Xml::test
