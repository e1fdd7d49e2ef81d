#pragma once

#include "xml/dom/Element.h"
#include <cstddef>

namespace Xml {

// Where a child stands among the children of its element; their number where it is none of them.
//
// Each thread remembers for a few elements where it found a child, and looks there and beside it first: so a walk from
// child to child takes the same time at each. That is cost control and nothing else. What is remembered is a place and
// is compared with what stands there, so it may be out of date.
std::size_t placeAmongChildren(const Element& parent, const Object& child);

}  // namespace Xml
