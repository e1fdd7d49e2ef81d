#pragma once

#include "xml/dom/internal/Preorder.h"

namespace Xml {

// Links `top` and what is below it to `dtd`, in the order of a recursion: each element, its children, its attributes.
// `enter` links the element itself and says whether to go on below it. Nodes that are not exactly elements get their
// setDtd called.
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

// Takes the links away from a node that goes back to the caller after linking it has failed: it may outlive the Dtd.
// This goes the same way again, with the memory that was just given back; where even that fails, links stay.
inline void unlink(Object& node) noexcept {
    try {
        node.setDtd(nullptr);
    } catch (...) {}
}

}  // namespace Xml
