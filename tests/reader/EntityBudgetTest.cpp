#include "xml/reader/internal/EntityBudget.h"

#include "reader/GrowthLimit.h"
#include "support/Sources.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/reader/CommentReader.h"
#include "xml/reader/DTDReader.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/DataHolder.h"
#include <gtest/gtest.h>
#include <vector>

namespace Xml::test {

namespace {

DataHolder references(int count) {
    DataHolder value;
    for (int i = 0; i < count; ++i) value += "&e;";
    return value;
}

}  // namespace

TEST(EntityBudgetTest, AllowsTheBoundOrAHundredTimesTheBytesReadWhateverIsMore) {
    const struct {
        const char* name;
        std::int64_t bound;
        int bytesRead;
        int bytesReadElsewhere;
        std::vector<int> values;  // references in each, to an entity of 100 bytes
        int accepted;             // how many values are
        std::int64_t spent;
    } kCases[] = {
        {"to the byte", 1000, 0, 0, {4, 6}, 2, 1000},
        {"a byte past it", 999, 0, 0, {4, 6}, 1, 400},
        {"nothing is left", 1000, 0, 0, {10, 1}, 1, 1000},
        {"no references", 1, 0, 0, {0, 0, 0}, 3, 0},
        {"lifted", 0, 0, 0, {1000, 1000}, 2, 200000},
        {"a hundred times the bytes read", 1, 4, 0, {2, 2}, 2, 400},
        {"more than that", 1, 4, 0, {2, 3}, 1, 200},
        {"bytes read elsewhere count", 1, 1, 3, {2, 2}, 2, 400},
        {"both", 1, 1, 3, {2, 3}, 1, 200},
        {"the bound is more", 500, 4, 0, {2, 3}, 2, 500},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const GrowthLimit limit(c.bound);
        Dtd dtd("t");
        dtd.setEntity("e", DataHolder(std::string(100, 'x')));
        DtdAccess::addBytesRead(dtd, c.bytesReadElsewhere);
        BareInStream in("text");
        const StreamAccess::Session session(in);
        in.setPosition(c.bytesRead);
        EntityBudget budget;
        int accepted = 0;
        for (const int count : c.values) {
            DataHolder value = references(count);
            const bool expanded = budget.expand(in, value, &dtd);
            EXPECT_EQ(value, expanded ? DataHolder(std::string(100 * static_cast<std::size_t>(count), 'x'))
                                      : references(count));
            if (!expanded) break;
            ++accepted;
        }
        EXPECT_EQ(accepted, c.accepted);
        EXPECT_EQ(budget.spent(), c.spent);
    }
}

TEST(EntityBudgetTest, CountsOnlyWhatEntitiesOfADtdMake) {
    const GrowthLimit limit(1);
    const Dtd dtd("t");
    BareInStream in("");
    const StreamAccess::Session session(in);
    EntityBudget budget;
    for (const Dtd* entities : {static_cast<const Dtd*>(nullptr), &dtd}) {
        DataHolder value("&amp;&#65;&unknown;&amp;");
        EXPECT_TRUE(budget.expand(in, value, entities));
        EXPECT_EQ(value, "&A&unknown;&");
        EXPECT_EQ(budget.spent(), 0);
    }
}

TEST(EntityBudgetTest, IsThatOfTheReaderAroundWhereThereIsOne) {
    EntityBudget given;
    EntityBudget own;
    DTDReader whole("t");
    CommentReader part;
    EntityBudget::passOn(whole, part);
    EXPECT_EQ(&EntityBudget::of(part, own), &own);
    EntityBudget::give(whole, given);
    EXPECT_EQ(&EntityBudget::of(part, own), &own);
    EntityBudget::passOn(whole, part);
    EXPECT_EQ(&EntityBudget::of(part, own), &given);
    EXPECT_EQ(&EntityBudget::of(whole, own), &given);
}

}  // namespace Xml::test
