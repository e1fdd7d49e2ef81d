// What paths find, beside what libxml2's XPath 1.0 finds in the same tree, as sets of nodes: over random trees and over
// the seven documents. The two languages differ, so each path is paired with the one of equal meaning over there; where
// there is none the difference stands in a table of its own.
//
// Left out of the random paths: the following axis, which ends with the parent here; the preceding axis from attributes
// and from the document, which has everything here; the text of elements, which is that of their first text here.
#include "orvsys/Uni16.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Sources.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include <algorithm>
#include <cctype>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Xml::test {

namespace {

// --- Both trees of one text ---

struct Free {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
    void operator()(xmlParserCtxt* context) const { xmlFreeParserCtxt(context); }
    void operator()(xmlXPathContext* context) const { xmlXPathFreeContext(context); }
    void operator()(xmlXPathObject* object) const { xmlXPathFreeObject(object); }
};
template <class T>
using Owned = std::unique_ptr<T, Free>;

std::string textOf(const xmlChar* text) { return text == nullptr ? "" : reinterpret_cast<const char*>(text); }

std::string nameOf(const xmlNode* node) {
    const std::string prefix = node->ns != nullptr ? textOf(node->ns->prefix) : "";
    return (prefix.empty() ? "" : prefix + ":") + textOf(node->name);
}

// Tabs and line breaks in values become blanks over there.
std::string withBlanks(std::string text) {
    for (char& c : text)
        if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    return text;
}

bool isBlank(const std::string& text) { return text.find_first_not_of(" \t\r\n") == std::string::npos; }

// A document as both libraries hold it. Nodes are known by a number, the same for both: the document is 0, an element
// comes before its attributes, in the order of their names, and these before its children.
class Pair {
public:
    explicit Pair(const std::string& text) : ours(readDocument(text)) {
        if (!ours.ok) {
            disagreement_ = "not read: " + ours.error;
            return;
        }
        const Owned<xmlParserCtxt> parser(xmlNewParserCtxt());
        parser->sax->comment = nullptr;
        parser->sax->processingInstruction = nullptr;
        theirs.reset(xmlCtxtReadMemory(parser.get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                                       XML_PARSE_HUGE | XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_NOCDATA |
                                           XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
        if (!theirs) {
            disagreement_ = "not read by libxml2";
            return;
        }
        context.reset(xmlXPathNewContext(theirs.get()));
        number(ours.document.get(), reinterpret_cast<xmlNode*>(theirs.get()));
        addElement(*ours.document->getRoot(), xmlDocGetRootElement(theirs.get()));
    }

    // Where the trees differ, so that nothing can be compared; empty where they do not.
    const std::string& disagreement() const { return disagreement_; }

    // Makes libxml2 sort nodes in a moment. The order is wrong then where text stands beside elements, so no place in a
    // sorted list may be asked for.
    void numberElementsForLibXml2() { xmlXPathOrderDocElems(theirs.get()); }

    std::size_t size() const { return nodes.size(); }
    Object* node(std::size_t i) const { return nodes[i].first; }

    using Numbers = std::vector<std::size_t>;

    // What our path finds from that node, in rising order. No path here may fail.
    Numbers find(const std::string& path, std::size_t from) const {
        XPath query(nodes[from].first);
        if (!query.FindNodes(OrvSys::UTF8ToUni16Char(path)))
            ADD_FAILURE() << path << ": " << OrvSys::Uni16CharToPlatformCString(query.GetErrorString());
        Numbers found;
        for (unsigned i = 0; i < query.GetNrOfResults(); ++i) found.push_back(ourNumbers.at(query.GetResult(i).node));
        std::sort(found.begin(), found.end());
        EXPECT_EQ(std::adjacent_find(found.begin(), found.end()), found.end()) << path << " finds a node twice";
        return found;
    }

    Numbers findTheirs(const std::string& path, std::size_t from) const {
        context->node = nodes[from].second;
        const Owned<xmlXPathObject> object(
            xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(path.c_str()), context.get()));
        Numbers found;
        if (!object || object->type != XPATH_NODESET) {
            ADD_FAILURE() << "libxml2 cannot read " << path;
            return found;
        }
        const xmlNodeSet* set = object->nodesetval;
        for (int i = 0; set != nullptr && i < set->nodeNr; ++i) found.push_back(theirNumbers.at(set->nodeTab[i]));
        std::sort(found.begin(), found.end());
        return found;
    }

private:
    void number(Object* our, xmlNode* their) {
        ourNumbers[our] = nodes.size();
        theirNumbers[their] = nodes.size();
        nodes.emplace_back(our, their);
    }
    bool same(const std::string& our, const std::string& their, const std::string& what) {
        if (our == their) return true;
        if (disagreement_.empty())
            disagreement_ = what + ": '" + our.substr(0, 100) + "', libxml2 has '" + their.substr(0, 100) + "'";
        return false;
    }
    bool addAttributes(Element& our, xmlNode* their) {
        std::map<std::string, xmlAttr*> attributes;
        for (xmlAttr* a = their->properties; a != nullptr; a = a->next)
            attributes[nameOf(reinterpret_cast<xmlNode*>(a))] = a;
        if (!same(std::to_string(our.getAttributeCount()), std::to_string(attributes.size()),
                  "attributes of " + our.getName()))
            return false;
        int i = 0;
        for (const auto& [name, attribute] : attributes) {
            Attribute* ourAttribute = our.getAttribute(i++);
            xmlChar* value = xmlNodeListGetString(theirs.get(), attribute->children, 1);
            const std::string theirValue = textOf(value);
            xmlFree(value);
            if (!same(ourAttribute->getName(), name, "attribute") ||
                !same(withBlanks(ourAttribute->getValue()), withBlanks(theirValue), "value of " + name))
                return false;
            number(ourAttribute, reinterpret_cast<xmlNode*>(attribute));
        }
        return true;
    }

    // The documents are not deep.
    bool addElement(Element& our, xmlNode* their) {
        if (!same(our.getName(), nameOf(their), "element")) return false;
        number(&our, their);
        if (!addAttributes(our, their)) return false;
        int i = 0;
        for (xmlNode *child = their->children, *next; child != nullptr; child = next) {
            next = child->next;
            if (child->type == XML_TEXT_NODE && isBlank(textOf(child->content))) {
                xmlUnlinkNode(child);
                xmlFreeNode(child);
                continue;
            }
            Object* ourChild = our.getChild(i++);
            if (ourChild == nullptr) return same("nothing", nameOf(child), "child of " + our.getName());
            if (child->type == XML_TEXT_NODE) {
                if (!same(ourChild->isCharData() ? ourChild->toCharData()->getData() : "an element",
                          textOf(child->content), "text in " + our.getName()))
                    return false;
                number(ourChild, child);
            } else if (!ourChild->isElement()) {
                return same(dump(ourChild), nameOf(child), "child of " + our.getName());
            } else if (!addElement(*ourChild->toElement(), child)) {
                return false;
            }
        }
        return same(std::to_string(our.getChildCount()), std::to_string(i), "children of " + our.getName());
    }

    Outcome ours;
    Owned<xmlDoc> theirs;
    Owned<xmlXPathContext> context;
    std::string disagreement_;
    std::vector<std::pair<Object*, xmlNode*>> nodes;
    std::unordered_map<const Object*, std::size_t> ourNumbers;
    std::unordered_map<const xmlNode*, std::size_t> theirNumbers;
};

// --- Paths in pairs ---

// Both texts of one meaning.
struct Both {
    std::string ours;
    std::string theirs;

