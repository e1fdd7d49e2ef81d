#include "xml/dtd/SeqSpec.h"

#include "models/Models.h"
#include "support/Messages.h"
#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <gtest/gtest.h>
#include <utility>

namespace Xml::test {

using Texts = std::vector<std::string>;

TEST(SeqSpecTest, TakesItsMembersInOrder) {
    const struct {
        const char* name;
        const char* model;
        const char* children;
        bool valid;
    } kCases[] = {
        {"optional left out", "(a, b?)", "a", true},
        {"all there", "(a, b?)", "a b", true},
        {"one too many", "(a, b?)", "a b b", false},
        {"first missing", "(a, b?)", "b", false},
        {"other order", "(a, b)", "b a", false},
        {"nothing", "(a, b)", "", false},
        {"all optional, nothing", "(a?, b*)", "", true},
        {"all optional, the second", "(a?, b*)", "b b", true},
        {"all optional, other order", "(a?, b*)", "b a", false},
        {"repeated", "(a, b)*", "a b a b", true},
        {"repeated, cut short", "(a, b)*", "a b a", false},
        {"nested", "(a, (b, c)?, d)", "a b c d", true},
        {"nested left out", "(a, (b, c)?, d)", "a d", true},
        {"nested cut short", "(a, (b, c)?, d)", "a b d", false},
        {"the same name twice", "(a, a)", "a a", true},
        {"empty, nothing", "()", "", true},
        {"empty, something", "()", "a", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(accepts(c.model, c.children), c.valid);
    }
}

TEST(SeqSpecTest, DoesNotPutBackWhatEarlierMembersTook) {
    const auto dtd = dtdOf("a: EMPTY; b: EMPTY; c: EMPTY");
    const struct {
        const char* name;
        const char* sequence;
        const char* children;
        bool matched;
        std::size_t left;
    } kCases[] = {
        {"all match", "(a, b)", "a b c", true, 1},
        {"the first fails", "(a, b)", "b a", false, 2},
        {"the last fails", "(a, b, c)", "a b a", false, 1},
        {"the members after a failure are not asked", "(a, b, a)", "a a", false, 1},
        {"runs out", "(a, b)", "a", false, 0},
        {"empty takes nothing", "()", "a b", true, 2},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::unique_ptr<CpSpec> particle(makeParticle(particleOf(c.sequence), {dtd.get()}));
        const NodeList nodes(c.children);
        ChildQueue queue(nodes.list());
        EXPECT_EQ(particle->validate(queue), c.matched);
        EXPECT_EQ(queue.size(), c.left);
    }
}

TEST(SeqSpecTest, AddsMembersInThreeWays) {
    MessageCollector messages;
    Dtd dtd("test");
    SeqSpec sequence(&dtd);
    auto* member = new ChildrenSpec(&dtd, "a", REP_ONE_OR_MORE);
    sequence.add(member);
    sequence.add("b", REP_OPTIONAL);
    sequence.add(new NameSpec(&dtd, "c"), REP_ZERO_OR_MORE);
    sequence.add("1 no name", REP_ONCE);
    sequence.add("a", REP_ONCE);
    EXPECT_EQ(messages.texts(), Texts()) << "neither duplicates nor bad names are reported";
    EXPECT_EQ(written(sequence, true), "(a+, b?, c*, , a)");

    const SpecAccess::Members& members = SpecAccess::members(sequence);
    ASSERT_EQ(members.size(), 5U);
    EXPECT_EQ(members[0].get(), member) << "a member is appended as it is";
    for (const auto& each : members) {
        EXPECT_EQ(SpecAccess::dtd(*each), &dtd);
        EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(*each)), &dtd);
    }
}

