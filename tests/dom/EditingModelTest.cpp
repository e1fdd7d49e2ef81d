#include "models/EditingWorld.h"
#include "models/NaiveSink.h"
#include "support/Rounds.h"
#include "xml/stream/FileOutStream.h"
#include <gtest/gtest.h>
#include <sstream>

namespace Xml::test {
namespace {

TEST(EditingModelTest, RandomProgramsLeaveTheTreesLinksMarksAndFindingsOfTheNaiveModel) {
    const auto kPrograms = static_cast<unsigned>(rounds(100));
    constexpr int kOperations = 300;
    for (unsigned seed = 1; seed <= kPrograms; ++seed) {
        EditingWorld world(seed);
        ASSERT_EQ(world.difference(), "") << "seed " << seed;
        for (int i = 0; i < kOperations; ++i) {
            ASSERT_EQ(world.edit(), "") << "seed " << seed << ", operation " << i << ": " << world.lastOperation();
            ASSERT_EQ(world.search(), "") << "seed " << seed << ", operation " << i << ": " << world.lastOperation();
        }
        ASSERT_EQ(world.difference(), "") << "seed " << seed << ": a search changed something";
    }
}

// Marks fall where trees are written, so that setting them again is seen.
TEST(EditingModelTest, RandomProgramsWithWritesBetweenLeaveTheMarksOfTheNaiveModel) {
    const auto kPrograms = static_cast<unsigned>(rounds(60));
    constexpr int kOperations = 150;
    for (unsigned seed = 1001; seed <= 1000 + kPrograms; ++seed) {
        EditingWorld world(seed);
        ASSERT_EQ(world.difference(), "") << "seed " << seed;
        for (int i = 0; i < kOperations; ++i) {
            ASSERT_EQ(world.edit(), "") << "seed " << seed << ", operation " << i << ": " << world.lastOperation();
            if (!world.dice.chance(40)) continue;
            const EditingWorld::Top& top = world.dice.pick(world.tops);
            std::ostringstream text;
            std::ostringstream naiveText;
            FileOutStream out(&text);
            NaiveStreamSink sink(naiveText);
            top.real->toStream(out);
            top.model->toStream(sink);
            ASSERT_EQ(text.str(), naiveText.str()) << "seed " << seed << ", operation " << i;
            ASSERT_EQ(world.difference(), "") << "seed " << seed << ", written after " << world.lastOperation();
        }
    }
}

}  // namespace
}  // namespace Xml::test
