#include "xml/easy/Trees.h"

#include "easy/RandomTrees.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Instruction.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Values.h"
#include "xml/standard/Read.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// The links of all nodes below and at the element.
bool isLinked(Element& top, const Dtd* dtd) {
    for (Element* element : elementsOf(top)) {
        if (NodeAccess::dtd(*element) != dtd) return false;
        for (Object& node : children(*element)) {
            if (NodeAccess::dtd(node) != dtd) return false;
        }
        for (Attribute& attribute : attributes(*element)) {
            if (NodeAccess::dtd(attribute) != dtd) return false;
        }
    }
    return true;
}

std::unique_ptr<Document> linked() {
    Outcome outcome = readDocument(
        "<!DOCTYPE r [<!ELEMENT r ANY><!ELEMENT a ANY><!ELEMENT b ANY><!ATTLIST a d CDATA '7'><!ENTITY e 'x'>]><r><a "
        "k='1'>t</a><b><a/></b></r>");
    if (!outcome.ok) ADD_FAILURE() << outcome.error;
    outcome.document->getRoot()->setDtd(outcome.document->getDtd());
    return std::move(outcome.document);
}

TEST(TreesTest, AppendMakesElementsOfAnyNameAndText) {
    const MessageCollector messages;
    Element root("r");
    Element& first = append(root, "a");
    Element& second = append(root,
                             "gr\xC3\xB6\xC3\x9F"
                             "e",
                             "1 < 2");
    append(append(root, "not a name"), "", "x");
    EXPECT_EQ(dump(&root),
              "r(a gr\xC3\xB6\xC3\x9F"
              "e('1 &lt; 2') not a name(('x')))");
    EXPECT_EQ(first.getParent(), &root);
    EXPECT_EQ(second.getChild(0)->getParent(), &second);
    EXPECT_TRUE(messages.texts().empty());
}

TEST(TreesTest, AppendInsertDetachKeepTheNodeAndItsType) {
    Element root("r");
    Comment& comment = append(root, std::make_unique<Comment>("c"));
    CharData& text = insertBefore(comment, std::make_unique<CharData>("t"));
    Element& element = insertBefore(comment, std::make_unique<Element>("e"));
    Object& instruction = append(root, std::unique_ptr<Object>(new Instruction("i", "")));
    EXPECT_EQ(dump(&root), "r('t' e <!--c--> <?i?>)");
    std::unique_ptr<CharData> taken = detach(text);
    std::unique_ptr<Object> other = detach(instruction);
    EXPECT_EQ(taken.get(), &text);
    EXPECT_EQ(taken->getParent(), nullptr);
    EXPECT_EQ(other.get(), &instruction);
    EXPECT_EQ(dump(&root), "r(e <!--c-->)");
    EXPECT_EQ(detach(text), nullptr);
    append(element, std::move(taken));
    EXPECT_EQ(dump(&root), "r(e('t') <!--c-->)");
    EXPECT_EQ(text.getParent(), &element);
}

TEST(TreesTest, NodesThatNobodyOwnsStayWhereTheyAre) {
    Element root("r");
    CharData strayed("x");
    strayed.setParent(&root);
    EXPECT_EQ(detach(root), nullptr);
    EXPECT_EQ(detach(strayed), nullptr);
    EXPECT_EQ(replace(root, std::make_unique<Element>("s")), nullptr);
    EXPECT_EQ(replace(strayed, std::make_unique<Element>("s")), nullptr);
    ReadResult result = readText("<!--c--><r k='v'/>");
    ASSERT_TRUE(result) << result.message();
    EXPECT_EQ(detach(*prologOf(*result.get()).beforeRoot.front()), nullptr);
    EXPECT_EQ(replace(*result.get(), std::make_unique<Element>("s")), nullptr);
    EXPECT_EQ(replace(*result->getRoot()->getAttribute("k"), std::make_unique<Element>("s")), nullptr);
    EXPECT_EQ(dump(result.get()), "r[k=v]");
    append(root, "a");
    EXPECT_EQ(replace(*root.getChild(0), std::make_unique<Attribute>("k", "v")), nullptr);
    EXPECT_EQ(replace(*root.getChild(0), std::make_unique<Dtd>("d")), nullptr);
    EXPECT_EQ(replace(*root.getChild(0), makeDocument("d")), nullptr);
    EXPECT_EQ(dump(&root), "r(a)");
}

