#pragma once

#include <cstddef>

namespace Xml {

class Attribute;
class Object;

// Nodes side by side that are kept elsewhere: what an element shows of its children and of its attributes, however it stores
// them. A copy costs two words. It is good until the element changes.
//
// Not for callers.
template <class Node>
class SpanOf {
public:
    SpanOf() = default;
    SpanOf(Node* const* itsBegin, Node* const* itsEnd) : first(itsBegin), last(itsEnd) {}

    Node* const* begin() const { return first; }
    Node* const* end() const { return last; }
    std::size_t size() const { return static_cast<std::size_t>(last - first); }
    bool empty() const { return first == last; }

    // A place below size().
    Node* operator[](std::size_t i) const { return first[i]; }

private:
    Node* const* first = nullptr;
    Node* const* last = nullptr;
};

using NodeSpan = SpanOf<Object>;
using AttributeSpan = SpanOf<Attribute>;

}  // namespace Xml
