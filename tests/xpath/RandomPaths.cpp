#include "xpath/RandomPaths.h"

#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Entity.h"
#include "xml/dom/Instruction.h"
#include "xml/dtd/Dtd.h"
#include <algorithm>
#include <initializer_list>
#include <utility>

namespace Xml::test {

namespace {

using Text = RandomPaths::Text;

// --- Trees ---

const std::vector<std::string> kNames = {"a", "a", "a", "b", "b", "c", "p:a", "p:b", "q:a"};
// Names at the edges of the name tests, and names that begin like a keyword.
const std::vector<std::string> kRareNames = {":b",        "p:",      "p:q:a", "A",       "a-b.c1",
                                             "_",         "textual", "nodes", "element", "attribute-a",
                                             "positions", "lastly",  "text",  "div",     "eq"};
const std::vector<std::string> kAttributes = {"n", "m", "p:n", "a"};
// Attributes keep a name that is none: the first is a letter to the path language, which looks at the low byte.
const std::vector<std::string> kRareAttributes = {"\xC5\x81n", "", "q:n", ":n", "text", "\xC3\xA9", "n m", "\xFF"};
const std::vector<std::string> kTexts = {"1", "2", "3",   "10",  "2.5", "-1",       "1e2",      "x",
                                         "y", "",  "x y", " x ", "3.0", "3.000000", "\xC3\xA9", "x&y"};
const std::vector<std::string> kRareTexts = {"a  b c",
                                             " ",
                                             "x\ty z",
                                             "\xF0\x9F\x98\x80",
                                             "\xFF",
                                             "'",
                                             "\"",
                                             "nan",
                                             "-inf",
                                             std::string("1\0 2", 4),
                                             "\xE6\x97\xA5 \xE6\x9C\xAC",
                                             "99999999999999999999999"};

const std::string& nameOf(Dice& dice) { return dice.chance(6) ? dice.pick(kRareNames) : dice.pick(kNames); }

const std::string& someText(Dice& dice) { return dice.chance(8) ? dice.pick(kRareTexts) : dice.pick(kTexts); }

// An element and what is in it. `left` counts the nodes that may still be made.
Element* randomElement(Dice& dice, int depth, int& left, const std::string& name) {
    Element* const element = new Element(name);
    while (dice.chance(50)) {
        const std::string& attribute = dice.chance(8) ? dice.pick(kRareAttributes) : dice.pick(kAttributes);
        element->setAttribute(attribute, DataHolder(someText(dice)));
    }
    const int children = depth > 6 ? 0 : dice.below(depth < 2 ? 6 : 4);
    // In a nest most elements have the name of the one around them.
    const bool nest = dice.chance(25);
    for (int i = 0; i < children && left > 0; ++i) {
        --left;
        if (dice.chance(25)) {
            element->addChild(dice.chance(3) ? new CharData(Entity("e")) : new CharData(DataHolder(someText(dice))));
        } else {
            element->addChild(randomElement(dice, depth + 1, left, nest ? name : nameOf(dice)));
        }
    }
    return element;
}

// Elements one in the other, each with a short brother.
Element* randomChain(Dice& dice, int depth) {
    Element* const element = new Element(dice.chance(80) ? "a" : nameOf(dice));
    if (dice.chance(50)) element->setAttribute("n", DataHolder(std::to_string(depth)));
    if (dice.chance(30)) element->addChild(new Element(nameOf(dice)));
    if (depth > 0) element->addChild(randomChain(dice, depth - 1));
    if (dice.chance(30)) {
        const std::string& name = nameOf(dice);
        element->addElement(name, DataHolder(someText(dice)));
    }
    return element;
}

// Many children of few names.
Element* randomList(Dice& dice) {
    Element* const element = new Element("a");
    for (int i = dice.below(16); i >= 0; --i) {
        if (dice.chance(20)) {
            element->addChild(new CharData(DataHolder(someText(dice))));
            continue;
        }
        Element* const child = new Element(nameOf(dice));
        if (dice.chance(60)) child->setAttribute("n", DataHolder(std::to_string(dice.below(5))));
        if (dice.chance(50)) child->addChild(new CharData(DataHolder(someText(dice))));
        element->addChild(child);
    }
    return element;
}

// Puts comments, instructions and sections among the children.
void sprinkle(Dice& dice, Element& element) {
    for (int i = element.getChildCount(); i >= 0; --i) {
        Object* const child = element.getChild(i);
        if (child != nullptr && child->isElement()) sprinkle(dice, *child->toElement());
        if (!dice.chance(12)) continue;
        Object* const made = dice.chance(40)   ? static_cast<Object*>(new Comment("1"))
                             : dice.chance(50) ? static_cast<Object*>(new Instruction("a", "1"))
                                               : new CDataSection(someText(dice));
        element.insertChild(child, made);
    }
}

Element* randomPlainRoot(Dice& dice) {
    if (dice.chance(20)) return randomChain(dice, 2 + dice.below(6));
    if (dice.chance(20)) return randomList(dice);
    int left = 8 + dice.below(24);
    return randomElement(dice, 0, left, nameOf(dice));
}

Element* randomRoot(Dice& dice) {
    Element* const root = randomPlainRoot(dice);
    if (dice.chance(30)) sprinkle(dice, *root);
    return root;
}

void collectNodes(Object* node, std::vector<Object*>& nodes) {
    nodes.push_back(node);
    if (!node->isElement()) return;
    Element* const element = node->toElement();
    for (int i = 0; i < element->getAttributeCount(); ++i) nodes.push_back(element->getAttribute(i));
    for (int i = 0; i < element->getChildCount(); ++i) collectNodes(element->getChild(i), nodes);
}

// --- Paths ---

const std::vector<Text> kGaps = {u" ", u"  ", u"\t", u"\n ", u"\r\n", u"\u0120", u" \t "};
const std::vector<Text> kQuotes = {u"'", u"'", u"'", u"\"", u"\"", u"\u0127", u"\u0122"};

const std::vector<Text> kOperators = {u"=",   u"=",    u"=",    u"!=",    u"<=",   u"<",    u">=",
                                      u">",   u" eq ", u" ne ", u" le ",  u" lt ", u" ge ", u" gt ",
                                      u" + ", u" + ",  u" - ",  u" div ", u" * "};

const std::vector<Text> kElementTests = {u"*",      u"*",      u"*",      u"*",         u"*",    u"*",    u"node()",
                                         u"node()", u"node()", u"a",      u"a",         u"a",    u"a",    u"b",
                                         u"b",      u"c",      u"p:a",    u"p:b",       u"q:a",  u"*:a",  u"*:b",
                                         u"p:*",    u"text()", u"text()", u"element()", u"node", u"text", u"element"};
const std::vector<Text> kRareElementTests = {u"element(a)",
                                             u"element(*)",
                                             u"element(*:a)",
                                             u"element(p:*)",
                                             u"node(a)",
                                             u"node(*)",
                                             u"text(a)",
                                             u"attribute()",
                                             u"attribute(n)",
                                             u"attribute",
                                             u"document-node()",
                                             u"document-node",
                                             u"document-node(a)",
                                             u"_",
                                             u"a-b.c1",
                                             u"A",
                                             u"nope",
                                             u"*:q",
                                             u"q:*",
                                             u"\u0141n"};
const std::vector<Text> kAttributeTests = {u"n", u"n", u"n",   u"n",   u"m",      u"a",           u"p:n",
                                           u"*", u"*", u"p:*", u"*:n", u"node()", u"attribute()", u"attribute(n)"};
const std::vector<Text> kRareAttributeTests = {u"\u0141n",        u"text()", u"element()",
                                               u"attribute(p:*)", u"node",   u"nope"};

const std::vector<Text> kAxes = {u"child",     u"child",     u"descendant",         u"descendant",
                                 u"parent",    u"parent",    u"ancestor",           u"ancestor",
                                 u"following", u"following", u"following-sibling",  u"following-sibling",
                                 u"preceding", u"preceding", u"preceding-sibling",  u"preceding-sibling",
                                 u"self",      u"self",      u"descendant-or-self", u"ancestor-or-self"};

const std::vector<Text> kNumbers = {u"0",
                                    u"1",
                                    u"2",
                                    u"3",
                                    u"4",
                                    u"10",
                                    u"2.5",
                                    u"3.0",
                                    u"12.",
                                    u"0.1",
                                    u"00001.125",
                                    u"0.30000000000000004",
                                    u"99999999999999999999999"};
const std::vector<Text> kLiterals = {u"1",        u"2",          u"10",     u"x",   u"y",   u"",      u"x y", u"3.0",
                                     u"é",        u"&",          u"a",      u"  ",  u"a[b", u"]",     u"a/b", u" eq ",
                                     u"3.000000", u"\U0001F600", u"\uFFFD", u"x&y", u"=",   u"\u65E5"};

const std::vector<Text> kWrongSteps = {u"zz::a",
                                       u"child:a",
                                       u"@child::a",
                                       u"a::b::c",
                                       u"child::",
                                       u"textual",
                                       u"nodes",
                                       u"elements",
                                       u"text(",
                                       u"node(x",
                                       u"attribute(",
                                       u"text()x",
                                       u"node()()",
                                       u"a[1]x",
                                       u"a['x']'y'",
                                       u"a[",
                                       u"a[1",
                                       u"a[b[c]",
                                       u"a[b['",
                                       u"a['x]",
                                       u"*a",
                                       u"*:",
                                       u"*:1",
                                       u"**",
                                       u"p:",
                                       u"p:1",
                                       u"p:*x",
                                       u"a$",
                                       u"a:b:c",
                                       u"element(1)",
                                       u"element(*a)",
                                       u"element(p:)",
                                       u"element(*a)x",
                                       u"1a",
                                       u"",
                                       u"-",
                                       u"a]",
                                       u"a]/b",
                                       u"a[[1]]",
                                       u"a[1]]",
                                       u"@@a",
                                       u"@",
                                       u"..a",
                                       u"...",
                                       u".a",
                                       u"attribute::@n",
                                       u"a'b/c'",
                                       u"\"",
                                       u"a[]",
                                       u"a[/]",
                                       u"a[//]",
                                       u"a[b/]",
                                       u"a[b//]",
                                       u"*[. = ]",
                                       u".[]",
                                       u"*[12a]",
                                       u"*[position]",
                                       u"*[last()1]",
                                       u"*[last(]",
                                       u"\u00E9",
                                       u"\u0161",
                                       u"a\u0161"};
const std::vector<Text> kWrongOperands = {
    u"",        u"12a",      u"1.2.3",     u"1..2",      u".5",          u"-5",        u"2e5",
    u"1/a",     u"position", u"position(", u"position)", u"position()x", u"positions", u"position()/a",
    u"last",    u"last(",    u"last()/a",  u"lastly",    u"last()()",    u"last(x)",   u"position( 1 )",
    u"last(()", u"'a'b",     u"'unclosed", u"'a'[b]/",   u"/",           u"//",        u"]",
    u"[1]",     u"()",       u"$",         u"a/",        u"a//",         u"*//",       u"//*/",
    u".//",     u"/a/",      u"///a",      u"/ /a",      u"a///b"};

const std::vector<Text> kUnits = {
    u"a",  u"b",      u"n",      u"p",      u"x",      u"_",      u"0",      u"1",      u"9",      u".",
    u"-",  u":",      u"::",     u"*",      u"@",      u"/",      u"//",     u"[",      u"]",      u"(",
    u")",  u"'",      u"\"",     u"=",      u"<",      u">",      u"!",      u"+",      u" ",      u"\t",
    u"\n", u"\u0120", u"\u0127", u"\u0122", u"\u0141", u"\u012F", u"\u015B", u"\u0130", u"\u00E9", u"\u65E5",
    u"$",  u",",      u"|",      u"\f",     u" eq ",   u" - ",    u" div ",  u"[1]",    u"()"};

const std::vector<Text> kTokens = {u"a",        u"b",        u"*",          u"p:",       u"*:",        u":",
                                   u"::",       u"child",    u"parent",     u"ancestor", u"self",      u"following",
                                   u"@",        u"@n",       u"/",          u"/",        u"/",         u"//",
                                   u"[",        u"[",        u"]",          u"]",        u"(",         u")",
                                   u"()",       u"node",     u"text",       u"element",  u"attribute", u"document-node",
                                   u"position", u"last",     u"position()", u"last()",   u"1",         u"2",
                                   u".",        u"..",       u"'",          u"\"",       u"'x'",       u"=",
                                   u"!=",       u"<",        u">=",         u" + ",      u" - ",       u" * ",
                                   u" div ",    u" eq ",     u" lt ",       u" ",        u"\t",        u"\u0120",
                                   u"\u0127",   u"\u0141",   u"\u00E9",     u"eq",       u"div",       u"+",
                                   u"-",        u"child::a", u"text()"};

const Text kSurrogate(1, static_cast<OrvSys::uni16char>(0xD800));
const Text kZero(1, u'\0');

// The parts are made from left to right: those of a sum would be made in an order that each compiler chooses.
Text joined(std::initializer_list<Text> parts) {
    Text text;
    for (const Text& part : parts) text += part;
    return text;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------

RandomTree::RandomTree(Dice& dice) {
    const MessageCollector quiet;  // of the names that are none
    Element* const root = dice.chance(2) ? nullptr : randomRoot(dice);
    Dtd* dtd = nullptr;
    if (dice.chance(15)) {
        dtd = new Dtd("a");
        dtd->setEntity("e", DataHolder("entity"));
    }
    document = std::make_unique<Document>(root, dtd);
    int left = 8;
    detached.reset(randomElement(dice, 0, left, nameOf(dice)));
}

RandomTree::~RandomTree() = default;

Object* RandomTree::context(Dice& dice) const {
    if (dice.chance(1)) return nullptr;
    if (dice.chance(1) && document->getDtd() != nullptr) return document->getDtd();
    if (dice.chance(30) || document->getRoot() == nullptr) return document.get();
    if (dice.chance(20)) return document->getRoot();
    std::vector<Object*> all;
    if (dice.chance(90)) {
        collectNodes(document->getRoot(), all);
    } else {
        collectNodes(detached.get(), all);
    }
    return dice.pick(all);
}

std::vector<Object*> RandomTree::nodes() const {
    std::vector<Object*> all{document.get()};
    if (document->getRoot() != nullptr) collectNodes(document->getRoot(), all);
    collectNodes(detached.get(), all);
    return all;
}

std::string RandomTree::placeOf(const Object* node) const {
    if (node == nullptr) return "null";
    if (node == document.get()) return "document";
    if (node == detached.get()) return "detached";
    if (node->isDtd()) return "document type";
    const Object* const parent = node->getParent();
    if (parent == document.get()) return "root";
    std::string place = placeOf(parent) + "/";
    if (node->isAttribute()) return place + "@" + node->toAttribute()->getName();
    int index = 0;
    while (parent->toElement()->getChild(index) != node) ++index;
    return place + std::to_string(index);
}

std::string RandomTree::text() const { return dump(document.get()) + "   detached: " + dump(detached.get()); }

// ---------------------------------------------------------------------------------------------------------------------

Text RandomPaths::wellFormed(bool absolute) { return fresh(0, absolute); }

Text RandomPaths::withMistakes(bool absolute) { return fresh(15, absolute); }

Text RandomPaths::mutated(bool absolute) {
    Text text = fresh(dice.chance(20) ? 10 : 0, absolute);
    for (int i = dice.chance(60) ? 1 : 2 + dice.below(3); i > 0; --i) {
        const std::size_t at = static_cast<std::size_t>(dice.below(static_cast<int>(text.size()) + 1));
        const Text unit = dice.chance(1) ? kSurrogate : dice.chance(1) ? kZero : dice.pick(kUnits);
        const bool atEnd = at >= text.size();
        switch (dice.below(4)) {
        case 0: text.insert(at, unit); break;
        case 1:
            if (!atEnd) text.erase(at, 1);
            break;
        case 2:
            if (!atEnd) text.replace(at, 1, unit);
            break;
        case 3:
            if (at + 1 < text.size()) std::swap(text[at], text[at + 1]);
            break;
        }
    }
    return text;
}

Text RandomPaths::soup(bool absolute) {
    Text text = absolute || dice.chance(40) ? u"//*" : u"";
    for (int i = dice.below(8); i >= 0; --i) text += dice.pick(kTokens);
    return text;
}

Text RandomPaths::fresh(int mistakePercent, bool absolute) {
    mistakes = mistakePercent;
    spacious = dice.chance(25);
    stepsLeft = 2 + dice.below(11);
    if (dice.chance(1)) return gap();
    if (dice.chance(1)) return joined({gap(), u"/", gap()});
    Text text = gap();
    text += absolute ? path(0, true) : dice.chance(6) ? calculation() : operand(0);
    while (dice.chance(18)) text += joined({binaryOperator(), operand(0)});
    return text + gap();
}

Text RandomPaths::expression(int nesting) {
    Text text = operand(nesting);
    while (dice.chance(12)) text += joined({binaryOperator(), operand(nesting)});
    return text;
}

Text RandomPaths::calculation() {
    const std::vector<Text> kOperands = {u"@n", u"//@n", u"*/@n", u"position()", u"last()", u"//*[@n]", u"."};
    Text text = dice.chance(50) ? dice.pick(kOperands) : number();
    for (int i = 1 + dice.below(4); i > 0; --i) {
        text += binaryOperator();
        text += dice.chance(50) ? dice.pick(kOperands) : number();
    }
    return text;
}

Text RandomPaths::operand(int nesting) {
    if (dice.chance(mistakes)) return dice.pick(kWrongOperands);
    const int choice = dice.below(100);
    if (choice < 6) return number();
    if (choice < 10) return literal();
    if (choice < 14) return joined({dice.chance(50) ? u"position" : u"last", gap(), u"()"});
    return path(nesting, dice.chance(nesting == 0 ? 60 : 12));
}

Text RandomPaths::path(int nesting, bool absolute) {
    Text text;
    if (absolute) {
        text = joined({u"/", gap()});
        // Absolute paths mostly begin with what finds something.
        if (dice.chance(70)) {
            text += u"/";
        } else if (dice.chance(70)) {
            text += u"*/";
        }
    }
    text += step(nesting);
    while (stepsLeft > 0 && dice.chance(nesting == 0 ? 42 : 25)) {
        text += joined({gap(), (dice.chance(25) ? u"//" : u"/"), gap(), step(nesting)});
    }
    if (dice.chance(mistakes / 3)) text += dice.chance(50) ? u"/" : u"//";
    return text;
}

Text RandomPaths::step(int nesting) {
    --stepsLeft;
    if (dice.chance(mistakes)) return dice.pick(kWrongSteps);
    Text text = axisAndTest();
    int predicates = nesting >= 3 || stepsLeft < 0 ? 0 : dice.chance(40) ? 1 : 0;
    while (predicates > 0) {
        text += joined({gap(), u"[", predicate(nesting + 1), u"]"});
        predicates = dice.chance(25) ? 1 : 0;
    }
    return text;
}

Text RandomPaths::axisAndTest() {
    const int choice = dice.below(100);
    if (choice < 5) return u".";
    if (choice < 13) return u"..";
    if (choice < 22) return joined({u"@", gap(), attributeTest()});
    if (choice < 25) return joined({u"attribute", gap(), u"::", attributeTest()});
    if (choice < 55) return joined({dice.pick(kAxes), gap(), u"::", gap(), elementTest()});
    return elementTest();
}

Text RandomPaths::elementTest() { return dice.chance(7) ? dice.pick(kRareElementTests) : dice.pick(kElementTests); }

Text RandomPaths::attributeTest() {
    return dice.chance(10) ? dice.pick(kRareAttributeTests) : dice.pick(kAttributeTests);
}

Text RandomPaths::predicate(int nesting) {
    const int choice = dice.below(100);
    if (choice < 14) return joined({gap(), u"@", attributeTest(), gap()});
    if (choice < 24) return joined({u"@", attributeTest(), binaryOperator(), (dice.chance(50) ? number() : literal())});
    if (choice < 40) return joined({u"position()", binaryOperator(), (dice.chance(80) ? number() : Text(u"last()"))});
    if (choice < 50) return joined({gap(), u"last()", gap()});
    if (choice < 60) return joined({elementTest(), binaryOperator(), (dice.chance(30) ? number() : literal())});
    if (choice < 66) return joined({u".", binaryOperator(), (dice.chance(30) ? number() : literal())});
    if (choice < 71) return joined({path(nesting, dice.chance(10)), binaryOperator(), path(nesting, dice.chance(25))});
    if (choice < 75) return calculation();
    return joined({gap(), expression(nesting), gap()});
}

Text RandomPaths::number() { return dice.chance(75) ? dice.pick(kNumbers).substr(0, 1) : dice.pick(kNumbers); }

Text RandomPaths::literal() {
    const Text& quote = dice.pick(kQuotes);
    return joined({quote, dice.pick(kLiterals), quote});
}

Text RandomPaths::binaryOperator() { return joined({gap(), dice.pick(kOperators), gap()}); }

Text RandomPaths::gap() { return spacious && dice.chance(30) ? dice.pick(kGaps) : Text(); }

}  // namespace Xml::test