    Both() = default;
    Both(const char* text) : ours(text), theirs(text) {}
    Both(const std::string& text) : ours(text), theirs(text) {}
    Both(std::string our, std::string their) : ours(std::move(our)), theirs(std::move(their)) {}

    Both& operator+=(const Both& other) {
        ours += other.ours;
        theirs += other.theirs;
        return *this;
    }
};

Both operator+(Both a, const Both& b) { return a += b; }

// A keyword of a kind test, or a function, stands before a name in our language.
bool hasOneMeaning(const std::string& name) {
    for (const char* keyword : {"node", "element", "attribute", "text", "document-node", "position", "last"})
        if (name.rfind(keyword, 0) == 0) return false;
    return true;
}

// What may be asked of a tree: names and values as often as they occur.
struct Words {
    std::vector<std::string> elements;
    std::vector<std::string> attributes;
    std::vector<std::string> numericAttributes;               // every value of each is a number
    std::vector<std::pair<std::string, std::string>> values;  // of attributes, by name
    std::vector<std::string> texts;
    bool sortedAttributes = true;  // whether they stand in the order of their names in the text
};

Words wordsOf(const Pair& pair) {
    Words words;
    std::map<std::string, bool> numeric;
    const auto quotable = [](const std::string& text) {
        return text.size() < 60 && text.find_first_of("'\t\r\n") == std::string::npos;
    };
    for (std::size_t i = 1; i < pair.size(); ++i) {
        Object* node = pair.node(i);
        if (node->isElement()) {
            const std::string& name = node->toElement()->getName();
            if (hasOneMeaning(name)) words.elements.push_back(name);
        } else if (node->isAttribute()) {
            const std::string& name = node->toAttribute()->getName();
            const std::string& value = node->toAttribute()->getValue();
            if (!hasOneMeaning(name)) continue;
            words.attributes.push_back(name);
            if (quotable(value)) words.values.emplace_back(name, value);
            const bool isNumber =
                !value.empty() && value.size() < 10 && value.find_first_not_of("0123456789") == std::string::npos;
            const auto known = numeric.emplace(name, isNumber).first;
            known->second = known->second && isNumber;
        } else if (const std::string text = node->toCharData()->getData(); quotable(text)) {
            words.texts.push_back(text);
        }
    }
    for (const auto& [name, isNumeric] : numeric)
        if (isNumeric) words.numericAttributes.push_back(name);
    return words;
}

enum Axis {
    Child,
    AttributeAxis,
    Self,
    Parent,
    Ancestor,
    AncestorOrSelf,
    Descendant,
    DescendantOrSelf,
    FollowingSibling,
    PrecedingSibling,
    Preceding,
    AxisCount
};

constexpr const char* kAxisNames[] = {"child",
                                      "attribute",
                                      "self",
                                      "parent",
                                      "ancestor",
                                      "ancestor-or-self",
                                      "descendant",
                                      "descendant-or-self",
                                      "following-sibling",
                                      "preceding-sibling",
                                      "preceding"};
static_assert(std::size(kAxisNames) == AxisCount);

bool isReverse(Axis axis) {
    return axis == Parent || axis == Ancestor || axis == AncestorOrSelf || axis == PrecedingSibling ||
           axis == Preceding;
}

// Makes paths at random, in pairs.
class PathMaker {
public:
    // `sizeOf` says how many nodes our path finds so far: a step that finds nothing is mostly tried anew. Of a large
    // tree libxml2 is asked only what it answers in a moment, which depends on the number of context nodes.
    PathMaker(const Words& w, bool isLarge, std::mt19937& r, std::function<std::size_t(const std::string&)> s)
        : words(w), large(isLarge), random(r), sizeOf(std::move(s)) {}

