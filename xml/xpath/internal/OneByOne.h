#pragma once

#include "xml/xpath/internal/Absence.h"
#include "xml/xpath/internal/Axes.h"
#include "xml/xpath/internal/Expression.h"
#include <vector>

namespace Xml {

// The absence that walks of the path from one context node after the other leave, without making them all. The path has
// no predicates, its steps were read as far as any of these walks comes, and the first one finds something from one of
// the nodes.
//
// What counts is what comes of the last context node from which the first step finds something, and whether it finds
// nothing from those after that one. `deepest` of the result leaves out what walks from other nodes miss. The model
// tests hold it.
Absence absenceOneByOne(Axes& axes, Path& path, const std::vector<Object*>& contexts, unsigned depth);

}  // namespace Xml
