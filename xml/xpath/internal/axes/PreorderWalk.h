#pragma once

#include "xml/dom/Document.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include <cstddef>
#include <vector>

namespace Xml {

// The children of an element; none for any other node.
inline NodeSpan elementChildren(const Object& node) {
    return isElement(node) ? NodeAccess::children(static_cast<const Element&>(node)) : NodeSpan();
}

// The same, and of a document its root, which is put into `root`; the span is good as long as that is then.
inline NodeSpan childrenOf(Object& node, Object*& root) {
    if (isElement(node) || !node.isDocument()) return elementChildren(node);
    root = static_cast<Document&>(node).getRoot();
    return {&root, &root + (root != nullptr ? 1 : 0)};
}

// The nodes below a node in document order, one at a time. It keeps its place on a stack of its own. The tree must not
// change meanwhile. The model tests of the axes hold it.
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
        if (!below.empty()) open.push_back({below.begin(), below.end()});
        for (; !open.empty(); open.pop_back()) {
            Row& row = open.back();
            if (row.next == row.end) continue;
            Object* const node = *row.next++;
            below = elementChildren(*node);
            return node;
        }
        below = {};
        return nullptr;
    }

    // The children of the node that came last, or of the one that the walk starts from.
    NodeSpan children() const { return below; }

    // Leaves out what is below the node that came last.
    void skipBelow() { below = {}; }

    // How many nodes are above the one that came last, the one that the walk starts from included.
    std::size_t depth() const { return open.size(); }

private:
    struct Row {
        Object* const* next;
        Object* const* end;
    };

    std::vector<Row> open;
    NodeSpan below;
    Object* root = nullptr;  // what a document has in place of children
};

}  // namespace Xml
