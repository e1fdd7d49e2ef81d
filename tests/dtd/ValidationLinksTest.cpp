#include "models/Models.h"
#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/WithoutFastValidation.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Entity.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/MixedSpec.h"
#include <gtest/gtest.h>

// Which nodes link to the Dtd after a validation: "*" stands after those that do.
namespace Xml::test {

namespace {

struct LinkCase {
    const char* name;
    const char* dtd;
    const char* tree;
    bool valid;
    const char* links;
};

void expectLinks(const LinkCase* begin, const LinkCase* end) {
    for (const LinkCase* c = begin; c != end; ++c) {
        for (const bool byMatcher : {false, true}) {
            SCOPED_TRACE(std::string(c->name) + (byMatcher ? ", by the Matcher alone" : ""));
            const WithoutFastValidation off(byMatcher);
            const auto dtd = dtdOf(c->dtd);
            const auto tree = elementOf(c->tree);
            EXPECT_EQ(dtd->validate(tree.get()), c->valid);
            EXPECT_EQ(linksOf(*tree, {dtd.get()}), c->links);
        }
    }
}

}  // namespace

TEST(ValidationLinksTest, AnElementIsLinkedWithItsSubtreeWhenItHasAnAttributeList) {
    const LinkCase kCases[] = {
        {"no list", "a: EMPTY", "a", true, "a"},
        {"a list, no attributes", "a: EMPTY; a@x IMPLIED", "a", true, "a*"},
        {"a list and attributes", "a: EMPTY; a@x IMPLIED; a@y REQUIRED", "a[x=1 y=2]", true, "a*[x* y*]"},
        {"list of another element", "a: EMPTY; b@x IMPLIED", "a", true, "a"},
        {"below ANY too", "a: ANY; a@x IMPLIED", "a(u[z=1]('t' u) 't')", true, "a*(u*[z*]('t'* u*) 't'*)"},
        {"children by name, no lists", "a: (b, c); b: EMPTY; c: EMPTY", "a(b c)", true, "a(b c)"},
        {"children by name, list of one", "a: (b, c); b: EMPTY; c: EMPTY; c@x IMPLIED", "a(b c)", true, "a(b c*)"},
        {"list of the parent", "a: (b, c); b: EMPTY; c: EMPTY; a@x IMPLIED", "a(b c)", true, "a*(b* c*)"},
        {"list in the middle", "a: (b); b: (c); c: (#PCDATA); b@x IMPLIED", "a(b(c('t')))", true, "a(b*(c*('t'*)))"},
        {"text taken by a choice", "a: (b | c | #PCDATA)*; b: EMPTY", "a('t' b)", true, "a('t' b)"},
        {"text taken by a choice, list", "a: (b | c | #PCDATA)*; b: EMPTY; a@x IMPLIED", "a('t' b)", true,
         "a*('t'* b*)"},
    };
    expectLinks(std::begin(kCases), std::end(kCases));
}

TEST(ValidationLinksTest, MixedModelsLinkTheirTextAndTheirElementsWithSubtrees) {
    const LinkCase kCases[] = {
        {"text", "a: (#PCDATA)", "a('t' 'u')", true, "a('t'* 'u'*)"},
        {"character data only", "a: CHARS", "a('t' 'u')", true, "a('t'* 'u'*)"},
        {"elements", "a: (#PCDATA | b)*; b: EMPTY", "a('t' b b)", true, "a('t'* b* b*)"},
        {"elements with subtrees", "a: (#PCDATA | b)*; b: (c); c: ANY", "a(b(c(u[x=1]('t'))))", true,
         "a(b*(c*(u*[x*]('t'*))))"},
        {"mixed below names", "a: (b); b: (#PCDATA | c)*; c: EMPTY", "a(b('t' c))", true, "a(b('t'* c*))"},
        {"mixed in mixed", "a: (#PCDATA | a)*", "a('1' a('2' a('3')))", true, "a('1'* a*('2'* a*('3'*)))"},
        {"empty", "a: (#PCDATA | b)*", "a", true, "a"},
    };
    expectLinks(std::begin(kCases), std::end(kCases));
}

TEST(ValidationLinksTest, NothingIsLinkedByModelsThatLookAtNothing) {
    const LinkCase kCases[] = {
        {"not declared", "b: ANY", "a[x=1]('t')", false, "a[x]('t')"},
        {"EMPTY with content", "a: EMPTY; a@x IMPLIED", "a('t')", false, "a('t')"},
        {"ANY", "a: ANY; b: EMPTY; b@x IMPLIED", "a(b 't')", true, "a(b 't')"},
        {"ANY in between", "a: (b, c); b: ANY; c: (#PCDATA)", "a(b('t' c('u')) c('v'))", true,
         "a(b('t' c('u')) c('v'*))"},
    };
    expectLinks(std::begin(kCases), std::end(kCases));
}

TEST(ValidationLinksTest, LinksSetBeforeAFailureStay) {
    const LinkCase kCases[] = {
        {"later sibling missing", "a: (b, c); b: (#PCDATA); b@x IMPLIED; c: EMPTY", "a(b('t'))", false, "a(b*('t'*))"},
        {"later sibling invalid", "a: (b, c); b: (#PCDATA); b@x IMPLIED; c: EMPTY", "a(b('t') c('u'))", false,
         "a(b*('t'*) c('u'))"},
        {"nothing after the failure", "a: (b, b, b); b: (#PCDATA); b@x REQUIRED", "a(b[x=1]('t') b('u') b[x=1])", false,
         "a(b*[x*]('t'*) b('u'*) b[x])"},
        {"one too many", "a: (b); b: (#PCDATA)", "a(b('t') b('u'))", false, "a(b('t'*) b('u'))"},
        {"one too many, list", "a: (b); a@x IMPLIED; b: (#PCDATA); b@x IMPLIED", "a(b('t') b('u'))", false,
         "a(b*('t'*) b('u'))"},
        {"content before attributes", "a: (b); b: (#PCDATA); a@x REQUIRED", "a(b('t'))", false, "a(b('t'*))"},
        {"undeclared attribute", "a: (#PCDATA); a@x IMPLIED", "a[x=1 y=2]('t')", false, "a[x y]('t'*)"},
        {"attribute without list", "a: (#PCDATA)", "a[x=1]('t')", false, "a[x]('t'*)"},
        {"an alternative that failed", "a: ((b, c) | (b, d)); b: (#PCDATA); c: EMPTY; d: EMPTY", "a(b('t') d)", true,
         "a(b('t'*) d)"},
        {"an optional group put back", "a: ((b, c)?, d?); b: (#PCDATA); b@x IMPLIED; c: EMPTY; d: EMPTY", "a(b('t'))",
         false, "a(b*('t'*))"},
        {"a repetition's last pass", "a: (b, c)*; b: (#PCDATA); c: EMPTY", "a(b('1') c b('2'))", false,
         "a(b('1'*) c b('2'*))"},
        {"deep", "a: (a | b)?; b: (#PCDATA | c)*; c: EMPTY; c@x REQUIRED", "a(a(a(b('1' c[x=1] '2' c '3'))))", false,
         "a(a(a(b('1'* c*[x*] '2'* c '3'))))"},
        {"alternatives of the same element", "a: ((a, b) | (a, c) | d)?; b: (#PCDATA); c: EMPTY; d: (#PCDATA)",
         "a(a(d('1') c) b('2'))", false, "a(a(d('1'*) c) b('2'))"},
    };
    expectLinks(std::begin(kCases), std::end(kCases));
}

TEST(ValidationLinksTest, EarlierLinksAreReplacedOnlyWhereValidationArrives) {
    const auto first = dtdOf("a: (#PCDATA | b)*; b: EMPTY");
    const auto second = dtdOf("a: (b, b); b: EMPTY; b@x IMPLIED");
    const auto tree = elementOf("a(b b 't')");
    EXPECT_TRUE(first->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {first.get(), second.get()}), "a(b* b* 't'*)");
    EXPECT_FALSE(second->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {first.get(), second.get()}), "a(b+ b+ 't'*)");
    EXPECT_TRUE(first->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {first.get(), second.get()}), "a(b* b* 't'*)");
}

