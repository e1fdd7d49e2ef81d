#pragma once

#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/QueryState.h"
#include "xml/xpath/internal/Value.h"
#include "xml/xpath/internal/Walk.h"

namespace Xml {

// The walk of a path that is one plain step, as `@id`, `name` or `.`, from one context node after the other: what most
// predicates do for each of many nodes. It gives what a Walk gives and visits the same nodes; only cost depends on it.

// Whether the path, whose first step that is, may be walked so.
bool isOneStep(const Path::Read& first);

// Adds what it finds to the values. False where the budget is spent; the error is set then.
bool walkOneStep(QueryState& state, const Path::Read& step, const Walk::Start& start, Values& values);

}  // namespace Xml
