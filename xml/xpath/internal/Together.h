#pragma once

#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/QueryState.h"
#include <vector>

namespace Xml {

// The walk of a whole query from all its context nodes at once. It finds the same nodes in the same order as walks from
// one after the other do, and costs no more than what is found where those would overlap. The model tests hold that,
// and tests/growth/PathGrowthTest.cpp the cost.

// Whether the operand, which must be the only one and a relative path, may be walked so: no predicate looks at
// positions, and where an earlier query left a depth alone, no step is deeper. There what each of the walks misses
// would count.
bool mayWalkTogether(const ExpressionItem& item, unsigned depth, unsigned depthAlone);

// Puts what it finds into `found`. False on an error.
bool walkTogether(QueryState& state, Path& path, const std::vector<Object*>& contexts, unsigned depth,
                  std::vector<Object*>& found);

}  // namespace Xml
