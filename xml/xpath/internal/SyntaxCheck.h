#pragma once

#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/PathError.h"

namespace Xml {

// Reads a query from its first operand to its last, in paths from step to step, after each step in its predicates, in
// the order in which an evaluation that finds something everywhere would. False, and the error set, on the first thing
// that is wrong. With `noNodes` the query's context holds values, which functions cannot be asked of. The model tests
// hold it.
bool checkSyntax(Expression& query, bool noNodes, Expressions& expressions, PathError& error);

}  // namespace Xml
