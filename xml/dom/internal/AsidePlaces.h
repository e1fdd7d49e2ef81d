#pragma once

#include "xml/dom/Place.h"

namespace Xml {

// Where nodes in the heap were read. Nodes in the memory of a tree have theirs right before them (see NodeAccess); in
// the heap is the root of a tree, and what stands around it.
struct AsidePlaces {
    // The place of the node, unknown at first.
    static Place& of(const Object& node);

    // The node goes.
    static void drop(const Object& node) noexcept;
};

}  // namespace Xml
