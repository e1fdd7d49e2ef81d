// Content models, declarations and validation while memory runs out.
#include "memory/Failing.h"
#include "memory/Usable.h"
#include "support/Trees.h"
#include "support/WithoutFastValidation.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dtd/AnySpec.h"
#include "xml/dtd/AttEnumeratedType.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/AttTokenType.h"
#include "xml/dtd/CharSpec.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ChoiceSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/MixedSpec.h"
#include "xml/dtd/NameSpec.h"
#include "xml/dtd/SeqSpec.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace Xml::test {

namespace {

bool hasAttributeList(const Dtd& dtd, const std::string& element) {
    return DtdAccess::findList(dtd, element) != nullptr;
}

// Names that need memory.
const std::string kPea = "pea-that-climbs-upwards";
const std::string kBean = "bean-that-climbs-upwards";
const std::string kPot = "pot-for-peas-and-beans";
const std::string kTool = "tool-for-digging-and-raking";

std::string written(const ContentSpec& model) {
    FixedSink out;
    model.toStream(out);
    return out.all();
}

std::string written(const Object& node) {
    FixedSink out;
    node.write(out);
    return out.all();
}

std::string written(const CpSpec& particle) {
    FixedSink out;
    particle.toStream(out, true);
    return out.all();
}

void add(SeqSpec& group, CpSpec* particle, RepType repetition) { group.add(particle, repetition); }
void add(ChoiceSpec& group, CpSpec* particle, RepType repetition) { group.addChoice(particle, repetition); }
void add(SeqSpec& group, ChildrenSpec* member) { group.add(member); }
void add(ChoiceSpec& group, ChildrenSpec* member) { group.addChoice(member); }

// Adds what the group must take over, or leave to the caller where it fails.
template <class Group, class Part, class... Repetition>
void hand(Group& group, std::unique_ptr<Part> part, Repetition... repetition) {
    add(group, part.get(), repetition...);
    part.release();
}

// A member of a caller's own, which copies of groups must copy by its own operation.
class OwnMember : public ChildrenSpec {
public:
    using ChildrenSpec::ChildrenSpec;
    ContentSpec* clone(Dtd* owner) const override { return new OwnMember(owner, kTool, REP_OPTIONAL); }
};

std::unique_ptr<ChoiceSpec> makeChoice(Dtd* dtd) {
    auto choice = std::make_unique<ChoiceSpec>(dtd);
    choice->addChoice(kPea, REP_ONCE);
    choice->addChoice(kBean, REP_ONE_OR_MORE);
    hand(*choice, std::make_unique<OwnMember>(dtd, kTool, REP_OPTIONAL));
    choice->addCharDataAsChoice(true);
    return choice;
}

std::unique_ptr<SeqSpec> makeSequence(Dtd* dtd) {
    auto sequence = std::make_unique<SeqSpec>(dtd);
    sequence->add(kPea, REP_OPTIONAL);
    hand(*sequence, makeChoice(dtd), REP_ZERO_OR_MORE);
    hand(*sequence, std::make_unique<ChildrenSpec>(dtd, kPot, REP_ONE_OR_MORE));
    return sequence;
}

const std::string kChoiceText = "(" + kPea + " | " + kBean + "+ | " + kTool + "? | #PCDATA)";
const std::string kSequenceText = "(" + kPea + "?, " + kChoiceText + "*, " + kPot + "+)";

std::unique_ptr<ContentSpec> children(Dtd* dtd, std::unique_ptr<CpSpec> particle, RepType repetition) {
    auto model = std::make_unique<ChildrenSpec>(dtd, particle.get(), repetition);
    particle.release();
    return model;
}

using Model = std::unique_ptr<ContentSpec>;

std::unique_ptr<MixedSpec> makeMixed(Dtd* dtd) {
    auto mixed = std::make_unique<MixedSpec>(dtd);
    for (const auto& name : {kPea, kBean, kPot}) mixed->addName(name);
    return mixed;
}

// A Dtd with a bit of everything.
std::unique_ptr<Dtd> makeDtd() {
    auto dtd = std::make_unique<Dtd>("garden-behind-the-house");
    Model model = children(dtd.get(), makeSequence(dtd.get()), REP_ONE_OR_MORE);
    dtd->addElementDecl("garden", model.get());
    model.release();
    model = makeMixed(dtd.get());
    dtd->addElementDecl(kPot, model.get());
    model.release();
    dtd->addElementDecl(kPea);
    auto definition = std::make_unique<AttStringType>(DEFAULT, kLong);
    dtd->addAttDecl(kPea, "attribute-of-a-long-name", definition.get());
    definition.release();
    dtd->addAttDecl(kPea, "another-attribute-of-a-long-name", IMPLIED);
    dtd->setEntity("entity-of-a-long-name", kLong);
    return dtd;
}

}  // namespace

