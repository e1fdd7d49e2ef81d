#include "xml/dtd/internal/VerdictTable.h"

#include "support/Trees.h"
#include <gtest/gtest.h>
#include <thread>

namespace Xml::test {
namespace {

TEST(VerdictTableTest, KeepsTheLastWordOfEachElement) {
    const Element one("one"), other("other");
    VerdictTable table;
    EXPECT_EQ(table.of(one), 0U);
    table.keep(one, 0);
    EXPECT_EQ(table.of(one), 0U);
    table.keep(one, 7);
    EXPECT_EQ(table.of(one), 7U);
    EXPECT_EQ(table.of(other), 0U);
    table.keep(other, 8);
    table.keep(one, 9);
    EXPECT_EQ(table.of(one), 9U);
    EXPECT_EQ(table.of(other), 8U);
    table.keep(one, 0);
    EXPECT_EQ(table.of(one), 0U);
    EXPECT_EQ(table.of(other), 8U);
}

TEST(VerdictTableTest, KnowsNothingOfElementsThatAnotherOneKept) {
    const Element one("one"), other("other");
    {
        VerdictTable before;
        before.keep(one, 7);
        before.keep(other, 8);
    }
    VerdictTable table;
    EXPECT_EQ(table.of(one), 0U);
    table.keep(other, 9);
    EXPECT_EQ(table.of(one), 0U) << "the number that it has is that of another element here";
    EXPECT_EQ(table.of(other), 9U);
    const Element copy(other);
    EXPECT_EQ(table.of(copy), 0U);
}

TEST(VerdictTableTest, IsThatOfTheOutermostInItsThread) {
    VerdictTable own, inner, elsewhere, after;
    {
        const VerdictTable::Use outermost(own);
        EXPECT_EQ(&outermost.table(), &own);
        {
            const VerdictTable::Use within(inner);
            EXPECT_EQ(&within.table(), &own);
        }
        std::thread([&elsewhere] {
            const VerdictTable::Use another(elsewhere);
            EXPECT_EQ(&another.table(), &elsewhere);
        }).join();
        EXPECT_EQ(&VerdictTable::Use(inner).table(), &own);
    }
    EXPECT_EQ(&VerdictTable::Use(after).table(), &after);
}

}  // namespace
}  // namespace Xml::test
