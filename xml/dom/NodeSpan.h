#pragma once

#include <cstddef>

namespace Xml {
class Attribute;
class Object;
}  // namespace Xml

namespace Xml::internal {

// Nodes side by side that are kept elsewhere: what an element shows of its children and of its attributes, however it
// stores them. A copy costs two words. It is good until the element changes.
//
// Not for callers.
template <class Node>
class SpanOf {
public:
    SpanOf() = default;
    SpanOf(Node* const* itsBegin, Node* const* itsEnd) : from(itsBegin), to(itsEnd) {}

    Node* const* begin() const { return from; }
    Node* const* end() const { return to; }
    std::size_t size() const { return static_cast<std::size_t>(to - from); }
    bool empty() const { return from == to; }

    // A place below size().
    Node* operator[](std::size_t i) const { return from[i]; }

private:
    Node* const* from = nullptr;
    Node* const* to = nullptr;
};

using NodeSpan = SpanOf<Object>;
using AttributeSpan = SpanOf<Attribute>;

}  // namespace Xml::internal
