// The library's path engine beside the naive one: the same random queries over the same random trees, compared after
// each operation in everything that a caller sees. What is at stake is all that the engine does to be quick: it cuts a
// path once, reads a step when the walk reaches it, collects nodes without looking them up, and stops predicates early;
// it must find, number, report and keep what the plain rules do.
#include "models/NaiveXPath.h"
#include "support/Messages.h"
#include "support/Rounds.h"
#include "support/Trees.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/xpath/XPath.h"
#include "xpath/RandomPaths.h"
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

using Text = OrvSys::Uni16String;

// --- What is asked, and how a message says it ---

struct Operation {
    enum Kind { GetValues, FindNodes, SyntaxOK, GetValueByPath, GetValueByIndex };

    Kind kind = GetValues;
    Text path;
    unsigned index = 0;
    int token = -1;
};

using Script = std::vector<Operation>;

// As a C++ literal, near enough to be pasted.
std::string literalOf(const Text& text) {
    std::string result = "u\"";
    for (const OrvSys::uni16char c : text) {
        if (c >= ' ' && c <= '~' && c != '"' && c != '\\') {
            result += static_cast<char>(c);
        } else if (c == '"' || c == '\\') {
            result += std::string("\\") + static_cast<char>(c);
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\u%04X", static_cast<unsigned>(c));
            result += hex;
        }
    }
    return result + "\"";
}

std::string asCall(const Operation& operation) {
    switch (operation.kind) {
    case Operation::GetValues: return "GetValues(" + literalOf(operation.path) + ")";
    case Operation::FindNodes: return "FindNodes(" + literalOf(operation.path) + ")";
    case Operation::SyntaxOK: return "SyntaxOK(" + literalOf(operation.path) + ")";
    case Operation::GetValueByPath:
        return "GetValue(" + literalOf(operation.path) + ", " + std::to_string(operation.token) + ")";
    case Operation::GetValueByIndex:
        return "GetValue(" + std::to_string(operation.index) + ", " + std::to_string(operation.token) + ")";
    }
    return "";
}

// --- Both evaluators ---

unsigned countOf(const NaiveXPath& query) { return static_cast<unsigned>(query.results.size()); }
unsigned countOf(const XPath& query) { return query.GetNrOfResults(); }
const NaiveXPath::Item& resultOf(const NaiveXPath& query, unsigned index) { return query.results[index]; }
const XPath::ResultItem& resultOf(const XPath& query, unsigned index) { return query.GetResult(index); }

// A number that is none may be printed with a sign, which no rule tells.
Text withoutSignOfNan(const Text& text) { return text == u"-nan" ? Text(u"nan") : text; }

// What the operation answers.
template <class Query>
std::string answer(Query& query, const Operation& operation) {
    switch (operation.kind) {
    case Operation::GetValues: return std::to_string(query.GetValues(operation.path));
    case Operation::FindNodes: return query.FindNodes(operation.path) ? "true" : "false";
    case Operation::SyntaxOK: return query.SyntaxOK(operation.path) ? "true" : "false";
    case Operation::GetValueByPath: return literalOf(withoutSignOfNan(query.GetValue(operation.path, operation.token)));
    case Operation::GetValueByIndex:
        return literalOf(withoutSignOfNan(query.GetValue(operation.index, operation.token)));
    }
    return "";
}

template <class Query>
std::string state(Query& query, const RandomTree& tree) {
    std::string result = "code " + std::to_string(static_cast<int>(query.GetErrorCode())) + " " +
                         literalOf(query.GetErrorString()) + ", " + std::to_string(countOf(query)) + " results";
    for (unsigned i = 0; i < countOf(query); ++i) {
        const auto& item = resultOf(query, i);
        char number[32];
        std::snprintf(number, sizeof number, "%a", item.number);
        result += "\n    tag " + std::to_string(item.contextTag);
        switch (static_cast<int>(item.kind)) {
        case 0: result += ", node " + tree.placeOf(item.node); break;
        case 1: result += ", string " + literalOf(item.string); break;
        case 2: result += std::string(", number ") + number; break;
        default: result += item.boolean ? ", true" : ", false"; break;
        }
    }
    return result;
}

bool isSameNumber(double a, double b) { return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0; }