    // A path from a node of that kind; from any other it may be of unlike meaning.
    Both path(const Object& from) {
        Both path;
        State state;
        state.attributes = from.isAttribute();
        state.documents = from.isDocument();
        if (oneIn(3)) {
            state = State();
            state.documents = true;
            path = "/";
            if (oneIn(2)) {
                path = "//";
                deepen(state);
            }
        }
        const unsigned steps = 1 + below(4);
        for (unsigned i = 0; i < steps; ++i) {
            if (i > 0) {
                path += "/";
                if (!state.many && (!large || state.disjoint) && oneIn(6)) {
                    path += "/";
                    deepen(state);
                }
            }
            const Both pathBefore = path;
            const State stateBefore = state;
            std::size_t found = 0;
            for (int attempt = 0; attempt < 4 && found == 0; ++attempt) {
                path = pathBefore;
                state = stateBefore;
                addStep(path, state);
                found = sizeOf(path.ours);
            }
            state.many = large && found > 200;
        }
        return path;
    }

private:
    // What is known of the nodes that a path leads to so far.
    struct State {
        bool attributes = false;  // there may be attributes among them
        bool documents = false;   // there may be the document among them
        bool single = true;       // there is at most one
        bool ordered = true;      // they are in document order
        bool disjoint = true;     // none is above another
        bool many = false;
    };

