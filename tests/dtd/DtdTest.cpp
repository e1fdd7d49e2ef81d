#include "xml/dtd/Dtd.h"

#include "models/Models.h"
#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/stream/FileOutStream.h"
#include <gtest/gtest.h>
#include <sstream>

namespace Xml::test {

using Texts = std::vector<std::string>;

namespace {

bool hasAttributeList(const Dtd& dtd, const std::string& element) {
    return DtdAccess::findList(dtd, element) != nullptr;
}

// Count themselves, so that a test sees what frees them and how often.
struct CountedModel : EmptySpec {
    CountedModel(Dtd* owner, int* counter) : EmptySpec(owner), alive(counter) { ++*alive; }
    ~CountedModel() override { --*alive; }
    int* alive;
};

struct CountedParticle : NameSpec {
    CountedParticle(Dtd* owner, int* counter) : NameSpec(owner, "b"), alive(counter) { ++*alive; }
    ~CountedParticle() override { --*alive; }
    int* alive;
};

struct CountedDefinition : AttStringType {
    explicit CountedDefinition(int* counter) : AttStringType(REQUIRED), alive(counter) { ++*alive; }
    ~CountedDefinition() override { --*alive; }
    int* alive;
};

std::string modelText(const Dtd& dtd, const std::string& element) {
    return written(*DtdAccess::findModel(dtd, element));
}

}  // namespace

// --- Declarations ---

TEST(DtdTest, DeclaresElementsInFourWays) {
    MessageCollector messages;
    Dtd dtd("doc");
    dtd.addElementDecl("a", new EmptySpec(&dtd));
    dtd.addElementDecl("b", new NameSpec(&dtd, "a"), REP_ONE_OR_MORE);
    dtd.addElementDecl("c", "a", REP_OPTIONAL);
    dtd.addElementDecl("d");
    dtd.addElementDecl("e", "1 no name", REP_ONCE);
    EXPECT_EQ(messages.texts(), Texts());
    EXPECT_EQ(modelText(dtd, "a"), "EMPTY");
    EXPECT_EQ(modelText(dtd, "b"), "(a)+");
    EXPECT_EQ(modelText(dtd, "c"), "(a)?");
    EXPECT_EQ(modelText(dtd, "d"), "(#PCDATA)");
    EXPECT_EQ(modelText(dtd, "e"), "()") << "what is no name is stored as the empty name";
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        EXPECT_EQ(SpecAccess::dtd(*DtdAccess::findModel(dtd, name)), &dtd) << name;
    }
    const auto& made = dynamic_cast<const ChildrenSpec&>(*DtdAccess::findModel(dtd, "c"));
    EXPECT_EQ(SpecAccess::dtd(SpecAccess::particle(made)), &dtd);
}

TEST(DtdTest, KeepsTheFirstDeclarationAndReportsASecondInEveryForm) {
    MessageCollector messages;
    int alive = 0;
    CountedModel* model = nullptr;
    CountedParticle* particle = nullptr;
    {
        Dtd dtd("doc");
        dtd.addElementDecl("a", new EmptySpec(&dtd));
        EXPECT_EQ(messages.take(), Texts());

        model = new CountedModel(&dtd, &alive);
        dtd.addElementDecl("a", model);
        EXPECT_EQ(messages.take(), Texts{"<Dtd::addElementDecl> already added a"});

        particle = new CountedParticle(&dtd, &alive);
        dtd.addElementDecl("a", particle, REP_ZERO_OR_MORE);
        EXPECT_EQ(messages.take(), Texts{"<Dtd::addElementDecl> already added a"});

        dtd.addElementDecl("a", "b", REP_ONCE);
        EXPECT_EQ(messages.take(), Texts{"<Dtd::addElementDecl> already added a"});

        dtd.addElementDecl("a");
        EXPECT_EQ(messages.take(), Texts{"<Dtd::addElementDecl> already added a"});

        EXPECT_EQ(modelText(dtd, "a"), "EMPTY");
        EXPECT_EQ(alive, 2);
        EXPECT_EQ(written(*particle, false), "b") << "the refused particle is whole";
    }
    EXPECT_EQ(alive, 2) << "what was refused stays the caller's";
    delete model;
    delete particle;
    EXPECT_EQ(alive, 0);
}

