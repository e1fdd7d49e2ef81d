#pragma once

#include "xml/Export.h"
#include "xml/dom/NodeSpan.h"
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

namespace Xml::internal {

// Gives memory back that lies beside the nodes of a tree.
ORVXML_LOCAL void giveBackLent(void* memory) noexcept;

// Pointers to nodes side by side, in one word: none, one, or a block in memory that begins with their number. Most
// elements have no attribute or one, and one child or none, and need no memory for that. It does not own the nodes.
//
// Not for callers.
template <class Node>
class NodeArray {
public:
    // The number of nodes in a block, and what fits into it; the pointers follow it in memory.
    struct Block {
        std::uint32_t size;
        std::uint32_t capacity : 31;
        std::uint32_t isLent : 1;  // its memory lies beside the nodes of a tree

        Node** nodes() { return reinterpret_cast<Node**>(this + 1); }
    };

    NodeArray() = default;
    NodeArray(const NodeArray&) = delete;
    NodeArray& operator=(const NodeArray&) = delete;
    ~NodeArray() { clear(); }

    // Forgets the nodes, and gives its memory back.
    void clear() {
        if (isBlock()) {
            if (block().isLent) {
                giveBackLent(&block());
            } else {
                ::operator delete(&block());
            }
        }
        word = nullptr;
    }

    // The same where the memory of the tree goes as a whole: a block in that goes with it.
    void dropWithTree() {
        if (isBlock() && !block().isLent) ::operator delete(&block());
        word = nullptr;
    }

    // Good until the next change.
    SpanOf<Node> span() const {
        if (!isBlock()) return {&word, &word + (word != nullptr ? 1 : 0)};
        Node* const* const nodes = block().nodes();
        return {nodes, nodes + block().size};
    }

    std::size_t size() const { return isBlock() ? block().size : word != nullptr ? 1 : 0; }
    bool empty() const { return word == nullptr || (isBlock() && block().size == 0); }

    // A place below size().
    Node* operator[](std::size_t place) const { return isBlock() ? block().nodes()[place] : word; }
    void set(std::size_t place, Node* node) { (isBlock() ? block().nodes() : &word)[place] = node; }

    // A number beside the nodes, of the array of attributes where its block is in the heap: 0 at first, kept while
    // nodes come and go. Null elsewhere.
    std::uint64_t* note() const { return kHasNote && isBlock() && !block().isLent ? noteOf(block()) : nullptr; }

    // Room for so many, and for one more than there are: adding these cannot fail then.
    void reserve(std::size_t count) {
        if (count > capacity()) grow(count);
    }
    void makeRoom() {
        if (size() == capacity()) grow(size() < 2 ? 4 : 2 * size());
    }

    // A place up to size(). Amortised O(1) at the end; where memory runs out nothing has changed.
    void insert(std::size_t place, Node* node) {
        makeRoom();
        if (!isBlock()) {
            word = node;
            return;
        }
        Node** const at = block().nodes() + place;
        std::memmove(at + 1, at, (block().size - place) * sizeof(Node*));
        *at = node;
        ++block().size;
    }
    void append(Node* node) {
        makeRoom();
        *extend(1) = node;
    }

    // Room for so many more at the end, where there is such: their pointers are to be put there.
    Node** extend(std::size_t count) {
        if (!isBlock()) return &word;
        Node** const end = block().nodes() + block().size;
        block().size += static_cast<std::uint32_t>(count);
        return end;
    }

    // Puts nodes at the end, where there is room for them. They count when it goes.
    class Filling {
    public:
        explicit Filling(NodeArray& toFill) : array(toFill), first(toFill.extend(0)), at(first) {}
        ~Filling() { array.extend(static_cast<std::size_t>(at - first)); }
        Filling(const Filling&) = delete;
        Filling& operator=(const Filling&) = delete;

        void put(Node* node) { *at++ = node; }

    private:
        NodeArray& array;
        Node** first;
        Node** at;
    };

    // A place below size(). Needs no memory.
    Node* remove(std::size_t place) {
        Node* const node = (*this)[place];
        if (!isBlock()) {
            word = nullptr;
            return node;
        }
        Node** const at = block().nodes() + place;
        --block().size;
        std::memmove(at, at + 1, (block().size - place) * sizeof(Node*));
        return node;
    }

    // Drops those from there on.
    void truncate(std::size_t size) {
        if (isBlock()) {
            block().size = static_cast<std::uint32_t>(size);
        } else if (size == 0) {
            word = nullptr;
        }
    }

    // What a block of so many nodes takes; room for them in memory beside the nodes of a tree, for an array that has
    // none of its own and no node.
    static std::size_t bytesFor(std::size_t count) { return sizeof(Block) + count * sizeof(Node*); }
    void lend(void* memory, std::size_t count) { setBlock(makeBlock(memory, count, true)); }

    // The same with so many nodes, whose pointers are to be put there. Nothing of the memory is read: fresh memory
    // is not in the processor's cache.
    Node** lendFull(void* memory, std::size_t count) {
        Block* const made = makeBlock(memory, count, true, count);
        setBlock(made);
        return made->nodes();
    }

private:
    static_assert(sizeof(Block) % alignof(Node*) == 0, "the pointers follow the block");

    static constexpr std::uintptr_t kBlockBit = 1;
    static constexpr bool kHasNote = std::is_same_v<Node, Attribute>;

    // After the room for the nodes.
    static std::uint64_t* noteOf(Block& block) {
        return reinterpret_cast<std::uint64_t*>(block.nodes() + block.capacity);
    }

    static Block* makeBlock(void* memory, std::size_t capacity, bool isLent, std::size_t size = 0) {
        constexpr std::uint32_t kMost = std::numeric_limits<std::int32_t>::max();
        return ::new (memory)
            Block{static_cast<std::uint32_t>(size), static_cast<std::uint32_t>(capacity) & kMost, isLent};
    }

    bool isBlock() const { return (reinterpret_cast<std::uintptr_t>(word) & kBlockBit) != 0; }
    Block& block() const { return *reinterpret_cast<Block*>(reinterpret_cast<std::uintptr_t>(word) & ~kBlockBit); }
    void setBlock(Block* made) { word = reinterpret_cast<Node*>(reinterpret_cast<std::uintptr_t>(made) | kBlockBit); }
    std::size_t capacity() const { return isBlock() ? block().capacity : 1; }

    void grow(std::size_t count) {
        if (count > std::numeric_limits<std::int32_t>::max()) throw std::bad_alloc();
        Block* const made =
            makeBlock(::operator new(bytesFor(count) + (kHasNote ? sizeof(std::uint64_t) : 0)), count, false);
        if (kHasNote) *noteOf(*made) = note() != nullptr ? *note() : 0;
        const SpanOf<Node> before = span();
        made->size = static_cast<std::uint32_t>(before.size());
        std::memcpy(made->nodes(), before.begin(), before.size() * sizeof(Node*));
        clear();
        setBlock(made);
    }

    Node* word = nullptr;  // none, the one, or the address of the block with its lowest bit set
};

}  // namespace Xml::internal
