#include "xml/dom/Element.h"

#include "dom/Settings.h"
#include "models/EditingWorld.h"
#include "support/Messages.h"
#include "support/NodeTestAccess.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dtd/AttStringType.h"
#include "xml/dtd/Dtd.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Texts = std::vector<std::string>;

TEST(ElementTest, ABadNameIsReportedAndLeavesTheNameOfANewElementEmptyAndOfAnotherAsItWas) {
    const struct {
        const char* name;
        bool good;
    } kCases[] = {
        {"a", true},    {"_", true},         {":", true},   {"a-b.c:d_e", true}, {"A1", true},
        {"", false},    {"9", false},        {"-a", false}, {".a", false},       {"a b", false},
        {"a\n", false}, {"\xC3\xA4", false}, {"<", false},  {"%s%n", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Texts messages = c.good ? Texts{} : Texts{std::string("<Element::setName> not a valid name ") + c.name};
        MessageCollector collector;
        EXPECT_EQ(Element(c.name).getName(), c.good ? c.name : "");
        EXPECT_EQ(collector.take(), messages);

        const Element withText(c.name, "text");
        EXPECT_EQ(withText.getName(), c.good ? c.name : "");
        EXPECT_EQ(withText.getChildCount(), 1);
        EXPECT_EQ(collector.take(), messages);

        Element renamed("before");
        renamed.setName(c.name);
        EXPECT_EQ(renamed.getName(), c.good ? c.name : "before");
        EXPECT_EQ(collector.take(), messages);
    }
}

TEST(ElementTest, AnElementWithTextHoldsItAsItsOneChild) {
    const Element element("a", "x<y");
    ASSERT_EQ(element.getChildCount(), 1);
    ASSERT_TRUE(element.getChild(0)->isCharData());
    EXPECT_EQ(element.getChild(0)->toCharData()->data(), "x&lt;y");
    EXPECT_EQ(element.getChild(0)->getParent(), &element);
    EXPECT_EQ(element.getAttributeCount(), 0);

    const Element empty("a", "");
    EXPECT_EQ(dump(&empty), "a('')");
    EXPECT_EQ(dump(std::make_unique<Element>("a").get()), "a");
}

TEST(ElementTest, TheTextIsTheNameAndTheAttributesThatAreOkInNameOrder) {
    MessageCollector collector;
    Element element("a");
    EXPECT_EQ(element.toString(), "a");
    element.setAttribute("y", "2");
    element.setAttribute("x", "<\"1\">");
    EXPECT_EQ(element.toString(), "a x=\"&lt;&quot;1&quot;&gt;\" y=\"2\"");
    element.setAttribute("", "unseen");
    EXPECT_EQ(element.toString(), "a x=\"&lt;&quot;1&quot;&gt;\" y=\"2\"");
    element.setAttribute("1 b", "seen");
    EXPECT_EQ(element.toString(), "a 1 b=\"seen\" x=\"&lt;&quot;1&quot;&gt;\" y=\"2\"");
    element.addElement("b", "text");
    const std::string& text = element.toString();
    element.setName("other");
    EXPECT_EQ(&element.toString(), &text);
    EXPECT_EQ(text, "other 1 b=\"seen\" x=\"&lt;&quot;1&quot;&gt;\" y=\"2\"");
    element.setName("9");
    EXPECT_EQ(Element("9").toString(), "");
}

TEST(ElementTest, AttributesStandInTheByteOrderOfTheirNames) {
    MessageCollector collector;
    Element element("a");
    for (const char* name : {"y", "x", "xx", "B", "a", "_", "", "\xC3\xA4", "x1", "Z", ":", "x-", "x."}) {
        element.setAttribute(name, name);
    }
    std::string names;
    for (int i = 0; i < element.getAttributeCount(); ++i) names += element.getAttribute(i)->getName() + "|";
    EXPECT_EQ(names, "|:|B|Z|_|a|x|x-|x.|x1|xx|y|\xC3\xA4|");
}

TEST(ElementTest, SettingAnAttributeAddsItOrReplacesTheOneOfThatName) {
    Element element("a");
    element.setAttribute("x", "1");
    element.setAttribute("y", "2");
    element.setAttribute("x", "3");
    EXPECT_EQ(dump(&element), "a[x=3 y=2]");
    element.setAttribute("X", "4");
    EXPECT_EQ(dump(&element), "a[X=4 x=3 y=2]");
    const Attribute* attribute = element.getAttribute("x");
    ASSERT_NE(attribute, nullptr);
    EXPECT_EQ(attribute->getParent(), &element);
    EXPECT_TRUE(attribute->isOk());
}

TEST(ElementTest, AnAttributeWhoseNameIsNoNameIsReportedOnceAndKept) {
    MessageCollector collector;
    Element element("a");
    element.setAttribute("1a", "v");
    EXPECT_EQ(collector.take(), Texts{"<Attribute::Attribute> not a valid name"});
    EXPECT_EQ(element.getAttributeValue("1a"), "v");
    element.setAttribute("1a", "w");
    EXPECT_EQ(collector.take(), Texts{"<Attribute::Attribute> not a valid name"});
    element.setAttribute("", "empty");
    EXPECT_EQ(collector.take(), Texts{"<Attribute::Attribute> not a valid name"});
    EXPECT_EQ(element.getAttributeCount(), 2);
    EXPECT_EQ(element.getAttributeValue(""), "empty");

    // Looking, copying, writing and removing report nothing more.
    const Element copy(element);
    EXPECT_EQ(textOf(copy), "<a 1a=\"w\"/>");
    element.removeAttribute("1a");
    EXPECT_TRUE(collector.texts().empty());
}

TEST(ElementTest, AttributesAreFoundByNameAndByIndexAndOutOfRangeNot) {
    Element element("a");
    element.setAttribute("y", "2");
    element.setAttribute("x", "1");
    const Element& constant = element;
    const struct {
        int index;
        const char* name;
    } kCases[] = {{-1, nullptr}, {0, "x"}, {1, "y"}, {2, nullptr}, {2147483647, nullptr}, {-2147483647 - 1, nullptr}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.index);
        Attribute* attribute = element.getAttribute(c.index);
        EXPECT_EQ(constant.getAttribute(c.index), attribute);
        ASSERT_EQ(attribute != nullptr, c.name != nullptr);
        if (c.name == nullptr) continue;
        EXPECT_EQ(attribute->getName(), c.name);
        EXPECT_EQ(element.getAttribute(c.name), attribute);
        EXPECT_EQ(constant.getAttribute(c.name), attribute);
    }
    EXPECT_EQ(element.getAttribute("z"), nullptr);
    EXPECT_EQ(constant.getAttribute("X"), nullptr);
    EXPECT_EQ(constant.getAttribute(""), nullptr);
}