TEST(DtdMemoryTest, AModelThatCannotBeMadeCopiedOrDeclaredLeavesNothingBehind) {
    struct Case {
        const char* name;
        std::function<Model(Dtd*)> make;
        std::string text;
    };
    const Case kCases[] = {
        {"empty", [](Dtd* dtd) { return std::make_unique<EmptySpec>(dtd); }, "EMPTY"},
        {"any", [](Dtd* dtd) { return std::make_unique<AnySpec>(dtd); }, "ANY"},
        {"characters", [](Dtd* dtd) { return std::make_unique<CharSpec>(dtd); }, "(#PCDATA)"},
        {"mixed", makeMixed, "(#PCDATA | " + kPea + " | " + kBean + " | " + kPot + ")*"},
        {"name", [](Dtd* dtd) { return std::make_unique<ChildrenSpec>(dtd, kPea, REP_ONCE); }, "(" + kPea + ")"},
        {"particle", [](Dtd* dtd) { return children(dtd, std::make_unique<NameSpec>(dtd, kPea), REP_OPTIONAL); },
         "(" + kPea + ")?"},
        {"choice", [](Dtd* dtd) { return children(dtd, makeChoice(dtd), REP_ZERO_OR_MORE); }, kChoiceText + "*"},
        {"sequence", [](Dtd* dtd) { return children(dtd, makeSequence(dtd), REP_ONCE); }, kSequenceText},
        {"copied choice",
         [](Dtd* dtd) { return children(dtd, std::make_unique<ChoiceSpec>(*makeChoice(dtd)), REP_ONCE); }, kChoiceText},
        {"copied sequence",
         [](Dtd* dtd) { return children(dtd, std::make_unique<SeqSpec>(*makeSequence(dtd)), REP_ONCE); },
         kSequenceText},
        {"copied children", [](Dtd* dtd) { return std::make_unique<ChildrenSpec>(ChildrenSpec(dtd, kPea, REP_ONCE)); },
         "(" + kPea + ")"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            Dtd dtd("garden");
            Dtd other("garden");
            const std::string empty = textOf(dtd);
            Model model;
            if (!attempt([&] { model = c.make(&dtd); })) return;
            EXPECT_EQ(written(*model), c.text);
            Model copy;
            if (!attempt([&] { copy.reset(model->clone(&other)); })) {
                EXPECT_EQ(written(*model), c.text);
                return;
            }
            EXPECT_EQ(written(*copy), c.text);
            EXPECT_EQ(SpecAccess::dtd(*copy), &other);
            const bool complete = attempt([&] {
                dtd.addElementDecl("garden-behind-the-house", model.get());
                model.release();
            });
            if (!complete) {
                EXPECT_EQ(textOf(dtd), empty);
                EXPECT_EQ(written(*model), c.text);
            }
        });
    }
}

