// What the other tests here rely on: each counter sees work that is quadratic, and the fit tells it from linear work.
#include "growth/Texts.h"
#include "growth/Work.h"
#include "support/Texts.h"
#include "support/Trees.h"
#include "xml/xml.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// An element of another class, which a copy has in the heap.
class OwnElement : public Element {
public:
    using Element::Element;
    OwnElement(const OwnElement&) = default;
    Object* clone() const override { return new OwnElement(*this); }
};

TEST(WorkTest, TheExponentIsThatOfThePowerThatTheWorkGrowsBy) {
    const struct {
        const char* name;
        std::array<long long, 4> work;
        double exponent;
        bool fits;
    } kCases[] = {
        {"none", {0, 0, 0, 0}, 0, true},
        {"a little", {1, 4, 16, 63}, 0, true},
        {"the same", {100, 100, 100, 100}, 0, true},
        {"the root", {10'000, 14'142, 20'000, 28'284}, 0.5, true},
        {"linear", {1'000, 2'000, 4'000, 8'000}, 1, true},
        {"linear beside what is fixed", {1'100, 2'100, 4'100, 8'100}, 0.96, true},
        {"linear, with a step", {1'000, 2'100, 4'100, 8'800}, 1.04, true},
        {"just too fast", {1'000'000, 2'160'000, 4'666'000, 10'078'000}, 1.11, false},
        {"by the logarithm in each", {10'000, 22'000, 48'000, 104'000}, 1.13, false},
        {"to the power of one and a half", {1'000, 2'828, 8'000, 22'627}, 1.5, false},
        {"quadratic", {1'000, 4'000, 16'000, 64'000}, 2, false},
        {"quadratic beside much that is linear", {1'100, 2'400, 5'600, 14'400}, 1.24, false},
        {"linear up to the last", {1'000, 2'000, 4'000, 16'000}, 1.3, false},
        {"nothing up to the last", {0, 0, 0, 1'000}, 2.99, false},
        {"doubled by one more", {2, 4, 16, 256}, 2.3, false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Growth growth = {};
        for (std::size_t i = 0; i < growth.size(); ++i) growth[i][NodeCalls] = c.work[i];
        EXPECT_NEAR(exponentOf(growth, NodeCalls), c.exponent, 0.01);
        EXPECT_EQ(exponentOf(growth, SinkCalls), 0);
        EXPECT_EQ(tooFast(growth), c.fits ? std::vector<Kind>{} : std::vector<Kind>{NodeCalls});
    }
}

TEST(WorkTest, EachCounterSeesQuadraticWork) {
    const struct {
        const char* name;
        std::vector<Kind> kinds;
        Jobs jobs;
    } kCases[] = {
        {"reading all over again for each byte",
         {SourceCalls},
         [](int n) {
             return [text = repeated("x", n)] {
                 CountingSource in(text);
                 char c = 0;
                 for (std::size_t i = 0; i < text.size(); ++i) {
                     in.setPosition(0);
                     while (in.get(c)) {}
                 }
             };
         }},
        {"indentation, which is quadratic in the depth by rule",
         {SinkCalls},
         [](int n) {
             return [root = std::shared_ptr<Element>(readElement(repeated("<a>", n) + repeated("</a>", n)))] {
                 CountingSink out;
                 root->toStream(out);
             };
         }},
        {"looking for each child",
         {NodeCalls},
         [](int n) {
             auto root = std::make_shared<Element>("a");
             for (int i = 0; i < n; ++i) root->addChild(new CountingElement("b"));
             return [root, n] {
                 for (int i = 0; i < n; ++i) EXPECT_NE(root->getElement(i), nullptr);
             };
         }},
        {"copying all for each child",
         {Allocations, AllocatedBytes},
         [](int n) {
             auto root = std::make_shared<Element>("a");
             for (int i = 0; i < n; ++i) root->addChild(new OwnElement("b"));
             return [root] {
                 for (int i = 0; i < root->getChildCount(); ++i) const Element copy(*root);
             };
         }},
        {"copying the text for each byte",
         {AllocatedBytes},
         [](int n) {
             return [text = CharData(repeated("x", n))] {
                 for (std::size_t i = 0; i < text.data().size(); ++i) const CharData copy(text);
             };
         }},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Growth growth = growthOf(c.jobs, 100);
        EXPECT_EQ(tooFast(growth), c.kinds);
        for (const Kind kind : c.kinds) EXPECT_NEAR(exponentOf(growth, kind), 2, 0.1) << kKindNames[kind];
    }
}

}  // namespace
}  // namespace Xml::test
