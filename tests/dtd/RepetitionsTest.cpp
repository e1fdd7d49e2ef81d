#include "xml/dtd/internal/Repetitions.h"

#include "models/Models.h"
#include "xml/dtd/ChildrenSpec.h"
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>

namespace Xml::test {
namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// Places before each child of a list and at its end.
class RepetitionsTest : public testing::Test {
protected:
    ChildQueue at(std::size_t child) const {
        ChildQueue queue(nodes.list());
        while (child-- > 0) queue.pop();
        return queue;
    }

    // What is known of the repetition before a child: "?" for nothing, else whether it matches and how many nodes it
    // leaves.
    std::string known(const ChildrenSpec& spec, std::size_t child) const {
        const Outcome* const outcome = kept.find(spec, at(child));
        if (outcome == nullptr) return "?";
        return (outcome->matched ? "matches, leaves " : "fails, leaves ") + std::to_string(outcome->left.size());
    }

    // A nested repetition with passes from these children on.
    void passesOf(const ChildrenSpec& spec, std::initializer_list<std::size_t> starts, std::size_t matching,
                  const Outcome& outcome) {
        const std::uint32_t first = kept.passCount();
        for (const std::size_t start : starts) kept.beginPass(at(start));
        kept.keepPasses(spec, first, matching, outcome);
    }

    // A nested repetition whose last pass is from this child on, and failed or took nothing.
    void endsAt(const ChildrenSpec& spec, std::size_t start, const Outcome& outcome) {
        const std::uint32_t first = kept.passCount();
        kept.beginPass(at(start));
        kept.keepEnd(spec, at(start), outcome);
        kept.dropPasses(first);
    }

