#pragma once

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include <cstddef>
#include <utility>
#include <vector>

namespace Xml {

struct NoNote {};

// The one walk through what is below an element, in document order. It keeps the elements that it is in, with a note at
// each, on a stack of its own: a walk costs O(nodes), whatever the depth. It goes into those elements only that it is
// sent into.
//
//     Preorder<const Element> walk;
//     walk.enter(top);
//     while (!walk.atEnd()) {
//         if (const Object* const node = walk.next()) {
//             ...                    // and walk.enter(*element) where it is one and is not to be skipped
//         } else {
//             ...                    // walk.here() is complete
//             walk.leave();
//         }
//     }
template <class ElementType, class Note = NoNote>
class Preorder {
public:
    void enter(ElementType& element, Note note = {}) { open.push_back({std::move(note), &element, 0}); }

    // Whether it is in no element any more.
    bool atEnd() const { return open.empty(); }

    // The innermost element that it is in, and the note at it.
    ElementType& here() const { return *open.back().element; }
    const Note& note() const { return open.back(); }

    // The next child of the innermost element; null where it has no more.
    Object* next() {
        Place& place = open.back();
        const NodeSpan children = NodeAccess::children(*place.element);
        return place.child < children.size() ? children[place.child++] : nullptr;
    }

    // Ends the walk; its memory is kept for one that begins then.
    void end() { open.clear(); }

    // Whether entering an element needs no memory.
    bool hasRoom() const { return open.size() < open.capacity(); }

    // Leaves the innermost element, whether it has been walked through or not.
    void leave() { open.pop_back(); }

private:
    struct Place : Note {
        Place(Note&& note, ElementType* itsElement, std::size_t itsChild)
            : Note(std::move(note)), element(itsElement), child(itsChild) {}

        ElementType* element;
        std::size_t child;  // the next one
    };

    std::vector<Place> open;
};

// The elements below one element in document order, itself left out, one at a time.
//
//     for (ElementWalk walk(top); const Element* element = walk.next();) ...
//
// The tree must not change meanwhile.
class ElementWalk {
public:
    explicit ElementWalk(const Element& top) { walk.enter(top); }

    // The next element; null at the end.
    const Element* next() {
        for (; !walk.atEnd(); walk.leave()) {
            while (const Object* const node = walk.next()) {
                if (!Xml::isElement(*node)) continue;
                const auto* const element = static_cast<const Element*>(node);
                if (!NodeAccess::children(*element).empty()) walk.enter(*element);
                return element;
            }
        }
        return nullptr;
    }

private:
    Preorder<const Element> walk;
};

}  // namespace Xml
