#include "models/Models.h"
#include "models/NaiveMatcher.h"
#include "support/Messages.h"
#include "support/WithoutFastValidation.h"
#include "xml/dom/CharData.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/stream/OutStream.h"
#include <functional>
#include <gtest/gtest.h>
#include <new>

namespace Xml::test {

using Texts = std::vector<std::string>;

TEST(DtdValidateTest, ChecksDeclarationsContentAndAttributes) {
    const struct {
        const char* name;
        const char* dtd;
        const char* tree;
        bool valid;
    } kCases[] = {
        {"nothing is declared", "", "a", false},
        {"another element is declared", "b: ANY", "a", false},
        {"an attribute list is no declaration", "a@x IMPLIED", "a", false},
        {"declared", "a: EMPTY", "a", true},
        {"content does not fit", "a: EMPTY", "a('t')", false},
        {"attribute without list", "a: EMPTY", "a[x=1]", false},
        {"list of another element", "a: EMPTY; b@x IMPLIED", "a[x=1]", false},
        {"implied, absent", "a: EMPTY; a@x IMPLIED", "a", true},
        {"implied, present", "a: EMPTY; a@x IMPLIED", "a[x=1]", true},
        {"required, absent", "a: EMPTY; a@x REQUIRED", "a", false},
        {"required, present", "a: EMPTY; a@x REQUIRED", "a[x=1]", true},
        {"required, another present", "a: EMPTY; a@x REQUIRED; a@y IMPLIED", "a[y=1]", false},
        {"required, other case", "a: EMPTY; a@x REQUIRED", "a[X=1]", false},
        {"two required, one absent", "a: EMPTY; a@x REQUIRED; a@y REQUIRED", "a[x=1]", false},
        {"two required, both present", "a: EMPTY; a@x REQUIRED; a@y REQUIRED", "a[y=1 x=1]", true},
        {"not in the list", "a: EMPTY; a@x IMPLIED", "a[y=1]", false},
        {"one not in the list", "a: EMPTY; a@x IMPLIED; a@z IMPLIED", "a[x=1 y=1 z=1]", false},
        {"default, absent", "a: EMPTY; a@x DEFAULT 1", "a", true},
        {"fixed, absent", "a: EMPTY; a@x FIXED 1", "a", true},
        {"fixed, another value", "a: EMPTY; a@x FIXED 1", "a[x=2]", true},
        {"children are checked", "a: (b); b: EMPTY; b@x REQUIRED", "a(b)", false},
        {"children are checked, valid", "a: (b); b: EMPTY; b@x REQUIRED", "a(b[x=1])", true},
        {"below ANY nothing is checked", "a: ANY; b: EMPTY", "a(b('t') u[x=1])", true},
        {"attributes of an ANY element are", "a: ANY", "a[x=1]", false},
        {"deep", "a: (a?)", "a(a(a(a(a))))", true},
        {"deep, invalid at the bottom", "a: (a?)", "a(a(a(a(b))))", false},
    };
    MessageCollector messages;
    for (const auto& c : kCases) {
        for (const bool byMatcher : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (byMatcher ? ", by the Matcher alone" : ""));
            const WithoutFastValidation off(byMatcher);
            const auto dtd = dtdOf(c.dtd);
            const auto tree = elementOf(c.tree);
            EXPECT_EQ(dtd->validate(tree.get()), c.valid);
            EXPECT_EQ(dtd->validate(tree.get()), c.valid) << "the second time";
        }
    }
    EXPECT_EQ(messages.texts(), Texts());
}

TEST(DtdValidateTest, NullIsInvalid) {
    MessageCollector messages;
    EXPECT_FALSE(Dtd("doc").validate(nullptr));
    EXPECT_FALSE(dtdOf("a: ANY")->validate(nullptr));
    EXPECT_EQ(messages.texts(), Texts());
}

TEST(DtdValidateTest, DoesNotCompareTheDocumentTypeName) {
    Dtd dtd("doc");
    dtd.addElementDecl("other");
    EXPECT_TRUE(dtd.validate(elementOf("other").get()));
}

TEST(DtdValidateTest, AnEmptyAttributeListAllowsNoAttributesButGivesTheLink) {
    const auto dtd = dtdOf("a: (#PCDATA)");
    DtdAccess::makeList(*dtd, "a");
    auto tree = elementOf("a('t')");
    EXPECT_TRUE(dtd->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), "a*('t'*)");
    EXPECT_FALSE(dtd->validate(elementOf("a[x=1]").get()));
}

