#pragma once

#include <atomic>
#include <cstdint>

namespace Xml {
class Object;
}  // namespace Xml

namespace Xml::internal {

// The library's own classes of nodes that its loops treat themselves, and any other.
enum class NodeClass : std::uint8_t {
    Unknown,
    Other,
    Attribute,
    Element,
    Comment,  // from here on: leaves among children
    Instruction,
    CharData,  // from here on: character data
    CDataSection,
};

// Which of these classes a node is exactly an object of. Loops over trees do the work of exactly these classes inline;
// an object of any other class, also of one derived from them, may override what they would do and gets its operations
// called.
//
// The constructors of a node cannot know: those of a derived class run the same ones. So what makes a node in the
// library says what it made, and any other node is looked at when it is first asked about; the answer stays with it.
// Where code of a caller may ask before a node is whole, as while an element is copied, the answer is forgotten at the
// end. Several threads may ask at the same time: each finds the same.
//
// Not for callers.
class ExactClass {
public:
    ExactClass() = default;
    explicit ExactClass(NodeClass made) : value(made) {}

    // A copy starts anew: it may be an object of another class.
    ExactClass(const ExactClass&) noexcept {}
    ExactClass& operator=(const ExactClass&) = delete;
    ~ExactClass() = default;

    // What `node`, the one that this belongs to, is.
    NodeClass of(const Object& node) const {
        const NodeClass found = known();
        return found != NodeClass::Unknown ? found : look(node);
    }

    // What has been said or found out.
    NodeClass known() const { return value.load(std::memory_order_relaxed); }

    void set(NodeClass made) { value.store(made, std::memory_order_relaxed); }

private:
    NodeClass look(const Object& node) const;

    mutable std::atomic<NodeClass> value{NodeClass::Unknown};
};

}  // namespace Xml::internal