TEST(TreesTest, ChangesAreThoseOfAListAtRandom) {
    Dice dice(6);
    for (int round = 0; round < rounds(200); ++round) {
        for (const auto& document : randomTrees(dice)) {
            for (int step = 0; step < 20; ++step) {
                Element& parent = anyElement(dice, *document);
                std::vector<Object*> expected;
                for (Object& child : children(parent)) expected.push_back(&child);
                const std::size_t place = expected.empty() ? 0 : dice.below(expected.size());
                const auto at = expected.begin() + static_cast<std::ptrdiff_t>(place);
                auto made = std::make_unique<Element>("new");
                Element* const raw = made.get();
                const std::size_t action = expected.empty() ? 0 : dice.below(4);
                if (action == 0) {
                    EXPECT_EQ(&append(parent, std::move(made)), raw);
                    expected.push_back(raw);
                } else if (action == 1) {
                    EXPECT_EQ(&insertBefore(**at, std::move(made)), raw);
                    expected.insert(at, raw);
                } else if (action == 2) {
                    Object* const old = *at;
                    EXPECT_EQ(detach(*old).get(), old);
                    expected.erase(at);
                } else {
                    Object* const old = *at;
                    const std::unique_ptr<Object> taken = replace(*old, std::move(made));
                    EXPECT_EQ(taken.get(), old);
                    EXPECT_EQ(taken->getParent(), nullptr);
                    EXPECT_EQ(raw->getParent(), &parent);
                    *at = raw;
                }
                std::vector<Object*> found;
                for (Object& child : children(parent)) found.push_back(&child);
                ASSERT_EQ(found, expected);
            }
        }
    }
}

TEST(TreesTest, ChangesMarkAndUnlinkWhatIsAbove) {
    const auto changed = [](auto change) {
        const auto document = linked();
        Element& b = *document->getRoot()->getElement("b");
        change(b);
        return NodeAccess::dtd(b) == nullptr && NodeAccess::dtd(*document->getRoot()) == nullptr &&
               NodeAccess::dtd(*document->getRoot()->getElement("a")) == document->getDtd();
    };
    EXPECT_TRUE(changed([](Element& b) { append(b, "c"); }));
    EXPECT_TRUE(changed([](Element& b) { insertBefore(*b.getChild(0), std::make_unique<Element>("c")); }));
    EXPECT_TRUE(changed([](Element& b) { detach(*b.getChild(0)); }));
    EXPECT_TRUE(changed([](Element& b) { replace(*b.getChild(0), std::make_unique<Element>("c")); }));
    EXPECT_TRUE(changed([](Element& b) { setValue(b, "k", 1); }));
    EXPECT_TRUE(changed([](Element& b) { setText(b, "x"); }));
    EXPECT_TRUE(changed([](Element& b) {
        insertBefore(*b.getChild(0), std::make_unique<Element>("c"));
        b.setDtd(nullptr);
        sortChildren(b, [](const Object& one, const Object& other) { return nameOf(one) < nameOf(other); });
    }));
    EXPECT_FALSE(changed([](Element&) {}));
}

TEST(TreesTest, WhatComesInIsLinkedAndWhatGoesOutIsNot) {
    const auto document = linked();
    const Dtd* const dtd = document->getDtd();
    Element& root = *document->getRoot();
    Element* const b = root.getElement("b");
    auto made = std::make_unique<Element>("c");
    append(*made, "a", "text");
    Element& c = *made;
    std::unique_ptr<Object> old = replace(*b, std::move(made));
    EXPECT_EQ(old.get(), b);
    EXPECT_TRUE(isLinked(*b, nullptr));
    EXPECT_TRUE(isLinked(c, dtd));
    EXPECT_EQ(valueOr(*c.getElement("a"), "d", 0), 7);
    EXPECT_EQ(dump(document.get()), "r(a[k=1]('t') c(a('text')))");
}

TEST(TreesTest, TheRootGivesWayToElements) {
    const auto document = linked();
    Element* const root = document->getRoot();
    EXPECT_EQ(replace(*root, std::make_unique<CharData>("x")), nullptr);
    EXPECT_EQ(document->getRoot(), root);
    std::unique_ptr<Object> old = replace(*root, std::make_unique<Element>("a"));
    EXPECT_EQ(old.get(), root);
    EXPECT_EQ(root->getParent(), nullptr);
    EXPECT_TRUE(isLinked(*root, nullptr));
    EXPECT_EQ(document->getRoot()->getParent(), document.get());
    EXPECT_TRUE(isLinked(*document->getRoot(), document->getDtd()));
    EXPECT_EQ(valueOr(*document->getRoot(), "d", 0), 7);

    std::unique_ptr<Element> taken = detach(*document->getRoot());
    EXPECT_EQ(dump(document.get()), "none");
    EXPECT_TRUE(isLinked(*taken, nullptr));
    setRoot(*document, std::move(taken));
    EXPECT_EQ(dump(document.get()), "a");
    setRoot(*document, std::make_unique<Element>("z"));
    EXPECT_EQ(dump(document.get()), "z");
    EXPECT_TRUE(isLinked(*document->getRoot(), document->getDtd()));
    setRoot(*document, nullptr);
    EXPECT_EQ(document->getRoot(), nullptr);
    setRoot(*document, nullptr);
    EXPECT_EQ(document->getRoot(), nullptr);
}