TEST(SeqSpecTest, WritesParenthesesButAroundANestedSingleMember) {
    const struct {
        const char* name;
        const char* sequence;
        const char* outermost;
        const char* nested;
    } kCases[] = {
        {"one", "(b)", "(b)", "b"},
        {"one with a mark", "(b?)", "(b?)", "b?"},
        {"two", "(a, b)", "(a, b)", "(a, b)"},
        {"marks", "(b, c*, (d | e)+)", "(b, c*, (d | e)+)", "(b, c*, (d | e)+)"},
        {"one in one in one", "(((b)))", "(b)", "b"},
        {"one in one with marks", "((b+)?)", "(b+?)", "b+?"},
        {"nested pair", "((a, b))", "((a, b))", "(a, b)"},
        {"nested pair in a pair", "(a, (b, c)*)", "(a, (b, c)*)", "(a, (b, c)*)"},
    };
    Dtd dtd("test");
    MessageCollector messages;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::unique_ptr<CpSpec> sequence(makeParticle(particleOf(c.sequence), {&dtd}));
        EXPECT_EQ(written(*sequence, true), c.outermost);
        EXPECT_EQ(written(*sequence, false), c.nested);
    }
    EXPECT_EQ(messages.texts(), Texts());
}

TEST(SeqSpecTest, EmptyWritesNothingAndReportsIt) {
    Dtd dtd("test");
    MessageCollector messages;
    const SeqSpec sequence(&dtd);
    EXPECT_EQ(written(sequence, true), "");
    EXPECT_EQ(messages.take(), Texts{"<SeqSpec::toStream> need at least 1 element"});
    EXPECT_EQ(written(sequence, false), "");
    EXPECT_EQ(messages.take(), Texts{"<SeqSpec::toStream> need at least 1 element"});
    EXPECT_EQ(written(*specOf("(a, ()+)?", &dtd)), "(a, +)?");
    EXPECT_EQ(messages.take(), Texts{"<SeqSpec::toStream> need at least 1 element"});
}

TEST(SeqSpecTest, CopiesDeeplyForTheSameDtd) {
    const auto dtd = dtdOf("a: EMPTY; b: EMPTY; c: EMPTY");
    auto sequence = std::make_unique<SeqSpec>(dtd.get());
    sequence->add("a", REP_ONCE);
    sequence->add(makeParticle(particleOf("(b | c)"), {dtd.get()}), REP_ONE_OR_MORE);
    SeqSpec copy(*sequence);
    sequence.reset();
    EXPECT_EQ(written(copy, true), "(a, (b | c)+)");
    copy.add("a", REP_OPTIONAL);
    EXPECT_EQ(written(copy, true), "(a, (b | c)+, a?)");

    const NodeList nodes("a b c a");
    ChildQueue queue(nodes.list());
    EXPECT_TRUE(copy.validate(queue));
    EXPECT_TRUE(queue.empty());
    for (const auto& member : SpecAccess::members(copy)) {
        EXPECT_EQ(SpecAccess::dtd(*member), dtd.get());
        EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(*member)), dtd.get());
    }
}

TEST(SeqSpecTest, ClonesForTheGivenDtd) {
    const auto dtd = dtdOf("a: EMPTY; b: EMPTY");
    const auto other = dtdOf("a: EMPTY");
    auto sequence = std::unique_ptr<CpSpec>(makeParticle(particleOf("(a, b)"), {dtd.get()}));
    const std::unique_ptr<CpSpec> copy(sequence->clone(other.get()));
    sequence.reset();
    EXPECT_EQ(SpecAccess::dtd(*copy), other.get());
    const auto& members = SpecAccess::members(dynamic_cast<const SeqSpec&>(*copy));
    ASSERT_EQ(members.size(), 2U);
    for (const auto& member : members) {
        EXPECT_EQ(SpecAccess::dtd(*member), other.get());
        EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(*member)), other.get());
    }
    const NodeList nodes("a b");
    ChildQueue queue(nodes.list());
    EXPECT_FALSE(copy->validate(queue)) << "the other Dtd does not know b";
    EXPECT_EQ(queue.size(), 1U);
}

}  // namespace Xml::test