TEST(DtdMemoryTest, AMemberThatCannotBeAddedIsAddedTheNextTime) {
    struct Case {
        const char* name;
        std::function<void(SeqSpec&, Dtd*)> addToSequence;
        std::function<void(ChoiceSpec&, Dtd*)> addToChoice;
        std::string member;
    };
    const Case kCases[] = {
        {"name", [](SeqSpec& group, Dtd*) { group.add(kBean, REP_ONCE); },
         [](ChoiceSpec& group, Dtd*) { group.addChoice(kBean, REP_ONCE); }, kBean},
        {"particle", [](SeqSpec& group, Dtd* dtd) { hand(group, std::make_unique<NameSpec>(dtd, kBean), REP_ONCE); },
         [](ChoiceSpec& group, Dtd* dtd) { hand(group, std::make_unique<NameSpec>(dtd, kBean), REP_ONCE); }, kBean},
        {"member",
         [](SeqSpec& group, Dtd* dtd) { hand(group, std::make_unique<ChildrenSpec>(dtd, kBean, REP_ONE_OR_MORE)); },
         [](ChoiceSpec& group, Dtd* dtd) { hand(group, std::make_unique<ChildrenSpec>(dtd, kBean, REP_ONE_OR_MORE)); },
         kBean + "+"},
    };
    // The first and the third need room in the list, the second does not.
    for (const int before : {0, 1, 2}) {
        for (const auto& c : kCases) {
            SCOPED_TRACE(c.name);
            SCOPED_TRACE(before);
            forEachFailingAllocation([&](Attempt& attempt) {
                Dtd dtd("garden");
                SeqSpec group(&dtd);
                std::string text;
                for (int i = 0; i < before; ++i) {
                    group.add(kPea, REP_ONCE);
                    text += kPea + ", ";
                }
                if (!attempt([&] { c.addToSequence(group, &dtd); })) c.addToSequence(group, &dtd);
                EXPECT_EQ(written(group), "(" + text + c.member + ")");
            });
            forEachFailingAllocation([&](Attempt& attempt) {
                Dtd dtd("garden");
                for (const auto& name : {kPea, kBean, kPot}) dtd.addElementDecl(name);
                auto group = std::make_unique<ChoiceSpec>(&dtd);
                std::string text;
                for (int i = 0; i < before; ++i) {
                    group->addChoice(i == 0 ? kPea : kPot, REP_ONCE);
                    text += (i == 0 ? kPea : kPot) + " | ";
                }
                if (!attempt([&] { c.addToChoice(*group, &dtd); })) c.addToChoice(*group, &dtd);
                group->addChoice("tool", REP_ONCE);
                EXPECT_EQ(written(*group), "(" + text + c.member + " | tool)");
                // Names are looked up: what was not added must not have been noted either.
                const Element bean(kBean);
                std::vector<Object*> nodes = {const_cast<Element*>(&bean)};
                ChildQueue queue(nodes);
                EXPECT_TRUE(group->validate(queue));
                EXPECT_TRUE(queue.empty());
            });
        }
    }
}

TEST(DtdMemoryTest, ANameThatAMixedModelCouldNotTakeIsTakenTheNextTime) {
    const QuietMessages quiet;
    forEachFailingAllocation([&quiet](Attempt& attempt) {
        MixedSpec mixed(nullptr);
        mixed.addName(kPea);
        mixed.addName(kPot);
        const int before = quiet.count();
        if (!attempt([&] { mixed.addName(kBean); })) {
            EXPECT_EQ(written(mixed), "(#PCDATA | " + kPea + " | " + kPot + ")*");
            mixed.addName(kBean);
        }
        EXPECT_EQ(quiet.count(), before);
        EXPECT_EQ(written(mixed), "(#PCDATA | " + kPea + " | " + kPot + " | " + kBean + ")*");
        attempt([&] { mixed.addName(kBean); });  // reported
        EXPECT_EQ(written(mixed), "(#PCDATA | " + kPea + " | " + kPot + " | " + kBean + ")*");
    });
}

