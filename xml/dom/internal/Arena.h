#pragma once

#include "xml/dom/Object.h"
#include "xml/dom/internal/PlaceTable.h"
#include "xml/dom/internal/Slab.h"
#include "xml/dom/internal/SlabStock.h"
#include "xml/stream/internal/Scan.h"
#include "xml/text/DataHolder.h"
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace Xml {

class Attribute;
class Element;

namespace internal {

// A string that took the place of bytes in the memory of a tree (see Text).
struct KeptText {
    DataHolder text;
    KeptText* next = nullptr;
};

}  // namespace internal

using internal::KeptText;

// A name that the nodes of a tree share. The first ones lie in the first slab, the others in the heap.
struct SharedName {
    SharedName(std::string_view name, Words::Word itsHead, SharedName* itsNext)
        : text(name.size() <= sizeof head ? shortText(itsHead, name.size()) : std::string(name)),
          next(itsNext),
          number(itsNext != nullptr ? itsNext->number + 1 : 0),
          head(itsHead),
          headMask(Words::maskOf(name.size())) {}

    // Whether it has to be destroyed where it lies in memory that goes: of a short text nothing lies elsewhere.
    bool hasMemory() const { return text.size() > std::string().capacity(); }

    // The first bytes of a name, as `head` has them.
    static Words::Word headOf(std::string_view name) { return Words::wordOf(name.data(), name.size()); }

    // Whether it is this name, of which that is the head.
    bool is(std::string_view name, Words::Word itsHead) const {
        return head == itsHead && text.size() == name.size() && (name.size() <= sizeof head || text == name);
    }

    // Whether the run of bytes begins with the name.
    [[gnu::always_inline]] bool begins(const char* from, const char* to) const {
        return to - from < Scan::kWordSize ? beginsInSteps(from, to) : beginsWithin(from, to);
    }

    // The same where that has at least as many bytes as a word.
    [[gnu::always_inline]] bool beginsWithin(const char* from, const char* to) const {
        if (((Scan::wordAt(from) ^ head) & headMask) != 0) return false;
        return text.size() <= sizeof head || continues(from, to);
    }

    [[gnu::noinline]] bool beginsInSteps(const char* from, const char* to) const {
        return Scan::startsWith(from, to, text);
    }

    // The same where it begins with the first bytes of the name, and that has more.
    [[gnu::always_inline]] bool continues(const char* from, const char* to) const {
        const std::size_t size = text.size();
        if (static_cast<std::size_t>(to - from) < size) return false;
        const std::size_t last = size - sizeof head;
        return Scan::wordAt(from + last) == Scan::wordAt(text.data() + last) &&
               (size <= 2 * sizeof head || beginsInSteps(from, to));
    }

    // In the byte order of the texts. It is that of these numbers, where they differ; no name has 0.
    bool isBefore(const SharedName& other) const {
        return head != other.head ? order() < other.order() : text < other.text;
    }
    Words::Word order() const { return __builtin_bswap64(head); }

    // A text that its head has all of, copied in one step, in line: a small document has mostly new names.
    [[gnu::flatten]] static std::string shortText(Words::Word head, std::size_t size) {
        char bytes[sizeof head];
        Words::putWord(head, bytes);
        std::string text(bytes, sizeof bytes);
        text.erase(size);
        return text;
    }

    std::string text;
    SharedName* next;                // of those in the arena
    std::uint32_t number;            // in the order in which they were made
    mutable std::uint32_t note = 0;  // the affair of what reads the tree
    Scan::Word head;                 // its first bytes, and then zeros ...
    Scan::Word headMask;             // ... and which of them are its own
};

// The memory of one tree that was read or copied in one go: all nodes below its top element, their names, their texts
// and the arrays of their children. The top element itself is in the heap.
//
// While the tree stays as it was made, nothing in it has to be destroyed, and the end of the top element drops the
// memory whole. After the first change nodes are deleted one by one, and each slab goes with the last node in it. So
// parts of the tree may outlive the rest, in other trees, and in other threads. What slabs share goes with the last of
// them.
class Arena {
public:
    // The arena of a node that is in one.
    static Arena& of(const void* node) { return Slab::of(node).arena(); }

    // Notes that the node is not as it was made, or is not where it was.
    static void noteChange(const Object& node);
    void noteChange() { changed.store(true, std::memory_order_relaxed); }

    // The arena that all below the element is in, and nothing else; null without one.
    static Arena* wholeBelow(const Element& top);

    // The bytes of the arena of a tree that is below the element since it was made, with all that is in them; else 0.
    static std::size_t bytesBelow(const Element& top);

    // Gives back the memory of everything in it at once.
    void drop();

    // Where a node in it was read that holds that offset.
    Place placeOf(std::int64_t offset) const { return places->of(offset); }

    // Keeps a string until the arena goes. Any thread may do so.
    KeptText& keep(std::unique_ptr<KeptText> text);

private:
    friend class NodeMemory;
    friend class Slab;

    // An element in a slab whose children or attributes are too many for one.
    struct WideElement {
        Element* element;
        WideElement* next;
    };

    explicit Arena(Slab& first) : newest(&first) {}
    ~Arena();

    // A slab has lost its last node.
    void release(Slab& slab);

    Slab* newest;  // from there on all of them, as long as none has gone; the arena itself lies in the oldest
    std::atomic<std::uint32_t> slabs{1};
    std::atomic<bool> changed{false};
    const Element* top = nullptr;
    std::atomic<KeptText*> kept{nullptr};
    SharedName* names = nullptr;
    bool namesHaveMemory = false;  // that one of the names does not go with the slab
    WideElement* wide = nullptr;
    std::unique_ptr<const PlaceTable> places;  // where nodes hold offsets
};

// The one way to put nodes into an arena: what reads or copies a tree has one and lets it go at the end. Memory is
// taken when it is first needed.
class NodeMemory {
public:
    NodeMemory() = default;
    NodeMemory(const NodeMemory&) = delete;
    NodeMemory& operator=(const NodeMemory&) = delete;
    ~NodeMemory();

    // The most bytes that belong to one thing in a slab, so that little is left over at its end.
    static constexpr std::size_t kMostBytes = 1024;

    // Room for a node, and in the same slab for bytes of it, at most kMostBytes.
    struct Room {
        void* node;
        char* bytes;
    };
    template <class Node>
    Room takeNode(std::size_t byteCount = 0) {
        constexpr std::size_t size = (sizeof(Node) + 15) / 16 * 16;  // the next node has to be at 8 modulo 16 again
        Part& part = partFor<Node>();
        if (part.left() < size + byteCount) addSlab(part);
        Room room{part.low, part.high - byteCount};
        part.low += size;
        part.high -= byteCount;
        ++part.count;
        Slab::allow(room.node, size);
        Slab::allow(room.bytes, byteCount);
        return room;
    }

    // Room for several nodes side by side, and for bytes of theirs, aligned for pointers; those count as `arrays` nodes
    // more. At most kMostBytes in all.
    template <class Node>
    Room takeNodes(std::size_t count, std::size_t arrays, std::size_t byteCount) {
        const std::size_t size = count * sizeof(Node);
        Part& part = partFor<Node>();
        if (part.left() < size + byteCount + alignof(void*)) addSlab(part);
        char* const bytes = part.high - byteCount;
        const Room room{part.low, bytes - reinterpret_cast<std::uintptr_t>(bytes) % alignof(void*)};
        part.low += size;
        part.high = room.bytes;
        part.count += static_cast<std::uint32_t>(count + arrays);
        Slab::allow(room.node, size);
        Slab::allow(room.bytes, byteCount);
        return room;
    }

    // Room for an array of such nodes in a slab, at most kMostBytes. It counts as a node does.
    template <class Node>
    void* takeArray(std::size_t size) {
        return takeNodes<Node>(0, 1, size).bytes;
    }

    // The array of the element does not fit into a slab.
    void noteWide(Element& element);

    // A name that lives as long as anything of the arena, with its head.
    SharedName& takeName(std::string_view name, Words::Word head) {
        SharedName* const taken = takeNameAtHand(name, head);
        return taken != nullptr ? *taken : takeNameElsewhere(name, head);
    }

    // The same where there is room for it at hand, null elsewhere.
    [[gnu::always_inline]] SharedName* takeNameAtHand(std::string_view name, Words::Word head) {
        constexpr std::size_t kSize = sizeof(SharedName) + alignof(SharedName);
        constexpr std::uint32_t kFew = 16;  // small trees have no more, and should need no other memory
        if (slabCount != 1 || nameCount == kFew || nodes.left() < kSize) return nullptr;
        ++nameCount;
        char* const end = nodes.high - sizeof(SharedName);
        nodes.high = end - reinterpret_cast<std::uintptr_t>(end) % alignof(SharedName);
        Slab::allow(nodes.high, sizeof(SharedName));
        arena->names = ::new (nodes.high) SharedName(name, head, arena->names);
        if (arena->names->hasMemory()) arena->namesHaveMemory = true;
        return arena->names;
    }

    // A string that is kept as long.
    KeptText& takeText(std::string_view text);

    // Where the nodes in the arena that hold offsets were read.
    void keepPlaces(std::unique_ptr<const PlaceTable> places);

    // All that is in the arena is below this element, which is in the heap, and will be: its end may drop all at once.
    void finish(const Element& top);

private:
    // A slab that is being filled.
    struct Part {
        std::size_t left() const { return static_cast<std::size_t>(high - low); }

        Slab* slab = nullptr;
        char* low = nullptr;   // from here on up nodes ...
        char* high = nullptr;  // ... and from here on down what belongs to them
        std::uint32_t count = 0;
    };

    template <class Node>
    Part& partFor() {
        return std::is_same_v<Node, Attribute> ? *forAttributes : nodes;
    }

    SharedName& takeNameElsewhere(std::string_view name, Words::Word head);
    void addSlab(Part& part);
    void close();
    static void close(const Part& part);

    Arena* arena = nullptr;
    SlabStock stock;
    std::uint32_t slabCount = 0;

    // Most walks go through elements and texts, and look at few attributes. So the attributes of larger trees lie
    // apart: what a walk needs is side by side in memory, where the processor fetches it ahead.
    Part nodes;
    Part apart;
    Part* forAttributes = &nodes;

    std::uint32_t nameCount = 0;
};

}  // namespace Xml