// The fields that a kind does not use are empty.
bool isSameItem(const XPath::ResultItem& real, const NaiveXPath::Item& naive) {
    return real.contextTag == naive.contextTag && real.kind == static_cast<int>(naive.kind) &&
           real.node == naive.node && real.string == naive.string && isSameNumber(real.number, naive.number) &&
           real.boolean == naive.boolean;
}

bool isSameState(XPath& real, const NaiveXPath& naive) {
    if (real.GetErrorCode() != naive.GetErrorCode() || real.GetErrorString() != naive.GetErrorString()) return false;
    if (real.GetNrOfResults() != countOf(naive)) return false;
    for (unsigned i = 0; i < countOf(naive); ++i) {
        if (!isSameItem(real.GetResult(i), naive.results[i])) return false;
    }
    return true;
}

struct Pair {
    explicit Pair(Object* context) : real(context), naive(context) {}

    XPath real;
    NaiveXPath naive;
    std::string naiveAnswer;

    // Empty when both agree, else what both say.
    std::string run(const Operation& operation, const RandomTree& tree) {
        const std::string realAnswer = answer(real, operation);
        naiveAnswer = answer(naive, operation);
        if (realAnswer == naiveAnswer && isSameState(real, naive)) return "";
        return "  library: " + realAnswer + ", " + state(real, tree) + "\n  naive:   " + naiveAnswer + ", " +
               state(naive, tree);
    }
};

std::string disagreement(const RandomTree& tree, Object* context, const Script& script) {
    Pair queries(context);
    for (const Operation& operation : script) {
        const std::string difference = queries.run(operation, tree);
        if (!difference.empty()) return difference;
    }
    return "";
}

// --- Making a disagreement small: whatever can go without ending it goes ---

bool shrinkScript(const RandomTree& tree, Object* context, Script& script) {
    bool shrunk = false;
    const auto keep = [&](const Script& smaller) {
        if (disagreement(tree, context, smaller).empty()) return false;
        script = smaller;
        shrunk = true;
        return true;
    };
    for (std::size_t i = 0; i < script.size();) {
        Script smaller = script;
        smaller.erase(smaller.begin() + static_cast<std::ptrdiff_t>(i));
        if (!keep(smaller)) ++i;
    }
    for (std::size_t i = 0; i < script.size(); ++i) {
        for (std::size_t units = 8; units > 0; units /= 2) {
            for (std::size_t at = 0; at + units <= script[i].path.size();) {
                Script smaller = script;
                smaller[i].path.erase(at, units);
                if (!keep(smaller)) ++at;
            }
        }
    }
    return shrunk;
}

bool isWithin(const Object* node, const Object* top) {
    while (node != nullptr && node != top) node = node->getParent();
    return node != nullptr;
}

bool shrinkElement(const RandomTree& tree, Element* element, Object* context, const Script& script) {
    bool shrunk = false;
    for (int i = 0; i < element->getChildCount();) {
        Object* const before = i + 1 < element->getChildCount() ? element->getChild(i + 1) : nullptr;
        if (!isWithin(context, element->getChild(i))) {
            std::unique_ptr<Object> child(element->extractChild(i));
            if (!disagreement(tree, context, script).empty()) {
                shrunk = true;
                continue;
            }
            element->insertChild(before, child.release());
        }
        if (element->getChild(i)->isElement()) {
            shrunk |= shrinkElement(tree, element->getChild(i)->toElement(), context, script);
        }
        ++i;
    }
    for (int i = 0; i < element->getAttributeCount();) {
        if (element->getAttribute(i) != context) {
            const std::string name = element->getAttribute(i)->getName();
            const DataHolder value = element->getAttribute(i)->getValue();
            element->removeAttribute(i);
            if (!disagreement(tree, context, script).empty()) {
                shrunk = true;
                continue;
            }
            element->setAttribute(name, value);
        }
        ++i;
    }
    return shrunk;
}

// Bytes that are not ASCII by their values.
std::string printable(const std::string& text) {
    std::string result;
    for (const char c : text) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
        result += c >= ' ' && c <= '~' ? std::string(1, c) : std::string(hex);
    }
    return result;
}

