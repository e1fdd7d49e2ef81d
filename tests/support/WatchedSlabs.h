#pragma once

#include "support/HeapFunctions.h"
#include "xml/dom/internal/Slab.h"

namespace Xml::test {

// The memory of trees comes from the heap of the test program too. One source of the program, and no other, includes
// this.
inline const Slab::Source kWatchedSlabs = {[](std::size_t bytes) { return allocate(bytes, false, Slab::kBytes); },
                                           giveBack};
const bool slabsAreWatched = (Slab::setSource(&kWatchedSlabs), true);

}  // namespace Xml::test