TEST(DtdMemoryTest, ADeclarationThatCannotBeMadeLeavesTheDtdAsItWas) {
    const auto withModel = [](Dtd& dtd, const std::string& name) {
        Model model = makeMixed(&dtd);
        dtd.addElementDecl(name, model.get());
        if (name != kPea) model.release();  // else declared already: it stays here
    };
    const auto withParticle = [](Dtd& dtd, const std::string& name) {
        std::unique_ptr<CpSpec> particle = makeSequence(&dtd);
        dtd.addElementDecl(name, particle.get(), REP_ONCE);
        if (name != kPea) particle.release();
    };
    const auto withDefinition = [](Dtd& dtd, const std::string& element, const std::string& attribute) {
        auto definition = std::make_unique<AttStringType>(FIXED, kLong);
        dtd.addAttDecl(element, attribute, definition.get());
        if (attribute != "attribute-of-a-long-name") definition.release();
    };
    struct Case {
        const char* name;
        std::function<void(Dtd&)> declare;
        bool refused;
    };
    const Case kCases[] = {
        {"element with model", [&](Dtd& dtd) { withModel(dtd, kBean); }, false},
        {"element with particle", [&](Dtd& dtd) { withParticle(dtd, kBean); }, false},
        {"element with child", [](Dtd& dtd) { dtd.addElementDecl(kBean, kPea, REP_ONCE); }, false},
        {"element with characters", [](Dtd& dtd) { dtd.addElementDecl(kBean); }, false},
        {"attribute with definition", [&](Dtd& dtd) { withDefinition(dtd, kPea, "third-attribute-of-a-long-name"); },
         false},
        {"attribute of another element", [&](Dtd& dtd) { withDefinition(dtd, kPot, "first-attribute-of-a-pot"); },
         false},
        {"attribute", [](Dtd& dtd) { dtd.addAttDecl(kPea, "third-attribute-of-a-long-name", REQUIRED); }, false},
        {"first attribute of an element", [](Dtd& dtd) { dtd.addAttDecl(kPot, "first-attribute-of-a-pot", REQUIRED); },
         false},
        {"entity", [](Dtd& dtd) { dtd.setEntity("another-entity-of-a-long-name", kLong); }, false},
        {"entity with another value", [](Dtd& dtd) { dtd.setEntity("entity-of-a-long-name", kLong + kLong); }, false},
        {"declared element with model", [&](Dtd& dtd) { withModel(dtd, kPea); }, true},
        {"declared element with particle", [&](Dtd& dtd) { withParticle(dtd, kPea); }, true},
        {"declared element with child", [](Dtd& dtd) { dtd.addElementDecl(kPea, kBean, REP_ONCE); }, true},
        {"declared element", [](Dtd& dtd) { dtd.addElementDecl(kPea); }, true},
        {"defined attribute with definition", [&](Dtd& dtd) { withDefinition(dtd, kPea, "attribute-of-a-long-name"); },
         true},
        {"defined attribute", [](Dtd& dtd) { dtd.addAttDecl(kPea, "attribute-of-a-long-name", IMPLIED); }, true},
    };
    const QuietMessages quiet;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            const auto dtd = makeDtd();
            const std::string before = textOf(*dtd);
            const bool listed = hasAttributeList(*dtd, kPot);
            if (attempt([&] { c.declare(*dtd); })) {
                EXPECT_EQ(textOf(*dtd) == before, c.refused);
            } else {
                EXPECT_EQ(textOf(*dtd), before);
                EXPECT_EQ(hasAttributeList(*dtd, kPot), listed);
                c.declare(*dtd);
                EXPECT_EQ(textOf(*dtd) == before, c.refused);
            }
        });
    }
}

