#pragma once

#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Preorder.h"

namespace Xml {

// Links `top` and what is below it to `dtd`, in the order of a recursion: each element, its children, its attributes.
// `enter` links the element itself and says whether to go on below it; `linkOther` links a node that is not exactly an
// element. `walk` is at its end.
template <class Enter, class LinkOther>
void linkBelow(Preorder<Element>& walk, Element& top, const Dtd* dtd, Enter enter, LinkOther linkOther) {
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
            linkOther(*child);
        }
    }
}

// The same where a node that is not exactly an element gets its setDtd called.
template <class Enter>
void linkBelow(Preorder<Element>& walk, Element& top, const Dtd* dtd, Enter enter) {
    linkBelow(walk, top, dtd, enter, [dtd](Object& node) { node.setDtd(dtd); });
}

// Takes the links away as the node's setDtd does. What that throws is dropped.
inline void unlinkByItself(Object& node) noexcept {
    try {
        node.setDtd(nullptr);
    } catch (...) {}
}

// Takes the links away from `top` and what is below it, as far as `walk` has memory to go: as far as a walk that ran
// out of it has come.
inline void unlinkReached(Preorder<Element>& walk, Element& top) noexcept {
    walk.end();
    const auto enter = [&walk](Element& element) {
        NodeAccess::setOwnDtd(element, nullptr);
        NodeAccess::linkAttributes(element, nullptr);
        return walk.hasRoom();
    };
    linkBelow(walk, top, nullptr, enter, unlinkByItself);
}

// Links `top` and what is below it. Where memory runs out nothing of it is linked afterwards: it may outlive the Dtd.
inline void linkAll(Element& top, const Dtd* dtd) {
    Preorder<Element> walk;
    try {
        linkBelow(walk, top, dtd, [dtd](Element& element) {
            NodeAccess::setOwnDtd(element, dtd);
            return true;
        });
    } catch (...) {
        unlinkReached(walk, top);
        throw;
    }
}

// Takes the links away from a node that goes back to the caller after linking it has failed. An element has done so
// itself; a node of a caller's class is asked to.
inline void unlink(Object& node) noexcept {
    if (!isExactly<Element>(node)) unlinkByItself(node);
}

}  // namespace Xml
