#pragma once

#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Object.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/ChildrenSpec.h"
#include "xml/dtd/ContentSpec.h"
#include "xml/dtd/CpSpec.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/GroupSpec.h"
#include <string>
#include <vector>

namespace Xml {

// Reads the links, marks and positions of nodes, and the links and parts of content models, that no operation shows.
struct NodeTestAccess {
    static const Dtd* dtd(const Object& node) { return NodeAccess::dtd(node); }
    static bool dirty(const Object& node) { return NodeAccess::marks(node).isDirty(); }
    static int writeStart(const Object& node) { return NodeAccess::marks(node).writeStart(); }
    static int writeEnd(const Object& node) { return NodeAccess::marks(node).writeEnd(); }

    // Sets the mark, for tests of what clears or sets it.
    static void setDirty(const Object& node, bool dirty) { NodeAccess::marks(node).setDirty(dirty); }

    // The Dtd that a model or a particle points back to, and what it is made of.
    static const Dtd* owner(const ContentSpec& model) { return model.dtd; }
    static const Dtd* owner(const CpSpec& particle) { return particle.dtd; }
    static const CpSpec* particle(const ChildrenSpec& model) { return model.particle; }
    static const std::vector<ChildrenSpec*>& members(const GroupSpec& group) { return group.members; }

    // The model of a declared element.
    static const ContentSpec* model(const Dtd& dtd, const std::string& element) { return dtd.elements.at(element); }

    // Gives the element an attribute list without definitions, which no operation makes; tells whether there is a list.
    static void addAttributeList(Dtd& dtd, const std::string& element) { dtd.attributeLists[element]; }
    static bool hasAttributeList(const Dtd& dtd, const std::string& element) {
        return dtd.attributeLists.count(element) > 0;
    }
};

}  // namespace Xml
