#include "xml/dom/Children.h"

namespace Xml::internal {

std::size_t Children::placeOf(const Object* node) const {
    if (node == nullptr) return nodes.size();
    std::size_t place = nodes.size();
    while (place > 0 && nodes[place - 1] != node) --place;
    return place > 0 ? place - 1 : nodes.size();
}

void Children::makeRoom() {
    if (nodes.size() == nodes.capacity()) nodes.reserve(nodes.empty() ? 1 : 2 * nodes.size());
}

void Children::insert(std::size_t place, std::unique_ptr<Object> node) {
    nodes.insert(nodes.begin() + static_cast<std::ptrdiff_t>(place), node.get());
    node.release();
}

std::unique_ptr<Object> Children::extract(std::size_t place) {
    std::unique_ptr<Object> node(nodes[place]);
    nodes.erase(nodes.begin() + static_cast<std::ptrdiff_t>(place));
    return node;
}

bool Children::deleteCharData() {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i]->isCharData()) {
            delete nodes[i++];
            if (i == nodes.size()) break;
        }
        nodes[kept++] = nodes[i];
    }
    const bool deleted = kept < nodes.size();
    nodes.resize(kept);
    return deleted;
}

}  // namespace Xml::internal
