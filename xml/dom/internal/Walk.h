#pragma once

#include "xml/dom/internal/NodeAccess.h"
#include <cstddef>
#include <vector>

namespace Xml {

// The elements below one element in document order, itself left out, one at a time. It keeps its place on a stack of its own:
// a walk costs O(nodes), whatever the depth.
//
//     for (ElementWalk walk(top); const Element* element = walk.next();) ...
//
// The tree must not change meanwhile.
class ElementWalk {
public:
    explicit ElementWalk(const Element& top) : place{{&top, 0}} {}

    // The next element; null at the end.
    const Element* next() {
        while (!place.empty()) {
            Place& here = place.back();
            const NodeSpan children = NodeAccess::children(*here.element);
            while (here.child < children.size()) {
                const Object* const node = children[here.child++];
                if (!node->isElement()) continue;
                const auto* const element = static_cast<const Element*>(node);
                if (!NodeAccess::children(*element).empty()) place.push_back({element, 0});
                return element;
            }
            place.pop_back();
        }
        return nullptr;
    }

private:
    struct Place {
        const Element* element;
        std::size_t child;
    };

    std::vector<Place> place;
};

}  // namespace Xml
