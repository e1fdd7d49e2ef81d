#pragma once

#include "xml/xpath/internal/AbsenceStack.h"
#include "xml/xpath/internal/Axes.h"
#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/Outcomes.h"
#include "xml/xpath/internal/PathError.h"

namespace Xml {

// What all walks of one query share.
struct QueryState {
    Expressions& expressions;
    Axes axes;
    OutcomeRoom room;
    AbsenceStack absences;
    PathError error;

    // Whether the query has not yet looked at more nodes than it may; else the error is set.
    bool isAffordable() { return !axes.budget().isSpent() || error.set(XPath::EXPRESSION_TOO_COSTLY, {}); }
};

}  // namespace Xml
