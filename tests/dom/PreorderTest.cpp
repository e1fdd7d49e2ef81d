#include "xml/dom/internal/Preorder.h"

#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>

namespace Xml::test {
namespace {

// Each node below in its turn: an element by its name, with what is below it in brackets unless it is skipped; "." a
// text.
std::string walked(const Element& top, const std::string& skipped) {
    Preorder<const Element> walk;
    std::string text;
    walk.enter(top);
    while (!walk.atEnd()) {
        const Object* const node = walk.next();
        if (node == nullptr) {
            walk.leave();
            if (!walk.atEnd()) text += ")";
        } else if (!node->isElement()) {
            text += ".";
        } else {
            const Element& element = *node->toElement();
            text += element.getName();
            if (skipped.find(element.getName()) != std::string::npos) continue;
            walk.enter(element);
            text += "(";
        }
    }
    return text;
}

TEST(PreorderTest, GoesIntoThoseElementsThatItIsSentInto) {
    const std::unique_ptr<Element> top = readElement("<t><a><b>x<c/></b>y</a>z<d><a/></d><e/></t>");
    EXPECT_EQ(walked(*top, ""), "a(b(.c()).).d(a())e()");
    EXPECT_EQ(walked(*top, "b"), "a(b.).d(a())e()");
    EXPECT_EQ(walked(*top, "ae"), "a.d(a)e");
    EXPECT_EQ(walked(*readElement("<t/>"), ""), "");
}

TEST(PreorderTest, LeavesAnElementBeforeItsEnd) {
    const std::unique_ptr<Element> top = readElement("<t><a><b/><c/></a><d/></t>");
    Preorder<const Element> walk;
    walk.enter(*top);
    const Element& a = *walk.next()->toElement();
    walk.enter(a);
    EXPECT_EQ(&walk.here(), &a);
    EXPECT_EQ(walk.next(), a.getChild(0));
    walk.leave();
    EXPECT_EQ(&walk.here(), top.get());
    EXPECT_EQ(walk.next(), top->getChild(1));
    EXPECT_EQ(walk.next(), nullptr);
    EXPECT_EQ(walk.next(), nullptr) << "and no more";
    walk.leave();
    EXPECT_TRUE(walk.atEnd());
}

TEST(PreorderTest, KeepsANoteAtEachElement) {
    const std::unique_ptr<Element> top = readElement("<t><a><b/></a></t>");
    struct Depth {
        int depth;
    };
    Preorder<const Element, Depth> walk;
    walk.enter(*top, {0});
    for (int depth = 1; const Object* const node = walk.next(); ++depth) walk.enter(*node->toElement(), {depth});
    for (int depth = 2; depth >= 0; --depth) {
        EXPECT_EQ(walk.note().depth, depth);
        walk.leave();
    }
    EXPECT_TRUE(walk.atEnd());
}

// It goes by places, not by addresses: children that are added meanwhile are met.
TEST(PreorderTest, MeetsWhatIsAppendedMeanwhile) {
    Element top("t");
    top.addChild(new Element("a"));
    Preorder<const Element> walk;
    walk.enter(top);
    EXPECT_EQ(walk.next(), top.getChild(0));
    for (int i = 0; i < 10; ++i) top.addChild(new Element("b"));
    for (int i = 1; i <= 10; ++i) EXPECT_EQ(walk.next(), top.getChild(i));
    EXPECT_EQ(walk.next(), nullptr);
}

// By recursion.
void namesBelow(const Element& element, std::string& names) {
    for (int i = 0; i < element.getChildCount(); ++i) {
        const Object* const child = element.getChild(i);
        if (!child->isElement()) continue;
        names += child->toElement()->getName();
        namesBelow(*child->toElement(), names);
    }
}

TEST(PreorderTest, AWalkOverElementsFindsThoseThatARecursionFinds) {
    std::mt19937 random(1);
    for (int round = 0; round < rounds(500); ++round) {
        Element top("t");
        std::vector<Element*> all{&top};
        for (auto count = random() % 20; count > 0; --count) {
            Element& parent = *all[random() % all.size()];
            if (random() % 4 == 0) {
                parent.addChild(new CharData(DataHolder("x")));
            } else {
                all.push_back(new Element(std::string(1, static_cast<char>('a' + random() % 26))));
                parent.addChild(all.back());
            }
        }
        std::string expected;
        namesBelow(top, expected);
        std::string found;
        for (ElementWalk walk(top); const Element* const element = walk.next();) found += element->getName();
        ASSERT_EQ(found, expected) << dump(&top);
    }
}

}  // namespace
}  // namespace Xml::test