TEST(ValidationLinksTest, LinksThatWereTakenAwayAreSetAgain) {
    const auto dtd = dtdOf("a: (b, c); a@x IMPLIED; b: (c*); c: (#PCDATA)");
    const auto tree = elementOf("a(b(c('1') c) c('2'))");
    const std::string all = "a*(b*(c*('1'*) c*) c*('2'*))";
    EXPECT_TRUE(dtd->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), all);

    tree->getElement("b")->getElement("c")->touch();
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), "a(b(c('1'*) c*) c*('2'*))");
    EXPECT_TRUE(dtd->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), all);

    tree->getElement("c")->setDtd(nullptr);
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), "a*(b*(c*('1'*) c*) c('2'))");
    EXPECT_TRUE(dtd->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), all);
}

// What has been linked already is not passed over then.
TEST(ValidationLinksTest, LinksThatAModelOfACallersOwnTakesAwayAreSetAgainInTheSameRun) {
    class Unlinking : public ContentSpec {
    public:
        Unlinking(Dtd* owner, Object* linked) : ContentSpec(owner), node(linked) {}
        bool validate(const std::vector<Object*>&) const override {
            node->setDtd(nullptr);
            return true;
        }
        void toStream(OutStream&) const override {}
        ContentSpec* clone(Dtd* owner) const override { return new Unlinking(owner, node); }

    private:
        Object* node;
    };
    const auto dtd = dtdOf("a: (b, own); a@x IMPLIED; b: (c); b@x IMPLIED; c: (#PCDATA)");
    const auto tree = elementOf("a(b(c('1')) own)");
    dtd->addElementDecl("own", new Unlinking(dtd.get(), tree->getElement("b")->getElement("c")));
    EXPECT_TRUE(dtd->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), "a*(b*(c*('1'*)) own*)");
}

