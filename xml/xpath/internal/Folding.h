#pragma once

#include "xml/xpath/internal/Value.h"

namespace Xml {

// What an operator makes of the values on its sides. A side that is a scalar, one value without a tag, is taken with each value
// of the other side; else values of one tag are taken together, each left one with each right one.

// left := the numbers `left op right`.
void CalculusOnExpressionItems(Values& left, const Values& right, Operator op);

// left := the left values for which the comparison holds. Where the left side is a scalar: that value, with the tags of the
// right values for which it holds. A comparison filters; it never gives a boolean. Among values of one tag it costs
// O((left + right) log right).
void CompareExpressionItems(Values& left, const Values& right, Operator op);

}  // namespace Xml
