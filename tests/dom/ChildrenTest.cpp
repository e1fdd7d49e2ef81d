#include "xml/dom/Children.h"

#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {
namespace {

using internal::Children;

int living = 0;

class Counted : public Element {
public:
    explicit Counted(const std::string& itsName) : Element(itsName) { ++living; }
    ~Counted() override { --living; }
};

class CountedText : public CharData {
public:
    explicit CountedText(const std::string& text) : CharData(DataHolder(text)) { ++living; }
    ~CountedText() override { --living; }
};

std::unique_ptr<Object> element(const char* name) { return std::make_unique<Counted>(name); }

// The children in short: elements by their names, texts in quotes.
std::string shown(const Children& children) {
    std::string text;
    for (const Object* const node : children.span()) {
        if (!text.empty()) text += " ";
        text += node->isElement() ? node->toElement()->getName() : "'" + node->toCharData()->data() + "'";
    }
    EXPECT_EQ(children.span().size(), children.size());
    return text;
}

class ChildrenTest : public testing::Test {
public:
    void SetUp() override {
        ASSERT_EQ(living, 0);
        for (const char* name : {"a", "b", "c"}) children.append(element(name));
    }

    Children children;
};

TEST_F(ChildrenTest, KeepsTheOrderInWhichNodesComeAndGo) {
    EXPECT_EQ(shown(children), "a b c");
    children.insert(0, element("first"));
    children.insert(2, element("third"));
    children.insert(children.size(), element("last"));
    EXPECT_EQ(shown(children), "first a third b c last");
    EXPECT_EQ(children.last()->toElement()->getName(), "last");
    EXPECT_EQ(children[2]->toElement()->getName(), "third");

    EXPECT_EQ(children.extract(1)->toElement()->getName(), "a");
    EXPECT_EQ(children.extractLast()->toElement()->getName(), "last");
    EXPECT_EQ(shown(children), "first third b c");
    while (!children.empty()) children.extractLast();
    EXPECT_EQ(shown(children), "");
}

TEST_F(ChildrenTest, OwnsWhatItHoldsAndNothingElse) {
    EXPECT_EQ(living, 3);
    std::unique_ptr<Object> taken = children.extract(1);
    EXPECT_EQ(living, 3);
    {
        Children others;
        others.append(std::move(taken));
        others.append(element("d"));
        EXPECT_EQ(living, 4);
    }
    EXPECT_EQ(living, 2);
    children.extractLast();
    EXPECT_EQ(living, 1);
}

TEST_F(ChildrenTest, FindsTheLastPlaceOfANode) {
    for (std::size_t i = 0; i < children.size(); ++i) EXPECT_EQ(children.placeOf(children[i]), i);
    EXPECT_EQ(children.placeOf(nullptr), 3U);
    const Element other("a");
    EXPECT_EQ(children.placeOf(&other), 3U);
}

TEST_F(ChildrenTest, NothingMovesWhereThereIsRoom) {
    children.reserve(4);
    const Object* const* const before = children.span().begin();
    children.append(element("d"));
    EXPECT_EQ(children.span().begin(), before);
    children.makeRoom();
    const Object* const* const withRoom = children.span().begin();
    children.insert(0, element("e"));
    EXPECT_EQ(children.span().begin(), withRoom);
}

TEST_F(ChildrenTest, OfTwoTextsInARowTheSecondStays) {
    const struct {
        const char* nodes;  // a letter an element, a digit a text
        const char* left;
    } kCases[] = {
        {"", ""},     {"a", "a"},  {"1", ""},   {"12", "'2'"},     {"123", "'2'"},          {"1234", "'2' '4'"},
        {"1a2", "a"}, {"a1", "a"}, {"1a", "a"}, {"12a3", "'2' a"}, {"ab1c23", "a b c '3'"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.nodes);
        Children mixed;
        const std::string nodes = c.nodes;
        for (const char node : nodes) {
            const std::string name(1, node);
            if (node >= 'a') {
                mixed.append(std::make_unique<Counted>(name));
            } else {
                mixed.append(std::make_unique<CountedText>(name));
            }
        }
        EXPECT_EQ(mixed.deleteCharData(), nodes.find_first_of("1234") != std::string::npos);
        EXPECT_EQ(shown(mixed), c.left);
        EXPECT_EQ(living, 3 + static_cast<int>(mixed.size()));
    }
}

}  // namespace
}  // namespace Xml::test
