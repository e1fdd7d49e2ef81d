#include "xml/xpath/internal/axes/Above.h"

#include "xml/xpath/internal/NodeMap.h"
#include <cstddef>
#include <vector>

namespace Xml {

namespace {

// Takes what is above the context nodes, from first(context) on. A climb ends at the first node that the query may not
// look at any more.
template <class First>
void climb(const NodeList& from, Taker& taker, First first) {
    NodeMap climbed;
    std::vector<Object*> way;
    const Object* last = nullptr;  // the first node of the climb before: many context nodes have the same parent
    for (Object* const context : from.nodes) {
        way.clear();
        std::size_t left = taker.visitsLeft();
        for (Object* node = first(*context); node != nullptr; node = node->getParent()) {
            if (node == last) break;
            if (from.nodes.size() > 1 && !climbed.insert(node).second) break;
            way.push_back(node);
            if (left-- == 0) break;
        }
        if (!way.empty()) last = way.front();
        taker.visit(way.size());
        for (auto node = way.rbegin(); node != way.rend(); ++node) taker.take(**node);
        if (taker.isDone()) return;
    }
}

}  // namespace

void takeParents(const NodeList& from, Taker& taker) {
    NodeMap taken;
    Object* last = nullptr;
    for (Object* const node : from.nodes) {
        if (!isElement(*node) && !isAttribute(*node) && !isCharData(*node)) continue;
        Object* const parent = node->getParent();
        if (parent == nullptr || parent == last) continue;
        last = parent;
        if (from.nodes.size() == 1 || taken.insert(parent).second) taker.take(*parent);
    }
}

void takeAncestors(const NodeList& from, Taker& taker) {
    climb(from, taker, [](Object& context) { return context.getParent(); });
}

void takeAncestorsOrSelf(const NodeList& from, Taker& taker) {
    climb(from, taker, [](Object& context) { return &context; });
}

}  // namespace Xml
