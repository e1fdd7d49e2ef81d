#include "xml/dtd/ChildrenSpec.h"

#include "models/Models.h"
#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/stream/FileOutStream.h"
#include <gtest/gtest.h>
#include <sstream>
#include <utility>

namespace Xml::test {

namespace {

struct MatchCase {
    const char* name;
    const char* model;
    const char* children;
    bool valid;
};

void expectVerdicts(const MatchCase* begin, const MatchCase* end) {
    for (const MatchCase* c = begin; c != end; ++c) {
        SCOPED_TRACE(std::string(c->name) + ": " + c->model + " over " + c->children);
        EXPECT_EQ(accepts(c->model, c->children), c->valid);
    }
}

// The verdict of the queue form and how many nodes wait afterwards.
std::pair<bool, std::size_t> match(const std::string& model, const std::string& children) {
    const auto dtd = dtdOf("a: ANY; b: ANY; c: ANY; d: ANY; e: ANY");
    const auto spec = specOf(model, dtd.get());
    const NodeList nodes(children);
    ChildQueue queue(nodes.list());
    const bool matched = dynamic_cast<const ChildrenSpec&>(*spec).validate(queue);
    return {matched, queue.size()};
}

}  // namespace

TEST(ChildrenSpecTest, IsValidWhenTheParticleMatchesAndTakesEveryChild) {
    const MatchCase kCases[] = {
        {"once, none", "a", "", false},
        {"once, one", "a", "a", true},
        {"once, one too many", "a", "a a", false},
        {"once, another", "a", "b", false},
        {"optional, none", "a?", "", true},
        {"optional, one", "a?", "a", true},
        {"optional, one too many", "a?", "a a", false},
        {"optional, another", "a?", "b", false},
        {"star, none", "a*", "", true},
        {"star, one", "a*", "a", true},
        {"star, many", "a*", "a a a a", true},
        {"star, another at the end", "a*", "a a b", false},
        {"star, another alone", "a*", "b", false},
        {"plus, none", "a+", "", false},
        {"plus, one", "a+", "a", true},
        {"plus, many", "a+", "a a a a", true},
        {"plus, another at the end", "a+", "a a b", false},
        {"plus, another alone", "a+", "b", false},
        {"text alone", "a?", "'x'", false},
        {"text in front", "a", "'x' a", false},
        {"text after", "a*", "a 'x'", false},
        {"white space", "a", "a ' '", false},
        {"empty text", "a*", "''", false},
        {"neither element nor text", "a*", "@", false},
    };
    expectVerdicts(std::begin(kCases), std::end(kCases));
}

TEST(ChildrenSpecTest, IsGreedyAndNeverGivesBackWhatMatched) {
    const MatchCase kCases[] = {
        {"star takes what a later member needs", "(a*, a)", "a a", false},
        {"plus takes what a later member needs", "(a+, a)", "a a", false},
        {"optional takes what a later member needs", "(a?, a)", "a", false},
        {"optional leaves the second", "(a?, a)", "a a", true},
        {"choice commits to its first match", "(a | (a, b))", "a b", false},
        {"choice in the other order", "((a, b) | a)", "a b", true},
        {"choice in the other order, short", "((a, b) | a)", "a", true},
        {"optional alternative commits to nothing", "(a? | b)", "b", false},
        {"star over a choice that commits", "(a | (a, b))*", "a b", false},
        {"star over a choice in the other order", "((a, b) | a)*", "a b a a b", true},
    };
    expectVerdicts(std::begin(kCases), std::end(kCases));
}

TEST(ChildrenSpecTest, PutsBackWhatAFailedPassTook) {
    const struct {
        const char* name;
        const char* model;
        const char* children;
        bool matched;
        std::size_t left;
    } kCases[] = {
        {"once fails with what the particle left", "(a, b)", "a c", false, 1},
        {"optional puts back", "(a, b)?", "a c", true, 2},
        {"star puts back the first pass", "(a, b)*", "a c", true, 2},
        {"star puts back the last pass only", "(a, b)*", "a b a b a c", true, 2},
        {"plus fails in the first pass with what was left", "(a, b)+", "a c", false, 1},
        {"plus puts back a later pass", "(a, b)+", "a b a c", true, 2},
        {"optional is a single pass", "(a, b)?", "a b a b", true, 2},
        {"once is a single pass", "a", "a a", true, 1},
        {"star ends with the queue", "a*", "a a", true, 0},
        {"star with nothing waiting", "a*", "", true, 0},
        {"plus with nothing waiting", "a+", "", false, 0},
        {"nested failure keeps what an inner sequence took", "((a, b), c)", "a b d", false, 1},
        {"sequence keeps what an optional member put back", "((a, b)?, a, c)", "a c d", true, 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(match(c.model, c.children), std::make_pair(c.matched, c.left));
    }
}

TEST(ChildrenSpecTest, EndsARepetitionWithAPassThatTookNothing) {
    const struct {
        const char* name;
        const char* model;
        const char* children;
        bool matched;
        std::size_t left;
    } kCases[] = {
        {"star over an optional member", "(a?)*", "b", true, 1},
        {"plus over an optional member", "(a?)+", "b", true, 1},
        {"star over an optional member, after matches", "(a?)*", "a a b", true, 1},
        {"plus over an optional member, after matches", "(a?)+", "a a b", true, 1},
        {"star over a star", "(a*)*", "a b a", true, 2},
        {"plus over stars", "(a*, b*)+", "a b a c b", true, 2},
        {"star over an empty sequence", "()*", "a", true, 1},
        {"plus over an empty sequence", "()+", "a", true, 1},
        {"plus over an empty sequence, nothing waiting", "()+", "", true, 0},
        {"star over text as alternative", "(a | b | #PCDATA)*", "'x' 'y' a c", true, 1},
        {"star over an optional alternative", "(a? | b)*", "a b", true, 1},
        {"nested", "((a?)+, (b?)*)+", "a b a 'x'", true, 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(match(c.model, c.children), std::make_pair(c.matched, c.left));
    }
    EXPECT_FALSE(accepts("(a?)*", "b"));
    EXPECT_TRUE(accepts("(a?)*", "a a"));
}

// What an inner repetition took is given up with the group around it, and tried again from a later child.
TEST(ChildrenSpecTest, TakesAsMuchByANestedRepetitionThatIsTriedAgainAsTheFirstTime) {
    const MatchCase kCases[] = {
        {"plus in front of what it has taken", "(((a*, b)+, b) | a+)+", "a b b", false},
        {"plus, and what follows is there", "(((a*, b)+, c) | a+)+", "a b b c", true},
        {"plus, and what follows is there the second time", "(((a, b)+, c) | a | b)+", "a b a b c", true},
        {"plus after a repeated choice", "(c, ((a+ | c*)+, a+)*)*", "c c c a", false},
        {"plus after a repeated choice, enough left", "(c, ((a+ | c*)+, b+)*)*", "c c c a b", true},
        {"plus after a repeated choice, in front of more", "(((a+ | c*)+, a+)*, a*)*", "a c a", false},
        {"plus of a choice after an optional plus", "(c*, ((b+)?, (a+ | b+)+)?)+", "c b b", false},
    };
    expectVerdicts(std::begin(kCases), std::end(kCases));
}

TEST(ChildrenSpecTest, TakesNoElementWithoutADtd) {
    const MatchCase kCases[] = {
        {"nothing to take", "a*", "", true},         {"an element", "a", "a", false},
        {"an element for a star", "a*", "a", false}, {"an element for a plus of a group", "((a, b)+ | a)+", "a", false},
        {"text", "(a | #PCDATA)*", "'x' 'y'", true}, {"text and an element", "(a | #PCDATA)+", "'x' a", false},
    };
    for (const MatchCase& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(specOf(c.model, nullptr)->validate(NodeList(c.children).list()), c.valid);
    }
}

TEST(ChildrenSpecTest, TakesCharacterDataOnlyByAChoiceThatAllowsIt) {
    const MatchCase kCases[] = {
        {"name", "a", "a 'x'", false},
        {"sequence", "(a, b)", "a 'x' b", false},
        {"choice", "(a | b)*", "a 'x' b", false},
        {"choice with text", "(a | b | #PCDATA)*", "a 'x' b 'y' 'z'", true},
        {"text in the middle of a sequence", "(a, (c | d | #PCDATA), b)", "a 'x' b", true},
        {"text elsewhere in the sequence", "(a, (c | d | #PCDATA), b)", "'x' a b", false},
    };
    expectVerdicts(std::begin(kCases), std::end(kCases));
}

TEST(ChildrenSpecTest, WritesItsMarkDirectlyBehindTheParticle) {
    Dtd dtd("test");
    for (const char* text : {"(b)", "(b)?", "(b)*", "(b)+", "(b, c*, (d | e)+)", "(b | c?)*", "(a+ | b? | (c, d)*)+"}) {
        EXPECT_EQ(written(*specOf(text, &dtd)), text);
    }
    EXPECT_EQ(written(*specOf("b?", &dtd)), "(b)?") << "an outermost name stands in parentheses";
    EXPECT_EQ(written(ChildrenSpec(&dtd, "b", REP_OPTIONAL)), "(b)?");
}

TEST(ChildrenSpecTest, WritesAsAMemberWithoutParenthesesAroundAName) {
    Dtd dtd("test");
    const ChildrenSpec model(&dtd, "b", REP_ONE_OR_MORE);
    EXPECT_EQ(SpecAccess::dtd(model), &dtd);
    // The form with the flag hands it on to the particle.
    class Recorder : public NameSpec {
    public:
        Recorder(Dtd* owner, std::vector<bool>* log) : NameSpec(owner, "b"), calls(log) {}
        void toStream(OutStream& out, bool outermost) const override {
            calls->push_back(outermost);
            NameSpec::toStream(out, outermost);
        }
        std::vector<bool>* calls;
    };
    std::vector<bool> calls;
    const ChildrenSpec recorded(&dtd, new Recorder(&dtd, &calls), REP_ZERO_OR_MORE);
    std::ostringstream text;
    FileOutStream out(&text);
    recorded.toStream(out, false);
    recorded.toStream(out, true);
    recorded.toStream(out);
    EXPECT_EQ(text.str(), "b*(b)*(b)*");
    EXPECT_EQ(calls, (std::vector<bool>{false, true, true}));
}

TEST(ChildrenSpecTest, IndentsLikeAnythingElseThatIsWritten) {
    Dtd dtd("test");
    std::ostringstream text;
    FileOutStream out(&text);
    out.incTab();
    specOf("(b, c)*", &dtd)->toStream(out);
    out << '\n';
    specOf("EMPTY", &dtd)->toStream(out);
    specOf("ANY", &dtd)->toStream(out);
    EXPECT_EQ(text.str(), "\t(b, c)*\n\tEMPTYANY");
}

TEST(ChildrenSpecTest, KeepsAnEmptyNameInPlaceOfWhatIsNoName) {
    Dtd dtd("test");
    EXPECT_EQ(written(ChildrenSpec(&dtd, "1b", REP_OPTIONAL)), "()?");
}

TEST(ChildrenSpecTest, CopiesDeeplyForTheSameDtd) {
    const auto dtd = dtdOf("a: EMPTY; b: EMPTY");
    auto model =
        std::make_unique<ChildrenSpec>(dtd.get(), makeParticle(particleOf("(a, (b | a)*)"), {dtd.get()}), REP_OPTIONAL);
    const ChildrenSpec copy(*model);
    EXPECT_NE(&SpecAccess::particle(copy), &SpecAccess::particle(*model));
    EXPECT_EQ(SpecAccess::dtd(copy), dtd.get());
    EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(copy)), dtd.get());
    model.reset();
    EXPECT_EQ(written(copy), "(a, (b | a)*)?");
    const NodeList nodes("a b a");
    EXPECT_TRUE(copy.validate(nodes.list()));
}

TEST(ChildrenSpecTest, OwnsItsParticle) {
    struct Counted : NameSpec {
        Counted(Dtd* owner, int* counter) : NameSpec(owner, "a"), alive(counter) { ++*alive; }
        ~Counted() override { --*alive; }
        int* alive;
    };
    Dtd dtd("test");
    int alive = 0;
    {
        const ChildrenSpec model(&dtd, new Counted(&dtd, &alive), REP_ONCE);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(ChildrenSpecTest, AsksTheDtdOfTheNameForEachElementItTakes) {
    const auto dtd = dtdOf("a: (b); b: EMPTY");
    const auto model = specOf("(a, b)", dtd.get());
    EXPECT_TRUE(model->validate(NodeList("a(b) b").list()));
    EXPECT_FALSE(model->validate(NodeList("a(b) b(b)").list()));
    EXPECT_FALSE(model->validate(NodeList("a b").list()));
    EXPECT_FALSE(model->validate(NodeList("a(b)  b[x=1]").list()));
}

}  // namespace Xml::test
