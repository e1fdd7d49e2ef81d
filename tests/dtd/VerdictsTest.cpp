#include "xml/dtd/internal/Verdicts.h"

#include "models/Models.h"
#include "xml/dom/CharData.h"
#include "xml/dtd/internal/DtdAccess.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Verdict = Verdicts::Verdict;

TEST(VerdictsTest, DecideAnElementByItsContentAndItsAttributes) {
    const auto dtd = dtdOf("a@x IMPLIED; b@x REQUIRED; b@y IMPLIED");
    const struct {
        const char* element;
        bool valid;
    } kCases[] = {
        {"a", true},          {"a[x=1]", true},  {"a[y=1]", false}, {"b", false},      {"b[x=1]", true},
        {"b[x=1 y=1]", true}, {"b[y=1]", false}, {"c", true},       {"c[x=1]", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.element);
        const auto element = elementOf(c.element);
        Verdicts verdicts;
        EXPECT_EQ(verdicts.of(*dtd, *element), Verdict::None);
        EXPECT_FALSE(verdicts.decide(*dtd, *element, false));
        EXPECT_EQ(verdicts.of(*dtd, *element), Verdict::Invalid);
        EXPECT_EQ(verdicts.decide(*dtd, *element, true), c.valid);
        EXPECT_EQ(verdicts.of(*dtd, *element), c.valid ? Verdict::Valid : Verdict::Invalid);
    }
}

TEST(VerdictsTest, AreOfOneRunAndOneDtd) {
    const auto first = dtdOf("a: EMPTY"), second = dtdOf("a: EMPTY");
    const auto element = elementOf("a");
    {
        Verdicts verdicts;
        verdicts.decide(*first, *element, true);
        EXPECT_EQ(verdicts.of(*first, *element), Verdict::Valid);
        EXPECT_EQ(verdicts.of(*second, *element), Verdict::None);
        EXPECT_NE(DtdAccess::validationRun(*first), 0U);
        EXPECT_NE(DtdAccess::validationRun(*first), DtdAccess::validationRun(*second));
        verdicts.decide(*second, *element, false);
        EXPECT_EQ(verdicts.of(*second, *element), Verdict::Invalid);
        EXPECT_EQ(verdicts.of(*first, *element), Verdict::None) << "the other has decided since";
    }
    EXPECT_EQ(DtdAccess::validationRun(*first), 0U);
    EXPECT_EQ(DtdAccess::validationRun(*second), 0U);
    Verdicts next;
    EXPECT_EQ(next.of(*second, *element), Verdict::None) << "that run has ended";
}

TEST(VerdictsTest, OfAMatcherThatACallersCodeStartsJoinTheRunAndDoNotEndIt) {
    const auto dtd = dtdOf("a: EMPTY");
    const auto element = elementOf("a");
    Verdicts outer;
    outer.decide(*dtd, *element, true);
    EXPECT_TRUE(outer.areOfOwnCode());
    {
        Verdicts inner;
        EXPECT_TRUE(inner.areOfOwnCode());
        EXPECT_EQ(inner.of(*dtd, *element), Verdict::Valid);
        EXPECT_FALSE(inner.areOfOwnCode());
        EXPECT_EQ(inner.of(*dtd, *element), Verdict::Valid) << "asked again";
    }
    EXPECT_NE(DtdAccess::validationRun(*dtd), 0U);
    EXPECT_EQ(outer.of(*dtd, *element), Verdict::Valid);
    EXPECT_TRUE(outer.areOfOwnCode()) << "it takes a call of the caller's code to change that";
    outer.noteCallersCode();
    EXPECT_FALSE(outer.areOfOwnCode());
}

// Counts the links it is given.
class CountedText : public CharData {
public:
    explicit CountedText(int* counter) : CharData("text"), calls(counter) {}
    void setDtd(const Dtd* link) override {
        ++*calls;
        CharData::setDtd(link);
    }

private:
    int* calls;
};

TEST(VerdictsTest, LinkASubtreeOnceInARun) {
    const auto dtd = dtdOf("a: ANY");
    for (const bool callersCode : {false, true}) {
        SCOPED_TRACE(callersCode);
        int calls = 0;
        const auto tree = elementOf("a(b(c))");
        Element* const inner = tree->getElement("b");
        inner->getElement("c")->addChild(new CountedText(&calls));
        calls = 0;
        Verdicts verdicts;
        if (callersCode) verdicts.noteCallersCode();
        verdicts.decide(*dtd, *inner, true);
        verdicts.link(*inner, dtd.get());
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(linksOf(*tree, {dtd.get()}), "a(b*(c*('text'*)))");
        verdicts.link(*inner, dtd.get());
        EXPECT_EQ(calls, callersCode ? 2 : 1) << "a caller's code may have taken links away";
        verdicts.decide(*dtd, *tree, true);
        verdicts.link(*tree, dtd.get());
        EXPECT_EQ(calls, callersCode ? 3 : 1);
        EXPECT_EQ(linksOf(*tree, {dtd.get()}), "a*(b*(c*('text'*)))");
        EXPECT_EQ(verdicts.of(*dtd, *inner), Verdict::Valid) << "linking changes no verdict of the run";
    }
}

TEST(VerdictsTest, ForgetThoseOfAnotherDtdWhereTheyLink) {
    const auto first = dtdOf("a: ANY"), second = dtdOf("a: ANY");
    const auto tree = elementOf("a(b)");
    Element* const inner = tree->getElement("b");
    Verdicts verdicts;
    verdicts.decide(*second, *inner, true);
    verdicts.decide(*first, *tree, true);
    verdicts.link(*tree, first.get());
    EXPECT_EQ(verdicts.of(*second, *inner), Verdict::None) << "its links are those of the first now";
    EXPECT_EQ(linksOf(*tree, {first.get(), second.get()}), "a*(b*)");
}

TEST(VerdictsTest, LinkNodesThatAreNoPlainElementsByTheirOwnOperation) {
    const auto dtd = dtdOf("a: ANY");
    int calls = 0;
    CountedText text(&calls);
    Verdicts verdicts;
    verdicts.link(text, dtd.get());
    verdicts.link(text, dtd.get());
    EXPECT_EQ(calls, 2);
    verdicts.link(text, nullptr);
    EXPECT_EQ(calls, 3);
    const auto element = elementOf("a");
    verdicts.link(*element, nullptr);
    EXPECT_EQ(linksOf(*element, {dtd.get()}), "a");
}

}  // namespace
}  // namespace Xml::test
