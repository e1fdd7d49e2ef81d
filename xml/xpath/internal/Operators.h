#pragma once

#include "xml/xpath/internal/Characters.h"

namespace Xml {

enum class Operator {
    LessThan,  // the first six compare
    LessOrEqual,
    Equal,
    GreaterThan,
    GreaterOrEqual,
    NotEqual,
    Plus,
    Minus,
    Divide,
    Multiply,
    None
};

inline bool isComparison(Operator op) { return op <= Operator::NotEqual; }

// The operator whose text stands at `at`, which moves after it; None, and `at` unmoved, where there is none. Words and
// the signs of arithmetic carry a blank on each side, so that `a - b` is apart from the name `a-b`.
Operator ExtractOperator(Unit& at, Unit end);

// Whether there may be one that begins with the unit.
inline bool mayBeginOperator(OrvSys::uni16char unit) {
    return unit == u' ' || unit == u'!' || unit == u'<' || unit == u'=' || unit == u'>';
}

}  // namespace Xml