    const NodeList nodes{"a a a a a"};
    const ChildrenSpec star{nullptr, "a", REP_ZERO_OR_MORE};
    const ChildrenSpec plus{nullptr, "a", REP_ONE_OR_MORE};
    const Dtd one{"one"}, other{"other"};
    Repetitions kept;
};

TEST_F(RepetitionsTest, CountsThoseUnderWayForEachElement) {
    EXPECT_FALSE(kept.anyUnderWay());
    kept.begin();
    EXPECT_TRUE(kept.anyUnderWay());
    kept.enterElement();
    EXPECT_FALSE(kept.anyUnderWay()) << "within the element none is";
    kept.begin();
    kept.end();
    EXPECT_FALSE(kept.anyUnderWay());
    kept.leaveElement();
    EXPECT_TRUE(kept.anyUnderWay());
    kept.end();
    EXPECT_FALSE(kept.anyUnderWay());
}

TEST_F(RepetitionsTest, KnowsWhatEndedAtThePlaceWhereTheLastOnesEnded) {
    endsAt(star, 2, {true, at(2)});
    endsAt(plus, 2, {false, at(3)});
    EXPECT_EQ(known(star, 2), "matches, leaves 3");
    EXPECT_EQ(known(plus, 2), "fails, leaves 2");
    EXPECT_EQ(known(star, 1), "?");
    endsAt(plus, 4, {false, at(4)});
    EXPECT_EQ(known(plus, 4), "fails, leaves 1");
    EXPECT_EQ(known(star, 2), "?") << "only one place is kept";
}

TEST_F(RepetitionsTest, KnowsWhatCameOfPassesOnceSomethingIsGivenUp) {
    passesOf(star, {0, 1, 2}, kAll, {true, at(2)});
    EXPECT_EQ(kept.passCount(), 0U);
    EXPECT_EQ(known(star, 1), "?");
    kept.giveUp();
    EXPECT_EQ(known(star, 0), "matches, leaves 3");
    EXPECT_EQ(known(star, 1), "matches, leaves 3");
    EXPECT_EQ(known(star, 2), "matches, leaves 3");
    EXPECT_EQ(known(star, 3), "?");
    passesOf(star, {3, 4}, kAll, {true, at(5)});
    EXPECT_EQ(known(star, 3), "?");
    kept.giveUp();
    EXPECT_EQ(known(star, 3), "matches, leaves 0");
}

TEST_F(RepetitionsTest, DoesNotLetAPlusMatchWhereItsLastPassFailed) {
    passesOf(plus, {0, 1, 2}, 2, {true, at(2)});
    kept.giveUp();
    EXPECT_EQ(known(plus, 0), "matches, leaves 3");
    EXPECT_EQ(known(plus, 1), "matches, leaves 3");
    EXPECT_EQ(known(plus, 2), "?");
    passesOf(plus, {3}, 0, {false, at(4)});
    kept.giveUp();
    EXPECT_EQ(known(plus, 3), "fails, leaves 1");
}

TEST_F(RepetitionsTest, AsksTheRepetitionAroundWhereThatBeganItsPassAtTheSameChild) {
    const std::uint32_t first = kept.passCount();
    kept.beginPass(at(0));
    passesOf(star, {0, 1}, kAll, {true, at(2)});
    kept.keepPasses(plus, first, 1, {true, at(2)});
    kept.giveUp();
    EXPECT_EQ(known(star, 0), "?");
    EXPECT_EQ(known(star, 1), "matches, leaves 3");
    EXPECT_EQ(known(plus, 0), "matches, leaves 3");
}

TEST_F(RepetitionsTest, KeepsNothingAboutTheEndOfTheChildren) {
    passesOf(star, {4, 5}, kAll, {true, at(5)});
    kept.giveUp();
    EXPECT_EQ(known(star, 4), "matches, leaves 0");
    EXPECT_EQ(known(star, 5), "?");
}

TEST_F(RepetitionsTest, ForgetsWithTheElementWhatIsAboutIt) {
    endsAt(star, 0, {true, at(0)});
    passesOf(plus, {1}, 1, {true, at(2)});
    kept.enterElement();
    EXPECT_EQ(known(star, 0), "?") << "it is about another element's children";
    endsAt(star, 3, {true, at(3)});
    passesOf(plus, {4}, 1, {true, at(5)});
    kept.giveUp();
    EXPECT_EQ(known(star, 3), "matches, leaves 2");
    EXPECT_EQ(known(plus, 4), "matches, leaves 0");
    EXPECT_EQ(known(plus, 1), "?");
    kept.leaveElement();
    EXPECT_EQ(known(star, 3), "?");
    EXPECT_EQ(known(plus, 4), "?");
    EXPECT_EQ(known(star, 0), "matches, leaves 5");
    EXPECT_EQ(known(plus, 1), "?") << "within the element something was given up, here nothing yet";
    kept.giveUp();
    EXPECT_EQ(known(plus, 1), "matches, leaves 3");
}

TEST_F(RepetitionsTest, ForgetsWhatCameByOneDtdWhereAnotherOneTakesItsTurn) {
    kept.noteDecision(one);
    endsAt(star, 0, {true, at(0)});
    passesOf(plus, {1}, 1, {true, at(2)});
    kept.giveUp();
    kept.noteDecision(one);
    EXPECT_EQ(known(star, 0), "matches, leaves 5");
    EXPECT_EQ(known(plus, 1), "matches, leaves 3");
    kept.noteDecision(other);
    EXPECT_EQ(known(star, 0), "?");
    EXPECT_EQ(known(plus, 1), "?");
    kept.noteDecision(one);
    EXPECT_EQ(known(star, 0), "?") << "it does not come back";
    EXPECT_EQ(known(plus, 1), "?");
}

TEST_F(RepetitionsTest, ForgetsWhatCouldNotBeFoundYetWhereAnotherDtdTakesItsTurn) {
    kept.noteDecision(one);
    passesOf(plus, {1}, 1, {true, at(2)});
    kept.noteDecision(other);
    kept.giveUp();
    EXPECT_EQ(known(plus, 1), "?");
}

TEST_F(RepetitionsTest, KnowsWhatCameSinceAnotherDtdTookItsTurn) {
    kept.noteDecision(one);
    kept.noteDecision(other);
    endsAt(star, 0, {true, at(0)});
    passesOf(plus, {1}, 1, {true, at(2)});
    kept.giveUp();
    EXPECT_EQ(known(star, 0), "matches, leaves 5");
    EXPECT_EQ(known(plus, 1), "matches, leaves 3");
}

TEST_F(RepetitionsTest, DoesNotKeepPassesThatTwoDtdsHaveDecided) {
    const std::uint32_t first = kept.passCount();
    kept.beginPass(at(0));
    kept.noteDecision(one);
    kept.beginPass(at(1));
    kept.noteDecision(other);
    kept.keepEnd(star, at(1), {true, at(1)});
    EXPECT_EQ(known(star, 1), "?");
    kept.beginPass(at(2));
    kept.keepEnd(star, at(2), {true, at(2)});
    EXPECT_EQ(known(star, 2), "matches, leaves 3") << "this one began after the turn";
    kept.keepPasses(plus, first, kAll, {true, at(3)});
    kept.giveUp();
    EXPECT_EQ(known(plus, 0), "?");
    EXPECT_EQ(known(plus, 1), "?");
    EXPECT_EQ(known(plus, 2), "matches, leaves 2");
}

TEST_F(RepetitionsTest, KeepsPassesThatBeginAfterThoseThatTwoDtdsHaveDecided) {
    const std::uint32_t first = kept.passCount();
    kept.noteDecision(one);
    kept.beginPass(at(0));
    kept.beginPass(at(1));
    kept.noteDecision(other);
    kept.dropPasses(first);
    passesOf(star, {2}, kAll, {true, at(3)});
    kept.giveUp();
    EXPECT_EQ(known(star, 2), "matches, leaves 2") << "it has the number of one that is gone";
}

TEST_F(RepetitionsTest, AsksNoRepetitionAroundWhosePassIsNotKept) {
    kept.noteDecision(one);
    kept.beginPass(at(0));
    kept.noteDecision(other);
    passesOf(star, {0, 1}, kAll, {true, at(2)});
    kept.giveUp();
    EXPECT_EQ(known(star, 0), "matches, leaves 3");
    EXPECT_EQ(known(star, 1), "matches, leaves 3");
}

TEST_F(RepetitionsTest, TellsTheDtdsThatDecideApartForEachElement) {
    kept.noteDecision(one);
    kept.beginPass(at(0));
    endsAt(star, 1, {true, at(1)});
    kept.enterElement();
    kept.noteDecision(other);
    endsAt(star, 3, {true, at(3)});
    EXPECT_EQ(known(star, 3), "matches, leaves 2") << "one Dtd has decided these children";
    kept.noteDecision(one);
    EXPECT_EQ(known(star, 3), "?");
    kept.leaveElement();
    EXPECT_EQ(known(star, 1), "matches, leaves 4");
    kept.noteDecision(one);
    EXPECT_EQ(known(star, 1), "matches, leaves 4") << "the turn was about another element's children";
    kept.keepPasses(plus, 0, kAll, {true, at(1)});
    kept.giveUp();
    EXPECT_EQ(known(plus, 0), "matches, leaves 4");
}

}  // namespace
}  // namespace Xml::test
