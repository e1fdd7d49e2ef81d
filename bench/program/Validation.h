// Validation of a finished tree that no validation has seen: by this library and by libxml2; the others have none.
#pragma once
#include "Measure.h"
#include "Shapes.h"
#include <vector>

namespace bench {

// Reading the tree and the document type is not measured, and each time both are fresh ones.
std::vector<Contender> validators(const Typed& typed);

}  // namespace bench
