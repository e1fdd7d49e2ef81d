#pragma once

#include "xml/dom/NodeArray.h"
#include "xml/dom/NodeSpan.h"
#include "xml/dom/Object.h"
#include <cstddef>
#include <memory>

namespace Xml::internal {

// The child nodes of one element, in document order. It owns them; what comes in or goes out does so as a unique_ptr.
// It sets neither links nor parents: that is the element's affair.
//
// Not for callers.
class Children {
public:
    using Node = Object;

    Children() = default;
    Children(const Children&) = delete;
    Children& operator=(const Children&) = delete;

    // Deletes what is left. The element empties it before, where what is below the children may be deep.
    ~Children() {
        for (const Object* node : nodes.span()) delete node;
    }

    // Good until the next change.
    NodeSpan span() const { return nodes.span(); }

    std::size_t size() const { return nodes.size(); }
    bool empty() const { return nodes.empty(); }

    // A place below size().
    Object* operator[](std::size_t place) const { return nodes[place]; }

    // The last one; there must be one.
    Object* last() const { return nodes[nodes.size() - 1]; }

    // Where the node is; size() when it is no child. It is looked for from the end, where lists are edited most and
    // where taking out costs least.
    std::size_t placeOf(const Object* node) const;

    // Room for so many, and for one more than there are: adding these cannot fail then.
    void reserve(std::size_t count) { nodes.reserve(count); }
    void makeRoom() { nodes.makeRoom(); }

    // Adding; amortised O(1) at the end. Where memory runs out the node is deleted and nothing has changed.
    void append(std::unique_ptr<Object> node) {
        nodes.append(node.get());
        node.release();
    }
    void insert(std::size_t place, std::unique_ptr<Object> node) {
        nodes.insert(place, node.get());
        node.release();
    }

    // Taking out. Needs no memory.
    std::unique_ptr<Object> extract(std::size_t place) { return std::unique_ptr<Object>(nodes.remove(place)); }
    std::unique_ptr<Object> extractLast() { return extract(nodes.size() - 1); }

    // Another node in the place of one, which comes out. Needs no memory.
    std::unique_ptr<Object> exchange(std::size_t place, std::unique_ptr<Object> node) {
        std::unique_ptr<Object> before(nodes[place]);
        nodes.set(place, node.release());
        return before;
    }

    // Puts the nodes, all of them and no others, in this order. Needs no memory.
    void reorder(Object* const* inOrder) {
        for (std::size_t i = 0; i < nodes.size(); ++i) nodes.set(i, inOrder[i]);
    }

    // Memory beside the nodes of a tree (see NodeArray); what is dropped with that is forgotten, and not deleted.
    static std::size_t bytesForFull(std::size_t count) { return NodeArray<Object>::bytesForFull(count); }
    Object** extend(std::size_t count) { return nodes.extend(count); }
    void lend(void* memory, std::size_t count) { nodes.lend(memory, count); }
    Object** lendFull(void* memory, std::size_t count) { return nodes.lendFull(memory, count); }
    void dropWithTree() { nodes.dropWithTree(); }

    // Forgets the nodes, which are another's now.
    void forget() { nodes.clear(); }

    // Deletes the character data, except the node after each one that goes: of two in a row the second stays. Whether
    // there was any.
    bool deleteCharData();

private:
    NodeArray<Object> nodes;
};

}  // namespace Xml::internal
