#include "xml/easy/Ranges.h"

#include "easy/RandomTrees.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/Prolog.h"
#include "xml/dtd/Dtd.h"
#include "xml/easy/internal/ChildPlaces.h"
#include "xml/standard/Read.h"
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <type_traits>
#include <vector>

namespace Xml::test {
namespace {

template <class Node>
std::vector<Node*> pointersOf(const Range<Node>& range) {
    std::vector<Node*> all;
    for (Node& node : range) all.push_back(&node);
    return all;
}

template <class Node>
std::vector<const Node*> asConst(const std::vector<Node*>& nodes) {
    return {nodes.begin(), nodes.end()};
}

std::vector<Element*> named(const std::vector<Element*>& all, const std::string& name) {
    std::vector<Element*> found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [&name](const Element* e) { return name.empty() || e->getName() == name; });
    return found;
}

TEST(RangesTest, GiveWhatStandsInRandomTrees) {
    Dice dice(1);
    for (int round = 0; round < rounds(400); ++round) {
        for (const auto& document : randomTrees(dice)) {
            Element& top = anyElement(dice, *document);
            const Element& constTop = top;
            std::vector<Object*> below;
            std::vector<Element*> elementsBelow;
            for (int i = 0; i < top.getChildCount(); ++i) {
                below.push_back(top.getChild(i));
                if (top.getChild(i)->isElement()) elementsBelow.push_back(top.getChild(i)->toElement());
            }
            EXPECT_EQ(pointersOf(children(top)), below);
            EXPECT_EQ(pointersOf(children(constTop)), asConst(below));
            std::vector<Element*> all = elementsOf(top);
            all.erase(all.begin());
            for (const char* name : {"", "a", "p:a", "none"}) {
                EXPECT_EQ(pointersOf(elements(top, name)), named(elementsBelow, name));
                EXPECT_EQ(pointersOf(elements(constTop, name)), asConst(named(elementsBelow, name)));
                EXPECT_EQ(pointersOf(descendants(top, name)), named(all, name));
                EXPECT_EQ(pointersOf(descendants(constTop, name)), asConst(named(all, name)));
            }
            for (std::size_t i = 0; i < below.size(); ++i) {
                Object& node = *below[i];
                EXPECT_EQ(indexOf(node), static_cast<int>(i));
                EXPECT_EQ(nextOf(node), i + 1 < below.size() ? below[i + 1] : nullptr);
                EXPECT_EQ(previousOf(node), i > 0 ? below[i - 1] : nullptr);
                EXPECT_EQ(nextOf(static_cast<const Object&>(node)), nextOf(node));
                EXPECT_EQ(previousOf(static_cast<const Object&>(node)), previousOf(node));
                EXPECT_EQ(parentOf(node), &top);
            }
        }
    }
}

TEST(RangesTest, AttributesStandInTheOrderOfTheTag) {
    const ReadResult result = readText("<r z='1' k='2' m='3' \xC3\xB6='4'/>");
    ASSERT_TRUE(result) << result.message();
    std::unique_ptr<Document> document(static_cast<Document*>(result->clone()));
    Element& root = *document->getRoot();
    root.setAttribute("k", "5");
    root.setAttribute("a", "6");
    std::string order;
    for (Attribute& attribute : attributes(root)) order += attribute.getName() + "=" + attribute.getValue() + " ";
    EXPECT_EQ(order, "z=1 k=5 m=3 \xC3\xB6=4 a=6 ");
    const Element& constRoot = root;
    EXPECT_EQ(pointersOf(attributes(constRoot)), asConst(pointersOf(attributes(root))));
    EXPECT_TRUE(attributes(*document->getRoot()->toElement()).first() != nullptr);
}

TEST(RangesTest, AreSnapshots) {
    Element root("r");
    for (int i = 0; i < 5; ++i) root.addElement("a", "");
    // Each goes, and another comes, while the loop goes on.
    int seen = 0;
    for (Element& element : elements(root)) {
        delete root.extractChild(static_cast<Object*>(&element));
        root.addElement("b", "");
        ++seen;
    }
    EXPECT_EQ(seen, 5);
    EXPECT_EQ(elements(root, "a").size(), 0u);
    EXPECT_EQ(elements(root, "b").size(), 5u);
}

TEST(RangesTest, AreOfRandomAccess) {
    Element root("r");
    for (const char* name : {"a", "b", "c", "d"}) root.addElement(name, "");
    const Range<Element> all = elements(root);
    static_assert(std::is_same_v<std::iterator_traits<Range<Element>::Iterator>::iterator_category,
                                 std::random_access_iterator_tag>);
    static_assert(std::is_same_v<decltype(*elements(std::declval<const Element&>()).begin()), const Element&>);
    static_assert(std::is_same_v<decltype(children(std::declval<Element&>())), Range<Object>>);
    EXPECT_EQ(all.size(), 4u);
    EXPECT_FALSE(all.empty());
    EXPECT_EQ(all[2].getName(), "c");
    EXPECT_EQ(all.first()->getName(), "a");
    EXPECT_EQ(all.end() - all.begin(), 4);
    EXPECT_EQ(all.begin()[3].getName(), "d");
    EXPECT_EQ((all.begin() + 1)->getName(), "b");
    EXPECT_EQ((2 + all.begin())->getName(), "c");
    EXPECT_EQ((all.end() - 1)->getName(), "d");
    auto at = all.begin();
    EXPECT_EQ((at++)->getName(), "a");
    EXPECT_EQ((++at)->getName(), "c");
    EXPECT_EQ((at--)->getName(), "c");
    EXPECT_EQ((--at)->getName(), "a");
    at += 3;
    at -= 2;
    EXPECT_EQ(at->getName(), "b");
    EXPECT_TRUE(all.begin() < at && at > all.begin() && all.begin() <= at && at >= at && at != all.end());
    EXPECT_TRUE(at == all.begin() + 1 && !(at < at) && !(at > all.end()) && !(all.end() <= at) && !(at >= all.end()));
    const auto last = std::max_element(all.begin(), all.end(), [](const Element& one, const Element& other) {
        return one.getName() < other.getName();
    });
    EXPECT_EQ(last->getName(), "d");
    const Range<Object> none;
    EXPECT_TRUE(none.empty() && none.begin() == none.end() && none.first() == nullptr);
}

TEST(RangesTest, NodesThatAreNoChildrenHaveNoPlace) {
    const MessageCollector messages;
    ReadResult result = readText("<!--c--><r k='v'/>", everything());
    ASSERT_TRUE(result) << result.message();
    Element& root = *result->getRoot();
    CharData alone("x");
    Dtd dtd("r");
    Object* const kNodes[] = {result.get(),
                              &root,
                              root.getAttribute("k"),
                              &alone,
                              &dtd,
                              prologOf(*result.get()).beforeRoot.empty()
                                  ? prologOf(*result.get()).beforeDoctype[0].get()
                                  : prologOf(*result.get()).beforeRoot[0].get()};
    for (Object* node : kNodes) {
        EXPECT_EQ(indexOf(*node), -1);
        EXPECT_EQ(nextOf(*node), nullptr);
        EXPECT_EQ(previousOf(*node), nullptr);
        EXPECT_EQ(parentOf(*node), node->isAttribute() ? &root : nullptr);
        EXPECT_EQ(asElement(*node), node == &root ? &root : nullptr);
        EXPECT_EQ(asElement(static_cast<const Object&>(*node)), asElement(*node));
    }
    // A parent that does not have it.
    alone.setParent(&root);
    EXPECT_EQ(indexOf(alone), -1);
    EXPECT_TRUE(messages.texts().empty());
}

TEST(RangesTest, NamesAreThoseOfElementsAttributesAndInstructions) {
    Element element("a");
    Attribute attribute("k", "v");
    const Instruction instruction("t", "c");
    const Comment comment("c");
    const CharData text("x");
    const Document document(nullptr, nullptr);
    const Dtd dtd("d");
    EXPECT_EQ(nameOf(element), "a");
    EXPECT_EQ(nameOf(attribute), "k");
    EXPECT_EQ(nameOf(instruction), "t");
    for (const Object* node : std::initializer_list<const Object*>{&comment, &text, &document, &dtd})
        EXPECT_EQ(nameOf(*node), "");
}

TEST(ChildPlacesTest, AreFoundWhateverIsRememberedAndHasChanged) {
    Dice dice(2);
    std::vector<std::unique_ptr<Element>> parents;
    for (int i = 0; i < 200; ++i) parents.push_back(std::make_unique<Element>("r"));
    for (int round = 0; round < rounds(40000); ++round) {
        Element& parent = *parents[dice.below(parents.size())];
        const int count = parent.getChildCount();
        switch (dice.below(4)) {
        case 0:
            parent.insertChild(count > 0 ? parent.getChild(static_cast<int>(dice.below(9)) % count) : nullptr,
                               new Element("a"));
            break;
        case 1:
            if (count > 4) delete parent.extractChild(static_cast<int>(dice.below(9)) % count);
            break;
        default:
            for (int i = static_cast<int>(dice.below(3)); i < count; i += static_cast<int>(1 + dice.below(4))) {
                ASSERT_EQ(placeAmongChildren(parent, *parent.getChild(i)), static_cast<std::size_t>(i));
            }
            ASSERT_EQ(placeAmongChildren(parent, parent), static_cast<std::size_t>(count));
            break;
        }
    }
}

}  // namespace
}  // namespace Xml::test
