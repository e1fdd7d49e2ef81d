// Content models that are nested far deeper than any recursion could go within 256 KiB of stack.
//
// To add a case: a model that is read and judged is a row of NestedGroupsAreHeldOnTheHeap, one that is built by hand a
// row of kShapes.
#include "hostile/Inputs.h"
#include "models/Models.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/dtd/ChildQueue.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/xml.h"
#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr Bounds kLarge = {400 * kMiB};

std::string modelled(const std::string& model, const std::string& content) {
    return "<!DOCTYPE r [<!ELEMENT r " + model + "><!ELEMENT a EMPTY><!ELEMENT b EMPTY>]><r>" + content + "</r>";
}

TEST(HostileGroupDepthTest, NestedGroupsAreHeldOnTheHeap) {
    const auto nested = [](int groups, const char* open, const char* close, const char* content) {
        return [=] { return modelled(repeated(open, groups) + "a" + repeated(close, groups), content); };
    };
    constexpr int kFewer = kGroups / 5;
    expectOutcomes({
        {"groups", nested(kFewer, "(", ")", "<a/>"), validity, "valid", kLarge},
        {"optional groups", nested(kFewer, "(", ")?", ""), validity, "valid", kLarge},
        {"repeated groups", nested(kGroups, "(", ")*", "<a/><a/><a/>"), validity, "valid", kLarge},
        {"repeated groups over what they do not take", nested(kFewer, "(", ")+", "<a/><b/>"), validity, "not valid",
         kLarge},
        {"choices", nested(kGroups, "(b|", ")", "<a/>"), validity, "valid", kLarge},
        {"sequences", nested(kFewer, "(b?,", ")", "<b/><b/><a/>"), validity, "valid", kLarge},
        {"groups that never end", [] { return "<!DOCTYPE r [<!ELEMENT r " + repeated("(", kFewer); }, validity,
         ended<ChildrenSpecReader>(kFewer + 25), kLarge},
        {"groups with nothing in them", [] { return "<!DOCTYPE r [<!ELEMENT r " + repeated("(", kFewer) + ")"; },
         validity, failed<ChildrenSpecReader>(kFewer + 26, "unexpected \")\""), kLarge},
        {"ends of groups", [] { return "<!DOCTYPE r [<!ELEMENT r (a" + repeated(")", kGroups); }, validity,
         failed<ElementDeclReader>(29, "\">\" expected")},
    });
}

// Both models take b, then c as often as there are groups, or b or c alone.
std::string nestedSequence(int groups) { return repeated("(", groups) + "b" + repeated(", c)", groups); }
std::string nestedChoice(int groups) { return repeated("(", groups) + "b" + repeated(" | c)", groups); }
std::string choiceNestedAtItsEnd(int groups) { return repeated("(c | ", groups) + "b" + repeated(")", groups); }

const char kLeaves[] = "<!ELEMENT b EMPTY><!ELEMENT c EMPTY><!ELEMENT d EMPTY>";

std::unique_ptr<Element> elementWith(const std::string& first, int others) {
    return readElement("<a>" + first + repeated("<c/>", others) + "</a>");
}

