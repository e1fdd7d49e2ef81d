#include "xml/standard/internal/LineTable.h"

#include "standard/Lines.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/standard/internal/Places.h"
#include "xml/text/internal/Utf8.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

// As those that Places counts.
TEST(LineTableTest, HasThePlacesOfAText) {
    Dice dice(11);
    for (int round = rounds(3000); round > 0; --round) {
        const std::string text = randomLines(dice, dice.chance(10) ? 300 : 40);
        SCOPED_TRACE(testing::PrintToString(text));
        const LineTable table(text, 3);
        Places places;
        for (std::size_t at = 0; at <= text.size(); ++at) {
            if (at < text.size() && Utf8::goesOn(text[at])) continue;
            const TextPosition expected = places.at(static_cast<std::int64_t>(at), text);
            const Place place = table.of(static_cast<std::int64_t>(at) + 3);
            ASSERT_EQ(place.offset, static_cast<std::int64_t>(at) + 3);
            ASSERT_EQ(place.line, expected.line) << at;
            ASSERT_EQ(place.column, expected.column) << at;
        }
    }
}

// The last byte of one block, and the first of the next.
TEST(LineTableTest, LineEndsStandAnywhere) {
    for (const std::string end : {"\n", "\r", "\r\n"}) {
        for (std::size_t before = 0; before < 200; ++before) {
            const std::string text = std::string(before, 'x') + end + "\xC3\xA4" + "b";
            const LineTable table(text, 0);
            const Place place = table.of(static_cast<std::int64_t>(text.size()) - 1);
            ASSERT_EQ(place.line, 2) << before;
            ASSERT_EQ(place.column, 2) << before;
            ASSERT_EQ(LineTable(text.substr(0, before + 1), 0).of(static_cast<std::int64_t>(before) + 1).line, 2);
        }
    }
}

}  // namespace
}  // namespace Xml::test
