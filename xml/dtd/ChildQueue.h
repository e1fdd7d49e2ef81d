#pragma once

#include "xml/Export.h"
#include <cstddef>
#include <vector>

namespace Xml {

class Object;

// The child nodes of one element still waiting to be matched: a cursor over the element's own list, which passes over
// comments and instructions.
//
// A copy is a snapshot: matching takes one before it tries an alternative and assigns it back when that fails. Copying
// costs two words, whatever the number of children. The list must outlive the queue and must not change under it.
class ORVXML_API ChildQueue {
public:
    // An empty queue.
    ChildQueue() = default;

    explicit ChildQueue(const std::vector<Object*>& children);

    bool empty() const { return waiting == 0; }

    // How many nodes are waiting.
    std::size_t size() const { return waiting; }

    // The node at the head. The queue must not be empty.
    Object* front() const { return *head; }

    // Takes the node at the head. The queue must not be empty.
    void pop();

    // Whether both wait at the same place of the same list.
    bool operator==(const ChildQueue& other) const { return head == other.head && waiting == other.waiting; }

private:
    friend class Matcher;

    // Over nodes that stand side by side, however the element stores them.
    ORVXML_LOCAL ChildQueue(Object* const* begin, Object* const* end);

    // Goes on to the next node that is waiting; there must be one.
    ORVXML_LOCAL void skip();

    Object* const* head = nullptr;  // a node that is waiting, as long as there is one
    std::size_t waiting = 0;
};

}  // namespace Xml