std::string smallest(const RandomTree& tree, Object* context, Script script) {
    const MessageCollector quiet;  // of attributes put back whose names are none
    const std::vector<Object*> simpler{tree.document->getRoot(), tree.document.get()};
    for (Object* node : simpler) {
        if (node != nullptr && !disagreement(tree, node, script).empty()) context = node;
    }
    for (bool shrunk = true; shrunk;) {
        shrunk = shrinkScript(tree, context, script);
        if (tree.document->getRoot() != nullptr) {
            shrunk |= shrinkElement(tree, tree.document->getRoot(), context, script);
        }
        shrunk |= shrinkElement(tree, tree.detached.get(), context, script);
    }
    std::string text =
        "  tree:    " + printable(tree.text()) + "\n  context: " + printable(tree.placeOf(context)) + "\n";
    for (const Operation& operation : script) text += "  " + asCall(operation) + "\n";
    return text + disagreement(tree, context, script);
}

// --- The comparison ---

// What the pairs of a test came to, so that a generator which no longer makes what it should is noticed.
struct Mix {
    int pairs = 0;             // of tree and expression
    int found = 0;             // with results, checks left out
    int silent = 0;            // refused without a code
    std::map<int, int> codes;  // of fresh operations

    void count(const Operation& operation, const Pair& queries) {
        const int code = queries.naive.GetErrorCode();
        const bool check = operation.kind == Operation::SyntaxOK;
        if (operation.kind == Operation::GetValueByIndex) {
            if (code != 0) ++codes[code];
            return;
        }
        ++pairs;
        if (!check && countOf(queries.naive) > 0) ++found;
        if (queries.naiveAnswer == "false" && code == 0) ++silent;
        if (code != 0 && operation.kind != Operation::FindNodes) ++codes[code];
    }

    std::string text() const {
        std::string result = std::to_string(pairs) + " pairs, " + std::to_string(found) + " found something, " +
                             std::to_string(silent) + " refused silently; codes";
        for (const auto& code : codes) result += " " + std::to_string(code.first) + ":" + std::to_string(code.second);
        return result;
    }
};

bool findsSomething(NaiveXPath query, const Text& path) { return query.GetValues(path) > 0; }

// The next thing to ask, such that most relative paths have a context.
Operation nextOperation(Dice& dice, const Pair& queries, bool inDocument, const std::function<Text(bool)>& makePath) {
    Operation operation;
    const int choice = dice.below(100);
    const int results = static_cast<int>(countOf(queries.naive));
    if (choice < 18) {
        operation.kind = Operation::GetValueByIndex;
        operation.index = static_cast<unsigned>(dice.below(results + 1 + dice.below(2)));
    } else if (choice < 30) {
        operation.kind = Operation::SyntaxOK;
    } else if (choice < 45 || !inDocument) {
        operation.kind = Operation::FindNodes;
    } else if (choice < 55) {
        operation.kind = Operation::GetValueByPath;
    }
    operation.token = dice.chance(50) ? -1 : dice.below(5) - 1;
    if (dice.chance(1)) operation.token = -2;
    if (operation.kind != Operation::GetValueByIndex) {
        const bool absolute = results == 0 && dice.chance(90);
        operation.path = makePath(absolute);
        // Most random paths find nothing; of those that do there should be about as many.
        for (int tries = dice.below(6); tries > 0 && !findsSomething(queries.naive, operation.path); --tries) {
            operation.path = makePath(absolute);
        }
    }
    return operation;
}

// Asks until that many pairs of tree and expression are compared; three disagreements end it.
Mix compare(unsigned seed, int pairs, const std::function<Text(RandomPaths&, bool)>& makePath) {
    Dice dice(seed);
    RandomPaths paths(dice);
    Mix mix;
    int disagreements = 0;
    while (mix.pairs < pairs && disagreements < 3) {
        const RandomTree tree(dice);
        for (int contexts = 0; contexts < 12; ++contexts) {
            Object* const context = tree.context(dice);
            Pair queries(context);
            Script script;
            bool agree = true;
            const bool inDocument = isWithin(context, tree.document.get());
            for (int left = 1 + dice.below(6); left > 0 && agree; --left) {
                script.push_back(
                    nextOperation(dice, queries, inDocument, [&](bool absolute) { return makePath(paths, absolute); }));
                agree = queries.run(script.back(), tree).empty();
                mix.count(script.back(), queries);
            }
            if (agree) continue;
            ADD_FAILURE() << "behind " << mix.pairs << " pairs:\n" << smallest(tree, context, script);
            ++disagreements;
            break;  // the tree is no longer what it was
        }
    }
    return mix;
}

