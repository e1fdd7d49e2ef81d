#include "xml/dom/Children.h"

namespace Xml::internal {

std::size_t Children::placeOf(const Object* node) const {
    if (node == nullptr) return nodes.size();
    std::size_t place = nodes.size();
    while (place > 0 && nodes[place - 1] != node) --place;
    return place > 0 ? place - 1 : nodes.size();
}

bool Children::deleteCharData() {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i]->isCharData()) {
            delete nodes[i++];
            if (i == nodes.size()) break;
        }
        nodes.set(kept++, nodes[i]);
    }
    const bool deleted = kept < nodes.size();
    nodes.truncate(kept);
    return deleted;
}

}  // namespace Xml::internal
