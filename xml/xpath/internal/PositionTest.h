#pragma once

#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/Operators.h"
#include "xml/xpath/internal/PathError.h"
#include "xml/xpath/internal/Value.h"
#include <optional>

namespace Xml {

// A predicate that asks for nothing but the position of a node, as "[last()]" and "[position() = 2]" do: the most
// common ones. A walk filters by it at once, without values and without a frame for the evaluation of an expression.
// tests/xpath/PositionTestTest.cpp compares it with the same predicates in a form that is evaluated.
class PositionTest {
public:
    // Puts the test into `test` where the expression is one: last() alone, or position() compared with a number. Reads
    // as many operands as that takes; false, and the error set, where one cannot be read.
    static bool read(Expression& expression, const Expressions& expressions, PathError& error,
                     std::optional<PositionTest>& test);

    // Whether only the last position is asked for; else it holds for some.
    bool isLast() const { return op == Operator::None; }
    bool holds(double position) const { return CompareValue(position, number, op); }

private:
    Operator op = Operator::None;  // none for last()
    double number = 0;
};

}  // namespace Xml