TEST(DtdMemoryTest, WhatWasNotMergedIsMergedTheNextTime) {
    const auto dtd = makeDtd();
    const std::string before = textOf(*dtd);
    for (const bool replace : {false, true}) {
        SCOPED_TRACE(replace);
        const auto makeTarget = [] {
            auto target = std::make_unique<Dtd>("garden-behind-the-house");
            target->addElementDecl(kPea, kBean, REP_ONCE);
            target->addAttDecl(kPea, "attribute-of-a-long-name", REQUIRED);
            target->addElementDecl("another-element-of-a-long-name");
            target->setEntity("entity-of-a-long-name", "another value of the entity");
            return target;
        };
        const auto merged = makeTarget();
        merged->merge(*dtd, replace);
        const std::string expected = textOf(*merged);
        forEachFailingAllocation([&](Attempt& attempt) {
            const auto target = makeTarget();
            if (!attempt([&] { target->merge(*dtd, replace); })) {
                const Dtd copy(*target);  // of what is there now
                EXPECT_EQ(textOf(copy), textOf(*target));
                target->merge(*dtd, replace);
            }
            EXPECT_EQ(textOf(*target), expected);
            EXPECT_EQ(textOf(*dtd), before);
        });
    }
}

namespace {

// What is declared of entities and notations, as text.
std::string declaredIn(const Dtd& dtd) {
    std::string text = textOf(dtd);
    const auto add = [&text](const std::string& name, const EntityDecl& entity) {
        text += name + entity.text + entity.publicId + entity.systemId + entity.notation + "\n";
    };
    for (const auto& [name, entity] : dtd.getEntityDecls()) add(name, entity);
    for (const auto& [name, entity] : dtd.getParameterEntityDecls()) add("%" + name, entity);
    for (const auto& [name, notation] : dtd.getNotationDecls()) text += name + notation.publicId + notation.systemId;
    return text;
}

const EntityDecl kInternal = {EntityDecl::Kind::Internal, kLong, {}, {}, {}};
const EntityDecl kUnparsed = {EntityDecl::Kind::Unparsed, {}, kLong, kLong, kTool};

void declareAll(Dtd& dtd) {
    dtd.addEntityDecl(kPea, kInternal);
    dtd.addEntityDecl(kBean, kUnparsed);
    dtd.addParameterEntityDecl(kPea, kInternal);
    dtd.addNotationDecl(kTool, {kLong, kLong});
}

}  // namespace

TEST(DtdMemoryTest, WhatCouldNotBeDeclaredOfEntitiesIsDeclaredTheNextTime) {
    const std::function<void(Dtd&)> kDeclarations[] = {
        [](Dtd& dtd) { dtd.addEntityDecl(kPot, kInternal); },
        [](Dtd& dtd) { dtd.addEntityDecl(kPot, kUnparsed); },
        [](Dtd& dtd) { dtd.addParameterEntityDecl(kPot, kUnparsed); },
        [](Dtd& dtd) {
            dtd.addNotationDecl(kPot, {kLong, kLong});
        },
        [](Dtd& dtd) { dtd.setEntity(kBean, kLong); },
    };
    for (const auto& declare : kDeclarations) {
        Dtd whole(kPea);
        declareAll(whole);
        const std::string before = declaredIn(whole);
        declare(whole);
        forEachFailingAllocation([&](Attempt& attempt) {
            Dtd dtd(kPea);
            declareAll(dtd);
            if (!attempt([&] { declare(dtd); })) {
                EXPECT_EQ(declaredIn(dtd), before);
                declare(dtd);
            }
            EXPECT_EQ(declaredIn(dtd), declaredIn(whole));
        });
    }
}

TEST(DtdMemoryTest, WhatWasNotMergedOfEntitiesIsMergedTheNextTime) {
    Dtd other(kPea);
    declareAll(other);
    for (const bool replace : {false, true}) {
        SCOPED_TRACE(replace);
        const auto makeTarget = [] {
            auto target = std::make_unique<Dtd>(kPot);
            target->addEntityDecl(kPea, kUnparsed);
            target->setEntity(kPot, kLong);
            target->addNotationDecl(kTool, {});
            return target;
        };
        const auto merged = makeTarget();
        merged->merge(other, replace);
        forEachFailingAllocation([&](Attempt& attempt) {
            const auto target = makeTarget();
            if (!attempt([&] { target->merge(other, replace); })) {
                EXPECT_EQ(declaredIn(Dtd(*target)), declaredIn(*target));  // of what is there now
                target->merge(other, replace);
            }
            EXPECT_EQ(declaredIn(*target), declaredIn(*merged));
        });
    }
}