    unsigned below(std::size_t n) {
        return std::uniform_int_distribution<unsigned>(0, static_cast<unsigned>(n) - 1)(random);
    }
    bool oneIn(unsigned n) { return below(n) == 0; }
    template <class T>
    const T& any(const std::vector<T>& list) {
        return list[below(list.size())];
    }

    void deepen(State& state) const {
        state.many = large;
        state.single = false;
        state.disjoint = false;
    }

    // A name test for elements or attributes. Names with a colon have no prefix that libxml2 knows.
    Both named(const std::string& name) {
        const std::size_t colon = name.find(':');
        if (colon == std::string::npos) return name;
        if (oneIn(3))
            return {name.substr(0, colon) + ":*", "*[starts-with(name(), '" + name.substr(0, colon + 1) + "')]"};
        if (oneIn(2))
            return {"*:" + name.substr(colon + 1),
                    "*[substring-after(name(), ':') = '" + name.substr(colon + 1) + "']"};
        return {name, "*[name() = '" + name + "']"};
    }

    // A node test; says whether the document may pass it.
    Both nodeTest(Axis axis, const State& before, bool& passesDocument) {
        passesDocument = false;
        if (axis == AttributeAxis) {
            switch (below(8)) {
            case 0: return "*";
            case 1: return "node()";
            case 2: return {"attribute()", "*"};
            case 3: return words.attributes.empty() ? Both("*") : kind("attribute", named(any(words.attributes)));
            default: return words.attributes.empty() ? Both("*") : named(any(words.attributes));
            }
        }
        switch (below(10)) {
        case 0:
        case 1: passesDocument = true; return {"*", "node()"};
        case 2: passesDocument = true; return "node()";
        case 3: return {"element()", "*"};
        case 4: return kind("element", named(any(words.elements)));
        case 5: return "text()";
        case 6:
            if (axis == Ancestor || axis == AncestorOrSelf || axis == Self || axis == Parent) {
                passesDocument = true;
                return {"document-node()", "node()[not(parent::node())]"};
            }
            break;
        default: break;
        }
        // Names of attributes are names on any axis here.
        const bool selves = axis == Self || axis == AncestorOrSelf || axis == DescendantOrSelf;
        const Both test = named(any(words.elements));
        return before.attributes && selves ? kind("element", test) : test;
    }
    static Both kind(const char* keyword, const Both& test) { return {keyword + ("(" + test.ours + ")"), test.theirs}; }

    void addStep(Both& path, State& state) {
        if (large && !state.single) {
            const Axis kCheap[] = {Child, AttributeAxis, Self, Parent, Ancestor, AncestorOrSelf};
            return addStep(path, state, kCheap[below(state.many ? 3 : std::size(kCheap))]);
        }
        if (oneIn(12) || (state.attributes && oneIn(3))) {
            path += "..";
            return move(state, Parent, true);
        }
        if (oneIn(12)) {
            // After two slashes libxml2 takes the dot for something else.
            path += path.ours.size() > 1 && path.ours.compare(path.ours.size() - 2, 2, "//") == 0
                        ? Both(".", "self::node()")
                        : Both(".");
            return;
        }
        Axis axis = oneIn(3) ? Child : static_cast<Axis>(below(AxisCount));
        if (axis == Preceding && (state.attributes || state.documents)) axis = Descendant;
        addStep(path, state, axis);
    }

