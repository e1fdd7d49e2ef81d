#include "xml/dtd/internal/ModelStates.h"

#include "models/Models.h"
#include "models/NaiveMatcher.h"
#include "support/Dice.h"
#include "support/Rounds.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// What comes of children, given by their names: "ends" where no more need come, "goes on" where more must, "stops"
// where one has no next state.
std::string outcomeOf(const ModelStates& states, ModelStates::State at, const std::string& children) {
    std::istringstream names(children);
    for (std::string name; names >> name;) {
        at = states.next(at, name);
        if (at == ModelStates::kNone) return "stops";
    }
    return states.mayEnd(at) ? "ends" : "goes on";
}

std::string outcomeOf(const std::string& model, const std::string& children) {
    Dtd dtd("test");
    const std::unique_ptr<ChildrenSpec> spec(makeChildren(particleOf(model), {&dtd}));
    ModelStates states;
    const ModelStates::State start = states.add(*spec, dtd);
    return start != ModelStates::kNone ? outcomeOf(states, start, children) : "not plain";
}

struct Case {
    const char* model;
    const char* children;
    const char* outcome;
};

TEST(ModelStatesTest, FollowChildrenThroughTheModel) {
    const Case kCases[] = {
        {"a", "", "goes on"},
        {"a", "a", "ends"},
        {"a", "b", "stops"},
        {"a", "a a", "stops"},
        {"a?", "", "ends"},
        {"a?", "a", "ends"},
        {"a?", "a a", "stops"},
        {"a*", "", "ends"},
        {"a*", "a a a", "ends"},
        {"a+", "", "goes on"},
        {"a+", "a a a", "ends"},
        {"(a, b)", "a", "goes on"},
        {"(a, b)", "a b", "ends"},
        {"(a, b)", "b", "stops"},
        {"(a?, b?, c)", "c", "ends"},
        {"(a?, b?, c)", "a c", "ends"},
        {"(a?, b?, c)", "b a", "stops"},
        {"(a, b?, c?, d, e?)", "a d", "ends"},
        {"(a, b?, c?, d, e?)", "a c d e", "ends"},
        {"(a, b?, c?, d, e?)", "a e", "stops"},
        {"(a | b)", "b", "ends"},
        {"(a | b)", "a b", "stops"},
        {"(a | b)*", "a b b a", "ends"},
        {"(a | (b, c))+", "b c a b", "goes on"},
        {"(a | (b, c))+", "b a", "stops"},
        {"((a, b?) | c)*", "a c a b a a b c", "ends"},
        {"((a, b?) | c)*", "c b", "stops"},
        {"(((a, b?) | c)*, d)", "a b c", "goes on"},
        {"(((a, b?) | c)*, d)", "a d", "ends"},
        {"((a?, b?)*, c?)", "b a a b c", "ends"},
        {"((a*, b)+, (c | d)?)", "a a b b d", "ends"},
        {"(((a)*)*)*", "a a", "ends"},
        {"((((a | b) | c) | d), e)", "c e", "ends"},
        {"(a, (b, (c, (d)?)?)?)", "a b c d", "ends"},
        {"(a, (b, (c, (d)?)?)?)", "a c", "stops"},
        {"()", "", "ends"},
        {"()", "a", "stops"},
        {"()*", "", "ends"},
        {"(|)", "", "goes on"},
        {"(|)?", "", "ends"},
        {"(a |)", "a", "ends"},
        {"(a, (), b)", "a b", "ends"},
        {"(a, (|), b)", "a b", "stops"},
        {"(a, (|)?, b)", "a b", "ends"},
    };
    for (const auto& c : kCases) EXPECT_EQ(outcomeOf(c.model, c.children), c.outcome) << c.model << " " << c.children;
}

// The first that matches is taken, and one that takes nothing matches too.
TEST(ModelStatesTest, TryNamesInTheOrderOfMatching) {
    const Case kCases[] = {
        {"(a?, a)", "a", "goes on"},         {"(a?, a)", "a a", "ends"},
        {"(a*, a)", "a a", "goes on"},       {"(a? | b)", "a", "ends"},
        {"(a? | b)", "b", "stops"},          {"(b | a?)", "b", "ends"},
        {"((a?, b?) | c)*", "c", "stops"},   {"((a? | b), c)", "c", "ends"},
        {"((a? | b), b)", "b", "ends"},      {"((a, b) | (a, c))", "a b", "ends"},
        {"((a, b?) | (a, c))", "a", "ends"}, {"((b?, a)?, b?)", "b", "goes on"},
    };
    for (const auto& c : kCases) EXPECT_EQ(outcomeOf(c.model, c.children), c.outcome) << c.model << " " << c.children;
}

