#include "xml/dom/internal/FewFirst.h"

#include <gtest/gtest.h>

namespace Xml::test {
namespace {

struct Given {
    Given() {}
    explicit Given(int itsNumber) : number(itsNumber) {}
    int number;
};

TEST(FewFirstTest, HoldsAnyNumberInTheirOrder) {
    FewFirst<Given> all;
    for (const int count : {0, 1, 8, 9, 16, 17, 1000, 3}) {
        all.clear();
        EXPECT_TRUE(all.empty());
        for (int i = 0; i < count; ++i) {
            all.add(i);
            ASSERT_EQ(all.back().number, i);
        }
        ASSERT_EQ(all.size(), static_cast<std::size_t>(count));
        EXPECT_EQ(all.end() - all.begin(), count);
        for (int i = 0; i < count; ++i) ASSERT_EQ(all[static_cast<std::size_t>(i)].number, i);
    }
}

TEST(FewFirstTest, EndsWhereItIsShortened) {
    for (const int count : {1, 8, 9}) {
        FewFirst<Given> all;
        for (int i = 0; i < count; ++i) all.add(i);
        all.endAt(all.begin() + count / 2);
        EXPECT_EQ(all.size(), static_cast<std::size_t>(count / 2));
        all.add(-1);
        EXPECT_EQ(all.back().number, -1);
        EXPECT_EQ(all.size(), static_cast<std::size_t>(count / 2 + 1));
    }
}

}  // namespace
}  // namespace Xml::test
