// The path engine: answers, results with their order, kinds and tags, and errors must be those of the naive evaluator.
//
// Input: lines of operations, each a letter and what it takes: "V path" GetValues, "F path" FindNodes, "S path"
// SyntaxOK, "T path" GetValue by path with a word's number from its first digit, "I digits" GetValue by index and word,
// "C digit" a new query from another context node, "K digit" another of the fixed trees. A line that begins with "<"
// begins a document, to the end of the input, whose tree is asked instead of the fixed ones. Paths are UTF-8; a byte
// 0xFF and two more are a 16-bit unit.
#include "fuzz/Input.h"
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "models/NaiveXPath.h"
#include "orvsys/Uni16.h"
#include "support/Messages.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace Xml::fuzz {
namespace {

using test::NaiveXPath;
using Text = OrvSys::Uni16String;

constexpr std::size_t kLongestDocument = 600;

const char* const kFixedTrees[] = {
    "<a n='1'><b n='2' m='x'>1</b><a n='3'><c>x y</c><b/></a><p:a p:n='2.5'>2<b>10</b>z</p:a></a>",
    "<a n='1'><a n='2'><a><a n='x y'>1</a>t</a></a></a>",
    "<!DOCTYPE a [<!ENTITY e 'v'><!ELEMENT a ANY>]><a><b>&e;&amp;</b><b n=''> 3.0 </b><b n='-1'/><_>\xC3\xA9</_></a>",
    "<a/>",
};

void collectNodes(Object* node, std::vector<Object*>& nodes) {
    nodes.push_back(node);
    if (!node->isElement()) return;
    Element& element = *node->toElement();
    for (int i = 0; i < element.getAttributeCount(); ++i) nodes.push_back(element.getAttribute(i));
    for (int i = 0; i < element.getChildCount(); ++i) collectNodes(element.getChild(i), nodes);
}

// A document with its nodes, the document first.
struct Tree {
    explicit Tree(std::unique_ptr<Document> made) : document(std::move(made)) {
        nodes.push_back(document.get());
        if (document->getRoot() != nullptr) collectNodes(document->getRoot(), nodes);
    }

    std::unique_ptr<Document> document;
    std::vector<Object*> nodes;
};

const std::vector<std::unique_ptr<Tree>>& fixedTrees() {
    static const std::vector<std::unique_ptr<Tree>> trees = [] {
        std::vector<std::unique_ptr<Tree>> made;
        for (const char* text : kFixedTrees) {
            made.push_back(std::make_unique<Tree>(test::readDocument(text).document));
        }
        return made;
    }();
    return trees;
}

struct Script {
    std::vector<std::string> lines;
    std::string document;
};

Script scriptOf(const std::string& input) {
    Script script;
    for (std::size_t at = 0; at < input.size();) {
        if (input[at] == '<') {
            script.document = input.substr(at);
            break;
        }
        const std::size_t end = std::min(input.find('\n', at), input.size());
        script.lines.push_back(input.substr(at, end - at));
        at = end + 1;
    }
    return script;
}

Text pathOf(const std::string& line) {
    Text path;
    std::string bytes;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\xFF' && i + 2 < line.size()) {
            path += OrvSys::UTF8ToUni16Char(bytes);
            bytes.clear();
            const unsigned high = static_cast<unsigned char>(line[i + 1]);
            const unsigned low = static_cast<unsigned char>(line[i + 2]);
            path += static_cast<OrvSys::uni16char>(high << 8 | low);
            i += 2;
        } else {
            bytes += line[i];
        }
    }
    return path + OrvSys::UTF8ToUni16Char(bytes);
}

// Whether arithmetic could ask for more than the 16 million values that the library makes at once: one of each pair, so
// each operator takes the number of nodes once more, and there may be as many context nodes. "d" is one of "div" or
// "mod".
bool mayBeRefused(const Text& path, std::size_t nodeCount) {
    const auto operators = std::count_if(
        path.begin(), path.end(), [](OrvSys::uni16char c) { return c == u'*' || c == u'+' || c == u'-' || c == u'd'; });
    return std::pow(static_cast<double>(nodeCount), static_cast<double>(operators + 2)) > 16e6;
}

// The naive evaluator asks a predicate again for each node, and so the predicates in it: nodes to the power of the
// nesting.
bool isAffordable(const Text& path, std::size_t nodeCount) {
    double steps = static_cast<double>(path.size() + 1);
    int depth = 0;
    int deepest = 0;
    for (const OrvSys::uni16char c : path) {
        if (c == u'[') deepest = std::max(deepest, ++depth);
        if (c == u']') --depth;
        if (c == u'/') steps += static_cast<double>(nodeCount);
    }
    return steps * std::pow(static_cast<double>(nodeCount), deepest + 1) < 2e6;
}