TEST(ValidationLinksTest, ValidationChangesLinksAndNothingElse) {
    MessageCollector messages;
    const auto dtd = dtdOf("a: (#PCDATA | b)*; a@x DEFAULT 1; b: EMPTY; b@y REQUIRED");
    for (const char* text : {"a('t' b[y=1])", "a('t' b)", "a(c)"}) {
        SCOPED_TRACE(text);
        const auto tree = elementOf(text);
        const auto copy = elementOf(text);
        NodeTestAccess::setDirty(*tree, false);
        for (int i = 0; i < tree->getChildCount(); ++i) NodeTestAccess::setDirty(*tree->getChild(i), false);
        NodeTestAccess::setDirty(*dtd, false);
        dtd->validate(tree.get());
        EXPECT_FALSE(NodeTestAccess::dirty(*tree));
        for (int i = 0; i < tree->getChildCount(); ++i) EXPECT_FALSE(NodeTestAccess::dirty(*tree->getChild(i)));
        EXPECT_FALSE(NodeTestAccess::dirty(*dtd));
        EXPECT_EQ(written(*tree), written(*copy)) << "no default value is added";
        EXPECT_EQ(tree->getParent(), nullptr);
    }
    EXPECT_EQ(messages.texts(), std::vector<std::string>()) << "validation reports nothing";
}

TEST(ValidationLinksTest, ALinkedTextKnowsTheEntities) {
    const auto dtd = dtdOf("a: (#PCDATA)");
    dtd->setEntity("e", "expanded");
    Element a("a");
    auto* text = new CharData(Entity("e"));
    a.addChild(text);
    EXPECT_EQ(text->getData(), "&e;");
    EXPECT_TRUE(dtd->validate(&a));
    EXPECT_EQ(text->getData(), "expanded");
}

TEST(ValidationLinksTest, EachModelLinksToTheDtdItPointsBackTo) {
    // The models of `a` and of `b` in the first point to the second.
    const auto second = dtdOf("b: (#PCDATA); c: EMPTY; c@x IMPLIED; d: (#PCDATA)");
    auto first = std::make_unique<Dtd>("first");
    first->addElementDecl("a", makeModel(modelOf("(b, c, d)"), {second.get()}));
    auto* mixed = new MixedSpec(second.get());
    mixed->addName("c");
    first->addElementDecl("b", mixed);
    first->addElementDecl("c", makeModel(modelOf("ANY"), {first.get()}));
    first->addElementDecl("d", makeModel(modelOf("CHARS"), {second.get()}));

    const std::vector<const Dtd*> both = {first.get(), second.get()};
    auto tree = elementOf("a(b('t') c d('u'))");
    EXPECT_TRUE(first->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, both), "a(b('t'+) c+ d('u'+))");
    EXPECT_FALSE(second->validate(tree.get())) << "a is declared in the first only";

    tree = elementOf("a(b(c) c d)");
    EXPECT_FALSE(first->validate(tree.get())) << "the second allows text only in b";
    tree = elementOf("b('t' c)");
    EXPECT_TRUE(first->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, both), "b('t'+ c+)");
    tree = elementOf("d('t')");
    EXPECT_TRUE(first->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, both), "d('t'+)");

    first->addAttDecl("a", "x", IMPLIED);
    tree = elementOf("a(b('t') c d('u'))");
    EXPECT_TRUE(first->validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, both), "a*(b*('t'*) c* d*('u'*))");

    // A copy points to itself everywhere.
    Dtd copy(*first);
    tree = elementOf("a(b(c) c d)");
    EXPECT_TRUE(copy.validate(tree.get()));
    EXPECT_EQ(linksOf(*tree, {&copy}), "a*(b*(c*) c* d*)");
}

