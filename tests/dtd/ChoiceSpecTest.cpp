#include "xml/dtd/ChoiceSpec.h"

#include "models/Models.h"
#include "support/Messages.h"
#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <gtest/gtest.h>
#include <utility>

namespace Xml::test {

using Texts = std::vector<std::string>;

namespace {

// The verdict of the choice itself and how many nodes wait afterwards.
std::pair<bool, std::size_t> match(const std::string& choice, const std::string& children) {
    const auto dtd = dtdOf("a: ANY; b: ANY; c: (a); d: ANY");
    const std::unique_ptr<CpSpec> particle(makeParticle(particleOf(choice), {dtd.get()}));
    const NodeList nodes(children);
    ChildQueue queue(nodes.list());
    const bool matched = particle->validate(queue);
    return {matched, queue.size()};
}

}  // namespace

TEST(ChoiceSpecTest, TakesTheFirstAlternativeThatMatches) {
    const struct {
        const char* name;
        const char* choice;
        const char* children;
        bool matched;
        std::size_t left;
    } kCases[] = {
        {"first", "(a | b)", "a b", true, 1},
        {"second", "(a | b)", "b a", true, 1},
        {"none", "(a | b)", "d a", false, 2},
        {"nothing waits", "(a | b)", "", false, 0},
        {"text without the flag", "(a | b)", "'x'", false, 1},
        {"the first match wins over a longer one", "(a | (a, b))", "a b", true, 1},
        {"a longer match in front", "((a, b) | a)", "a b", true, 0},
        {"a failed alternative is put back", "((a, b) | (a, d))", "a d", true, 0},
        {"all are put back when none matches", "((a, b) | (a, d))", "a a", false, 2},
        {"an optional alternative matches anything", "(a? | b)", "b", true, 1},
        {"a star alternative matches anything", "(b | a*)", "d", true, 1},
        {"a repeated name", "(a+ | b)", "a a b", true, 1},
        {"the same name twice, once repeated", "(a | a+)", "a a", true, 1},
        {"the same name twice, repeated first", "(a+ | a)", "a a", true, 0},
        {"an element of the name that is not valid", "(c | a)", "c a", false, 2},
        {"a name after a group", "((a, a) | a | b)", "a b", true, 1},
        {"no alternatives", "(|)", "a", false, 1},
        {"no alternatives, nothing waits", "(|)", "", false, 0},
        {"one alternative", "(a |)", "a", true, 0},
        {"an empty sequence as alternative", "(a | ())", "b", true, 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(match(c.choice, c.children), std::make_pair(c.matched, c.left));
    }
}

TEST(ChoiceSpecTest, TriesASecondAlternativeOfTheSameNameToo) {
    // The two differ in the Dtd that they ask.
    const auto strict = dtdOf("a: EMPTY");
    const auto lax = dtdOf("a: ANY; a@x IMPLIED");
    ChoiceSpec choice(strict.get());
    choice.addChoice("a", REP_ONCE);
    choice.addChoice(new NameSpec(lax.get(), "a"), REP_ONCE);
    choice.addChoice("b", REP_ONCE);
    const NodeList nodes("a('x') a");
    ChildQueue queue(nodes.list());
    EXPECT_TRUE(choice.validate(queue));
    EXPECT_EQ(queue.size(), 1U);
    EXPECT_EQ(linksOf(*nodes.list()[0], {strict.get(), lax.get()}), "a+('x'+)");
    EXPECT_TRUE(choice.validate(queue));
    EXPECT_EQ(linksOf(*nodes.list()[1], {strict.get(), lax.get()}), "a");
}

TEST(ChoiceSpecTest, TakesCharacterDataBehindAllAlternatives) {
    const struct {
        const char* name;
        const char* choice;
        const char* children;
        bool matched;
        std::size_t left;
    } kCases[] = {
        {"one text", "(a | b | #PCDATA)", "'x' 'y'", true, 1},
        {"an alternative", "(a | b | #PCDATA)", "b 'x'", true, 1},
        {"nothing waits", "(a | b | #PCDATA)", "", true, 0},
        {"another element", "(a | b | #PCDATA)", "d 'x'", false, 2},
        {"neither element nor text", "(a | b | #PCDATA)", "@", false, 1},
        {"an element that is not valid", "(a | c | #PCDATA)", "c", false, 1},
        {"an alternative that matches nothing comes first", "(a? | #PCDATA)", "'x'", true, 1},
        {"an inner choice takes the text", "((a | b | #PCDATA) | d | #PCDATA)", "'x'", true, 0},
        {"no alternatives, text", "(|#PCDATA)", "'x' a", true, 1},
        {"no alternatives, element", "(|#PCDATA)", "a", false, 1},
        {"no alternatives, nothing waits", "(|#PCDATA)", "", true, 0},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(match(c.choice, c.children), std::make_pair(c.matched, c.left));
    }
}

TEST(ChoiceSpecTest, DoesNotAllowCharacterDataUntilItIsAdded) {
    const auto dtd = dtdOf("a: ANY");
    ChoiceSpec choice(dtd.get());
    choice.addChoice("a", REP_ONCE);
    const NodeList nodes("'x'");
    ChildQueue queue(nodes.list());
    EXPECT_FALSE(choice.validate(queue));
    choice.addCharDataAsChoice(true);
    EXPECT_TRUE(choice.validate(queue));
    EXPECT_TRUE(queue.empty());
    EXPECT_EQ(linksOf(*nodes.list()[0], {dtd.get()}), "'x'") << "taking text links nothing";
    choice.addCharDataAsChoice(false);
    EXPECT_FALSE(choice.validate(queue));
}

TEST(ChoiceSpecTest, AddsMembersInThreeWays) {
    MessageCollector messages;
    const auto dtd = dtdOf("a: EMPTY; b: EMPTY; c: EMPTY");
    ChoiceSpec choice(dtd.get());
    auto* member = new ChildrenSpec(dtd.get(), "a", REP_ONE_OR_MORE);
    choice.addChoice(member);
    choice.addChoice("b", REP_OPTIONAL);
    choice.addChoice(new NameSpec(dtd.get(), "c"), REP_ZERO_OR_MORE);
    choice.addChoice("1 no name", REP_ONCE);
    choice.addChoice("a", REP_ONCE);
    EXPECT_EQ(messages.texts(), Texts()) << "neither duplicates nor bad names are reported";
    EXPECT_EQ(written(choice, true), "(a+ | b? | c* |  | a)");

    const SpecAccess::Members& members = SpecAccess::members(choice);
    ASSERT_EQ(members.size(), 5U);
    EXPECT_EQ(members[0].get(), member) << "a member is appended as it is";
    for (const auto& each : members) {
        EXPECT_EQ(SpecAccess::dtd(*each), dtd.get());
        EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(*each)), dtd.get());
    }
}

