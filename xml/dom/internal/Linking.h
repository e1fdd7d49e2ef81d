#pragma once

#include "xml/dom/internal/Preorder.h"

namespace Xml {

// Links `top` and what is below it to `dtd`, in the order of a recursion: each element, its children, its attributes. `enter`
// links the element itself and says whether to go on below it. Nodes that are not exactly elements get their setDtd called.
template <class Enter>
void linkBelow(Element& top, const Dtd* dtd, Enter enter) {
    Preorder<Element> walk;
    const auto begin = [&](Element& element) {
        if (!enter(element)) return;
        if (NodeAccess::children(element).empty()) {
            NodeAccess::linkAttributes(element, dtd);
        } else {
            walk.enter(element);
        }
    };
    begin(top);
    while (!walk.atEnd()) {
        Object* const child = walk.next();
        if (child == nullptr) {
            NodeAccess::linkAttributes(walk.here(), dtd);
            walk.leave();
        } else if (isExactly<Element>(*child)) {
            begin(static_cast<Element&>(*child));
        } else {
            child->setDtd(dtd);
        }
    }
}

// Links a node that has no owner yet, with all below it. Where memory runs out it has no links afterwards: it may outlive the
// Dtd. Taking them away goes the same way again, with the memory that was just given back.
inline void linkNew(Object& node, const Dtd* dtd) {
    try {
        node.setDtd(dtd);
    } catch (...) {
        try {
            node.setDtd(nullptr);
        } catch (...) {}
        throw;
    }
}

}  // namespace Xml