void expectMix(const Mix& mix, int foundPercent, const std::map<int, int>& codes) {
    if (::testing::Test::HasFailure()) return;  // it ended early
    SCOPED_TRACE(mix.text());
    EXPECT_GE(mix.found * 100, mix.pairs * foundPercent);
    for (const auto& code : codes) {
        const auto count = mix.codes.find(code.first);
        EXPECT_GE(count == mix.codes.end() ? 0 : count->second, atLeast(code.second)) << "code " << code.first;
    }
}

TEST(XPathModelTest, WellFormedPathsFindWhatTheRulesFind) {
    const Mix mix =
        compare(1, rounds(100000), [](RandomPaths& paths, bool absolute) { return paths.wellFormed(absolute); });
    expectMix(mix, 45, {{1, 5000}, {2, 10000}, {5, 100}, {13, 100}, {26, 500}});
}

TEST(XPathModelTest, PathsWithMistakesFailAsTheRulesFail) {
    const Mix mix =
        compare(2, rounds(60000), [](RandomPaths& paths, bool absolute) { return paths.withMistakes(absolute); });
    expectMix(mix, 35,
              {{1, 2000},
               {2, 4000},
               {4, 300},
               {5, 100},
               {7, 200},
               {8, 50},
               {9, 200},
               {10, 100},
               {12, 500},
               {13, 200},
               {14, 300},
               {15, 100},
               {20, 200},
               {21, 100},
               {22, 200},
               {23, 100},
               {24, 100},
               {26, 500}});
    EXPECT_GE(mix.silent, atLeast(1000));
}

TEST(XPathModelTest, PathsWithExchangedCharactersEndAsTheRulesEndThem) {
    const Mix mix =
        compare(3, rounds(40000), [](RandomPaths& paths, bool absolute) { return paths.mutated(absolute); });
    expectMix(mix, 15,
              {{2, 2000},
               {4, 50},
               {7, 50},
               {8, 50},
               {9, 100},
               {10, 200},
               {12, 1000},
               {14, 100},
               {15, 500},
               {20, 300},
               {21, 20},
               {22, 50},
               {23, 50},
               {24, 100}});
    EXPECT_GE(mix.silent, atLeast(1000));
}

TEST(XPathModelTest, PiecesInAnyOrderEndAsTheRulesEndThem) {
    const Mix mix = compare(4, rounds(20000), [](RandomPaths& paths, bool absolute) { return paths.soup(absolute); });
    expectMix(mix, 6, {{4, 50}, {7, 50}, {9, 50}, {12, 2000}, {14, 200}, {15, 300}, {20, 300}, {22, 50}, {24, 50}});
    EXPECT_GE(mix.silent, atLeast(500));
}

// Brackets up to the limit, and one more.
TEST(XPathModelTest, NestedPredicatesAreEvaluatedUpToTheLimit) {
    const auto nested = [](const Text& inner, int brackets, bool closed) {
        Text text;
        for (int i = 0; i < brackets; ++i) text += inner + u"[";
        text += inner;
        if (closed) text.append(static_cast<std::size_t>(brackets), u']');
        return text;
    };
    const struct {
        const char* name;
        Text path;
        int code;
    } kCases[] = {
        {"at the limit", nested(u".", 1000, true), 0},
        {"behind it", nested(u".", 1001, true), 27},
        {"at the limit from a slash", u"//" + nested(u"*", 1000, true), 2},
        {"behind it from a slash", u"//" + nested(u"*", 1001, true), 27},
        {"never closed", nested(u"*", 1000, false), 20},
        {"never closed and too deep", nested(u"*", 1001, false), 27},
        {"in a literal", u"//*['" + nested(u".", 1001, false) + u"' = @n]", 2},
        {"closed before they open", u"]]" + nested(u".", 1001, true), 27},
    };
    Dice dice(5);
    const RandomTree tree(dice);
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        for (const auto kind : {Operation::GetValues, Operation::SyntaxOK}) {
            Pair queries(tree.document.get());
            Operation operation;
            operation.kind = kind;
            operation.path = c.path;
            EXPECT_EQ(queries.run(operation, tree), "");
            if (kind == Operation::GetValues) {
                EXPECT_EQ(queries.real.GetErrorCode(), c.code);
            }
        }
    }
}