// There another alternative may match, or nothing of the group: the states do not know.
TEST(ModelStatesTest, StopWhereSomethingFailsThatTookAChild) {
    const Case kCases[] = {
        {"((a, b) | (a, c))", "a c", "stops"},
        {"((a, b)?, a)", "a", "goes on"},
        {"((a, b)*, a, c)", "a c", "stops"},
        {"(((a, b) | a), c)", "a c", "stops"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(outcomeOf(c.model, c.children), c.outcome) << c.model << " " << c.children;
        EXPECT_TRUE(accepts(c.model, c.children)) << "though it fits: " << c.model << " " << c.children;
    }
}

TEST(ModelStatesTest, AnEmptyNameMatchesNothing) {
    Dtd dtd("test");
    SeqSpec* const sequence = new SeqSpec(&dtd);
    sequence->add("", REP_OPTIONAL);
    sequence->add("a", REP_ONCE);
    sequence->add("1x", REP_ONE_OR_MORE);
    const ChildrenSpec model(&dtd, sequence, REP_ONCE);
    ModelStates states;
    const ModelStates::State start = states.add(model, dtd);
    EXPECT_EQ(states.next(start, ""), ModelStates::kNone);
    const ModelStates::State next = states.next(start, "a");
    ASSERT_NE(next, ModelStates::kNone);
    EXPECT_FALSE(states.mayEnd(next));
    for (const char* name : {"", "1x", "a"}) EXPECT_EQ(states.next(next, name), ModelStates::kNone) << name;
}

TEST(ModelStatesTest, OnlyModelsOfTheLibrarysClassesAndOfOneDtdHaveStates) {
    Dtd dtd("test"), other("other");
    ModelStates states;
    const auto isPlain = [&](const ParticleValue& particle) {
        OwnLog log;
        const std::unique_ptr<ChildrenSpec> spec(makeChildren(particle, {&dtd, &other}, &log));
        return states.add(*spec, dtd) != ModelStates::kNone;
    };
    EXPECT_TRUE(isPlain(particleOf("(a, (b | c)*)")));
    EXPECT_FALSE(isPlain(particleOf("(a, (b | #PCDATA)*)")));
    ParticleValue value = particleOf("(a, (b | c)*)");
    value.members[1].members[1].dtd = 1;
    EXPECT_FALSE(isPlain(value)) << "a name of another Dtd";
    value = particleOf("(a, (b | c)*)");
    value.members[1].dtd = 1;
    EXPECT_TRUE(isPlain(value)) << "a group of another Dtd links nothing";
    value.members[0].kind = ParticleValue::Own;
    EXPECT_FALSE(isPlain(value));

    class OwnName : public NameSpec {
    public:
        explicit OwnName(Dtd* owner) : NameSpec(owner, "a") {}
    };
    EXPECT_EQ(states.add(ChildrenSpec(&dtd, new OwnName(&dtd), REP_ONCE), dtd), ModelStates::kNone);
    class OwnSequence : public SeqSpec {
    public:
        explicit OwnSequence(Dtd* owner) : SeqSpec(owner) {}
    };
    EXPECT_EQ(states.add(ChildrenSpec(&dtd, new OwnSequence(&dtd), REP_ONCE), dtd), ModelStates::kNone);
    EXPECT_EQ(states.add(ChildrenSpec(&dtd, "a", REP_ONCE), other), ModelStates::kNone);
}

TEST(ModelStatesTest, ManyNamesAtAStateAreTriedInTheSameOrder) {
    // Members are optional, and the names e0 to e69 come twice: "e5 e3" ends, since the second "e3" is taken.
    std::string members = "e0?";
    for (int i = 1; i < 140; ++i) members += ", e" + std::to_string(i % 70) + "?";
    const struct {
        const char* children;
        const char* outcome;
    } kCases[] = {
        {"", "ends"},         {"e0", "ends"},         {"e0 e69", "ends"},
        {"e5 e3", "ends"},    {"e5 e3 e2", "stops"},  {"e5 e3 e4", "ends"},
        {"e69 e69", "ends"},  {"x", "stops"},         {"e69 e69 e69", "stops"},
        {"e1 e2 e3", "ends"}, {"e68 e1 e0", "stops"}, {"e30 e30 e31", "ends"},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(outcomeOf("(" + members + ")", c.children), c.outcome) << c.children;
        if (std::string(c.outcome) != "ends") continue;
        EXPECT_EQ(outcomeOf("((" + members + "), x?)", std::string(c.children) + " x"), "ends") << c.children;
    }
    EXPECT_EQ(outcomeOf("(x | (" + members + "))*", "x e3 x e5 e0 e1 x"), "ends");
}

TEST(ModelStatesTest, ModelsStandSideBySide) {
    Dtd dtd("test");
    std::string wide = "(f0";
    for (int i = 1; i < 50; ++i) wide += " | f" + std::to_string(i);
    const std::string kModels[] = {"(a, b)", wide + ")*", "(b | a)", wide + ")+", "(c?)"};
    std::vector<std::unique_ptr<ChildrenSpec>> specs;
    std::vector<ModelStates::State> starts;
    ModelStates states;
    for (const std::string& model : kModels) {
        specs.emplace_back(makeChildren(particleOf(model), {&dtd}));
        starts.push_back(states.add(*specs.back(), dtd));
    }
    const std::vector<std::string> names = {"a", "", "f7", "b"};
    starts.push_back(states.addAnyOf(names));
    const char* const kChildren[] = {"a b", "f49 f0 f7", "a", "f1", "c", "b f7 f7 a"};
    for (std::size_t model = 0; model < starts.size(); ++model) {
        for (std::size_t i = 0; i < starts.size(); ++i) {
            const std::string outcome = outcomeOf(states, starts[model], kChildren[i]);
            EXPECT_EQ(outcome == "ends", i == model || (model == 1 && i == 3) || (model == 3 && i == 1) ||
                                             (model == 5 && (i == 0 || i == 2)))
                << model << " " << i << " " << outcome;
        }
    }
    EXPECT_EQ(states.next(starts[5], ""), starts[5]);
}

TEST(ModelStatesTest, AnyOfManyNamesMayComeInAnyOrder) {
    std::vector<std::string> names;
    for (int i = 0; i < 100; ++i) names.push_back("n" + std::to_string(i));
    ModelStates states;
    const ModelStates::State any = states.addAnyOf(names);
    EXPECT_TRUE(states.mayEnd(any));
    for (const std::string& name : names) EXPECT_EQ(states.next(any, name), any);
    EXPECT_EQ(states.next(any, "n"), ModelStates::kNone);
    EXPECT_EQ(states.next(any, "n100"), ModelStates::kNone);
}

// --- At random ---

ParticleValue randomParticle(Dice& dice, int depth) {
    ParticleValue made;
    made.repetition = static_cast<RepType>(dice.below(4));
    if (depth == 0 || dice.chance(40)) {
        made.name = std::string(1, static_cast<char>('a' + dice.below(4)));
        return made;
    }
    made.kind = dice.chance(50) ? ParticleValue::Sequence : ParticleValue::Choice;
    for (std::size_t i = dice.below(5); i > 0; --i) made.members.push_back(randomParticle(dice, depth - 1));
    return made;
}

// Children on a way through the states, so that long ones come too.
std::vector<std::string> randomWay(Dice& dice, const ModelStates& states, ModelStates::State at) {
    std::vector<std::string> way;
    while (way.size() < 8 && !dice.chance(10)) {
        std::vector<std::string> possible;
        for (const char* name : {"a", "b", "c", "d"}) {
            if (states.next(at, name) != ModelStates::kNone) possible.emplace_back(name);
        }
        if (possible.empty()) break;
        way.push_back(possible[dice.below(possible.size())]);
        at = states.next(at, way.back());
    }
    return way;
}

TEST(ModelStatesTest, WhatEndsFitsForTheNaiveMatcherToo) {
    Dice dice(20261122);
    const std::vector<DtdValue> values = {dtdValueOf("a: ANY; b: ANY; c: ANY; d: ANY")};
    int ended = 0, stopped = 0, all = 0;
    for (; all < rounds(20000); ++all) {
        ModelValue model;
        model.kind = ModelValue::Children;
        model.particle = randomParticle(dice, 3);
        Dtd dtd("test");
        const std::unique_ptr<ChildrenSpec> spec(makeChildren(model.particle, {&dtd}));
        ModelStates states;
        const ModelStates::State start = states.add(*spec, dtd);
        ASSERT_NE(start, ModelStates::kNone);
        std::string children;
        for (const std::string& name : randomWay(dice, states, start)) children += name + " ";
        if (dice.chance(30)) children += dice.any({"a", "b", "c", "d", "e"});
        const std::string outcome = outcomeOf(states, start, children);
        std::vector<NodeValue> nodes = nodesOf(children);
        bool fits = false;
        try {
            fits = NaiveMatcher(values, 20000).validateModel(model, nodes);
        } catch (const TooManySteps&) {
            continue;
        }
        std::vector<std::string> ignored;
        if (outcome == "ends") {
            ASSERT_TRUE(fits) << naiveText(model, ignored) << " over " << children;
            ++ended;
        } else if (outcome == "stops") {
            ++stopped;
        }
    }
    EXPECT_GT(ended * 10, all * 2) << "of " << all;
    EXPECT_GT(stopped * 10, all) << "of " << all;
}

}  // namespace
}  // namespace Xml::test
