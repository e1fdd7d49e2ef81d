#include "xml/dtd/internal/ElementTypes.h"

#include "models/Models.h"
#include "xml/dtd/CharSpec.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/MixedSpec.h"
#include <gtest/gtest.h>
#include <string>

namespace Xml::test {
namespace {

using Content = ElementType::Content;

TEST(ElementTypesTest, SayWhatMayStandInAnElement) {
    const auto dtd =
        dtdOf("e: EMPTY; y: ANY; t: CHARS; p: (#PCDATA); m: (#PCDATA | e)*; c: (e, y); o: (e?); x@k IMPLIED");
    const struct {
        const char* name;
        Content content;
        bool mayBeEmpty;
    } kCases[] = {
        {"e", Content::Elements, true}, {"y", Content::Anything, true}, {"t", Content::Text, true},
        {"p", Content::Text, true},     {"m", Content::Mixed, true},    {"c", Content::Elements, false},
        {"o", Content::Elements, true},
    };
    ElementTypes types(*dtd);
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const ElementType* const type = types.find(c.name);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->content, c.content);
        EXPECT_EQ(type->mayBeEmpty, c.mayBeEmpty);
        EXPECT_EQ(type->attributes, nullptr);
        EXPECT_EQ(types.find(std::string(c.name)), type) << "by its text";
    }
    EXPECT_EQ(types.find("u"), nullptr);
    EXPECT_EQ(types.find("x"), nullptr) << "an attribute list declares nothing";
    EXPECT_EQ(types.find(""), nullptr);
}

TEST(ElementTypesTest, FindChildrenByTheStateAndTheName) {
    const auto dtd = dtdOf("a: (b, c?, u?); b: EMPTY; c: ANY; m: (#PCDATA | b)*");
    ElementTypes types(*dtd);
    const std::string names[] = {"a", "b", "c", "u"};
    const ElementType* const a = types.find(names[0]);
    const ElementType* const m = types.find("m");
    for (const int round : {0, 1, 2}) {
        SCOPED_TRACE(round);
        const auto find = [&](ModelStates::State at, const std::string& name) {
            return round == 0 ? types.findChild(at, name) : types.findSharedChild(at, name);
        };
        EXPECT_FALSE(types.mayEnd(a->start));
        EXPECT_EQ(find(a->start, names[0]).type, nullptr);
        EXPECT_EQ(find(a->start, names[2]).type, nullptr) << "not first";
        const ElementTypes::Child b = find(a->start, names[1]);
        EXPECT_EQ(b.type, types.find("b"));
        EXPECT_TRUE(types.mayEnd(b.next));
        const ElementTypes::Child c = find(b.next, names[2]);
        EXPECT_EQ(c.type, types.find("c"));
        EXPECT_EQ(find(c.next, names[2]).type, nullptr);
        EXPECT_EQ(find(c.next, names[3]).type, nullptr) << "it is not declared";
        const ElementTypes::Child inMixed = find(m->start, names[1]);
        EXPECT_EQ(inMixed.type, types.find("b"));
        EXPECT_EQ(inMixed.next, m->start);
        EXPECT_EQ(find(m->start, names[2]).type, nullptr);
    }
}

TEST(ElementTypesTest, HaveTheirAttributeLists) {
    const auto dtd = dtdOf("a: ANY; a@x REQUIRED; a@y IMPLIED; b: ANY; b@x IMPLIED; c: ANY");
    ElementTypes types(*dtd);
    const std::string x = "x", y = "y", z = "z";
    const auto* const ofA = types.find("a")->attributes;
    const auto* const ofB = types.find("b")->attributes;
    EXPECT_EQ(types.find("c")->attributes, nullptr);
    ASSERT_NE(ofA, nullptr);
    ASSERT_NE(ofB, nullptr);
    EXPECT_EQ(ofA->required, 1U);
    for (const int round : {0, 1, 2}) {
        SCOPED_TRACE(round);
        const auto find = [&](const DtdAccess::AttributeList& list, const std::string& name) {
            return round == 0 ? ElementTypes::findAttribute(list, name) : types.findSharedAttribute(list, name);
        };
        ASSERT_NE(find(*ofA, x), nullptr);
        EXPECT_TRUE(find(*ofA, x)->isRequired());
        EXPECT_FALSE(find(*ofA, y)->isRequired());
        EXPECT_EQ(find(*ofA, z), nullptr);
        EXPECT_FALSE(find(*ofB, x)->isRequired()) << "that of the other list";
        EXPECT_EQ(find(*ofB, y), nullptr);
    }
}

TEST(ElementTypesTest, AreNoneWhereTheModelIsNotPlain) {
    Dtd dtd("test"), other("other");
    OwnLog log;
    class OwnMixed : public MixedSpec {
    public:
        explicit OwnMixed(Dtd* owner) : MixedSpec(owner) {}
    };
    dtd.addElementDecl("own", new OwnSpec(&dtd, "own", 0, &log));
    dtd.addElementDecl("derived", new OwnMixed(&dtd));
    dtd.addElementDecl("othersText", new CharSpec(&other));
    dtd.addElementDecl("othersMixed", new MixedSpec(&other));
    dtd.addElementDecl("othersName", new ChildrenSpec(&other, "a", REP_ONCE));
    dtd.addElementDecl("nothing", static_cast<ContentSpec*>(nullptr));
    ElementTypes types(dtd);
    for (const char* name : {"own", "derived", "othersText", "othersMixed", "othersName", "nothing"}) {
        EXPECT_EQ(types.find(name), nullptr) << name;
        EXPECT_EQ(types.find(name), nullptr) << name << " again";
    }
    EXPECT_TRUE(log.entries.empty());
}

}  // namespace
}  // namespace Xml::test
