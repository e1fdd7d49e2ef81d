#pragma once

#include "xml/xpath/internal/Operators.h"
#include "xml/xpath/internal/Value.h"
#include <cstddef>
#include <optional>

namespace Xml {

class Expression;
class Expressions;

// A predicate that asks for nothing but the position of a node, as "[last()]" and "[position() = 2]" do: the most
// common ones. A walk filters by it at once, without values and without a frame for the evaluation of an expression.
// tests/xpath/PositionTestTest.cpp compares it with the same predicates in a form that is evaluated.
class PositionTest {
public:
    // The test that the expression is: last() alone, or position() compared with a number. Nothing where it is none of
    // these, or where an operand cannot be read: its evaluation says why.
    static std::optional<PositionTest> read(Expression& expression, const Expressions& expressions);

    // Whether only the last position is asked for; else it holds for some.
    bool isLast() const { return op == Operator::None; }

    // How many nodes it takes to know those that are kept, where positions count from the first one: no later one is
    // kept. A number above all for any number of nodes.
    std::size_t enough() const;

    bool holds(double position) const { return CompareValue(position, number, op); }

private:
    Operator op = Operator::None;  // none for last()
    double number = 0;
};

}  // namespace Xml
