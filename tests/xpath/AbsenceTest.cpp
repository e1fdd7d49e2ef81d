// Which step that found nothing is named: what some steps leave, added up and taken over, is what the rule leaves step
// by step.
#include "xml/xpath/internal/Absence.h"

#include "xml/xpath/internal/AbsenceStack.h"
#include "xml/xpath/internal/PathText.h"
#include "xml/xpath/internal/QueryError.h"
#include "xml/xpath/internal/Step.h"
#include "xpath/RandomPaths.h"
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml {
namespace {

// A step that found something where the depth is 0, else one of that depth that found nothing.
using Steps = std::vector<unsigned>;

void add(Absence& absence, unsigned depth) {
    if (depth == 0) {
        absence.found();
    } else {
        absence.foundNothing({nullptr, depth, Missed::Name::WithAxis});
    }
}

std::string shown(const Absence& absence) {
    return (absence.anyFound() ? "found, " : "") + std::to_string(absence.missed() ? absence.missed()->depth : 0) +
           " of " + std::to_string(absence.deepest());
}

Steps randomSteps(test::Dice& dice, int bound) {
    Steps steps(static_cast<std::size_t>(dice.below(bound)));
    for (unsigned& depth : steps) depth = static_cast<unsigned>(dice.below(5));
    return steps;
}

TEST(AbsenceTest, NamesTheDeepestStepSinceOneFoundSomething) {
    const struct {
        const char* name;
        Steps steps;
        const char* shown;
    } kCases[] = {
        {"no step", {}, "0 of 0"},
        {"one that found something", {0}, "found, 0 of 0"},
        {"one that did not", {3}, "3 of 3"},
        {"a deeper one after it", {2, 3}, "3 of 3"},
        {"one that is no deeper", {3, 2, 3}, "3 of 3"},
        {"forgotten", {3, 0}, "found, 0 of 3"},
        {"forgotten, and another one", {3, 0, 2}, "found, 2 of 3"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Absence absence;
        for (const unsigned depth : c.steps) add(absence, depth);
        EXPECT_EQ(shown(absence), c.shown);
    }
}

TEST(AbsenceTest, OfPartsIsThatOfAllTheirSteps) {
    test::Dice dice(1);
    for (int i = 0; i < 20'000; ++i) {
        Absence whole;
        Absence parts;
        AbsenceStack stack;
        std::size_t open = 0;
        for (int part = dice.below(5); part > 0; --part) {
            Absence one;
            for (const unsigned depth : randomSteps(dice, 5)) {
                add(whole, depth);
                add(one, depth);
                add(stack.top(), depth);
            }
            parts.append(one);
            EXPECT_EQ(shown(stack.whole()), shown(whole));
            if (open > 0 && dice.chance(50)) {
                stack.end();
                --open;
            } else if (dice.chance(50)) {
                stack.begin();
                ++open;
            }
        }
        EXPECT_EQ(shown(parts), shown(whole));
        EXPECT_EQ(shown(stack.whole()), shown(whole));
    }
}

TEST(AbsenceTest, IsKeptApartForAPart) {
    AbsenceStack stack;
    add(stack.top(), 2);
    stack.begin();
    add(stack.top(), 1);
    EXPECT_EQ(shown(stack.end()), "1 of 1");
    EXPECT_EQ(shown(stack.top()), "2 of 2");
}

// The rule, step by step.
struct Rule {
    XPath::ErrorCode code;
    unsigned depth;

    void take(unsigned stepDepth) {
        if (stepDepth == 0 && code == XPath::NODE_NOT_FOUND) {
            code = XPath::NONE;
            depth = 0;
        } else if (stepDepth > depth && (code == XPath::NONE || code == XPath::NODE_NOT_FOUND)) {
            code = XPath::NODE_NOT_FOUND;
            depth = stepDepth;
        }
    }
};

TEST(QueryErrorTest, IsAfterAQueryWhatItIsStepByStep) {
    const OrvSys::Uni16String path = u"a";
    const PathText text(path);
    Step step;
    PathError error;
    Unit at = text.begin();
    ASSERT_TRUE(step.read(text, at, text.end(), error));
    const auto absenceOf = [&step](const Steps& steps) {
        Absence absence;
        for (const unsigned depth : steps) {
            if (depth == 0) {
                absence.found();
            } else {
                absence.foundNothing({&step, depth, Missed::Name::WithAxis});
            }
        }
        return absence;
    };
    test::Dice dice(2);
    int alone = 0;
    for (int i = 0; i < 20'000; ++i) {
        QueryError actual;
        Rule expected = {XPath::NONE, 0};
        for (int query = 0; query < 4; ++query) {
            const Steps steps = randomSteps(dice, 6);
            PathError failure;
            if (dice.chance(12)) failure.code = XPath::NO_VALID_AXIS;
            actual.takeOver(absenceOf(steps), failure, text);
            for (const unsigned depth : steps) expected.take(depth);
            if (failure.code != XPath::NONE) expected.code = failure.code;
            if (dice.chance(25)) {
                actual.setCode(XPath::NONE);
                expected.code = XPath::NONE;
            }
            ASSERT_EQ(actual.code(), expected.code);
            ASSERT_EQ(actual.depthAlone(), expected.code == XPath::NONE ? expected.depth : 0);
            if (actual.depthAlone() > 0) ++alone;
        }
    }
    EXPECT_GT(alone, 5'000);
}

}  // namespace
}  // namespace Xml
