#include "models/EditingWorld.h"
#include "support/Rounds.h"
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace Xml::test