TEST(ElementTest, RemovingAnAttributeTakesThatOneAndAbsentOnesChangeNothing) {
    const struct {
        const char* name;
        void (*remove)(Element&);
        const char* left;
        bool touched;
    } kCases[] = {
        {"by name", [](Element& e) { e.removeAttribute("y"); }, "a[x=1 z=3]", true},
        {"absent name", [](Element& e) { e.removeAttribute("Y"); }, "a[x=1 y=2 z=3]", false},
        {"empty name", [](Element& e) { e.removeAttribute(""); }, "a[x=1 y=2 z=3]", false},
        {"first", [](Element& e) { e.removeAttribute(0); }, "a[y=2 z=3]", true},
        {"last", [](Element& e) { e.removeAttribute(2); }, "a[x=1 y=2]", true},
        {"index -1", [](Element& e) { e.removeAttribute(-1); }, "a[x=1 y=2 z=3]", false},
        {"index at the count", [](Element& e) { e.removeAttribute(3); }, "a[x=1 y=2 z=3]", false},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Element element("a");
        element.setAttribute("z", "3");
        element.setAttribute("x", "1");
        element.setAttribute("y", "2");
        NodeTestAccess::setDirty(element, false);
        c.remove(element);
        EXPECT_EQ(dump(&element), c.left);
        EXPECT_EQ(NodeTestAccess::dirty(element), c.touched);
    }
}