TEST(HostileGroupDepthTest, NestedGroupsMatchAsTheirParticlesDo) {
    expectToHold(
        {{"all of them", [] {
              const auto brackets = [](const char* inner, const char* end) {
                  return repeated("(", kGroups) + inner + repeated(end, kGroups);
              };
              struct Children {
                  const char* first;
                  int others;  // so many c after it
                  bool valid;
              };
              const struct {
                  const char* name;
                  std::string model;
                  std::vector<Children> children;
              } kCases[] = {
                  {"sequence",
                   nestedSequence(kGroups),
                   {{"<b/>", kGroups, true},
                    {"<b/>", kGroups - 1, false},
                    {"<b/>", kGroups + 1, false},
                    {"", kGroups, false}}},
                  {"choice",
                   nestedChoice(kGroups),
                   {{"<b/>", 0, true}, {"<c/>", 0, true}, {"<d/>", 0, false}, {"<b/>", 1, false}}},
                  {"choice nested at its end", choiceNestedAtItsEnd(kGroups), {{"<b/>", 0, true}, {"<d/>", 0, false}}},
                  {"once", brackets("b", ")"), {{"<b/>", 0, true}, {"", 0, false}, {"<b/>", 1, false}}},
                  {"optional", brackets("b", ")?"), {{"<b/>", 0, true}, {"", 0, true}, {"<d/>", 0, false}}},
                  {"any number", brackets("c", ")*"), {{"", 1000, true}, {"", 0, true}, {"<d/>", 0, false}}},
                  {"one or more", brackets("c", ")+"), {{"", 1000, true}, {"", 0, false}, {"<d/>", 0, false}}},
              };
              for (const auto& c : kCases) {
                  const std::unique_ptr<Dtd> dtd = readDtd("<!ELEMENT a " + c.model + ">" + kLeaves, "a");
                  for (const Children& children : c.children) {
                      EXPECT_EQ(dtd->validate(elementWith(children.first, children.others).get()), children.valid)
                          << c.name << ": " << children.first << " and " << children.others;
                  }
              }
          }}});
}

TEST(HostileGroupDepthTest, NestedGroupsAreWrittenReadAndCopied) {
    expectToHold({{"all of them", [] {
                       for (const std::string& model :
                            {nestedSequence(kGroups), nestedChoice(kGroups), choiceNestedAtItsEnd(kGroups)}) {
                           const std::string end = model.substr(model.size() - 10);
                           const std::string declarations =
                               "<!ELEMENT a " + model + ">\n<!ELEMENT b EMPTY>\n<!ELEMENT c EMPTY>\n";
                           const std::string written = "<!DOCTYPE a [\n" + declarations + "]>\n";
                           std::unique_ptr<Dtd> dtd = readDtd(declarations, "a");
                           EXPECT_TRUE(textOf(*dtd) == written) << end;

                           Dtd merged("a");
                           merged.merge(*dtd, true);
                           const std::unique_ptr<Object> clone(dtd->clone());
                           dtd.reset();
                           EXPECT_TRUE(textOf(merged) == written) << end;
                           EXPECT_TRUE(textOf(*clone) == written) << end;

                           const bool sequence = model == nestedSequence(kGroups);
                           const std::unique_ptr<Element> element = elementWith("<b/>", sequence ? kGroups : 0);
                           EXPECT_TRUE(merged.validate(element.get())) << end;
                           EXPECT_TRUE(clone->toDtd()->validate(element.get())) << end;
                       }
                   }}});
}

TEST(HostileGroupDepthTest, NestedGroupsAreReadFromEverySource) {
    expectOutcomes(
        {{"choices",
          [] { return "<!DOCTYPE a [<!ELEMENT a " + nestedChoice(kGroups) + ">" + kLeaves + "]><a><b/></a>"; },
          [](InStream& source) {
              DocumentReader reader;
              return reader.parse(source) ? dump(reader.getDocument()) : reader.getErrorMessage();
          },
          "a(b)", kLarge}});
}

TEST(HostileGroupDepthTest, NestedGroupsThatFailInTheDepthsLeaveNothingBehind) {
    expectToHold(
        {{"all of them", [] {
              const struct {
                  const char* name;
                  std::string text;
                  const char* error;
              } kCases[] = {
                  {"ends half way", "<!ELEMENT a " + repeated("(", kGroups) + "b", "Unexpected end of stream"},
                  {"an empty group", "<!ELEMENT a " + repeated("(", kGroups) + ")", "unexpected \")\""},
                  {"both separators", "<!ELEMENT a " + repeated("(b, ", kGroups) + "c | d)", "unexpected \"|\""},
                  {"ends on the way out",
                   "<!ELEMENT a " + nestedChoice(kGroups).substr(0, 4 * static_cast<std::size_t>(kGroups)),
                   "Unexpected end of stream"},
              };
              for (const auto& c : kCases) {
                  StringInStream in(c.text);
                  DTDReader reader("a");
                  EXPECT_FALSE(reader.parse(in)) << c.name;
                  EXPECT_NE(reader.getErrorMessage().find(c.error), std::string::npos) << reader.getErrorMessage();
              }
          }}});
}

