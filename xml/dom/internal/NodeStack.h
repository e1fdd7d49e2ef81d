#pragma once

#include "xml/dom/Object.h"
#include <cstddef>
#include <memory>
#include <vector>

namespace Xml {

// Nodes that are made but have no place in a tree yet, the newest last. It owns them; plain pointers make it quick to
// hand over many at once.
class NodeStack {
public:
    NodeStack() = default;
    NodeStack(const NodeStack&) = delete;
    NodeStack& operator=(const NodeStack&) = delete;
    ~NodeStack() {
        for (Object* const node : nodes) delete node;
    }

    std::size_t size() const { return nodes.size(); }
    const Object& operator[](std::size_t place) const { return *nodes[place]; }

    // Where memory runs out the node is deleted, and nothing else has changed.
    void push(std::unique_ptr<Object> node) {
        nodes.push_back(node.get());
        node.release();
    }

    // Room for one more than `count`: with so many on the stack the next push cannot fail.
    void makeRoomAt(std::size_t count) {
        if (count == nodes.capacity()) nodes.reserve(2 * count + 8);
    }

    // Those from there on, up to the newest; good until the next push. To hand them over: first they get their owner,
    // and then they leave the stack.
    Object* const* from(std::size_t place) const { return nodes.data() + place; }
    void leave(std::size_t place) { nodes.resize(place); }

private:
    std::vector<Object*> nodes;
};

}  // namespace Xml
