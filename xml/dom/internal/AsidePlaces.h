#pragma once

#include "xml/dom/Place.h"

namespace Xml {

// Where nodes in the heap were read: the root of a tree, and what stands around it. Nodes in the memory of a tree hold
// their offsets, until a record of where they are written needs the room (see NodeAccess); then theirs are here.
struct AsidePlaces {
    // The place of the node, unknown at first.
    static Place& of(const Object& node);

    // The node goes.
    static void drop(const Object& node) noexcept;
};

}  // namespace Xml
