#include "xml/xpath/internal/PositionTest.h"

#include "xml/xpath/internal/Expression.h"
#include <limits>
#include <variant>

namespace Xml {

std::optional<PositionTest> PositionTest::read(Expression& expression, const Expressions& expressions) {
    Expression::Items& items = expression.items(expressions.text);
    PathError unsaid;
    if (items.size() > 2 || !items.front().read(expressions, unsaid)) return {};
    const Function* const function = std::get_if<Function>(&items.front().operand);
    if (function == nullptr) return {};
    PositionTest test;
    if (items.size() == 1) return *function == Function::Last ? std::optional(test) : std::nullopt;
    test.op = items.front().op;
    if (*function != Function::Position || !isComparison(test.op) || !items.back().read(expressions, unsaid)) return {};
    const double* const number = std::get_if<double>(&items.back().operand);
    if (number == nullptr) return {};
    test.number = *number;
    return test;
}

std::size_t PositionTest::enough() const {
    constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();
    constexpr double kMost = 1e9;  // above it counting pays no more
    const bool ends = op == Operator::Equal || op == Operator::LessThan || op == Operator::LessOrEqual;
    if (!ends || !(number < kMost)) return kAny;
    return number > 1 ? static_cast<std::size_t>(number) : 1;
}

}  // namespace Xml