    void addStep(Both& path, State& state, Axis axis) {
        bool passesDocument = false;
        const Both test = nodeTest(axis, state, passesDocument);
        const State before = state;
        if (axis == Child && oneIn(2)) {
            path += test;
        } else if (axis == AttributeAxis && oneIn(2)) {
            path += Both("@") + test;
        } else {
            path += Both(std::string(kAxisNames[axis]) + "::") + test;
        }
        move(state, axis, passesDocument);
        const bool oneName = test.ours.find('*') == std::string::npos && test.ours.find("()") == std::string::npos;
        if (axis == AttributeAxis) state.single = before.single && oneName;

        // Places are those in the step's whole list. Over there this is so for one context node, and else in
        // parentheses, which put the nodes into document order.
        bool first = true;
        for (unsigned i = 0; i < 2 && oneIn(3); ++i) {
            const bool placeable = (axis != AttributeAxis || words.sortedAttributes);
            if (placeable && before.single && (first || !isReverse(axis)) && oneIn(2)) {
                path += Both("[") + place(!isReverse(axis)) + "]";
            } else if (placeable && !large && state.ordered && !isReverse(axis) && oneIn(2)) {
                path.theirs = "(" + path.theirs + ")";
                path += Both("[") + place(true) + "]";
            } else {
                path += Both("[") + condition(state) + "]";
            }
            first = false;
        }
    }

    // Where an axis leads from such nodes to nodes that pass a test.
    static void move(State& state, Axis axis, bool passesDocument) {
        const State before = state;
        if (axis == Self) {
            state.documents = before.documents && passesDocument;
            return;
        }
        state.single = before.single && axis == Parent;
        state.attributes =
            axis == AttributeAxis || (before.attributes && (axis == AncestorOrSelf || axis == DescendantOrSelf));
        state.documents = passesDocument && (axis == Parent || axis == Ancestor || axis == AncestorOrSelf ||
                                             (before.documents && axis == DescendantOrSelf));
        switch (axis) {
        case Child:
            state.ordered = before.ordered && before.disjoint;
            state.disjoint = before.disjoint;
            break;
        case AttributeAxis:
            state.ordered = before.ordered;
            state.disjoint = true;
            break;
        case Descendant:
        case DescendantOrSelf:
            state.ordered = before.ordered;
            state.disjoint = false;
            break;
        default:
            state.ordered = before.single;
            state.disjoint = before.single && (axis == Parent || axis == FollowingSibling || axis == PrecedingSibling);
            break;
        }
    }

    Both place(bool forwards) {
        const std::string k = std::to_string(1 + below(4));
        switch (below(forwards ? 9u : 8u)) {
        case 0: return "last()";
        case 1: return "position() > " + k;
        case 2: return "position() < " + k;
        case 3: return "position() != " + k;
        case 4: return k + " >= position()";
        case 5: return "position() + 1 = " + k;
        case 6: return "position() * 2 = " + std::to_string(2 + 2 * below(3));
        case 7: return {"position() eq " + k, "position() = " + k};
        default: return "position() = last()";
        }
    }

    Both compare(const Both& left, const Both& right) {
        static const char* const kWords[] = {" lt ", " le ", " eq ", " ge ", " gt "};
        static const char* const kSigns[] = {"<", "<=", "=", ">=", ">"};
        const unsigned i = below(5);
        const Both sign(oneIn(4) ? kWords[i] : oneIn(2) ? kSigns[i] : std::string(" ") + kSigns[i] + " ", kSigns[i]);
        return left + sign + right;
    }