unsigned countOf(const NaiveXPath& query) { return static_cast<unsigned>(query.results.size()); }
unsigned countOf(const XPath& query) { return query.GetNrOfResults(); }
const NaiveXPath::Item& resultOf(const NaiveXPath& query, unsigned index) { return query.results[index]; }
const XPath::ResultItem& resultOf(const XPath& query, unsigned index) { return query.GetResult(index); }

std::string shown(const Text& text) {
    // A number that is none may be printed with a sign, for which there is no rule.
    if (text == u"-nan") return "nan";
    std::string result;
    for (const OrvSys::uni16char c : text) {
        if (c >= ' ' && c <= '~') {
            result += static_cast<char>(c);
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\u%04X", static_cast<unsigned>(c));
            result += hex;
        }
    }
    return result;
}

template <class Query>
std::string stateOf(Query& query, const Tree& tree) {
    std::string state = "code " + std::to_string(static_cast<int>(query.GetErrorCode())) + " " +
                        shown(query.GetErrorString()) + ", results: " + std::to_string(countOf(query));
    for (unsigned i = 0; i < countOf(query); ++i) {
        const auto& item = resultOf(query, i);
        char number[32] = "nan";
        if (!std::isnan(item.number)) std::snprintf(number, sizeof number, "%a", item.number);
        std::string node = "none";
        for (std::size_t k = 0; k < tree.nodes.size(); ++k) {
            if (tree.nodes[k] == item.node) node = std::to_string(k) + " " + test::dump(item.node);
        }
        state += "\n    tag " + std::to_string(item.contextTag) + " kind " +
                 std::to_string(static_cast<int>(item.kind)) + " node " + node + " string " + shown(item.string) +
                 " number " + number + (item.boolean ? " true" : " false");
    }
    return state;
}

int digitOf(const std::string& line, std::size_t which) {
    for (const char c : line) {
        if (c >= '0' && c <= '9' && which-- == 0) return c - '0';
    }
    return -1;
}

template <class Query>
std::string answer(Query& query, char operation, const std::string& rest, const Text& path) {
    switch (operation) {
    case 'V': return std::to_string(query.GetValues(path));
    case 'F': return query.FindNodes(path) ? "true" : "false";
    case 'S': return query.SyntaxOK(path) ? "true" : "false";
    case 'T': return shown(query.GetValue(path, digitOf(rest, 0)));
    case 'I': return shown(query.GetValue(static_cast<unsigned>(digitOf(rest, 0)), digitOf(rest, 1)));
    default: return "";
    }
}

// Both evaluators, standing where the operations before left them. Where one operation costs the naive one too much, or
// is refused, only the library goes on, to see that it ends, until a new query begins.
class Queries {
public:
    explicit Queries(const Tree& asked) : tree(asked) { begin(0); }

    void begin(std::size_t context) {
        Object* const node = tree.nodes[context % tree.nodes.size()];
        real = std::make_unique<XPath>(node);
        naive = std::make_unique<NaiveXPath>(node);
    }

    void run(char operation, const std::string& rest) {
        const Text path = operation == 'I' ? Text() : pathOf(rest);
        std::string actual = answer(*real, operation, rest, path);
        if (naive != nullptr && real->GetErrorCode() == XPath::EXPRESSION_TOO_COSTLY) {
            expectTrue("only arithmetic is refused", mayBeRefused(path, tree.nodes.size()), rest);
            naive.reset();
        }
        if (!isAffordable(path, tree.nodes.size())) naive.reset();
        if (naive == nullptr) return;
        std::string expected = answer(*naive, operation, rest, path);
        actual += ", " + stateOf(*real, tree);
        expected += ", " + stateOf(*naive, tree);
        expectSame(std::string(1, operation) + " " + rest + " answers as the naive evaluator", expected, actual);
    }

private:
    const Tree& tree;
    std::unique_ptr<XPath> real;
    std::unique_ptr<NaiveXPath> naive;
};

}  // namespace

const std::size_t kLongestInput = 4096;

void check(const std::string& input) {
    const test::MessageCollector quiet;
    const Script script = scriptOf(input);
    std::unique_ptr<Tree> own;
    if (!script.document.empty() && script.document.size() <= kLongestDocument) {
        std::unique_ptr<Document> document = test::readDocument(script.document).document;
        if (document != nullptr) own = std::make_unique<Tree>(std::move(document));
    }
    const Tree* tree = own != nullptr ? own.get() : fixedTrees()[0].get();
    auto queries = std::make_unique<Queries>(*tree);
    for (const std::string& line : script.lines) {
        const char operation = line.empty() ? ' ' : line[0];
        const std::string rest = line.substr(std::min<std::size_t>(line.size(), 2));
        const auto digit = static_cast<std::size_t>(std::max(digitOf(rest, 0), 0));
        if (operation == 'C') {
            queries->begin(digit);
        } else if (operation == 'K' && own == nullptr) {
            tree = fixedTrees()[digit % fixedTrees().size()].get();
            queries = std::make_unique<Queries>(*tree);
        } else {
            queries->run(operation, rest);
        }
    }
}

}  // namespace Xml::fuzz