TEST(ElementTest, TheValueOfAnAttributeIsItsOwnThenTheDefaultOfTheDtdThenEmpty) {
    Dtd dtd("d");
    dtd.addAttDecl("a", "default", new AttStringType(DEFAULT, "by default"));
    dtd.addAttDecl("a", "fixed", new AttStringType(FIXED, "fixed value"));
    dtd.addAttDecl("a", "none", new AttStringType(DEFAULT, ""));
    dtd.addAttDecl("a", "implied", IMPLIED);
    dtd.addAttDecl("a", "required", REQUIRED);
    dtd.addAttDecl("b", "other", new AttStringType(DEFAULT, "of b"));
    const struct {
        const char* attribute;
        const char* linked;
    } kCases[] = {
        {"default", "by default"},
        {"fixed", "fixed value"},
        {"none", ""},
        {"implied", ""},
        {"required", ""},
        {"other", ""},
        {"absent", ""},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.attribute);
        MessageCollector collector;
        Element element("a");
        EXPECT_EQ(element.getAttributeValue(c.attribute), "");
        element.setDtd(&dtd);
        EXPECT_EQ(element.getAttributeValue(c.attribute), c.linked);
        EXPECT_EQ(element.getAttribute(c.attribute), nullptr);
        element.setAttribute(c.attribute, "own");
        EXPECT_EQ(element.getAttributeValue(c.attribute), "own");
        element.setDtd(&dtd);
        EXPECT_EQ(element.getAttributeValue(c.attribute), "own");
        element.removeAttribute(c.attribute);
        EXPECT_EQ(element.getAttributeValue(c.attribute), "") << "the change has cleared the link";
        EXPECT_TRUE(collector.texts().empty());
    }
}

TEST(ElementTest, AnEmptyOwnValueHidesTheDefault) {
    Dtd dtd("d");
    dtd.addAttDecl("a", "x", new AttStringType(DEFAULT, "by default"));
    Element element("a");
    element.setAttribute("x", "");
    element.setDtd(&dtd);
    EXPECT_EQ(element.getAttributeValue("x"), "");
}

TEST(ElementTest, APointerToAnAttributeStaysValidWhileOthersComeAndGo) {
    Element element("a");
    Dice dice(7);
    std::map<std::string, const Attribute*> held;
    std::map<std::string, std::string> values;
    int counter = 0;
    std::size_t most = 0;
    for (int i = 0; i < 6000; ++i) {
        const std::string name = "n" + std::to_string(dice.below(1400));
        if (dice.chance(i < 3500 ? 88 : 45)) {
            const std::string value = "value " + std::to_string(counter++);
            element.setAttribute(name, value);
            held[name] = element.getAttribute(name);
            values[name] = value;
        } else if (dice.chance(70) || held.empty()) {
            element.removeAttribute(name);
            held.erase(name);
            values.erase(name);
        } else {
            const int index = dice.below(static_cast<int>(held.size()));
            const std::string removed = element.getAttribute(index)->getName();
            element.removeAttribute(index);
            held.erase(removed);
            values.erase(removed);
        }
        most = std::max(most, held.size());
        if (i % 500 != 499) continue;
        ASSERT_EQ(element.getAttributeCount(), static_cast<int>(held.size()));
        int place = 0;
        for (const auto& [key, attribute] : held) {
            ASSERT_EQ(attribute->getName(), key);
            ASSERT_EQ(attribute->getValue(), values.at(key));
            ASSERT_EQ(element.getAttribute(key), attribute);
            ASSERT_EQ(element.getAttribute(place++), attribute);
        }
    }
    EXPECT_GE(most, 1000U);
}

