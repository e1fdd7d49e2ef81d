#pragma once

#include "xml/dom/Document.h"
#include "xml/dom/internal/NodeAccess.h"
#include <vector>

namespace Xml {

// A run of nodes.
struct NodeRange {
    Object* const* at = nullptr;
    Object* const* end = nullptr;

    bool empty() const { return at == end; }
};

// The children of an element; none for any other node.
inline NodeRange elementChildren(const Object& node) {
    if (!node.isElement()) return {};
    const NodeSpan children = NodeAccess::children(static_cast<const Element&>(node));
    return {children.begin(), children.end()};
}

// The same, and of a document its root, which is put into `root`; the range is good as long as that is then.
inline NodeRange childrenOf(Object& node, Object*& root) {
    if (!node.isDocument()) return elementChildren(node);
    root = static_cast<Document&>(node).getRoot();
    return {&root, &root + (root != nullptr ? 1 : 0)};
}

// The nodes below a node in document order, one at a time. It keeps its place on a stack of its own. The tree must not change
// meanwhile.
class PreorderWalk {
public:
    PreorderWalk() = default;
    PreorderWalk(const PreorderWalk&) = delete;
    PreorderWalk& operator=(const PreorderWalk&) = delete;

    // Begins anew below that node.
    void start(Object& top) {
        open.clear();
        below = childrenOf(top, root);
    }

    // The next node; null at the end.
    Object* next() {
        if (!below.empty()) open.push_back(below);
        for (; !open.empty(); open.pop_back()) {
            NodeRange& range = open.back();
            if (range.empty()) continue;
            Object* const node = *range.at++;
            below = elementChildren(*node);
            return node;
        }
        below = {};
        return nullptr;
    }

    // The children of the node that came last, or of the one that the walk starts from.
    NodeRange children() const { return below; }

    // Leaves out what is below the node that came last.
    void skipBelow() { below = {}; }

    // How many nodes are above the one that came last, the one that the walk starts from included.
    std::size_t depth() const { return open.size(); }

private:
    std::vector<NodeRange> open;
    NodeRange below;
    Object* root = nullptr;  // what a document has in place of children
};

}  // namespace Xml
