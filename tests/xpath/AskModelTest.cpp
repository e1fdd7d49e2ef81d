// Paths that are asked in UTF-8 beside those of XPath: random ones find the same, and are refused where XPath refuses
// them, or where a naive reading finds what is refused beside that.
#include "support/Pattern.h"
#include "support/Rounds.h"
#include "support/Texts.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/easy/Ask.h"
#include "xml/xpath/XPath.h"
#include "xpath/RandomPaths.h"
#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// A naive reading of a path that is right for XPath: white space but that of operators is dropped, then every operand
// of every expression is looked at.
class Naive {
public:
    explicit Naive(const std::string& path) : text(path) {}

    // Whether a literal or a bracket is not closed, text follows one, a word stands as an operator that is none, or a
    // predicate asks for nothing of the node.
    bool isRefused() { return !allClosed() || hasLostOperator() || isExpressionRefused(dropped(), false); }

private:
    static constexpr const char* kOperators[] = {" eq ", " ne ", " le ", " lt ", " ge ", " gt ", " div ", " + ",
                                                 " - ",  " * ",  "!=",   "<=",   ">=",   "=",    "<",     ">"};

    static std::size_t operatorAt(const std::string& all, std::size_t at) {
        for (const char* const each : kOperators) {
            if (all.compare(at, std::string(each).size(), each) == 0) return std::string(each).size();
        }
        return 0;
    }

    bool allClosed() const {
        int open = 0;
        for (std::size_t at = 0; at < text.size(); ++at) {
            open += text[at] == '[';
            open -= text[at] == ']';
            if (open < 0) return false;
            if (text[at] != '\'' && text[at] != '"') continue;
            at = text.find(text[at], at + 1);
            if (at == std::string::npos) return false;
        }
        return open == 0;
    }

    // The path with something instead of each piece of white space that is no operator's.
    std::string withWhiteSpaceAs(const std::string& other) const {
        std::string all;
        for (std::size_t at = 0; at < text.size();) {
            std::size_t size = 1;
            if (text[at] == '\'' || text[at] == '"') {
                size = text.find(text[at], at + 1) + 1 - at;
            } else if (std::string(" \t\r\n").find(text[at]) != std::string::npos) {
                size = operatorAt(text, at);
                if (size == 0) {
                    all += other;
                    ++at;
                    continue;
                }
            }
            all += text.substr(at, size);
            at += size;
        }
        return all;
    }

    std::string dropped() const { return withWhiteSpaceAs(""); }

    // A word after a name and white space, and before anything but a name. A tilde stands in no path.
    bool hasLostOperator() const {
        static const Pattern literal("'[^']*'|\"[^\"]*\"");
        static const Pattern lost("[\\w.-]~+(and|or|mod|div|eq|ne|le|lt|ge|gt)(?![\\w.-])");
        std::string all = literal.replaceIn(withWhiteSpaceAs("~"), "''");
        for (const char* const each : kOperators) {
            for (std::size_t at = all.find(each); at != std::string::npos; at = all.find(each))
                all.replace(at, std::string(each).size(), "$");
        }
        return lost.isIn(all);
    }

    // What is enclosed there: the place after it.
    static std::size_t after(const std::string& all, std::size_t at) {
        if (all[at] == '\'' || all[at] == '"') return all.find(all[at], at + 1) + 1;
        if (all[at] != '[') return at + 1;
        for (++at; all[at] != ']';) at = after(all, at);
        return at + 1;
    }

    static bool isExpressionRefused(const std::string& all, bool isPredicate) {
        std::vector<std::string> operands(1);
        for (std::size_t at = 0; at < all.size();) {
            if (const std::size_t size = operatorAt(all, at)) {
                operands.emplace_back();
                at += size;
            } else {
                operands.back() += all.substr(at, after(all, at) - at);
                at = after(all, at);
            }
        }
        bool asksNode = false;
        for (const std::string& operand : operands) {
            if (operand.empty()) return true;
            const bool isLiteral = operand[0] == '\'' || operand[0] == '"';
            if (isLiteral && after(operand, 0) != operand.size()) return true;
            asksNode = asksNode || !(isLiteral || operand[0] == '/' || std::isdigit(operand[0]) != 0);
            for (std::size_t at = 0; at < operand.size(); at = after(operand, at)) {
                if (operand[at] == '[' &&
                    isExpressionRefused(operand.substr(at + 1, after(operand, at) - at - 2), true))
                    return true;
            }
        }
        return isPredicate && !asksNode;
    }

    const std::string& text;
};

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) > 0; });
}

std::string inShort(const RandomTree& tree, const std::vector<std::string>& results,
                    const std::vector<Object*>& nodes) {
    std::string text;
    for (const std::string& result : results) text += '"' + result + "\" ";
    for (const Object* node : nodes) text += tree.placeOf(node) + " ";
    return text;
}

TEST(AskModelTest, FindsAndRefusesWhatXPathDoes) {
    Dice dice(12);
    int found = 0, refused = 0, strict = 0;
    for (int round = 0; round < rounds(40000); ++round) {
        const RandomTree tree(dice);
        RandomPaths paths(dice);
        for (int i = 0; i < 5; ++i) {
            Object* const context = tree.context(dice);
            if (context == nullptr || context->isDtd()) continue;
            const bool absolute = dice.chance(50);
            const int kind = dice.below(10);
            const std::string path = narrow(kind < 5   ? paths.wellFormed(absolute)
                                            : kind < 7 ? paths.withMistakes(absolute)
                                            : kind < 9 ? paths.mutated(absolute)
                                                       : paths.soup(absolute));
            // Others are judged by other rules, and a literal with its quote twice is one here.
            if (!isAscii(path) || path.find("''") != std::string::npos || path.find("\"\"") != std::string::npos)
                continue;
            // XPath asks no tree without a document.
            Object* top = context;
            while (top->getParent() != nullptr) top = top->getParent();
            if (!top->isDocument()) continue;
            SCOPED_TRACE(path + "\n" + tree.text());

            XPath query(context);
            const bool isRight = query.SyntaxOK(wide(path));
            const Selection<Object> selection = Xml::ask(*context, path);
            if (!isRight) {
                ASSERT_TRUE(selection.problem());
                ++refused;
                continue;
            }
            const bool isStrict = Naive(path).isRefused();
            ASSERT_EQ(selection.problem().has_value(), isStrict) << (isStrict ? "" : selection.problem()->toString());
            if (isStrict) {
                ++strict;
                continue;
            }
            std::vector<std::string> values;
            std::vector<Object*> nodes;
            const unsigned count = query.GetValues(wide(path));
            ASSERT_TRUE(query.GetErrorCode() == XPath::NONE || query.GetErrorCode() == XPath::NODE_NOT_FOUND);
            for (unsigned n = 0; n < count; ++n) {
                if (query.GetResult(n).kind == 0) {
                    nodes.push_back(query.GetResult(n).node);
                } else {
                    values.push_back(narrow(query.GetValue(n, -1)));
                }
            }
            std::vector<std::string> itsValues;
            std::vector<Object*> itsNodes;
            for (std::size_t n = 0; n < selection.count() && selection.empty(); ++n)
                itsValues.push_back(selection.text(n));
            for (Object& node : selection) itsNodes.push_back(&node);
            ASSERT_EQ(inShort(tree, itsValues, itsNodes), inShort(tree, values, nodes));
            found += count > 0;
        }
    }
    EXPECT_GE(found, atLeast(5000));
    EXPECT_GE(refused, atLeast(5000));
    EXPECT_GE(strict, atLeast(1000));
}

}  // namespace
}  // namespace Xml::test