// Between two tries another Dtd may have linked the element: nothing that came of the first is used again then.
TEST(ValidationLinksTest, ARepetitionThatIsTriedAgainLinksAgainWhereNamesOfTwoDtdsTakeTurns) {
    const struct {
        const char* name;
        const char* model;  // the first of its names that is "c" is of the second Dtd
        const char* children;
        const char* links;
    } kCases[] = {
        {"tried again after a name of the other", "((c, z) | (a?, c*, x) | a)*", "a c", "r(a* c*)"},
        {"at least once", "((c, z) | (a?, c+, x) | a)*", "a c", "r(a* c*)"},
        {"several", "((c, z) | (a?, c*, x) | a)*", "a c c", "r(a* c* c*)"},
        {"where it ended", "(((c, z)?, (a*, c*)?)*, x)?", "a c", "r(a* c*)"},
        {"the name of the other is tried last", "((a?, d*, x) | a | (c, z))*", "a c", "r(a* c+)"},
    };
    const char* const kDeclarations = "; a: EMPTY; a@k IMPLIED; c: EMPTY; c@k IMPLIED; d: EMPTY; x: EMPTY; z: EMPTY";
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        ParticleValue particle = particleOf(c.model);
        const auto ofSecond = [](const auto& self, ParticleValue& from) -> bool {
            if (from.kind == ParticleValue::Name && from.name == "c") {
                from.dtd = 1;
                return true;
            }
            for (ParticleValue& member : from.members) {
                if (self(self, member)) return true;
            }
            return false;
        };
        ASSERT_TRUE(ofSecond(ofSecond, particle));
        const auto first = dtdOf(kDeclarations + 2), second = dtdOf(kDeclarations + 2);
        const Dtds both = {first.get(), second.get()};
        first->addElementDecl("r", makeChildren(particle, both));
        const auto tree = elementOf("r(" + std::string(c.children) + ")");
        EXPECT_FALSE(first->validate(tree.get()));
        EXPECT_EQ(linksOf(*tree, {first.get(), second.get()}), c.links);
    }
}

// --- Nodes of a caller's own ---

namespace {

// Writes down the links it is given.
class WatchedElement : public Element {
public:
    WatchedElement(const std::string& ownName, std::vector<const Dtd*>* log, bool takes = true)
        : Element(ownName), calls(log), takesLinks(takes) {}
    void setDtd(const Dtd* link) override {
        if (link != nullptr) calls->push_back(link);
        if (takesLinks) Element::setDtd(link);
    }

private:
    std::vector<const Dtd*>* calls;
    bool takesLinks;
};

class WatchedText : public CharData {
public:
    explicit WatchedText(std::vector<const Dtd*>* log) : CharData("text"), calls(log) {}
    void setDtd(const Dtd* link) override {
        if (link != nullptr) calls->push_back(link);
        CharData::setDtd(link);
    }

private:
    std::vector<const Dtd*>* calls;
};

}  // namespace

TEST(ValidationLinksTest, AnElementOfACallersOwnIsHandedEachLink) {
    const struct {
        const char* name;
        const char* dtd;
        std::size_t calls;
    } kCases[] = {
        {"taken by a name", "a: (w); w: (#PCDATA)", 0},
        {"taken by a name, list", "a: (w); w: (#PCDATA); w@x IMPLIED", 1},
        {"taken by a mixed model", "a: (#PCDATA | w)*; w: (#PCDATA)", 1},
        {"taken by a mixed model, list", "a: (#PCDATA | w)*; w: (#PCDATA); w@x IMPLIED", 2},
        {"list of the parent", "a: (w); a@x IMPLIED; w: (#PCDATA)", 1},
        {"all three", "a: (#PCDATA | w)*; a@x IMPLIED; w: (#PCDATA); w@x IMPLIED", 3},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto dtd = dtdOf(c.dtd);
        std::vector<const Dtd*> calls;
        Element a("a");
        auto* own = new WatchedElement("w", &calls);
        own->addChild(new CharData("text"));
        a.addChild(own);
        EXPECT_TRUE(dtd->validate(&a));
        EXPECT_EQ(calls, std::vector<const Dtd*>(c.calls, dtd.get()));
        EXPECT_EQ(NodeTestAccess::dtd(*own), c.calls > 0 ? dtd.get() : nullptr);
        EXPECT_EQ(NodeTestAccess::dtd(*own->getChild(0)), dtd.get());
    }
}