    // Whether nodes such as these have something, wherever they stand.
    Both condition(const State& state) {
        const std::string number = std::to_string(below(6));
        switch (below(state.many ? 8u : 12u)) {
        case 0:
        case 1: {
            if (words.values.empty()) break;
            const auto& [name, value] = any(words.values);
            const Both attribute = Both("@") + named(name);
            const Both literal = oneIn(2)                               ? "'" + value + "'"
                                 : value.find('"') == std::string::npos ? "\"" + value + "\""
                                                                        : "'" + value + "'";
            const Both sign = oneIn(4) ? Both("!=") : oneIn(2) ? Both("=") : Both(" eq ", "=");
            return oneIn(3) ? literal + sign + attribute : attribute + sign + literal;
        }
        case 2:
        case 3: {
            if (words.numericAttributes.empty()) break;
            const Both attribute = Both("@") + any(words.numericAttributes);
            if (attribute.ours.find(':') != std::string::npos) break;
            const Both changed = oneIn(2) ? attribute
                                          : attribute + Both(oneIn(2)   ? " + 1"
                                                             : oneIn(2) ? " * 2"
                                                                        : " div 2");
            return oneIn(3) ? compare(number, changed) : compare(changed, number);
        }
        case 4: return words.attributes.empty() ? Both("node()") : Both("@") + named(any(words.attributes));
        case 5: return named(any(words.elements));
        case 6:
            if (words.texts.empty()) break;
            return Both(oneIn(2) ? "text() = " : "text()!=") + Both("'" + any(words.texts) + "'");
        case 7: return Both("../") + (oneIn(2) ? named(any(words.elements)) : Both("@*"));
        case 8: {
            // The root's attribute is one value for all.
            if (words.attributes.empty()) break;
            const std::string& name = any(words.attributes);
            if (name.find(':') != std::string::npos) break;
            const Both ofRoot("/*/@" + name);
            return oneIn(2) ? ofRoot + "=" + Both("@" + name) : Both("@" + name) + "=" + ofRoot;
        }
        case 9:
            if (words.attributes.empty()) break;
            return Both("@") + named(any(words.attributes)) + Both(oneIn(2) ? "=" : "!=") + "../@*";
        default: break;
        }
        if (state.many) return Both("node()");
        // A path of its own, from each node alone.
        Both path;
        State inner = state;
        inner.ordered = inner.disjoint = true;
        inner.single = !large || state.single;  // from many nodes some axes would take their time
        const unsigned steps = large ? 1 : 1 + below(2);
        if (oneIn(4)) {
            path = ".//";
            deepen(inner);
        }
        for (unsigned i = 0; i < steps; ++i) {
            if (i > 0) path += "/";
            addStep(path, inner);
        }
        return path;
    }

