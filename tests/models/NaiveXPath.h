#pragma once

#include "orvsys/Uni16.h"
#include "xml/xpath/XPath.h"
#include <cstddef>
#include <string>
#include <vector>

namespace Xml {
class Document;
class Element;
class Object;
}  // namespace Xml

namespace Xml::test {

// A second evaluator of the path language, to compare XPath with: the rules as docs/paths.md has them, one operation a
// rule, over nothing but the public interface of the nodes. It is slow on purpose: text is cut anew for every context
// node, lists are searched from their front, everything recurses. When a rule is in doubt, this is the place to read.
//
//     NaiveXPath query(document);
//     query.GetValues(u"//item[@price > 10]/name");
//
// The operations are those of XPath, and so are their results; results are read from `results`.
class NaiveXPath {
public:
    using Text = OrvSys::Uni16String;

    enum Kind { NODE, STRING, NUMBER, BOOLEAN };

    struct Item {
        int contextTag = -1;
        Kind kind = NODE;
        Object* node = nullptr;
        Text string;
        double number = 0;
        bool boolean = false;
    };
    using Items = std::vector<Item>;

    explicit NaiveXPath(Object* context);

    bool FindNodes(const Text& path);
    unsigned GetValues(const Text& path);
    Text GetValue(const Text& path, int token);
    Text GetValue(unsigned index, int token);
    Text GetValue(Object* node) const;
    bool SyntaxOK(const Text& path);
    Text GetErrorString() const;
    XPath::ErrorCode GetErrorCode() const { return errorCode; }

    Items results;

private:
    enum Axis {
        NO_AXIS,
        ATTRIBUTE,
        CHILD,
        DESCENDANT,
        PARENT,
        ANCESTOR,
        FOLLOWING_SIBLING,
        PRECEDING_SIBLING,
        FOLLOWING,
        PRECEDING,
        DESCENDANT_OR_SELF,
        ANCESTOR_OR_SELF,
        SELF
    };
    enum KindTest { NAME_TEST, NODE_TEST, ELEMENT_TEST, ATTRIBUTE_TEST, DOCUMENT_TEST, TEXT_TEST };
    enum Operator {
        LESS,
        LESS_OR_EQUAL,
        EQUAL,
        GREATER,
        GREATER_OR_EQUAL,
        NOT_EQUAL,
        PLUS,
        MINUS,
        DIVIDE,
        MULTIPLY,
        NO_OPERATOR
    };
    enum FunctionCall { ANOTHER, MALFORMED, CALLED };

    // An operand, the operator after it, and what the operand yields.
    struct ExpressionItem {
        Text text;
        Operator op = NO_OPERATOR;
        Items values;
    };

    void reset();
    bool fail(XPath::ErrorCode code, const Text& text);

    // --- Text: every `at` is the place read from, and is moved past what was read ---
    static Text ExtractLiteral(const Text& text, std::size_t& at, bool keepQuotes);
    static bool ExtractPredicate(const Text& text, std::size_t& at, Text& predicate, bool keepBrackets);
    static Operator ExtractOperator(const Text& text, std::size_t& at);
    static Text RemoveWhiteSpaces(const Text& path);
    static bool isNestedTooDeeply(const Text& path);

    // --- Steps ---
    bool SplitLocationPath(const Text& path, std::size_t& at, Text& step);
    bool ExtractPredicates(Text& step, std::vector<Text>& predicates);
    bool ExtractAxis(Text& step, Axis& axis);
    bool ExtractKindTest(const Text& step, KindTest& kind, Text& name);
    bool GetNameTest(const Text& text, Text& name);

    // --- Nodes ---
    bool FindNextNodes(const Text& path, std::size_t at, const Items& context, unsigned depth);
    void keepBook(const Items& found, const Text& text, unsigned depth);
    static Items filtered(const Items& nodes, const Items& outcome);

    // --- Expressions ---
    bool EvaluateExpression(Items& list, const Text& written, bool reverse, unsigned depth);
    static std::vector<ExpressionItem> SplitExpression(const Text& expression);
    bool EvaluateExpressionItem(const Items& context, Items& values, const Text& text, bool reverse, unsigned depth);
    bool evaluateNumber(Items& values, const Text& text);
    bool evaluateFunction(const Items& context, Items& values, const Text& text, bool reverse);
    bool evaluatePath(const Items& context, Items& values, const Text& text, unsigned depth);
    FunctionCall ExtractFunction(const char* name, const Text& text);
    void CalculusOnExpressionItems(ExpressionItem& left, const ExpressionItem& right) const;
    void CompareExpressionItems(ExpressionItem& left, const ExpressionItem& right) const;
    Item CalculusOnResultItems(const Item& a, const Item& b, Operator op) const;
    bool CompareResultItems(const Item& a, const Item& b, Operator op) const;
    Text ConvertToString(const Item& item) const;
    double ConvertToNumber(const Item& item) const;

    // The step test of one walk along an axis, and the list that it fills.
    class Collector;

    XPath::ErrorCode errorCode = XPath::NONE;
    bool syntaxCheck = false;
    Document* document = nullptr;
    unsigned errorDepth = 0;
    Text errorText;
};

}  // namespace Xml::test