TEST(DtdTest, OwnsTheModelsParticlesAndDefinitionsItTook) {
    int alive = 0;
    {
        Dtd dtd("doc");
        dtd.addElementDecl("a", new CountedModel(&dtd, &alive));
        dtd.addElementDecl("b", new CountedParticle(&dtd, &alive), REP_OPTIONAL);
        dtd.addAttDecl("a", "x", new CountedDefinition(&alive));
        EXPECT_EQ(alive, 3);
    }
    EXPECT_EQ(alive, 0);
}

TEST(DtdTest, KeepsTheFirstDefinitionOfAnAttributeAndReportsASecond) {
    MessageCollector messages;
    int alive = 0;
    CountedDefinition* second = nullptr;
    {
        Dtd dtd("doc");
        dtd.addAttDecl("a", "x", new AttStringType(FIXED, "1"));
        dtd.addAttDecl("a", "y", IMPLIED);
        dtd.addAttDecl("b", "x", REQUIRED);
        EXPECT_EQ(messages.take(), Texts());

        second = new CountedDefinition(&alive);
        dtd.addAttDecl("a", "x", second);
        EXPECT_EQ(messages.take(), Texts{"<Dtd::addAttlistDecl> alraedy added a x"});
        dtd.addAttDecl("a", "y", DEFAULT);
        EXPECT_EQ(messages.take(), Texts{"<Dtd::addAttlistDecl> alraedy added a y"});
        EXPECT_EQ(dtd.getDefaultValue("a", "x"), "1");
        EXPECT_FALSE(dtd.hasDefaultValue("a", "y"));
    }
    EXPECT_EQ(alive, 1);
    delete second;
    EXPECT_EQ(alive, 0);
}

TEST(DtdTest, TheRuleAloneDefinesAnAttributeOfStringTypeWithoutValue) {
    MessageCollector messages;
    Dtd dtd("doc");
    dtd.addElementDecl("a");
    dtd.addAttDecl("a", "d", DEFAULT);
    dtd.addAttDecl("a", "f", FIXED);
    dtd.addAttDecl("a", "i", IMPLIED);
    dtd.addAttDecl("a", "r", REQUIRED);
    EXPECT_EQ(messages.texts(), Texts());
    EXPECT_EQ(written(dtd),
              "<!DOCTYPE doc [\n<!ELEMENT a (#PCDATA)>\n<!ATTLIST a\n\td CDATA \"\"\n\tf CDATA #FIXED\"\"\n"
              "\ti CDATA #IMPLIED\n\tr CDATA #REQUIRED\n>\n]>\n");
}