TEST(ChoiceSpecTest, WritesItsMembersBetweenBarsAlwaysInParentheses) {
    const struct {
        const char* name;
        const char* choice;
        const char* text;
    } kCases[] = {
        {"two", "(a | b)", "(a | b)"},
        {"with marks", "(a? | b* | c+)", "(a? | b* | c+)"},
        {"text last", "(a | #PCDATA | b)", "(a | b | #PCDATA)"},
        {"nested", "(a | (b | c) | (d, e)+)", "(a | (b | c) | (d, e)+)"},
        {"nested sequence of one", "(a | (b)*)", "(a | b*)"},
        {"nested sequence of one with two marks", "(a | (b?)*)", "(a | b?*)"},
    };
    Dtd dtd("test");
    MessageCollector messages;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::unique_ptr<CpSpec> choice(makeParticle(particleOf(c.choice), {&dtd}));
        EXPECT_EQ(written(*choice, true), c.text);
        EXPECT_EQ(written(*choice, false), c.text);
    }
    EXPECT_EQ(messages.texts(), Texts());
}

TEST(ChoiceSpecTest, OfFewerThanTwoMembersWritesNothingAndReportsIt) {
    Dtd dtd("test");
    MessageCollector messages;
    for (const char* text : {"(|)", "(a |)", "(|#PCDATA)", "(a | #PCDATA)"}) {
        SCOPED_TRACE(text);
        const std::unique_ptr<CpSpec> choice(makeParticle(particleOf(text), {&dtd}));
        EXPECT_EQ(written(*choice, true), "");
        EXPECT_EQ(messages.take(), Texts{"<ChoiceSpec::toStream> need at least 2 items"});
        EXPECT_EQ(written(*choice, false), "");
        EXPECT_EQ(messages.take(), Texts{"<ChoiceSpec::toStream> need at least 2 items"});
    }
    // What stands around it is written all the same.
    EXPECT_EQ(written(*specOf("(a, (b |)?, c)+", &dtd)), "(a, ?, c)+");
    EXPECT_EQ(messages.take(), Texts{"<ChoiceSpec::toStream> need at least 2 items"});
    EXPECT_EQ(written(*specOf("(b |)*", &dtd)), "*");
    EXPECT_EQ(messages.take(), Texts{"<ChoiceSpec::toStream> need at least 2 items"});
}

