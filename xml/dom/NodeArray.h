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

// Pointers to nodes side by side, in one word: none, one, or the address of several in memory. Most elements have no
// attribute or one, and one child or none, and need no memory for that. The lowest bits of an address are free: they
// say how many there are, where these are few and no more will come, as in a tree that was read; else their number
// stands before them. It does not own the nodes.
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
        giveMemoryBack();
        word = nullptr;
    }

    // The same where the memory of the tree goes as a whole: a block in that goes with it.
    void dropWithTree() {
        if (isBlock() && !block().isLent) ::operator delete(&block());
        word = nullptr;
    }

    // Good until the next change.
    SpanOf<Node> span() const {
        if (!isMany()) return {&word, &word + (word != nullptr ? 1 : 0)};
        Node* const* const first = nodes();
        return {first, first + size()};
    }

    std::size_t size() const { return isBlock() ? block().size : isMany() ? tag() : word != nullptr ? 1 : 0; }
    bool empty() const { return word == nullptr || (isBlock() && block().size == 0); }

    // A place below size().
    Node* operator[](std::size_t place) const { return isMany() ? nodes()[place] : word; }
    void set(std::size_t place, Node* node) { (isMany() ? nodes() : &word)[place] = node; }

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
        Node** const at = nodes() + place;
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
        if (!isMany()) return &word;
        if (!isBlock()) return nodes() + tag();  // there is no room for any
        Node** const end = nodes() + block().size;
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
        if (isMany()) std::memmove(nodes() + place, nodes() + place + 1, (size() - 1 - place) * sizeof(Node*));
        truncate(size() - 1);
        return node;
    }

    // Drops those from there on.
    void truncate(std::size_t count) {
        if (isBlock()) {
            block().size = static_cast<std::uint32_t>(count);
        } else if (count > 1) {
            if (isMany()) setWord(nodes(), count);
        } else {
            Node* const first = count == 1 ? (*this)[0] : nullptr;
            giveMemoryBack();
            word = first;
        }
    }

    // What a block of so many nodes takes; room for them in memory beside the nodes of a tree, for an array that has
    // none of its own and no node.
    static std::size_t bytesFor(std::size_t count) { return sizeof(Block) + count * sizeof(Node*); }
    void lend(void* memory, std::size_t count) { setBlock(makeBlock(memory, count, true)); }

    // The same with so many nodes, at least two, whose pointers are to be put there. Nothing of the memory is read:
    // fresh memory is not in the processor's cache.
    static std::size_t bytesForFull(std::size_t count) {
        return count <= kMostTagged ? count * sizeof(Node*) : bytesFor(count);
    }
    Node** lendFull(void* memory, std::size_t count) {
        if (count <= kMostTagged) {
            setWord(static_cast<Node**>(memory), count);
        } else {
            setBlock(makeBlock(memory, count, true, count));
        }
        return nodes();
    }

private:
    static_assert(sizeof(Block) % alignof(Node*) == 0, "the pointers follow the block");

    // In the lowest bits of the word: nothing where it is no address of several nodes; else how many there are, or that
    // these are in a block.
    static constexpr std::uintptr_t kTag = 7;
    static constexpr std::uintptr_t kOfBlock = 1;
    static constexpr std::size_t kMostTagged = kTag;
    static_assert(alignof(Node*) > kTag, "pointers leave room for the tag");

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

    std::uintptr_t tag() const { return reinterpret_cast<std::uintptr_t>(word) & kTag; }
    bool isMany() const { return tag() != 0; }
    bool isBlock() const { return tag() == kOfBlock; }
    Node** nodes() const { return reinterpret_cast<Node**>(reinterpret_cast<std::uintptr_t>(word) & ~kTag); }
    Block& block() const { return reinterpret_cast<Block*>(nodes())[-1]; }
    void setBlock(Block* made) { setWord(made->nodes(), kOfBlock); }
    void setWord(Node** nodes, std::uintptr_t tag) {
        word = reinterpret_cast<Node*>(reinterpret_cast<std::uintptr_t>(nodes) | tag);
    }
    std::size_t capacity() const { return isBlock() ? block().capacity : isMany() ? tag() : 1; }

    void giveMemoryBack() {
        if (!isMany()) return;
        if (!isBlock()) {
            giveBackLent(nodes());
        } else if (block().isLent) {
            giveBackLent(&block());
        } else {
            ::operator delete(&block());
        }
    }

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

    Node* word = nullptr;  // none, the one, or the address of several, with a tag
};

}  // namespace Xml::internal
