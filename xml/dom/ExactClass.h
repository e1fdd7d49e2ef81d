#pragma once

#include <atomic>
#include <cstdint>

namespace Xml {

class Object;

// The library's own classes of nodes that its loops treat themselves, and any other.
enum class NodeClass : std::uint8_t { Unknown, Other, Attribute, CharData, Element };

// Which of these classes a node is exactly an object of. Loops over trees do the work of exactly these classes inline;
// an object of any other class, also of one derived from them, may override what they would do and gets its operations
// called.
//
// The constructors of a node cannot know: those of a derived class run the same ones. So what makes a node in the
// library says what it made, and any other node is looked at when it is first asked about; the answer stays with it. No
// code of a caller runs before a node of these classes is whole, so it is never asked too early. Several threads may
// ask at the same time: each finds the same.
//
// Not for callers.
class ExactClass {
public:
    ExactClass() = default;

    // A copy starts anew: it may be an object of another class.
    ExactClass(const ExactClass&) noexcept {}
    ExactClass& operator=(const ExactClass&) = delete;
    ~ExactClass() = default;

    // What `node`, the one that this belongs to, is.
    NodeClass of(const Object& node) const {
        const NodeClass known = value.load(std::memory_order_relaxed);
        return known != NodeClass::Unknown ? known : look(node);
    }

    void set(NodeClass made) { value.store(made, std::memory_order_relaxed); }

    // Whether it has been said or found out already.
    bool isKnown() const { return value.load(std::memory_order_relaxed) != NodeClass::Unknown; }

private:
    NodeClass look(const Object& node) const;

    mutable std::atomic<NodeClass> value{NodeClass::Unknown};
};

}  // namespace Xml