TEST(DtdValidateTest, AnElementWithoutNameIsLookedUpByItsEmptyName) {
    MessageCollector messages;
    const auto dtd = dtdOf("a: (#PCDATA)");
    const auto tree = elementOf("!");
    EXPECT_FALSE(dtd->validate(tree.get()));
    dtd->addElementDecl("");
    EXPECT_TRUE(dtd->validate(tree.get()));
    auto* mixed = new MixedSpec(dtd.get());
    mixed->addName("");
    dtd->addElementDecl("b", mixed);
    EXPECT_TRUE(dtd->validate(elementOf("b(! 't' !)").get()));
}

// --- A verdict is of the call that found it ---

namespace {

void expectChangesInTheTreeSeen() {
    const auto dtd = dtdOf("a: (b, c?); b: (c*); c: (#PCDATA); b@x IMPLIED");
    const auto a = elementOf("a(b(c c('t')))");
    Element* b = a->getElement("b");
    EXPECT_TRUE(dtd->validate(a.get()));
    b->setAttribute("y", "1");
    EXPECT_FALSE(dtd->validate(a.get()));
    b->removeAttribute("y");
    EXPECT_TRUE(dtd->validate(a.get()));
    b->getElement(1)->addChild(new Element("c"));
    EXPECT_FALSE(dtd->validate(a.get()));
    b->getElement(1)->killChildren();
    EXPECT_TRUE(dtd->validate(a.get()));
    b->getElement(0)->setName("b");
    EXPECT_FALSE(dtd->validate(a.get()));
    b->getElement(0)->setName("c");
    EXPECT_TRUE(dtd->validate(a.get()));
    std::unique_ptr<Object> taken(a->extractChild(b));
    EXPECT_FALSE(dtd->validate(a.get()));
    EXPECT_TRUE(dtd->validate(taken->toElement()));
    a->addChild(taken.release());
    EXPECT_TRUE(dtd->validate(a.get()));

    const std::unique_ptr<Element> copy(a->clone()->toElement());
    copy->getElement("b")->addChild(new Element("b"));
    EXPECT_FALSE(dtd->validate(copy.get()));
    EXPECT_TRUE(dtd->validate(a.get()));
}

void expectChangesInTheDtdSeen() {
    Dtd dtd("doc");
    const auto a = elementOf("a(b[x=1])");
    EXPECT_FALSE(dtd.validate(a.get()));
    dtd.addElementDecl("a", "b", REP_ZERO_OR_MORE);
    EXPECT_FALSE(dtd.validate(a.get()));
    dtd.addElementDecl("b");
    EXPECT_FALSE(dtd.validate(a.get()));
    dtd.addAttDecl("b", "x", IMPLIED);
    EXPECT_TRUE(dtd.validate(a.get()));
    dtd.addAttDecl("b", "y", REQUIRED);
    EXPECT_FALSE(dtd.validate(a.get()));
    dtd.merge(*dtdOf("a: ANY"), true);
    EXPECT_TRUE(dtd.validate(a.get()));
}

}  // namespace

TEST(DtdValidateTest, SeesWhatChangedSinceTheLastCall) {
    for (const bool byMatcher : {false, true}) {
        SCOPED_TRACE(byMatcher);
        const WithoutFastValidation off(byMatcher);
        expectChangesInTheTreeSeen();
        expectChangesInTheDtdSeen();
    }
}

TEST(DtdValidateTest, VerdictsOfOneDtdAreNotThoseOfAnother) {
    const auto lax = dtdOf("a: (b*); b: (#PCDATA)");
    const auto strict = dtdOf("a: (b*); b: EMPTY");
    const auto a = elementOf("a(b b('t'))");
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(lax->validate(a.get()));
        EXPECT_FALSE(strict->validate(a.get()));
        EXPECT_FALSE(strict->validate(a->getElement(1)));
        EXPECT_TRUE(lax->validate(a->getElement(1)));
    }
    // Also when they follow one another in the same place.
    alignas(Dtd) unsigned char place[sizeof(Dtd)];
    for (int i = 0; i < 6; ++i) {
        Dtd* dtd = new (place) Dtd("test");
        declare(*dtd, dtdValueOf(i % 2 == 0 ? "a: (b*); b: (#PCDATA)" : "a: (b*); b: EMPTY"), {dtd});
        EXPECT_EQ(dtd->validate(a.get()), i % 2 == 0);
        a->setDtd(nullptr);
        dtd->~Dtd();
    }
}

