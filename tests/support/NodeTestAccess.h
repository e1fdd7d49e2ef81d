#pragma once

#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Object.h"
#include "xml/dom/internal/NodeAccess.h"

namespace Xml {

// Reads the links, marks and positions of nodes that no operation shows.
struct NodeTestAccess {
    static const Dtd* dtd(const Object& node) { return NodeAccess::dtd(node); }
    static bool dirty(const Object& node) { return NodeAccess::marks(node).isDirty(); }
    static int writeStart(const Object& node) { return NodeAccess::marks(node).writeStart(); }
    static int writeEnd(const Object& node) { return NodeAccess::marks(node).writeEnd(); }

    // Sets the mark, for tests of what clears or sets it.
    static void setDirty(const Object& node, bool dirty) { NodeAccess::marks(node).setDirty(dirty); }
};

}  // namespace Xml