TEST(TreesTest, MadeDocumentsHaveARoot) {
    const std::unique_ptr<Document> document = makeDocument(
        "gr\xC3\xB6\xC3\x9F"
        "e");
    EXPECT_EQ(document->getRoot()->getName(),
              "gr\xC3\xB6\xC3\x9F"
              "e");
    EXPECT_EQ(document->getRoot()->getParent(), document.get());
    EXPECT_EQ(document->getDtd(), nullptr);
    append(*document->getRoot(), "b");
    EXPECT_EQ(document->getRoot()->getChildCount(), 1);
}

TEST(TreesTest, CopiesAreEqualAndLinkToTheirOwnDtdOrNone) {
    std::unique_ptr<Element> element;
    std::unique_ptr<Attribute> attribute;
    std::unique_ptr<CharData> text;
    std::unique_ptr<Object> object;
    {
        const auto document = linked();
        const Element& a = *document->getRoot()->getElement("a");
        const std::unique_ptr<Document> copy = copyOf(*document);
        EXPECT_EQ(dump(copy.get()), dump(document.get()));
        EXPECT_NE(copy->getDtd(), document->getDtd());
        EXPECT_TRUE(isLinked(*copy->getRoot(), copy->getDtd()));
        element = copyOf(*document->getRoot());
        attribute = copyOf(*a.getAttribute("k"));
        text = copyOf(*a.getChild(0)->toCharData());
        object = copyOf(static_cast<const Object&>(a));
    }
    EXPECT_EQ(dump(element.get()), "r(a[k=1]('t') b(a))");
    EXPECT_TRUE(isLinked(*element, nullptr));
    EXPECT_EQ(element->getParent(), nullptr);
    EXPECT_EQ(attribute->getValue(), "1");
    EXPECT_EQ(NodeAccess::dtd(*attribute), nullptr);
    EXPECT_EQ(text->getData(), "t");
    EXPECT_EQ(NodeAccess::dtd(*text), nullptr);
    EXPECT_EQ(dump(object.get()), "a[k=1]('t')");
    EXPECT_TRUE(isLinked(*object->toElement(), nullptr));
}

class Derived : public Element {
public:
    Derived() : Element("derived") {}
};

TEST(TreesTest, ACopyIsNullWhereACloneIsOfAnotherClass) {
    const Derived derived;
    EXPECT_EQ(copyOf(derived), nullptr);
    EXPECT_EQ(dump(copyOf(static_cast<const Element&>(derived)).get()), "derived");
}

TEST(TreesTest, SortingIsStable) {
    Dice dice(7);
    for (int round = 0; round < rounds(200); ++round) {
        for (const auto& document : randomTrees(dice)) {
            Element& parent = anyElement(dice, *document);
            const auto before = [](const Object& one, const Object& other) { return nameOf(one) < nameOf(other); };
            // One after the other is put where it belongs: after all that do not come after it.
            std::vector<Object*> expected;
            for (Object& child : children(parent)) {
                auto at = expected.end();
                while (at != expected.begin() && before(child, **(at - 1))) --at;
                expected.insert(at, &child);
            }
            sortChildren(parent, before);
            std::vector<Object*> found;
            for (Object& child : children(parent)) {
                EXPECT_EQ(child.getParent(), &parent);
                found.push_back(&child);
            }
            ASSERT_EQ(found, expected);
        }
    }
}

TEST(TreesTest, SortingWhatIsInOrderChangesNothing) {
    const auto document = linked();
    sortChildren(*document->getRoot(),
                 [](const Object& one, const Object& other) { return nameOf(one) < nameOf(other); });
    EXPECT_TRUE(isLinked(*document->getRoot(), document->getDtd()));
}

TEST(TreesTest, AnOrderThatThrowsLeavesTheChildren) {
    Element root("r");
    for (const char* name : {"c", "b", "a"}) append(root, name);
    int asked = 0;
    const auto throwing = [&asked](const Object& one, const Object& other) {
        if (++asked == 3) throw std::runtime_error("no");
        return nameOf(one) < nameOf(other);
    };
    EXPECT_THROW(sortChildren(root, throwing), std::runtime_error);
    EXPECT_EQ(dump(&root), "r(c b a)");
}

TEST(TreesTest, PartsMoveBetweenTreesThatWereRead) {
    std::string moved;
    auto to = makeDocument("to");
    {
        ReadResult result =
            readText("<r>" + std::string(1000, 'x') + "<a><b k='v'>long enough for the memory of its tree</b></a></r>");
        ASSERT_TRUE(result) << result.message();
        append(*to->getRoot(), detach(*result->find("a")));
        EXPECT_EQ(result->getRoot()->getChildCount(), 1);
        const auto old = replace(*result->getRoot()->getChild(0), std::make_unique<Element>("z"));
        EXPECT_EQ(dump(result.get()), "r(z)");
    }
    EXPECT_EQ(dump(to.get()), "to(a(b[k=v]('long enough for the memory of its tree')))");
    sortChildren(*to->getRoot(), [](const Object&, const Object&) { return false; });
    detach(*to->getRoot()->getChild(0));
    EXPECT_EQ(dump(to.get()), "to");
}

}  // namespace
}  // namespace Xml::test