// --- Nested alternatives ---

namespace {

// Nests `level` around `bottom`: a level is the children of one element `a`, "%" standing for the next `a`.
std::string nest(const std::string& level, const std::string& name, const std::string& bottom, int depth) {
    const std::size_t place = level.find('%');
    std::string front, back;
    for (int i = 0; i < depth; ++i) {
        front += name + "(" + level.substr(0, place);
        back += level.substr(place + 1) + ")";
    }
    return front + name + "(" + bottom + ")" + back;
}

struct NestedCase {
    const char* name;
    const char* dtd;
    const char* level;
    const char* bottom;
    bool valid;
    const char* linkedName;
    const char* linkedLevel;
    const char* linkedBottom;
};

const NestedCase kNestedCases[] = {
    {"valid", "a: ((a, b) | (a, c) | a | d)?; b: EMPTY; c: EMPTY; d: EMPTY", "%", "d", true, "a", "%", "d"},
    {"second alternative", "a: ((a, b) | (a, c) | a | d)?; b: EMPTY; c: EMPTY; d: EMPTY", "% c", "d", true, "a", "% c",
     "d"},
    {"invalid at the bottom", "a: ((a, b) | (a, c) | a | d)?; b: EMPTY; c: EMPTY; d: EMPTY", "%", "d('t')", false, "a",
     "%", "d('t')"},
    {"undeclared at the bottom", "a: ((a, b) | (a, c) | a | d)?; b: EMPTY; c: EMPTY; d: EMPTY", "%", "u", false, "a",
     "%", "u"},
    {"valid with lists", "a: ((a, b) | (a, c) | a | d)?; a@x IMPLIED; b: EMPTY; c: EMPTY; d: (#PCDATA)", "%", "d('t')",
     true, "a*", "%", "d*('t'*)"},
    {"text in front", "a: ((d, a, b) | (d, a, c) | (d, a) | d)?; b: EMPTY; c: EMPTY; d: (#PCDATA)", "d('t') %",
     "d('t' u)", false, "a", "d('t'*) %", "d('t'* u)"},
    {"text in front, valid, lists at d",
     "a: ((d, a, b) | (d, a, c) | (d, a) | d)?; b: EMPTY; c: EMPTY; d: (#PCDATA); d@x IMPLIED", "d('t') %", "d('t')",
     true, "a", "d*('t'*) %", "d*('t'*)"},
    {"what stands after is not reached", "a: ((a, b) | (a, c) | a | d)?; b: (#PCDATA); c: (#PCDATA); d: (#PCDATA)",
     "% c('t')", "d('t' d)", false, "a", "% c('t')", "d('t'* d)"},
    {"mixed", "a: (#PCDATA | e)*; e: ((a, b) | (a, c) | a); b: EMPTY; c: EMPTY", "'t' e(%) 'u'", "'t' b", false, "a",
     "'t'* e(%) 'u'", "'t'* b"},
    {"mixed, valid", "a: (#PCDATA | e)*; e: ((a, b) | (a, c) | a); b: EMPTY; c: EMPTY", "'t' e(%) 'u'", "'t'", true,
     "a", "'t'* e*(%) 'u'*", "'t'*"},
};

// In the last case elements below the outermost are linked by the model around them.
std::string linkedNest(const NestedCase& c, int depth) {
    std::string links = nest(c.linkedLevel, c.linkedName, c.linkedBottom, depth);
    if (std::string(c.name) == "mixed, valid") {
        for (std::size_t at = 0; (at = links.find("(a(", at)) != std::string::npos;) links.replace(at, 3, "(a*(");
    }
    return links;
}

}  // namespace

TEST(DtdValidateTest, NestedAlternativesAreDecidedOnceAnElement) {
    for (const NestedCase& c : kNestedCases) {
        for (const int depth : {0, 1, 2, 5, 40, 400}) {
            SCOPED_TRACE(std::string(c.name) + ", depth " + std::to_string(depth));
            const auto dtd = dtdOf(c.dtd);
            const std::string text = nest(c.level, "a", c.bottom, depth);
            const auto tree = elementOf(text);
            EXPECT_EQ(dtd->validate(tree.get()), c.valid);
            EXPECT_EQ(linksOf(*tree, {dtd.get()}), linkedNest(c, depth));
            if (depth > 5) continue;

            // The naive matcher, which decides an element as often as the walk comes by, agrees.
            const std::vector<DtdValue> values = {dtdValueOf(c.dtd)};
            std::vector<NodeValue> nodes = nodesOf(text);
            EXPECT_EQ(NaiveMatcher(values, 1000000).validateElement(0, nodes[0]), c.valid);
            EXPECT_EQ(linksOf(nodes[0]), linkedNest(c, depth));
        }
    }
}