TEST(HostileGroupDepthTest, GroupsNestedByHandAreCopiedWrittenAndMatched) {
    expectToHold({{"all of them", [] {
                       Dtd dtd("a");
                       CpSpec* particle = new NameSpec(&dtd, "b");
                       for (int i = 0; i < kGroups; ++i) {
                           if (i % 2 == 0) {
                               auto* sequence = new SeqSpec(&dtd);
                               sequence->add(particle, REP_ONCE);
                               sequence->add("c", REP_ZERO_OR_MORE);
                               particle = sequence;
                           } else {
                               auto* choice = new ChoiceSpec(&dtd);
                               choice->addChoice(particle, REP_ONE_OR_MORE);
                               choice->addChoice("d", REP_ONCE);
                               particle = choice;
                           }
                       }
                       dtd.addElementDecl("a", particle, REP_ONCE);
                       dtd.addElementDecl("b", new EmptySpec(&dtd));
                       dtd.addElementDecl("c", new EmptySpec(&dtd));
                       dtd.addElementDecl("d", new EmptySpec(&dtd));

                       const Dtd copy(dtd);
                       EXPECT_TRUE(textOf(copy) == textOf(dtd));
                       for (const Dtd* each : std::initializer_list<const Dtd*>{&dtd, &copy}) {
                           EXPECT_TRUE(each->validate(elementWith("<b/>", 3).get()));
                           EXPECT_TRUE(each->validate(elementWith("<d/>", 3).get()));
                           EXPECT_FALSE(each->validate(elementWith("", 3).get()));
                       }
                   }}});
}

// --- Groups built by hand ---

constexpr int kDeep = kScale > 1 ? 10'000 : 100'000;

struct GroupShape {
    const char* name;
    // Builds the group around the inner one.
    CpSpec* (*wrap)(Dtd*, CpSpec*);
    const char* accepted;
    const char* refused;
    const char* writtenFront;
    const char* writtenBack;
    const char* writtenOuterFront;
    const char* writtenOuterBack;
};

template <RepType repetition>
CpSpec* wrapAlone(Dtd* dtd, CpSpec* inner) {
    auto* group = new SeqSpec(dtd);
    group->add(inner, repetition);
    return group;
}

CpSpec* wrapInPair(Dtd* dtd, CpSpec* inner) {
    auto* group = new SeqSpec(dtd);
    group->add("b", REP_OPTIONAL);
    group->add(new ChildrenSpec(dtd, inner, REP_ONCE));
    return group;
}

template <bool innerFirst, RepType repetition>
CpSpec* wrapInChoice(Dtd* dtd, CpSpec* inner) {
    auto* group = new ChoiceSpec(dtd);
    if (!innerFirst) group->addChoice("b", REP_ONCE);
    group->addChoice(inner, repetition);
    if (innerFirst) group->addChoice("b", REP_ONCE);
    return group;
}

const GroupShape kShapes[] = {
    {"one member", wrapAlone<REP_ONCE>, "a", "b", "", "", "(", ")"},
    {"optional member", wrapAlone<REP_OPTIONAL>, "a", "b", "", "?", "(", "?)"},
    {"starred member", wrapAlone<REP_ZERO_OR_MORE>, "a a a", "c", "", "*", "(", "*)"},
    {"member with plus", wrapAlone<REP_ONE_OR_MORE>, "a a a", "c", "", "+", "(", "+)"},
    {"second of two", wrapInPair, "b b b a", "a b", "(b?, ", ")", "(b?, ", ")"},
    {"second alternative", wrapInChoice<false, REP_ONCE>, "a", "c", "(b | ", ")", "(b | ", ")"},
    {"first alternative", wrapInChoice<true, REP_ONCE>, "b", "a a", "(", " | b)", "(", " | b)"},
    {"optional alternative", wrapInChoice<false, REP_OPTIONAL>, "a", "c", "(b | ", "?)", "(b | ", "?)"},
};