TEST(DtdMemoryTest, DefinitionsOfEveryTypeAreCopiedOrNot) {
    const AttEnumeratedType choice(AttEnumeratedType::Kind::Tokens, {kPea, kBean, kPot}, DEFAULT, kPot);
    const AttTokenType token(AttTokenType::Kind::IdRefs, DEFAULT, kPot);
    for (const AttDef* const definition : {static_cast<const AttDef*>(&choice), static_cast<const AttDef*>(&token)}) {
        forEachFailingAllocation([&](Attempt& attempt) {
            std::unique_ptr<AttDef> copy;
            if (attempt([&] { copy.reset(definition->clone()); })) {
                EXPECT_EQ(copy->getDefault(), kPot);
                EXPECT_TRUE(copy->validate(kPot));
            }
        });
    }
}

TEST(DtdMemoryTest, NoCopyOrAnswerIsWrongForLackOfMemory) {
    const auto dtd = makeDtd();
    const std::string before = textOf(*dtd);
    struct Case {
        const char* name;
        std::function<std::string(const Dtd&)> ask;
        std::string expected;
    };
    const Case kCases[] = {
        {"copy", [](const Dtd& d) { return written(*std::make_unique<Dtd>(d)); }, before},
        {"clone", [](const Dtd& d) { return written(*std::unique_ptr<Object>(d.clone())); }, before},
        {"text", [](const Dtd& d) { return d.toString(); }, "<Document Type Description>"},
        {"default value", [](const Dtd& d) { return d.getDefaultValue(kPea, "attribute-of-a-long-name"); }, kLong},
        {"value of an entity", [](const Dtd& d) { return d.getEntityValue("entity-of-a-long-name"); }, kLong},
        {"value of an unknown entity", [](const Dtd& d) { return d.getEntityValue(kPea); }, "&" + kPea + ";"},
        {"name of an entity", [](const Dtd& d) { return d.getEntityName(kLong); }, "entity-of-a-long-name"},
        {"name of an unknown entity", [](const Dtd& d) { return d.getEntityName(kPea); }, kPea},
        {"definition with a value that it cannot have",
         [](const Dtd&) { return AttStringType(REQUIRED, kLong).getDefault() + kLong; }, kLong},
    };
    const QuietMessages quiet;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&](Attempt& attempt) {
            std::string answer;
            if (attempt([&] { answer = c.ask(*dtd); })) {
                EXPECT_EQ(answer, c.expected);
            }
            EXPECT_EQ(textOf(*dtd), before);
        });
    }
}

TEST(DtdMemoryTest, WhatCouldNotBeWrittenIsWrittenTheNextTime) {
    const auto dtd = makeDtd();
    const std::string expected = textOf(*dtd);
    forEachFailingAllocation([&](Attempt& attempt) {
        FixedSink out;
        attempt([&] { dtd->write(out); });
        out.setPosition(0);
        dtd->write(out);
        EXPECT_EQ(out.upToPosition(), expected);
    });
    const QuietMessages quiet;
    forEachFailingAllocation([&quiet](Attempt& attempt) {
        const ChoiceSpec none(nullptr);
        const int before = quiet.count();
        if (attempt([&] { written(none); })) {
            EXPECT_EQ(quiet.count(), before + 1);
        }
    });
}