TEST(DtdValidateTest, NestedAlternativesAreDecidedOnceFromAModelOrAParticleToo) {
    const auto dtd = dtdOf(kNestedCases[0].dtd);
    const auto model = specOf("((a, b) | (a, c) | a)", dtd.get());
    for (const bool valid : {true, false}) {
        const NodeList nodes(nest("%", "a", valid ? "d" : "u", 40));
        EXPECT_EQ(model->validate(nodes.list()), valid);
        ChildQueue queue(nodes.list());
        EXPECT_EQ(NameSpec(dtd.get(), "a").validate(queue), valid);
        EXPECT_EQ(queue.empty(), valid);
    }
}

TEST(DtdValidateTest, WideAndDeepTreesOfAlternativesAreDecidedOnce) {
    const auto dtd = dtdOf("a: ((a, a, b) | (a, a) | (a, b) | a | d)*; b: EMPTY; d: EMPTY");
    std::function<std::unique_ptr<Element>(int)> grow = [&grow](int depth) {
        auto a = std::make_unique<Element>("a");
        for (int i = 0; i < 3 && depth > 0; ++i) a->addChild(grow(depth - 1).release());
        if (depth == 0) a->addChild(new Element("d"));
        return a;
    };
    const auto tree = grow(8);
    EXPECT_TRUE(dtd->validate(tree.get()));
    Element* leaf = tree.get();
    while (leaf->getElement("a", 2) != nullptr) leaf = leaf->getElement("a", 2);
    leaf->addChild(new Element("u"));
    EXPECT_FALSE(dtd->validate(tree.get()));
}

TEST(DtdValidateTest, DeepElementsInDeepGroupsAreDecided) {
    constexpr int kGroups = 300;
    constexpr int kElements = 1000;
    auto dtd = dtdOf("b: EMPTY; c: (#PCDATA); a@x IMPLIED");
    CpSpec* particle = makeParticle(particleOf("((a, b) | (a, c) | a)"), {dtd.get()});
    for (int i = 0; i < kGroups; ++i) {
        auto* choice = new ChoiceSpec(dtd.get());
        choice->addChoice("b", REP_ONCE);
        choice->addChoice(particle, REP_OPTIONAL);
        particle = choice;
    }
    dtd->addElementDecl("a", particle, REP_ONCE);
    for (const bool valid : {true, false}) {
        SCOPED_TRACE(valid);
        const auto tree = elementOf(nest("% c('t')", "a", valid ? "" : "c", kElements));
        EXPECT_EQ(dtd->validate(tree.get()), valid);
        const std::string links =
            valid ? nest("% c*('t'*)", "a*", "", kElements) : nest("% c('t')", "a", "c", kElements);
        std::string expected = links;
        if (valid) expected.replace(expected.find("()"), 2, "");
        EXPECT_TRUE(linksOf(*tree, {dtd.get()}) == expected) << "links differ";
    }
}

// --- Models of a caller's own ---

namespace {

std::string namesIn(const OwnLog& log) {
    std::string names;
    for (const OwnLog::Entry& entry : log.entries) {
        names += (names.empty() ? "" : " ") + entry.first + ":" + std::to_string(entry.second.size());
    }
    return names;
}

}  // namespace