TEST(ElementTest, SetDtdReachesTheWholeSubtreeAndEveryAttribute) {
    const Dtd dtd("d");
    Element root("r");
    root.setAttribute("x", "1");
    root.addElement("a", "text");
    root.getElement("a")->setAttribute("y", "2");
    root.addChild(new CharData(DataHolder("more")));
    Element parent("p");
    parent.addChild(root.clone());
    Element& tree = *parent.getElement(0);
    tree.setDtd(&dtd);
    const Element& a = *tree.getElement("a");
    const std::vector<const Object*> nodes = {&tree,         tree.getAttribute("x"), &a, a.getAttribute("y"),
                                              a.getChild(0), tree.getChild(1)};
    for (const Object* node : nodes) EXPECT_EQ(NodeTestAccess::dtd(*node), &dtd);
    EXPECT_EQ(NodeTestAccess::dtd(parent), nullptr);
    tree.setDtd(nullptr);
    for (const Object* node : nodes) EXPECT_EQ(NodeTestAccess::dtd(*node), nullptr);
}

TEST(ElementTest, ACopyHasNameAttributesAndChildrenOfItsOwn) {
    MessageCollector collector;
    Element original("r");
    original.setAttribute("x", "1");
    original.addChild(new CharData(DataHolder("a<b")));
    original.addElement("a", "text");
    original.getElement("a")->setAttribute("y", "2");
    original.getElement("a")->addChild(new Element("9"));
    collector.take();
    const std::string tree = "r[x=1]('a&lt;b' a[y=2]('text' ))";
    ASSERT_EQ(dump(&original), tree);

    Element copy(original);
    const std::unique_ptr<Object> cloned(original.clone());
    EXPECT_TRUE(collector.texts().empty());
    EXPECT_EQ(dump(&copy), tree);
    EXPECT_EQ(dump(cloned.get()), tree);
    for (Element* element : {&copy, cloned->toElement()}) {
        EXPECT_EQ(element->getParent(), nullptr);
        EXPECT_EQ(element->getAttribute("x")->getParent(), element);
        EXPECT_EQ(element->getChild(0)->getParent(), element);
        EXPECT_EQ(element->getChild(1)->getParent(), element);
        EXPECT_EQ(element->findElement("a")->getChild(0)->getParent(), element->getElement("a"));
        EXPECT_NE(element->getChild(0), original.getChild(0));
        EXPECT_NE(element->getAttribute("x"), original.getAttribute("x"));
    }
    copy.getElement("a")->killChildren();
    copy.setAttribute("x", "2");
    cloned->toElement()->setCharData("other");
    EXPECT_EQ(dump(&original), tree);
}

TEST(ElementTest, TheNotationOfEmptyElementsIsShortAtFirstAndSettingItReturnsWhatWasSet) {
    EXPECT_TRUE(Element::mUseShortNotationForEmptyTags);
    EXPECT_TRUE(Element::usingShortNotationForEmptyTags());
    EXPECT_TRUE(Element::setShortNotationForEmptyTags(false));
    EXPECT_FALSE(Element::usingShortNotationForEmptyTags());
    EXPECT_FALSE(Element::setShortNotationForEmptyTags(false));
    EXPECT_FALSE(Element::setShortNotationForEmptyTags(true));
    EXPECT_TRUE(Element::usingShortNotationForEmptyTags());
    Element::mUseShortNotationForEmptyTags = false;
    EXPECT_FALSE(Element::usingShortNotationForEmptyTags());
    Element::mUseShortNotationForEmptyTags = true;
}

// --- Character data ---

TEST(ElementTest, TheTextOfAnElementIsThatOfItsFirstTextDecoded) {
    Dtd dtd("d");
    dtd.setEntity("e", "value");
    Element root("r");
    EXPECT_EQ(root.getCharData(), "");
    root.addElement("a", "of a");
    EXPECT_EQ(root.getCharData(), "");
    root.addChild(new CharData(DataHolder("a<b")));
    root.addChild(new CharData(DataHolder("second")));
    EXPECT_EQ(root.getCharData(), "a<b");
    root.getChild(1)->toCharData()->data() = "&e;";
    EXPECT_EQ(root.getCharData(), "&e;");
    root.setDtd(&dtd);
    EXPECT_EQ(root.getCharData(), "value");

    EXPECT_EQ(root.getElementCharData("a"), "of a");
    EXPECT_EQ(root.getElementCharData("b"), "");
    root.getElement("a")->addElement("b", "of b");
    EXPECT_EQ(root.getElementCharData("b"), "");
    EXPECT_EQ(root.findElementCharData("b"), "of b");
    EXPECT_EQ(root.findElementCharData("r"), "");
    EXPECT_EQ(root.findElementCharData("c"), "");
}

