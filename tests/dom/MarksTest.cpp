#include "dom/Settings.h"
#include "dom/Sinks.h"
#include "xml/dom/Marks.h"
#include "xml/dom/internal/Rewriting.h"
#include "xml/dtd/Dtd.h"
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

TEST(MarksTest, OfANewNodeAreThoseOfAChangedOneThatWasNeverWritten) {
    const Marks marks;
    EXPECT_EQ(marks.dtd(), nullptr);
    EXPECT_TRUE(marks.isDirty());
    EXPECT_EQ(marks.writeStart(), -1);
    EXPECT_EQ(marks.writeEnd(), -1);
}

TEST(MarksTest, ACopyKeepsTheLinkOnly) {
    const Dtd dtd("d");
    BareOutStream out;
    Marks marks;
    marks.setDtd(&dtd);
    beginWriting(marks, out);
    endWriting(marks, out);
    const Marks copy(marks);
    EXPECT_EQ(copy.dtd(), &dtd);
    EXPECT_TRUE(copy.isDirty());
    EXPECT_EQ(copy.writeStart(), -1);
    EXPECT_EQ(copy.writeEnd(), -1);
}

TEST(MarksTest, TouchingTakesTheLinkAndLeavesTheRecord) {
    const Dtd dtd("d");
    BareOutStream out;
    out.bytes = "0123";
    out.setPosition(1);
    Marks marks;
    marks.setDtd(&dtd);
    beginWriting(marks, out);
    out.setPosition(3);
    endWriting(marks, out);
    EXPECT_FALSE(marks.isDirty());
    marks.touch();
    EXPECT_TRUE(marks.isDirty());
    EXPECT_EQ(marks.dtd(), nullptr);
    EXPECT_EQ(marks.writeStart(), 1);
    EXPECT_EQ(marks.writeEnd(), 3);
}

TEST(MarksTest, AnOffsetIsNoRecordAndGivesWayToOne) {
    for (const std::int64_t offset : {std::int64_t{0}, std::int64_t{1} << 31, (std::int64_t{5} << 32) + 0xFFFFFFFF}) {
        SCOPED_TRACE(offset);
        Marks marks;
        EXPECT_FALSE(marks.holdsOffset());
        marks.holdOffset(offset);
        EXPECT_TRUE(marks.holdsOffset());
        EXPECT_EQ(marks.offset(), offset);
        EXPECT_EQ(marks.writeStart(), -1);
        EXPECT_EQ(marks.writeEnd(), -1);
        EXPECT_FALSE(Marks(marks).holdsOffset());

        marks.setPlaceAside();
        EXPECT_FALSE(marks.holdsOffset());
        EXPECT_TRUE(marks.isPlaceAside());
        EXPECT_TRUE(marks.isAside());
        EXPECT_TRUE(marks.isDirty());
        EXPECT_EQ(marks.writeStart(), -1);
        marks.record(3, 4);
        marks.setPlaceAside();
        EXPECT_EQ(marks.writeStart(), 3);
        EXPECT_EQ(marks.writeEnd(), 4);
        EXPECT_FALSE(Marks(marks).isPlaceAside());
    }
}

TEST(MarksTest, TheRuleOfRewriting) {
    const struct {
        const char* name;
        bool rewrites;
        bool changed;
        int standsAt;
        bool isWritten;
    } kCases[] = {
        {"all is as it was", true, false, 4, false},
        {"without the optimisation", false, false, 4, true},
        {"changed", true, true, 4, true},
        {"before its place", true, false, 3, true},
        {"after its place", true, false, 5, true},
        {"where it ended", true, false, 9, true},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        BareOutStream out;
        out.setPosition(4);
        Marks marks;
        ASSERT_TRUE(beginWriting(marks, out));
        out.setPosition(9);
        endWriting(marks, out);
        if (c.changed) marks.touch();

        const RewriteSetting setting(c.rewrites);
        out.setPosition(c.standsAt);
        out.reset();
        EXPECT_EQ(beginWriting(marks, out), c.isWritten);
        EXPECT_EQ(out.movedTo, c.isWritten ? std::vector<int>{} : std::vector<int>{9});
        if (!c.isWritten) continue;
        EXPECT_EQ(marks.writeStart(), c.standsAt);
        EXPECT_NE(marks.writeEnd(), 9) << "not known before it is written";
        out.setPosition(c.standsAt + 1);
        endWriting(marks, out);
        EXPECT_EQ(marks.writeEnd(), c.standsAt + 1);
        EXPECT_FALSE(marks.isDirty());
    }
}

}  // namespace
}  // namespace Xml::test