TEST(DtdTest, MarksItselfAndItsAncestorsForEachAcceptedDeclaration) {
    const struct {
        const char* name;
        void (*declare)(Dtd&);
        bool touches;
    } kCases[] = {
        {"model", [](Dtd& d) { d.addElementDecl("n", new EmptySpec(&d)); }, true},
        {"particle", [](Dtd& d) { d.addElementDecl("n", new NameSpec(&d, "a"), REP_ONCE); }, true},
        {"child name", [](Dtd& d) { d.addElementDecl("n", "a", REP_ONCE); }, true},
        {"character data", [](Dtd& d) { d.addElementDecl("n"); }, true},
        {"definition", [](Dtd& d) { d.addAttDecl("n", "y", new AttStringType(IMPLIED)); }, true},
        {"rule", [](Dtd& d) { d.addAttDecl("n", "y", IMPLIED); }, true},
        {"refused child name", [](Dtd& d) { d.addElementDecl("r", "a", REP_ONCE); }, false},
        {"refused character data", [](Dtd& d) { d.addElementDecl("r"); }, false},
        {"refused rule", [](Dtd& d) { d.addAttDecl("r", "x", IMPLIED); }, false},
        {"entity", [](Dtd& d) { d.setEntity("e", "1"); }, false},
        {"merge", [](Dtd& d) { d.merge(*dtdOf("m: EMPTY; m@x REQUIRED; r: ANY"), true); }, false},
        {"merge without replacing", [](Dtd& d) { d.merge(*dtdOf("m: EMPTY; r@y REQUIRED"), false); }, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        MessageCollector messages;
        Document document(new Element("r"), new Dtd("r"));
        Dtd& dtd = *document.getDtd();
        dtd.addElementDecl("r");
        dtd.addAttDecl("r", "x", IMPLIED);
        ASSERT_TRUE(document.validate());
        ASSERT_EQ(NodeTestAccess::dtd(static_cast<Object&>(document)), &dtd);
        const Dtd other("other");
        dtd.setDtd(&other);
        NodeTestAccess::setDirty(document, false);
        NodeTestAccess::setDirty(dtd, false);

        c.declare(dtd);
        EXPECT_EQ(NodeTestAccess::dirty(dtd), c.touches);
        EXPECT_EQ(NodeTestAccess::dirty(document), c.touches);
        EXPECT_EQ(NodeTestAccess::dtd(static_cast<Object&>(dtd)), c.touches ? nullptr : &other);
        EXPECT_EQ(NodeTestAccess::dtd(static_cast<Object&>(document)), c.touches ? nullptr : &dtd);
        EXPECT_EQ(NodeTestAccess::dtd(*document.getRoot()), &dtd) << "the root is no ancestor";
    }
}

// --- Defaults ---

TEST(DtdTest, GivesDefaultValuesWhereTheRuleHasOne) {
    const auto dtd = dtdOf("a: EMPTY; a@d DEFAULT one; a@f FIXED two; a@i IMPLIED; a@r REQUIRED; a@e DEFAULT");
    const struct {
        const char* element;
        const char* attribute;
        bool has;
        const char* value;
    } kCases[] = {
        {"a", "d", true, "one"}, {"a", "f", true, "two"}, {"a", "i", false, ""}, {"a", "r", false, ""},
        {"a", "e", true, ""},    {"a", "x", false, ""},   {"b", "d", false, ""}, {"", "", false, ""},
    };
    MessageCollector messages;
    for (const auto& c : kCases) {
        SCOPED_TRACE(std::string(c.element) + " " + c.attribute);
        EXPECT_EQ(dtd->hasDefaultValue(c.element, c.attribute), c.has);
        EXPECT_EQ(dtd->getDefaultValue(c.element, c.attribute), c.value);
    }
    EXPECT_EQ(&dtd->getDefaultValue("a", "d"), &dtd->getDefaultValue("a", "d"));
    EXPECT_EQ(&dtd->getDefaultValue("a", "x"), &Dtd("other").getDefaultValue("b", "y")) << "one empty value for all";
    EXPECT_EQ(messages.texts(), Texts());
}

TEST(DtdTest, AsksForDefaultsDoNotMakeAttributeLists) {
    const auto dtd = dtdOf("a: EMPTY");
    EXPECT_FALSE(dtd->hasDefaultValue("a", "x"));
    EXPECT_EQ(dtd->getDefaultValue("a", "x"), "");
    EXPECT_FALSE(hasAttributeList(*dtd, "a"));
}

// --- Entities ---

TEST(DtdTest, KeepsEntitiesByName) {
    MessageCollector messages;
    Dtd dtd("doc");
    dtd.setEntity("b", "same");
    dtd.setEntity("a", "same");
    dtd.setEntity("c", "other");
    dtd.setEntity("c", "replaced");
    dtd.setEntity("", "nothing");
    EXPECT_TRUE(dtd.isEntityName("a"));
    EXPECT_TRUE(dtd.isEntityName(""));
    EXPECT_FALSE(dtd.isEntityName("A"));
    EXPECT_FALSE(dtd.isEntityName("amp")) << "the standard entities are not in the Dtd";
    EXPECT_FALSE(dtd.isEntityName("#65"));
    EXPECT_TRUE(dtd.isEntityValue("same"));
    EXPECT_TRUE(dtd.isEntityValue("replaced"));
    EXPECT_FALSE(dtd.isEntityValue("other"));
    EXPECT_FALSE(dtd.isEntityValue("&"));
    EXPECT_EQ(dtd.getEntityValue("b"), "same");
    EXPECT_EQ(dtd.getEntityValue("c"), "replaced");
    EXPECT_EQ(dtd.getEntityName("same"), "a") << "the first in name order";
    EXPECT_EQ(dtd.getEntityName("nothing"), "");
    EXPECT_EQ(messages.texts(), Texts());
}

TEST(DtdTest, AnswersUnknownEntityNamesWithTheReferenceInOneScratchText) {
    MessageCollector messages;
    Dtd dtd("doc");
    dtd.setEntity("known", "value");
    const DataHolder& first = dtd.getEntityValue("foo");
    EXPECT_EQ(first, "&foo;");
    EXPECT_EQ(messages.take(), Texts{"<Xml::Dtd::getEntityValue> unkown entity name: foo"});
    EXPECT_EQ(dtd.getEntityValue("known"), "value");
    EXPECT_EQ(first, "&foo;");
    const DataHolder& second = dtd.getEntityValue("bar");
    EXPECT_EQ(&second, &first);
    EXPECT_EQ(first, "&bar;");
    EXPECT_EQ(messages.take(), Texts{"<Xml::Dtd::getEntityValue> unkown entity name: bar"});
    EXPECT_EQ(dtd.getEntityValue(""), "&;");
    EXPECT_EQ(messages.take(), Texts{"<Xml::Dtd::getEntityValue> unkown entity name: "});
    EXPECT_EQ(dtd.getEntityValue("amp"), "&amp;");
    EXPECT_EQ(messages.take(), Texts{"<Xml::Dtd::getEntityValue> unkown entity name: amp"});
    EXPECT_FALSE(dtd.isEntityName("foo"));
}

TEST(DtdTest, AnswersUnknownEntityValuesWithTheValueInOneScratchText) {
    MessageCollector messages;
    Dtd dtd("doc");
    dtd.setEntity("known", "value");
    const std::string& first = dtd.getEntityName("foo");
    EXPECT_EQ(first, "foo");
    EXPECT_EQ(messages.take(), Texts{"<Xml::Dtd::getEntityValue> unkown entity value: foo"});
    EXPECT_EQ(dtd.getEntityName("value"), "known");
    EXPECT_EQ(first, "foo");
    const std::string& second = dtd.getEntityName("<");
    EXPECT_EQ(&second, &first);
    EXPECT_EQ(first, "<");
    EXPECT_EQ(messages.take(), Texts{"<Xml::Dtd::getEntityValue> unkown entity value: <"});
}

TEST(DtdTest, TheTwoScratchTextsAreIndependent) {
    MessageCollector messages;
    const Dtd dtd("doc");
    const DataHolder& value = dtd.getEntityValue("n");
    const std::string& name = dtd.getEntityName("v");
    EXPECT_EQ(value, "&n;");
    EXPECT_EQ(name, "v");
}

TEST(DtdTest, TheEntityGrowthLimitIsSetForTheProcess) {
    constexpr std::int64_t kAtFirst = 64LL * 1024 * 1024;
    EXPECT_EQ(Dtd::setEntityGrowthLimit(0), kAtFirst);
    EXPECT_EQ(Dtd::setEntityGrowthLimit(1LL << 40), 0);
    EXPECT_EQ(Dtd::setEntityGrowthLimit(kAtFirst), 1LL << 40);
    EXPECT_EQ(Dtd::setEntityGrowthLimit(kAtFirst), kAtFirst);
}

// --- As a node ---

TEST(DtdTest, IsANodeOfItsOwnKind) {
    MessageCollector messages;
    Dtd dtd("doc");
    EXPECT_TRUE(dtd.isDtd());
    EXPECT_FALSE(dtd.isElement());
    EXPECT_FALSE(dtd.isAttribute());
    EXPECT_FALSE(dtd.isCharData());
    EXPECT_FALSE(dtd.isDocument());
    EXPECT_EQ(dtd.toDtd(), &dtd);
    EXPECT_EQ(messages.take(), Texts());
    EXPECT_EQ(dtd.toElement(), nullptr);
    EXPECT_EQ(messages.take(), Texts{"<Object::toElement> Not a Element"});
    EXPECT_EQ(dtd.toString(), "<Document Type Description>");
    EXPECT_EQ(&dtd.toString(), &Dtd("other").toString()) << "one constant text";
    EXPECT_EQ(dtd.getParent(), nullptr);
    EXPECT_TRUE(NodeTestAccess::dirty(dtd));
    EXPECT_EQ(NodeTestAccess::writeStart(dtd), -1);
}

TEST(DtdTest, IsPassedOverWhenUnchangedWithTheRWOptimisation) {
    const bool before = Object::setRWOptimization(true);
    Dtd dtd("doc");
    dtd.addElementDecl("a");
    std::ostringstream text;
    FileOutStream out(&text);
    dtd.toStream(out);
    const std::string once = text.str();
    text.str(std::string(once.size(), '.'));
    out.setPosition(0);
    dtd.toStream(out);
    EXPECT_EQ(text.str(), std::string(once.size(), '.')) << "nothing is written";
    EXPECT_EQ(out.getPosition(), static_cast<int>(once.size()));
    dtd.addElementDecl("b");
    out.setPosition(0);
    dtd.toStream(out);
    EXPECT_EQ(text.str(), "<!DOCTYPE doc [\n<!ELEMENT a (#PCDATA)>\n<!ELEMENT b (#PCDATA)>\n]>\n");
    Object::setRWOptimization(before);
}

// --- Copies ---

TEST(DtdTest, CopiesEverythingDeeplyAndForItself) {
    MessageCollector messages;
    auto dtd = dtdOf("a: (b?, (c | d)*); b: (#PCDATA | a)*; c: EMPTY; d: ANY; e: CHARS; a@x FIXED 1; z@y REQUIRED");
    dtd->setEntity("e1", "<v>");
    const Dtd governing("governing");
    dtd->setDtd(&governing);
    Document parent(nullptr, nullptr);
    dtd->setParent(&parent);
    EXPECT_EQ(dtd->getEntityValue("unknown"), "&unknown;");
    const std::string text = written(*dtd);

    std::unique_ptr<Dtd> copies[] = {std::make_unique<Dtd>(*dtd), std::unique_ptr<Dtd>(dtd->clone()->toDtd())};
    dtd->setParent(nullptr);
    dtd.reset();
    for (const std::unique_ptr<Dtd>& copy : copies) {
        EXPECT_EQ(NodeTestAccess::dtd(static_cast<Object&>(*copy)), &governing) << "the link of the node is copied";
        EXPECT_EQ(copy->getParent(), nullptr);
        EXPECT_TRUE(NodeTestAccess::dirty(*copy));
        EXPECT_EQ(NodeTestAccess::writeStart(*copy), -1);
        EXPECT_EQ(NodeTestAccess::writeEnd(*copy), -1);
        EXPECT_EQ(written(*copy), text);
        for (const char* name : {"a", "b", "c", "d", "e"}) {
            EXPECT_EQ(SpecAccess::dtd(*DtdAccess::findModel(*copy, name)), copy.get()) << name;
        }
        EXPECT_EQ(copy->getDefaultValue("a", "x"), "1");
        EXPECT_TRUE(hasAttributeList(*copy, "z")) << "also for an element that is not declared";
        EXPECT_EQ(copy->getEntityName("<v>"), "e1");

        const auto tree = elementOf("a(b('t' a) c d c)");
        EXPECT_TRUE(copy->validate(tree.get()));
        EXPECT_EQ(linksOf(*tree, {copy.get()}), "a*(b*('t'* a*) c* d* c*)");
    }
}

TEST(DtdTest, ACopyLivesApartFromItsSource) {
    Dtd dtd("doc");
    dtd.addElementDecl("a", "b", REP_ONCE);
    dtd.setEntity("e", "1");
    Dtd copy(dtd);
    copy.addElementDecl("b");
    copy.setEntity("e", "2");
    copy.addAttDecl("a", "x", DEFAULT);
    EXPECT_TRUE(copy.validate(elementOf("a[x=1](b)").get()));
    EXPECT_FALSE(dtd.validate(elementOf("a(b)").get())) << "the source knows no b";
    EXPECT_EQ(dtd.getEntityValue("e"), "1");
    EXPECT_FALSE(dtd.hasDefaultValue("a", "x"));
}

TEST(DtdTest, ClonesIntoADtd) {
    const auto dtd = dtdOf("a: EMPTY");
    const std::unique_ptr<Object> copy(static_cast<const Object&>(*dtd).clone());
    EXPECT_TRUE(copy->isDtd());
    EXPECT_NE(copy->toDtd(), dtd.get());
    EXPECT_EQ(written(*copy), "<!DOCTYPE test [\n<!ELEMENT a EMPTY>\n]>\n");
}

// --- Merging ---

TEST(DtdTest, MergesDeclarationsAndLetsReplaceDecideConflicts) {
    MessageCollector messages;
    for (const bool replace : {false, true}) {
        SCOPED_TRACE(replace);
        const auto dtd = dtdOf("both: EMPTY; mine: ANY; both@x FIXED mine; both@m IMPLIED; mine@x IMPLIED");
        dtd->setEntity("both", "mine");
        dtd->setEntity("mine", "mine");
        auto other = std::make_unique<Dtd>("other");
        declare(*other,
                dtdValueOf("both: (theirs?); theirs: (#PCDATA); both@x FIXED theirs; both@t REQUIRED; none@x IMPLIED"),
                {other.get()});
        other->setEntity("both", "theirs");
        other->setEntity("theirs", "theirs");
        dtd->merge(*other, replace);
        other.reset();

        const std::string kept = replace ? "theirs" : "mine";
        EXPECT_EQ(written(*dtd), "<!DOCTYPE test [\n<!ELEMENT both " + std::string(replace ? "(theirs?)" : "EMPTY") +
                                     ">\n<!ATTLIST both\n\tm CDATA #IMPLIED\n\tt CDATA #REQUIRED\n\tx CDATA #FIXED\"" +
                                     kept +
                                     "\"\n>\n<!ELEMENT mine ANY>\n<!ATTLIST mine\n\tx CDATA #IMPLIED\n>\n"
                                     "<!ELEMENT theirs (#PCDATA)>\n<!ENTITY both \"" +
                                     kept + "\">\n<!ENTITY mine \"mine\">\n<!ENTITY theirs \"theirs\">\n]>\n");
        EXPECT_TRUE(hasAttributeList(*dtd, "none"));
        for (const char* name : {"both", "mine", "theirs"}) {
            EXPECT_EQ(SpecAccess::dtd(*DtdAccess::findModel(*dtd, name)), dtd.get()) << name;
        }
        EXPECT_EQ(dtd->validate(elementOf("both[t=1](theirs('text'))").get()), replace);
        EXPECT_EQ(dtd->validate(elementOf("both[t=1]").get()), true);
    }
    EXPECT_EQ(messages.texts(), Texts());
}

TEST(DtdTest, MergeFreesWhatItReplaces) {
    for (const bool replace : {false, true}) {
        SCOPED_TRACE(replace);
        int alive = 0;
        Dtd dtd("doc");
        dtd.addElementDecl("a", new CountedModel(&dtd, &alive));
        dtd.addAttDecl("a", "x", new CountedDefinition(&alive));
        dtd.merge(*dtdOf("a: ANY; a@x IMPLIED"), replace);
        EXPECT_EQ(alive, replace ? 0 : 2);
        EXPECT_EQ(dtd.validate(elementOf("a(b)").get()), replace);
    }
}

TEST(DtdTest, MergeLeavesOutEmptyAttributeLists) {
    for (const bool replace : {false, true}) {
        Dtd dtd("doc"), other("other");
        DtdAccess::makeList(other, "a");
        dtd.merge(other, replace);
        EXPECT_FALSE(hasAttributeList(dtd, "a"));
    }
}

TEST(DtdTest, MergeLeavesTheOtherAndTheNameAlone) {
    Dtd dtd("doc");
    const auto other = dtdOf("a: (b); b: EMPTY; a@x IMPLIED");
    other->setEntity("e", "v");
    const std::string before = written(*other);
    dtd.merge(*other, true);
    EXPECT_EQ(written(*other), before);
    EXPECT_EQ(SpecAccess::dtd(*DtdAccess::findModel(*other, "a")), other.get());
    EXPECT_EQ(written(dtd).substr(0, 16), "<!DOCTYPE doc [\n");
}

TEST(DtdTest, MergingIntoItselfChangesNothing) {
    for (const bool replace : {false, true}) {
        const auto dtd = dtdOf("a: (b, a?); b: (#PCDATA); a@x FIXED 1; b@y IMPLIED");
        dtd->setEntity("e", "v");
        const std::string before = written(*dtd);
        dtd->merge(*dtd, replace);
        EXPECT_EQ(written(*dtd), before);
        EXPECT_TRUE(dtd->validate(elementOf("a[x=1](b[y=1]('t'))").get()));
    }
}

// --- Models and definitions of a caller's own ---

namespace {

struct CloneLog {
    std::vector<const Dtd*> targets;
    int definitions = 0;
};

class LoggedModel : public ContentSpec {
public:
    LoggedModel(Dtd* owner, CloneLog* cloneLog) : ContentSpec(owner), log(cloneLog) {}
    bool validate(const std::vector<Object*>&) const override { return true; }
    void toStream(OutStream& out) const override { out << "LOGGED"; }
    ContentSpec* clone(Dtd* target) const override {
        log->targets.push_back(target);
        return new LoggedModel(target, log);
    }

private:
    CloneLog* log;
};

class LoggedParticle : public CpSpec {
public:
    LoggedParticle(Dtd* owner, CloneLog* cloneLog) : CpSpec(owner), log(cloneLog) {}
    bool validate(ChildQueue&) const override { return true; }
    void toStream(OutStream& out, bool outermost) const override { out << (outermost ? "outermost" : "member"); }
    CpSpec* clone(Dtd* target) const override {
        log->targets.push_back(target);
        return new LoggedParticle(target, log);
    }

private:
    CloneLog* log;
};

class LoggedDefinition : public AttDef {
public:
    LoggedDefinition(CloneLog* cloneLog, int* counter) : AttDef(FIXED, "v"), log(cloneLog), asked(counter) {}
    void typeToStream(OutStream& out) const override { out << "TYPE"; }
    bool validate(const DataHolder&) const override {
        ++*asked;
        return false;
    }
    AttDef* clone() const override {
        ++log->definitions;
        return new LoggedDefinition(log, asked);
    }

private:
    CloneLog* log;
    int* asked;
};

}  // namespace

TEST(DtdTest, CopiesAndMergesModelsOfACallersOwnByTheirClone) {
    CloneLog log;
    int asked = 0;
    Dtd dtd("doc");
    dtd.addElementDecl("a", new LoggedModel(&dtd, &log));
    auto* group = dynamic_cast<SeqSpec*>(makeParticle(particleOf("(x)"), {&dtd}));
    group->add(new LoggedParticle(&dtd, &log), REP_ZERO_OR_MORE);
    dtd.addElementDecl("b", group, REP_OPTIONAL);
    dtd.addElementDecl("c", new LoggedParticle(&dtd, &log), REP_ONE_OR_MORE);
    dtd.addAttDecl("a", "x", new LoggedDefinition(&log, &asked));
    EXPECT_EQ(log.targets.size(), 0U);
    EXPECT_EQ(log.definitions, 0);
    const std::string declarations =
        "<!ELEMENT a LOGGED>\n<!ATTLIST a\n\tx TYPE #FIXED\"v\"\n>\n<!ELEMENT b (x, member*)?>\n"
        "<!ELEMENT c outermost+>\n]>\n";
    EXPECT_EQ(written(dtd), "<!DOCTYPE doc [\n" + declarations);

    const Dtd copy(dtd);
    EXPECT_EQ(log.targets, (std::vector<const Dtd*>{&copy, &copy, &copy}));
    EXPECT_EQ(log.definitions, 1);
    EXPECT_EQ(written(copy), "<!DOCTYPE doc [\n" + declarations);
    EXPECT_EQ(SpecAccess::dtd(*DtdAccess::findModel(copy, "a")), &copy);

    Dtd merged("merged");
    log.targets.clear();
    merged.merge(dtd, false);
    EXPECT_EQ(log.targets, (std::vector<const Dtd*>{&merged, &merged, &merged}));
    EXPECT_EQ(log.definitions, 2);
    EXPECT_EQ(written(merged), "<!DOCTYPE merged [\n" + declarations);

    EXPECT_TRUE(merged.validate(elementOf("a[x=other]").get())) << "values are not checked against the type";
    EXPECT_EQ(asked, 0);
}

}  // namespace Xml::test
