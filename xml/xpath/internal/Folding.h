#pragma once

#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/Value.h"
#include "xml/xpath/internal/VisitBudget.h"
#include <cstddef>
#include <vector>

namespace Xml {

// What an operator makes of the values on its sides. A side that is a scalar, one value without a tag, is taken with
// each value of the other side; else values of one tag are taken together, each left one with each right one.

// As many numbers arithmetic may make of pairs. Pairs multiply with every operand, so that a short path could ask for
// more than any memory holds.
constexpr std::size_t kMostPairs = 16'000'000;

// left := the numbers `left op right`. They are spent from the budget before the first of them is made. False, and left
// as it was, where these would be more pairs than may be, or more numbers than the budget has left.
bool CalculusOnExpressionItems(Values& left, const Values& right, Operator op, VisitBudget& budget);

// left := the left values for which the comparison holds. Where the left side is a scalar: that value, with the tags of
// the right values for which it holds. A comparison filters; it never gives a boolean. Among values of one tag it costs
// O((left + right) log right).
void CompareExpressionItems(Values& left, const Values& right, Operator op);

// Folds the values of operands into those of the first one, by the rank of the operators between them: products, sums,
// orders, equalities, each from left to right. A number that is made costs as much as a node that is looked at. False
// where an operator would make more pairs than may be, or where the budget is spent.
bool fold(const Expression::Items& items, std::pmr::vector<Values>& values, VisitBudget& budget);

}  // namespace Xml