TEST(ElementTest, SetCharDataRemovesTextsSkippingTheNodeAfterEachAndAppendsTheText) {
    const struct {
        const char* children;  // t for a text, e for an element
        const char* tree;
    } kCases[] = {
        {"", "r('new')"},
        {"t", "r('new')"},
        {"e", "r(e 'new')"},
        {"te", "r(e 'new')"},
        {"et", "r(e 'new')"},
        {"tet", "r(e 'new')"},
        {"tt", "r('t1' 'new')"},
        {"tte", "r('t1' e 'new')"},
        {"ttt", "r('t1' 'new')"},
        {"tttt", "r('t1' 't3' 'new')"},
        {"etete", "r(e e e 'new')"},
        {"ettet", "r(e 't2' e 'new')"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.children);
        Element root("r");
        int number = 0;
        for (const char* kind = c.children; *kind != '\0'; ++kind, ++number) {
            if (*kind == 't') {
                root.addChild(new CharData(DataHolder("t" + std::to_string(number))));
            } else {
                root.addChild(new Element("e"));
            }
        }
        root.setCharData("new");
        EXPECT_EQ(dump(&root), c.tree);
        EXPECT_EQ(root.getChild(root.getChildCount() - 1)->getParent(), &root);
    }
}

TEST(ElementTest, SetCharDataEscapesAndTakesItsOwnTextBack) {
    Element element("a", "x<y, which is longer than a string keeps in itself");
    element.setCharData(element.getCharData());
    EXPECT_EQ(dump(&element), "a('x&lt;y, which is longer than a string keeps in itself')");
    element.setCharData(element.getChild(0)->toCharData()->data());
    EXPECT_EQ(dump(&element), "a('x&amp;lt;y, which is longer than a string keeps in itself')");
    element.setCharData("");
    EXPECT_EQ(dump(&element), "a('')");
}

TEST(ElementTest, TheTextOfAChildOrADescendantIsSetWhereThereIsOne) {
    const struct {
        const char* name;
        void (*set)(Element&);
        const char* tree;
    } kCases[] = {
        {"child", [](Element& r) { r.setElementCharData("a", "new"); }, "r(b(a('inner')) a('new') a('second'))"},
        {"no such child", [](Element& r) { r.setElementCharData("c", "new"); },
         "r(b(a('inner')) a('first') a('second'))"},
        {"the element itself is no child of its own", [](Element& r) { r.setElementCharData("r", "new"); },
         "r(b(a('inner')) a('first') a('second'))"},
        {"descendant, in document order", [](Element& r) { r.findAndSetElementCharData("a", "new"); },
         "r(b(a('new')) a('first') a('second'))"},
        {"no such descendant", [](Element& r) { r.findAndSetElementCharData("c", "new"); },
         "r(b(a('inner')) a('first') a('second'))"},
        {"the element itself is not below", [](Element& r) { r.findAndSetElementCharData("r", "new"); },
         "r(b(a('inner')) a('first') a('second'))"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        Element root("r");
        auto* b = new Element("b");
        root.addChild(b);
        b->addElement("a", "inner");
        root.addElement("a", "first");
        root.addElement("a", "second");
        NodeTestAccess::setDirty(root, false);
        const std::string before = dump(&root);
        c.set(root);
        EXPECT_EQ(dump(&root), c.tree);
        EXPECT_EQ(NodeTestAccess::dirty(root), dump(&root) != before);
    }
}

}  // namespace
}  // namespace Xml::test