TEST(DtdValidateTest, AsksModelsOfACallersOwnWhereTheWalkArrives) {
    // x, y and z have models of the caller's own: x accepts, y refuses, z accepts an even number of children. What is
    // asked stands with the number of children it is shown.
    const struct {
        const char* name;
        const char* model;
        const char* children;
        bool valid;
        const char* asked;
    } kCases[] = {
        {"in document order", "(x, x*, z?)", "x x('t') z", true, "x:0 x:1 z:0"},
        {"up to a failure", "(x, y, z)", "x y z", false, "x:0 y:0"},
        {"not after what is missing", "(x, z, x)", "x x", false, "x:0"},
        {"not what is left over", "(x)", "x x", false, "x:0"},
        {"refused in an optional member", "(x, y?, z?)", "x y z", false, "x:0 y:0"},
        {"in a repetition until one is refused", "(z*)", "z z('1' '2') z('1') z", false, "z:0 z:2 z:1"},
        {"in a mixed model", "(#PCDATA | x | y | z)*", "'t' x z('1' '2') y x", false, "x:0 z:2 y:0"},
        {"below another element", "(w)", "w(x z)", true, "x:0 z:0"},
        {"not below ANY", "ANY", "x y", true, ""},
        {"not when content is EMPTY", "EMPTY", "x", false, ""},
        {"in the alternative that is tried", "((z, x) | (x, z))", "x z", true, "x:0 z:0"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        OwnLog log;
        const auto dtd = dtdOf(std::string("doc: ") + c.model + "; w: (x, z)");
        dtd->addElementDecl("x", new OwnSpec(dtd.get(), "x", 0, &log));
        dtd->addElementDecl("y", new OwnSpec(dtd.get(), "y", 1, &log));
        dtd->addElementDecl("z", new OwnSpec(dtd.get(), "z", 2, &log));
        const auto doc = elementOf("doc(" + std::string(c.children) + ")");
        EXPECT_EQ(dtd->validate(doc.get()), c.valid);
        EXPECT_EQ(namesIn(log), c.asked);
    }
}

TEST(DtdValidateTest, AsksAnOutermostModelOfACallersOwn) {
    OwnLog log;
    Dtd dtd("doc");
    dtd.addElementDecl("x", new OwnSpec(&dtd, "x", 2, &log));
    dtd.addAttDecl("x", "a", REQUIRED);
    const auto odd = elementOf("x[a=1]('t')");
    EXPECT_FALSE(dtd.validate(odd.get()));
    EXPECT_EQ(linksOf(*odd, {&dtd}), "x[a]('t')");
    const auto even = elementOf("x[a=1]('t' u)");
    EXPECT_TRUE(dtd.validate(even.get()));
    EXPECT_EQ(linksOf(*even, {&dtd}), "x*[a*]('t'* u*)");
    EXPECT_FALSE(dtd.validate(elementOf("x('t' u)").get())) << "its attributes are checked afterwards";
    EXPECT_EQ(namesIn(log), "x:1 x:2 x:2");
}

TEST(DtdValidateTest, AsksParticlesOfACallersOwnWhereTheWalkArrives) {
    // The particle p takes two nodes of any kind, or one and fails. What is asked stands with how many nodes waited.
    const struct {
        const char* name;
        const char* model;
        const char* children;
        bool valid;
        const char* asked;
    } kCases[] = {
        {"alone", "p", "a 't'", true, "p:2"},
        {"alone, too few", "p", "a", false, "p:1"},
        {"alone, too many", "p", "a a a", false, "p:3"},
        {"star until it fails", "p*", "a a a a a", false, "p:5 p:3 p:1"},
        {"star until the queue is empty", "p*", "a a a a", true, "p:4 p:2"},
        {"star with nothing waiting", "p*", "", true, "p:0"},
        {"plus with nothing waiting", "p+", "", false, "p:0"},
        {"optional is put back", "(p?, a)", "a", true, "p:1"},
        {"sequence", "(a, p, a)", "a 't' b a", true, "p:3"},
        {"sequence ends before it", "(a, p)", "b", false, ""},
        {"twice in a sequence", "(p, p)", "a b c d", true, "p:4 p:2"},
        {"a failed alternative is put back", "(p | a)", "a", true, "p:1"},
        {"not after an alternative that matched", "(a | p)", "a", true, ""},
        {"after alternatives that failed", "(a | b | p | a)", "'t' a", true, "p:2"},
        {"between names", "(a | p | b)*", "a a b b", true, "p:2"},
        {"before text", "(p | #PCDATA)", "'t'", true, "p:1"},
        {"nested", "((a, (p)*)?, b)", "a 't' 't' b", true, "p:3 p:1"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        OwnLog log;
        const auto dtd = dtdOf("a: EMPTY; b: EMPTY; c: EMPTY; d: EMPTY");
        std::function<void(ParticleValue&)> makeOwn = [&makeOwn](ParticleValue& particle) {
            if (particle.name == "p") particle.kind = ParticleValue::Own;
            for (ParticleValue& member : particle.members) makeOwn(member);
        };
        ParticleValue particle = particleOf(c.model);
        makeOwn(particle);
        dtd->addElementDecl("doc", makeChildren(particle, {dtd.get()}, &log));
        EXPECT_EQ(dtd->validate(elementOf("doc(" + std::string(c.children) + ")").get()), c.valid);
        EXPECT_EQ(namesIn(log), c.asked);
    }
}

TEST(DtdValidateTest, AsksAModelOfACallersOwnFarBelowOnlyWhenTheWalkArrives) {
    // Far down stands an x that must not be asked: the walk fails at an invalid b in front of it.
    OwnLog log;
    const auto dtd = dtdOf("a: (b, a?, x?); b: EMPTY");
    dtd->addElementDecl("x", new OwnSpec(dtd.get(), "x", 0, &log));
    const int kDepth = 2000;
    auto tree = elementOf(nest("b % x", "a", "b x", kDepth));
    EXPECT_TRUE(dtd->validate(tree.get()));
    EXPECT_EQ(log.entries.size(), static_cast<std::size_t>(kDepth) + 1) << "each once";

    log.entries.clear();
    Element* middle = tree.get();
    for (int i = 0; i < kDepth / 2; ++i) middle = middle->getElement("a");
    middle->getElement("b")->addChild(new CharData("t"));
    EXPECT_FALSE(dtd->validate(tree.get()));
    EXPECT_EQ(log.entries.size(), 0U);
}

TEST(DtdValidateTest, AfterAMergeTheDefinitionsThatRemainSayWhatIsRequired) {
    const char* const kRules[] = {"IMPLIED", "REQUIRED"};
    for (const int mine : {0, 1}) {
        for (const int others : {0, 1}) {
            for (const bool replace : {false, true}) {
                SCOPED_TRACE(std::string(kRules[mine]) + " and " + kRules[others] + (replace ? ", replaced" : ""));
                const auto dtd = dtdOf(std::string("a: EMPTY; a@x ") + kRules[mine]);
                const auto other = dtdOf(std::string("a@x ") + kRules[others] + "; a@y " + kRules[others]);
                dtd->merge(*other, replace);
                const bool isRequired = (replace ? others : mine) == 1;
                Element a("a");
                EXPECT_EQ(dtd->validate(&a), !isRequired && others == 0);
                a.setAttribute("y", "");
                EXPECT_EQ(dtd->validate(&a), !isRequired);
                a.setAttribute("x", "");
                EXPECT_TRUE(dtd->validate(&a));
                EXPECT_TRUE(Dtd(*dtd).validate(&a));
            }
        }
    }
}

TEST(DtdValidateTest, AModelOfACallersOwnMayValidateItself) {
    // Validates the element children by a Dtd, which need not be the one that asks.
    class Asking : public ContentSpec {
    public:
        Asking(Dtd* owner, const Dtd* other) : ContentSpec(owner), asked(other) {}
        bool validate(const std::vector<Object*>& children) const override {
            for (Object* child : children) {
                if (child->isElement() && !asked->validate(child->toElement())) return false;
            }
            return true;
        }
        void toStream(OutStream&) const override {}
        ContentSpec* clone(Dtd* owner) const override { return new Asking(owner, asked); }

    private:
        const Dtd* asked;
    };
    const auto other = dtdOf("b: ANY; b@x IMPLIED; c: EMPTY");
    const auto dtd = dtdOf("a: ((own, c) | (own, d) | own)?; b: EMPTY; c: EMPTY; d: EMPTY");
    for (const bool toOther : {false, true}) {
        SCOPED_TRACE(toOther);
        Dtd test(*dtd);
        test.addElementDecl("own", new Asking(&test, toOther ? other.get() : &test));
        auto tree = elementOf("a(own(b c) d)");
        EXPECT_TRUE(test.validate(tree.get()));
        EXPECT_EQ(linksOf(*tree, {&test, other.get()}), toOther ? "a(own(b+ c) d)" : "a(own(b c) d)");
        tree = elementOf("a(own(b('t')) d)");
        EXPECT_EQ(test.validate(tree.get()), toOther);
        tree = elementOf("a(own(a(own(b(c)))) c)");
        EXPECT_FALSE(test.validate(tree.get()));
        tree = elementOf("a(own(a(own(a(own(b)) )) c))");
        EXPECT_EQ(test.validate(tree.get()), !toOther) << "the other does not know a";
    }
}

TEST(DtdValidateTest, TheOuterVerdictCountsWhereAModelOfACallersOwnValidatesItsOwnElement) {
    // Accepts what it is asked meanwhile, and nothing else.
    class AskingForItself : public ContentSpec {
    public:
        AskingForItself(Dtd* owner, Element* itsElement) : ContentSpec(owner), dtd(owner), element(itsElement) {}
        bool validate(const std::vector<Object*>&) const override {
            if (isAsking) return true;
            isAsking = true;
            EXPECT_TRUE(dtd->validate(element));
            isAsking = false;
            return false;
        }
        void toStream(OutStream&) const override {}
        ContentSpec* clone(Dtd* owner) const override { return new AskingForItself(owner, element); }

    private:
        Dtd* dtd;
        Element* element;
        mutable bool isAsking = false;
    };
    const auto dtd = dtdOf("a: ((own, c) | own)?; c: EMPTY");
    const auto tree = elementOf("a(own)");
    dtd->addElementDecl("own", new AskingForItself(dtd.get(), tree->getElement("own")));
    EXPECT_FALSE(dtd->validate(tree->getElement("own")));
    EXPECT_FALSE(dtd->validate(tree.get())) << "own is asked for a second time";
}

// --- Classes that a caller derives from the library's ---

namespace {

// Takes any node.
class AnyNode : public NameSpec {
public:
    explicit AnyNode(Dtd* owner) : NameSpec(owner, "a") {}
    bool validate(ChildQueue& children) const override {
        if (children.empty()) return false;
        children.pop();
        return true;
    }
    void toStream(OutStream& out, bool) const override { out << "%"; }
    CpSpec* clone(Dtd* owner) const override { return new AnyNode(owner); }
};

// Its members twice over.
class TwiceSeq : public SeqSpec {
public:
    explicit TwiceSeq(Dtd* owner) : SeqSpec(owner) { add("a", REP_ONCE); }
    bool validate(ChildQueue& children) const override {
        return SeqSpec::validate(children) && SeqSpec::validate(children);
    }
    void toStream(OutStream& out, bool outermost) const override {
        out << "2";
        SeqSpec::toStream(out, outermost);
    }
    CpSpec* clone(Dtd* owner) const override { return new TwiceSeq(owner); }
};

// Nothing, whatever its alternatives are.
class NoChoice : public ChoiceSpec {
public:
    explicit NoChoice(Dtd* owner) : ChoiceSpec(owner) { addChoice("a", REP_ZERO_OR_MORE); }
    bool validate(ChildQueue&) const override { return false; }
    void toStream(OutStream& out, bool) const override { out << "none"; }
    CpSpec* clone(Dtd* owner) const override { return new NoChoice(owner); }
};

class OneOfMixed : public MixedSpec {
public:
    explicit OneOfMixed(Dtd* owner) : MixedSpec(owner) { addName("a"); }
    bool validate(const std::vector<Object*>& children) const override {
        return children.size() == 1 && MixedSpec::validate(children);
    }
    void toStream(OutStream& out) const override { out << "one"; }
    ContentSpec* clone(Dtd* owner) const override { return new OneOfMixed(owner); }
};

// As a whole model it accepts everything. As a member it is what it is derived from.
class LooseChildren : public ChildrenSpec {
public:
    explicit LooseChildren(Dtd* owner) : ChildrenSpec(owner, "a", REP_ONCE) {}
    using ChildrenSpec::toStream;
    using ChildrenSpec::validate;
    bool validate(const std::vector<Object*>&) const override { return true; }
    void toStream(OutStream& out) const override { out << "loose"; }
    ContentSpec* clone(Dtd* owner) const override { return new LooseChildren(owner); }
};

}  // namespace

TEST(DtdValidateTest, AsksClassesDerivedFromTheLibrarysByWhatTheyOverride) {
    using Make = ContentSpec* (*)(Dtd*);
    const Make kAnyBehindName = [](Dtd* d) -> ContentSpec* {
        auto* group = new SeqSpec(d);
        group->add("a", REP_ONCE);
        group->add(new AnyNode(d), REP_ZERO_OR_MORE);
        return new ChildrenSpec(d, group, REP_ONCE);
    };
    const Make kAnyAmongNames = [](Dtd* d) -> ContentSpec* {
        auto* group = new ChoiceSpec(d);
        group->addChoice("a", REP_ONCE);
        group->addChoice("b", REP_ONCE);
        group->addChoice(new AnyNode(d), REP_ONCE);
        group->addChoice("c", REP_ONCE);
        return new ChildrenSpec(d, group, REP_ONE_OR_MORE);
    };
    const Make kAnyAlone = [](Dtd* d) -> ContentSpec* { return new ChildrenSpec(d, new AnyNode(d), REP_ONCE); };
    const Make kTwice = [](Dtd* d) -> ContentSpec* { return new ChildrenSpec(d, new TwiceSeq(d), REP_ZERO_OR_MORE); };
    const Make kTwiceInside = [](Dtd* d) -> ContentSpec* {
        auto* group = new SeqSpec(d);
        group->add(new TwiceSeq(d), REP_OPTIONAL);
        group->add("b", REP_ONCE);
        return new ChildrenSpec(d, group, REP_ONCE);
    };
    const Make kNone = [](Dtd* d) -> ContentSpec* {
        auto* group = new ChoiceSpec(d);
        group->addChoice(new NoChoice(d), REP_ONCE);
        group->addChoice("b", REP_ONCE);
        return new ChildrenSpec(d, group, REP_ONCE);
    };
    const Make kMixed = [](Dtd* d) -> ContentSpec* { return new OneOfMixed(d); };
    const Make kLoose = [](Dtd* d) -> ContentSpec* { return new LooseChildren(d); };
    const Make kLooseMember = [](Dtd* d) -> ContentSpec* {
        auto* group = new SeqSpec(d);
        group->add(new LooseChildren(d));
        group->add("b", REP_OPTIONAL);
        return new ChildrenSpec(d, group, REP_ONCE);
    };
    const struct {
        const char* name;
        Make make;
        const char* children;
        bool valid;
        const char* text;
    } kCases[] = {
        {"name, in a sequence", kAnyBehindName, "a 't' u b", true, "(a, %*)"},
        {"name, in a sequence, front missing", kAnyBehindName, "b a", false, "(a, %*)"},
        {"name, among names", kAnyAmongNames, "a 't' u b c", true, "(a | b | % | c)+"},
        {"name, nothing waits", kAnyAmongNames, "", false, "(a | b | % | c)+"},
        {"name, invalid element", kAnyAmongNames, "a('t')", true, "(a | b | % | c)+"},
        {"name, alone", kAnyAlone, "u", true, "%"},
        {"sequence", kTwice, "a a a a", true, "2(a)*"},
        {"sequence, odd", kTwice, "a a a", false, "2(a)*"},
        {"sequence as member", kTwiceInside, "a a b", true, "(2a?, b)"},
        {"sequence as member, put back", kTwiceInside, "a b", false, "(2a?, b)"},
        {"choice", kNone, "b", true, "(none | b)"},
        {"choice, refused", kNone, "a", false, "(none | b)"},
        {"mixed model", kMixed, "a", true, "one"},
        {"mixed model, two", kMixed, "a a", false, "one"},
        {"mixed model, not listed", kMixed, "b", false, "one"},
        {"children model", kLoose, "u 't' u", true, "loose"},
        {"children model as member", kLooseMember, "a b", true, "(a, b?)"},
        {"children model as member, refused", kLooseMember, "u", false, "(a, b?)"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        auto dtd = dtdOf("a: EMPTY; b: EMPTY; c: EMPTY");
        dtd->addElementDecl("doc", c.make(dtd.get()));
        const auto doc = elementOf("doc(" + std::string(c.children) + ")");
        EXPECT_EQ(dtd->validate(doc.get()), c.valid);
        EXPECT_EQ(written(*DtdAccess::findModel(*dtd, "doc")), c.text);

        const Dtd copy(*dtd);
        dtd.reset();
        EXPECT_EQ(copy.validate(doc.get()), c.valid) << "the copy";
        EXPECT_EQ(written(*DtdAccess::findModel(copy, "doc")), c.text) << "the copy";
        EXPECT_EQ(SpecAccess::dtd(*DtdAccess::findModel(copy, "doc")), &copy);
    }
}

TEST(DtdValidateTest, CopiesAMemberOfACallersOwnClassByItsClone) {
    Dtd dtd("doc"), other("other");
    for (const bool inChoice : {false, true}) {
        SCOPED_TRACE(inChoice);
        std::unique_ptr<GroupSpec> group;
        if (inChoice) {
            auto choice = std::make_unique<ChoiceSpec>(&dtd);
            choice->addChoice(new LooseChildren(&dtd));
            group = std::move(choice);
        } else {
            auto sequence = std::make_unique<SeqSpec>(&dtd);
            sequence->add(new LooseChildren(&dtd));
            group = std::move(sequence);
        }
        const std::unique_ptr<CpSpec> copy(group->clone(&other));
        const ChildrenSpec* const member = SpecAccess::members(dynamic_cast<const GroupSpec&>(*copy)).at(0).get();
        EXPECT_NE(dynamic_cast<const LooseChildren*>(member), nullptr);
        EXPECT_EQ(SpecAccess::dtd(*member), &other);
        EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(*member)), &other);
    }
}

}  // namespace Xml::test
