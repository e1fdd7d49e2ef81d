#include "xml/standard/internal/LineRuns.h"

#include "standard/Lines.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/standard/internal/Places.h"
#include "xml/text/internal/Utf8.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// Long lines of single bytes among them.
std::string randomText(Dice& dice) {
    std::string text = randomLines(dice, 30);
    if (dice.chance(10)) text.insert(0, std::string(dice.below(3000), 'x'));
    return text;
}

void expectPlace(LineRuns& runs, std::int64_t offset, const std::string& text) {
    Places places;
    const TextPosition& expected = places.at(offset, text);
    const LineRun& run = runs.run(offset);
    ASSERT_TRUE(run.has(offset));
    const Place place = run.placeOf(offset);
    ASSERT_EQ(place.offset, offset + 3);
    ASSERT_EQ(place.line, expected.line);
    ASSERT_EQ(place.column, expected.column);
}

// As those that Places counts; a run has them all.
TEST(LineRunsTest, HaveThePlacesOfAText) {
    Dice dice(5);
    for (int round = rounds(3000); round > 0; --round) {
        const std::string text = randomText(dice);
        SCOPED_TRACE(testing::PrintToString(text));
        LineRuns rising(text, 3);
        LineRuns any(text, 3);
        for (std::size_t at = 0; at <= text.size(); ++at) {
            if (at < text.size() && Utf8::goesOn(text[at])) continue;
            ASSERT_NO_FATAL_FAILURE(expectPlace(rising, static_cast<std::int64_t>(at), text));
            std::size_t other = dice.below(text.size() + 1);
            while (other < text.size() && Utf8::goesOn(text[other])) --other;
            ASSERT_NO_FATAL_FAILURE(expectPlace(any, static_cast<std::int64_t>(other), text));
            const LineRun run = any.run(static_cast<std::int64_t>(other));
            for (const std::int64_t offset : {run.from, run.to})
                ASSERT_NO_FATAL_FAILURE(expectPlace(any, offset, text));
        }
    }
}

TEST(LineRunsTest, HaveNothingAtFirst) {
    const LineRun none;
    EXPECT_FALSE(none.has(0));
    LineRuns runs("", 0);
    EXPECT_EQ(runs.run(0).placeOf(0).column, 1);
    EXPECT_EQ(runs.run(0).placeOf(0).line, 1);
}

}  // namespace
}  // namespace Xml::test