TEST(DtdMemoryTest, AVerdictThatCouldNotBeReachedIsReachedTheNextTime) {
    const std::string declarations =
        "<!DOCTYPE a [<!ELEMENT a (#PCDATA | s | c | e | y)*><!ELEMENT s ((k, v)*, (k | (v, v))?, a?)><!ELEMENT c (k | "
        "v | a)+>"
        "<!ELEMENT k (#PCDATA)><!ELEMENT v (k?, (a | c)*)><!ELEMENT e EMPTY><!ELEMENT y ANY><!ATTLIST a x CDATA "
        "'default'>"
        "<!ATTLIST k x CDATA #REQUIRED>]>";
    struct Case {
        const char* name;
        std::string tree;
        bool valid;
    };
    const std::string k = "<k x='1'/>";
    const Case kCases[] = {
        {"mixed", "<a>text <e/> text <a/></a>", false},
        {"mixed and deep", "<a>text <s><a><s><a>text<e/></a></s></a></s></a>", true},
        {"sequences", "<a><s>" + k + "<v/>" + k + "<v>" + k + "</v>" + k + "<a/></s></a>", true},
        {"sequences that fail at the end", "<a><s>" + k + "<v/>" + k + "<v/><v/></s></a>", false},
        {"choices", "<a><c>" + k + "<v><c>" + k + "</c><a/></v><a x='2'/></c></a>", true},
        {"choices that fail deep down", "<a><c>" + k + "<v><c><v><a><e>x</e></a></v></c></v></c></a>", false},
        {"anything", "<a><y><z><a><b/></a></z></y></a>", true},
        {"attribute that is missing", "<a><c><k/></c></a>", false},
        {"attributes", "<a x='1'><c>" + k + k + "</c></a>", true},
    };
    for (const auto& c : kCases) {
        for (const bool byMatcher : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (byMatcher ? ", by the Matcher alone" : ""));
            const WithoutFastValidation off(byMatcher);
            forEachFailingAllocation([&](Attempt& attempt) {
                const auto document = documentOf(declarations + c.tree);
                const std::string before = textOf(*document);
                bool valid = false;
                if (!attempt([&] { valid = document->getDtd()->validate(document->getRoot()); }))
                    valid = document->getDtd()->validate(document->getRoot());
                EXPECT_EQ(valid, c.valid);
                EXPECT_EQ(document->validate(), c.valid);
                EXPECT_EQ(textOf(*document), before);
            });
        }
    }
}

TEST(DtdMemoryTest, AModelAskedByItselfAnswersTheNextTime) {
    Dtd dtd("garden");
    for (const auto& name : {kPea, kBean, kPot}) dtd.addElementDecl(name);
    const auto sequence = makeSequence(&dtd);
    const auto choice = makeChoice(&dtd);
    const NameSpec name(&dtd, kPea);
    const auto mixed = makeMixed(&dtd);
    const Model model = children(&dtd, makeSequence(&dtd), REP_ONE_OR_MORE);
    std::vector<std::unique_ptr<Element>> owned;
    std::vector<Object*> nodes;
    for (const auto& element : {kPea, kBean, kPea, kPot}) {
        owned.push_back(std::make_unique<Element>(element));
        nodes.push_back(owned.back().get());
    }
    const auto taken = [&nodes](const CpSpec& particle) {
        ChildQueue queue(nodes);
        return particle.validate(queue) ? static_cast<int>(nodes.size() - queue.size()) : -1;
    };
    struct Case {
        const char* name;
        std::function<int()> ask;
        int expected;
    };
    const Case kCases[] = {
        {"sequence", [&] { return taken(*sequence); }, 4},
        {"choice", [&] { return taken(*choice); }, 1},
        {"name", [&] { return taken(name); }, 1},
        {"mixed model", [&] { return mixed->validate(nodes); }, 1},
        {"children model", [&] { return model->validate(nodes); }, 1},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        forEachFailingAllocation([&c](Attempt& attempt) {
            int answer = -2;
            if (!attempt([&] { answer = c.ask(); })) answer = c.ask();
            EXPECT_EQ(answer, c.expected);
        });
    }
}

}  // namespace Xml::test