TEST(ValidationLinksTest, TextOfACallersOwnIsHandedEachLink) {
    const struct {
        const char* name;
        const char* dtd;
        std::size_t calls;
    } kCases[] = {
        {"ANY", "a: ANY", 0},
        {"mixed", "a: (#PCDATA)", 1},
        {"character data only", "a: CHARS", 1},
        {"mixed, list", "a: (#PCDATA); a@x IMPLIED", 2},
        {"taken by a choice", "a: (b | c | #PCDATA)*", 0},
        {"taken by a choice, list", "a: (b | c | #PCDATA)*; a@x IMPLIED", 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto dtd = dtdOf(c.dtd);
        std::vector<const Dtd*> calls;
        Element a("a");
        a.addChild(new WatchedText(&calls));
        EXPECT_TRUE(dtd->validate(&a));
        EXPECT_EQ(calls, std::vector<const Dtd*>(c.calls, dtd.get()));
    }
}

// Each element around would link it again: a deep tree would cost the square of its depth.
TEST(ValidationLinksTest, WhatIsLinkedWithAnElementIsLeftAloneByTheElementsAroundIt) {
    const struct {
        const char* name;
        const char* dtd;
        std::size_t calls;
    } kCases[] = {
        {"by lists", "a: (a | #PCDATA)*; a@x IMPLIED", 1},
        {"by mixed models", "a: (#PCDATA | a)*", 2},
        {"by both", "a: (#PCDATA | a)*; a@x IMPLIED", 2},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto dtd = dtdOf(c.dtd);
        std::vector<const Dtd*> calls;
        const auto tree = elementOf("a(a(a(a(a(a)))))");
        Element* deepest = tree.get();
        while (Element* const below = deepest->getElement("a")) deepest = below;
        deepest->addChild(new WatchedText(&calls));
        EXPECT_TRUE(dtd->validate(tree.get()));
        EXPECT_EQ(calls, std::vector<const Dtd*>(c.calls, dtd.get()));
    }
}

TEST(ValidationLinksTest, AnElementOfACallersOwnDeepInTheTreeIsHandedTheLinkOfItsAncestor) {
    const auto dtd = dtdOf("a: ANY; a@x IMPLIED");
    std::vector<const Dtd*> calls;
    const auto tree = elementOf("a(b(c) 't')");
    auto* own = new WatchedElement("anything", &calls, false);
    own->addChild(new Element("below"));
    tree->getElement("b")->getElement("c")->addChild(own);
    EXPECT_TRUE(dtd->validate(tree.get()));
    EXPECT_EQ(calls, std::vector<const Dtd*>{dtd.get()});
    EXPECT_EQ(linksOf(*tree, {dtd.get()}), "a*(b*(c*(anything(below))) 't'*)") << "it decides for what is below";
}

TEST(ValidationLinksTest, AnElementOfACallersOwnThatIsTriedAgainIsHandedTheLink) {
    const auto dtd = dtdOf("a: ((w, b) | (w, c) | w); w: EMPTY; w@x IMPLIED; b: EMPTY; c: EMPTY");
    std::vector<const Dtd*> calls;
    Element a("a");
    a.addChild(new WatchedElement("w", &calls));
    EXPECT_TRUE(dtd->validate(&a));
    EXPECT_FALSE(calls.empty());
    for (const Dtd* each : calls) EXPECT_EQ(each, dtd.get());
}

TEST(ValidationLinksTest, NodesThatSayTheyAreNeitherElementNorTextFitOnlyANY) {
    class Hidden : public Element {
    public:
        Hidden() : Element("b") {}
        bool isElement() const override { return false; }
    };
    class Comment : public Object {
    public:
        Object* clone() const override { return new Comment; }
        const std::string& toString() const override { return text; }
        void write(OutStream&) const override {}

    private:
        std::string text = "comment";
    };
    const struct {
        const char* model;
        bool valid;
    } kCases[] = {
        {"ANY", true},    {"EMPTY", false},
        {"CHARS", false}, {"(#PCDATA | b)*", false},
        {"b", false},     {"(b | c | #PCDATA)*", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.model);
        const auto dtd = dtdOf(std::string("b: ANY; a@x IMPLIED; a: ") + c.model);
        for (const bool hidden : {false, true}) {
            SCOPED_TRACE(hidden);
            Element a("a");
            Object* node = hidden ? static_cast<Object*>(new Hidden) : new Comment;
            a.addChild(node);
            EXPECT_EQ(dtd->validate(&a), c.valid);
            EXPECT_EQ(NodeTestAccess::dtd(*node), c.valid ? dtd.get() : nullptr);
        }
    }
}

}  // namespace Xml::test