// Chains of steps along different axes find nodes more and more out of the order of the document.
TEST(XPathModelTest, ChainsOfStepsKeepTheOrderOfTheRules) {
    const std::vector<Text> axes = {u"following-sibling",
                                    u"preceding-sibling",
                                    u"following",
                                    u"preceding",
                                    u"ancestor",
                                    u"ancestor-or-self",
                                    u"parent",
                                    u"child",
                                    u"descendant",
                                    u"self",
                                    u"attribute",
                                    u"descendant-or-self"};
    const Outcome outcome = readDocument("<a><a><a/>t<c n=''/><b/></a><a><b>t</b><c><c/><b/></c></a><c/><a n=''/></a>");
    Dice dice(7);
    for (int chains = 0; chains < 3'000; ++chains) {
        Text path = u"//*";
        for (int steps = 2 + dice.below(7); steps > 0; --steps) {
            path += u"/" + axes[static_cast<std::size_t>(dice.below(dice.chance(80) ? 6 : 12))] +
                    (dice.chance(80) ? u"::node()" : u"::a");
        }
        XPath real(outcome.document.get());
        NaiveXPath naive(outcome.document.get());
        EXPECT_EQ(real.GetValues(path), naive.GetValues(path)) << literalOf(path);
        ASSERT_TRUE(isSameState(real, naive)) << literalOf(path);
    }
}

// A depth that stands without its code, since GetValue(index) forgot that, decides which steps that find nothing count.
// Walks whose outcomes are used again must leave it as they would have left it each time.
TEST(XPathModelTest, WhatAnEarlierQueryMissedCountsAsTheRulesCountIt) {
    const std::vector<Text> kSteps = {u"a", u"b", u"*", u"..", u"..", u".", u"@n", u"following-sibling::*"};
    const std::vector<Text> kStarts = {u"", u"", u"", u"/", u"//"};
    Dice dice(8);
    // What the dice choose is put together from left to right: the parts of a sum would be made in an order that each
    // compiler chooses.
    const auto appendPath = [&](Text& text, const Text& before, int most) {
        text += before + dice.pick(kSteps);
        for (int steps = dice.below(most); steps > 0; --steps) text += u"/" + dice.pick(kSteps);
    };
    const auto appendPredicate = [&](Text& text) {
        Text inner;
        appendPath(inner, dice.pick(kStarts), 4);
        while (dice.chance(40)) {
            Text outer;
            appendPath(outer, u"", 2);
            outer += u"[" + inner + u"]";
            if (dice.chance(30)) appendPath(outer, u"/", 2);
            if (dice.chance(20)) appendPath(outer, u" = " + dice.pick(kStarts), 3);
            inner = outer;
        }
        text += u"[" + inner + u"]";
    };
    int compared = 0;
    int noticed = 0;
    while (compared < rounds(8'000)) {
        const RandomTree tree(dice);
        for (int i = 0; i < 20; ++i) {
            Text first;
            appendPath(first, u"", 4);
            Text second;
            appendPath(second, u"", 4);
            if (dice.chance(80)) {
                appendPredicate(second);
                if (dice.chance(50)) appendPath(second, u"/", 3);
            }
            const Script script = {{Operation::GetValues, u"//*"},
                                   {Operation::FindNodes, first},
                                   {Operation::GetValueByIndex, u""},
                                   {Operation::FindNodes, second}};
            Pair queries(tree.document.get());
            for (const Operation& operation : script) {
                if (operation.kind == Operation::GetValueByIndex &&
                    (queries.naive.GetErrorCode() != XPath::NODE_NOT_FOUND || countOf(queries.naive) == 0))
                    break;
                ASSERT_EQ(queries.run(operation, tree), "") << smallest(tree, tree.document.get(), script);
                if (&operation != &script.back()) continue;
                ++compared;
                if (queries.naive.GetErrorCode() == XPath::NODE_NOT_FOUND) ++noticed;
            }
        }
    }
    EXPECT_GE(noticed, atLeast(2'000));
}

TEST(XPathModelTest, TextsOfNodesAreThoseOfTheRules) {
    Dice dice(6);
    for (int trees = 0; trees < rounds(300); ++trees) {
        const RandomTree tree(dice);
        const XPath real(tree.document.get());
        const NaiveXPath naive(tree.document.get());
        for (Object* node : tree.nodes()) {
            ASSERT_EQ(real.GetValue(node), naive.GetValue(node)) << tree.placeOf(node) << " of " << tree.text();
        }
        ASSERT_EQ(real.GetValue(nullptr), naive.GetValue(nullptr));
    }
}

}  // namespace
}  // namespace Xml::test