std::string textOfDeep(const GroupShape& shape) {
    std::string text = shape.writtenOuterFront;
    for (int i = 1; i < kDeep; ++i) text += shape.writtenFront;
    text += "a";
    for (int i = 1; i < kDeep; ++i) text += shape.writtenBack;
    return text + shape.writtenOuterBack;
}

// How many groups point back to that Dtd, from the outermost inwards.
int countOwned(const CpSpec* particle, const Dtd* dtd) {
    int count = 0;
    while (SpecAccess::dtd(*particle) == dtd) {
        const auto* group = dynamic_cast<const GroupSpec*>(particle);
        if (group == nullptr) break;
        const SpecAccess::Members& members = SpecAccess::members(*group);
        const ChildrenSpec* inner = nullptr;
        for (const auto& member : members) {
            if (SpecAccess::dtd(*member) != dtd) return count;
            const auto* name = dynamic_cast<const NameSpec*>(&SpecAccess::particle(*member));
            if (name == nullptr || members.size() == 1) inner = member.get();
        }
        ++count;
        if (inner == nullptr) break;
        particle = &SpecAccess::particle(*inner);
    }
    return count;
}

void expectDepthOf(const GroupShape& shape) {
    auto dtd = dtdOf("a: EMPTY; b: EMPTY; c: EMPTY");
    CpSpec* particle = new NameSpec(dtd.get(), "a");
    for (int i = 0; i < kDeep; ++i) particle = shape.wrap(dtd.get(), particle);
    dtd->addElementDecl("doc", particle, REP_ONCE);
    EXPECT_EQ(countOwned(particle, dtd.get()), kDeep);

    const std::string document = "doc(" + std::string(shape.accepted) + ")";
    const std::string refused = "doc(" + std::string(shape.refused) + ")";
    EXPECT_TRUE(dtd->validate(elementOf(document).get()));
    EXPECT_FALSE(dtd->validate(elementOf(refused).get()));
    {
        const NodeList nodes(shape.accepted);
        ChildQueue queue(nodes.list());
        EXPECT_TRUE(particle->validate(queue));
        EXPECT_TRUE(queue.empty());
    }

    const std::string text = textOfDeep(shape);
    EXPECT_TRUE(written(*particle, true) == text) << "the text of the particle differs";
    EXPECT_TRUE(written(*DtdAccess::findModel(*dtd, "doc")) == text) << "the text of the model differs";

    Dtd other("other");
    const std::unique_ptr<CpSpec> copy(particle->clone(&other));
    EXPECT_EQ(countOwned(copy.get(), &other), kDeep);
    EXPECT_TRUE(written(*copy, true) == text) << "the text of the copy differs";
    const ChildrenSpec copied(dynamic_cast<const ChildrenSpec&>(*DtdAccess::findModel(*dtd, "doc")));
    EXPECT_EQ(countOwned(&SpecAccess::particle(copied), dtd.get()), kDeep);

    other.merge(*dtd, false);
    dtd.reset();
    EXPECT_TRUE(other.validate(elementOf(document).get()));
    EXPECT_FALSE(other.validate(elementOf(refused).get()));
}

TEST(HostileGroupDepthTest, GroupsNestVeryDeep) {
    for (const GroupShape& shape : kShapes) expectToHold({{shape.name, [&shape] { expectDepthOf(shape); }}});
}

}  // namespace
}  // namespace Xml::test
