#include "xml/xpath/internal/PositionTest.h"

#include <variant>

namespace Xml {

bool PositionTest::read(Expression& expression, const Expressions& expressions, PathError& error,
                        std::optional<PositionTest>& test) {
    Expression::Items& items = expression.items(expressions.text);
    if (items.size() > 2) return true;
    ExpressionItem& first = items.front();
    if (!first.read(expressions, error)) return false;
    const Function* const function = std::get_if<Function>(&first.operand);
    if (function == nullptr) return true;
    if (items.size() == 1) {
        if (*function == Function::Last) test.emplace();
        return true;
    }
    if (*function != Function::Position || !isComparison(first.op)) return true;
    ExpressionItem& bound = items.back();
    if (!bound.read(expressions, error)) return false;
    if (const double* const number = std::get_if<double>(&bound.operand)) {
        test.emplace();
        test->op = first.op;
        test->number = *number;
    }
    return true;
}

}  // namespace Xml