TEST(ChoiceSpecTest, CopiesDeeplyForTheSameDtd) {
    const auto dtd = dtdOf("a: EMPTY; b: EMPTY; c: EMPTY");
    auto choice = std::make_unique<ChoiceSpec>(dtd.get());
    choice->addChoice("a", REP_ONCE);
    choice->addChoice(makeParticle(particleOf("(b, c)"), {dtd.get()}), REP_ONE_OR_MORE);
    choice->addCharDataAsChoice(true);
    ChoiceSpec copy(*choice);
    choice.reset();
    EXPECT_EQ(written(copy, true), "(a | (b, c)+ | #PCDATA)");
    copy.addChoice("c", REP_ONCE);

    const NodeList nodes("a b c c 'x'");
    ChildQueue queue(nodes.list());
    for (const std::size_t left : {4U, 2U, 1U, 0U}) {
        EXPECT_TRUE(copy.validate(queue));
        EXPECT_EQ(queue.size(), left);
    }
    for (const auto& member : SpecAccess::members(copy)) {
        EXPECT_EQ(SpecAccess::dtd(*member), dtd.get());
        EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(*member)), dtd.get());
    }
}

TEST(ChoiceSpecTest, ClonesForTheGivenDtd) {
    const auto dtd = dtdOf("a: EMPTY; b: EMPTY");
    const auto other = dtdOf("b: EMPTY");
    auto choice = std::unique_ptr<CpSpec>(makeParticle(particleOf("(a | b | #PCDATA)"), {dtd.get()}));
    const std::unique_ptr<CpSpec> copy(choice->clone(other.get()));
    choice.reset();
    EXPECT_EQ(SpecAccess::dtd(*copy), other.get());
    const auto& members = SpecAccess::members(dynamic_cast<const ChoiceSpec&>(*copy));
    ASSERT_EQ(members.size(), 2U);
    for (const auto& member : members) {
        EXPECT_EQ(SpecAccess::dtd(*member), other.get());
        EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(*member)), other.get());
    }
    const NodeList nodes("b 'x' a");
    ChildQueue queue(nodes.list());
    EXPECT_TRUE(copy->validate(queue));
    EXPECT_TRUE(copy->validate(queue));
    EXPECT_FALSE(copy->validate(queue)) << "the other Dtd does not know a";
    EXPECT_EQ(queue.size(), 1U);
}

TEST(ChoiceSpecTest, LooksUpOneOfVeryManyNames) {
    constexpr int kCount = 50000;
    Dtd dtd("test");
    auto* choice = new ChoiceSpec(&dtd);
    Element parent("parent");
    for (int i = 0; i < kCount; ++i) {
        const std::string name = "n" + std::to_string(i);
        dtd.addElementDecl(name);
        choice->addChoice(name, i % 2 == 0 ? REP_ONCE : REP_OPTIONAL);
        parent.addChild(new Element("n" + std::to_string(kCount - 2 - i / 2 * 2)));
    }
    dtd.addElementDecl("parent", choice, REP_ZERO_OR_MORE);
    // An optional alternative takes nothing rather than leave the place to a later one.
    EXPECT_FALSE(dtd.validate(&parent));

    auto* names = new ChoiceSpec(&dtd);
    for (int i = 0; i < kCount; ++i) names->addChoice("n" + std::to_string(i), REP_ONCE);
    dtd.addElementDecl("whole", names, REP_ZERO_OR_MORE);
    Element whole("whole");
    for (int i = kCount; i-- > 0;) whole.addChild(new Element("n" + std::to_string(i)));
    EXPECT_TRUE(dtd.validate(&whole));
    whole.addChild(new Element("parent"));
    EXPECT_FALSE(dtd.validate(&whole));
    delete whole.extractChild(kCount);
    EXPECT_TRUE(dtd.validate(&whole));
    whole.getElement(kCount / 2)->addChild(new Element("n0"));
    EXPECT_FALSE(dtd.validate(&whole));
}

}  // namespace Xml::test