    const Words& words;
    bool large;
    std::mt19937& random;
    std::function<std::size_t(const std::string&)> sizeOf;
};

// --- Comparisons ---

// How many pairs of paths were compared and how many of them found something.
struct Tally {
    std::size_t compared = 0;
    std::size_t found = 0;
    std::size_t different = 0;
};

void compare(const Pair& pair, const Both& path, std::size_t from, Tally& tally) {
    const auto ours = pair.find(path.ours, from);
    ++tally.compared;
    if (!ours.empty()) ++tally.found;
    if (ours == pair.findTheirs(path.theirs, from)) return;
    if (++tally.different > 10) return;
    ADD_FAILURE() << path.ours << "\nand over there " << path.theirs << "\nfrom node " << from << ": "
                  << dump(pair.node(from)).substr(0, 200) << "\n finds   " << ::testing::PrintToString(ours)
                  << "\nand not " << ::testing::PrintToString(pair.findTheirs(path.theirs, from));
}

// A tree of up to so many elements. Names of elements and attributes have nothing in common; @n is a number.
std::string randomText(std::mt19937& random, unsigned elements) {
    const auto below = [&random](unsigned n) { return std::uniform_int_distribution<unsigned>(0, n - 1)(random); };
    const auto letter = [&below](const char* letters, unsigned n) { return std::string(1, letters[below(n)]); };
    const auto startTag = [&] {
        std::string tag = letter("abcd", 4);
        if (below(2) == 0) tag += " id='" + letter("uvw", 3) + "'";
        if (below(2) == 0) tag += " k='" + letter("uvw", 3) + "'";
        if (below(2) == 0) tag += " n='" + std::to_string(below(6)) + "'";
        return tag;
    };
    std::vector<std::string> open;
    std::string text = "<";
    const std::string root = startTag();
    text += root + ">";
    open.push_back(root.substr(0, 1));
    bool afterText = false;
    for (unsigned made = 1; made < elements && !open.empty();) {
        const unsigned choice = below(8);
        if (choice < 3) {
            const std::string tag = startTag();
            text += "<" + tag + ">";
            open.push_back(tag.substr(0, 1));
            ++made;
            afterText = false;
        } else if (choice == 3) {
            text += "<" + startTag() + "/>";
            ++made;
            afterText = false;
        } else if (choice == 4 && !afterText) {
            text += letter("uvw1", 4);
            afterText = true;
        } else if (open.size() > 1) {
            text += "</" + open.back() + ">";
            open.pop_back();
            afterText = false;
        }
    }
    for (; !open.empty(); open.pop_back()) text += "</" + open.back() + ">";
    return text;
}

TEST(LibXml2PathsTest, FindTheSameNodesInRandomTrees) {
    std::mt19937 random(20240607);
    Tally tally;
    for (int i = 0; i < rounds(800) && tally.different <= 10; ++i) {
        const Pair pair(randomText(random, 2 + static_cast<unsigned>(random() % 40)));
        ASSERT_EQ(pair.disagreement(), "");
        const Words words = wordsOf(pair);
        std::size_t from = 0;
        PathMaker maker(words, false, random, [&](const std::string& path) { return pair.find(path, from).size(); });
        for (int j = 0; j < 60; ++j) {
            from = random() % pair.size();
            compare(pair, maker.path(*pair.node(from)), from, tally);
        }
    }
    EXPECT_EQ(tally.different, 0u);
    EXPECT_EQ(tally.compared, static_cast<std::size_t>(rounds(800)) * 60);
    EXPECT_GT(tally.found, tally.compared * 2 / 5) << "too many paths find nothing";
    RecordProperty("found", std::to_string(tally.found));
}

std::string shortOf(const Object* node) {
    if (node->isElement()) return node->toElement()->getAttributeValue("i");
    return node->isDocument() ? "/" : dump(node);
}

TEST(LibXml2PathsTest, DifferWhereTheyAreMeantTo) {
    const Pair pair(
        "<r i='r' k='r'>"
        "<a i='a1' k='10'><b i='b1'>x<c i='c1'/>y</b><b i='b2'/></a>"
        "<a i='a2' k='9'><b i='b3'/></a>t"
        "</r>");
    ASSERT_EQ(pair.disagreement(), "");
    struct Case {
        const char* name;
        const char* ours;
        const char* theirs;
        const char* weFind;
        const char* theyFind;
    } const kCases[] = {
        {"a star is any node", "/r/*", "/r/*", "a1 a2 't'", "a1 a2"},
        {"a word is a kind of node", "/r/text", "/r/text", "'t'", ""},
        {"a name on the self axis names attributes too", "/r/@k/self::k", "/r/@k/self::k", "k=r", ""},
        {"a number alone keeps nothing", "/r/a[1]", "/r/a[1]", "", "a1"},
        {"nor does a truth", "/r/a[1 = 1]", "/r/a[1 = 1]", "", "a1 a2"},
        {"nor a path from the document", "/r/a[/r]", "/r/a[/r]", "", "a1 a2"},
        {"places are those in the step's whole list", "//b[position() = 1]", "//b[position() = 1]", "b1", "b1 b3"},
        {"so is the last", "/r/a/b[last()]", "/r/a/b[last()]", "b3", "b2 b3"},
        {"the number of nodes belongs to the last", "/r/a[last() = 2]", "/r/a[last() = 2]", "a2", "a1 a2"},
        {"only the first predicate counts backwards", "//c/ancestor::element()[*][position() = 1]",
         "//c/ancestor::*[*][position() = 1]", "r", "b1"},
        {"the highest place is not the last's backwards", "//c/ancestor::*[position() = last()]",
         "//c/ancestor::node()[position() = last()]", "", "/"},
        {"following ends with the parent", "//b[c]/following::*", "//b[c]/following::node()", "b2", "b2 a2 b3 't'"},
        {"preceding of an attribute is everything", "/r/a/@k[. = 9]/preceding::*", "/r/a/@k[. = 9]/preceding::node()",
         "a1 b1 'x' c1 'y' b2 b3 't'", "a1 b1 'x' c1 'y' b2"},
        {"preceding of the document is everything", "/preceding::*", "/preceding::node()",
         "a1 b1 'x' c1 'y' b2 a2 b3 't'", ""},
        {"the text of an element is its first", "//b[. = 'x']", "//b[. = 'x']", "b1", ""},
        {"and not all of it", "//b[. = 'xy']", "//b[. = 'xy']", "", "b1"},
        {"texts are ordered as texts", "/r/a[@k < '9']", "/r/a[@k < '9']", "a1", ""},
        {"nothing has no value", "/r/a[@zip + 1 != 5]", "/r/a[@zip + 1 != 5]", "", "a1 a2"},
    };
    const auto shown = [&pair](const Pair::Numbers& found) {
        std::string text;
        for (const std::size_t i : found) text += (text.empty() ? "" : " ") + shortOf(pair.node(i));
        return text;
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(shown(pair.find(c.ours, 0)), c.weFind);
        EXPECT_EQ(shown(pair.findTheirs(c.theirs, 0)), c.theyFind);
        EXPECT_STRNE(c.weFind, c.theyFind);
    }
}

class LibXml2DocumentPathsTest : public ::testing::TestWithParam<const char*> {};

TEST_P(LibXml2DocumentPathsTest, FindTheSameNodes) {
    // A declaration of a name space is an attribute like any other here and none over there, so both read another name.
    std::string text = documentText(GetParam());
    for (const std::string declaration : {" xmlns", "\nxmlns", "\txmlns"}) {
        for (std::size_t at = 0; (at = text.find(declaration, at)) != std::string::npos; at += 3) {
            text[at + 1] = 'd';
            if (text[at + declaration.size()] == ':') text[at + declaration.size()] = '-';
        }
    }
    const MessageCollector diagnostics;
    Pair pair(text);
    ASSERT_EQ(pair.disagreement(), "");
    pair.numberElementsForLibXml2();

    Words words = wordsOf(pair);
    words.sortedAttributes = false;
    std::mt19937 random(7);
    Tally tally;
    std::size_t from = 0;
    PathMaker maker(words, true, random, [&](const std::string& path) { return pair.find(path, from).size(); });
    for (int i = 0; i < rounds(300) && tally.different <= 10; ++i) {
        from = random() % 5 == 0 ? 0 : random() % pair.size();
        compare(pair, maker.path(*pair.node(from)), from, tally);
    }
    EXPECT_EQ(tally.different, 0u);
    EXPECT_EQ(tally.compared, static_cast<std::size_t>(rounds(300)));
    EXPECT_GT(tally.found, tally.compared * 2 / 5) << "too many paths find nothing";
    RecordProperty("found", std::to_string(tally.found));
}

std::string testName(const ::testing::TestParamInfo<const char*>& info) {
    std::string name;
    for (const char* c = info.param; *c != '\0'; ++c)
        name += std::isalnum(static_cast<unsigned char>(*c)) != 0 ? *c : '_';
    return name;
}
INSTANTIATE_TEST_SUITE_P(AllDocuments, LibXml2DocumentPathsTest, ::testing::ValuesIn(kDocuments), testName);

}  // namespace

}  // namespace Xml::test
