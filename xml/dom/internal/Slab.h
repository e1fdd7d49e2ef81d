#pragma once

#include "xml/dom/internal/SlabStock.h"
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>

#if defined(__SANITIZE_ADDRESS__)
#define ORVXML_POISON 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVXML_POISON 1
#endif
#endif
#ifdef ORVXML_POISON
#include <sanitizer/asan_interface.h>
#endif

namespace Xml {

class Arena;

// 64 KB of memory, at an address that is a multiple of that: a header, nodes from there on up, and what belongs to
// nodes from the end on down. It counts the nodes in it, and goes when the last of them is deleted.
//
// A node in a slab finds it by its address alone, and `delete` finds by that whether there is one: nodes in slabs are
// at addresses 8 modulo 16, where operator new gives multiples of 16.
class Slab {
public:
    static constexpr std::size_t kBytes = std::size_t{64} << 10;

    // What is not asked for. The heap's own words fit in it, so that the next slab may follow right after; and with the
    // room for aligning it, a slab stays below the size from which the heap asks the system for each block.
    static constexpr std::size_t kSpared = 96;

    Slab(const Slab&) = delete;
    Slab& operator=(const Slab&) = delete;

    // A new one, held by what fills it. Its arena is the affair of the caller. From the stock it is where that has one,
    // but under the address sanitizer, which watches the heap alone.
    static Slab* make();
    static Slab* make(SlabStock& stock);
    static void free(Slab* slab, SlabStock::Return& toStock) noexcept;

    // Where the memory comes from: so many bytes, aligned to kBytes. For tests; nothing is kept for reuse then.
    struct Source {
        void* (*take)(std::size_t bytes);  // null when there is none
        void (*give)(void* memory);
    };
    static void setSource(const Source* source);  // null: as at first

    // Of what `delete` is called for. Nodes that are members of something, or on the stack, may lie at such addresses
    // too: for these and all others Marks say it.
    static bool holds(const void* node) { return reinterpret_cast<std::uintptr_t>(node) % 16 == 8; }
    static Slab& of(const void* node) {
        return *reinterpret_cast<Slab*>(reinterpret_cast<std::uintptr_t>(node) & ~(kBytes - 1));
    }

    // Whether the memory is the slab's. Right after a slab, before the next multiple, there may be something else.
    bool contains(const void* memory) {
        const std::less<const void*> before;
        return !before(memory, this) && before(memory, end());
    }

    Arena& arena() const { return *owner; }

    // A node has been deleted.
    static void giveBack(void* node, std::size_t size) noexcept {
        forbid(node, size);
        Slab& slab = of(node);
        slab.noteChange();
        slab.release(1);
    }

#ifdef ORVXML_POISON
    static constexpr bool kIsPoisoned = true;
#else
    static constexpr bool kIsPoisoned = false;
#endif

    // Under the address sanitizer: what is no living node's may not be touched.
    static void allow([[maybe_unused]] const void* memory, [[maybe_unused]] std::size_t size) {
#ifdef ORVXML_POISON
        __asan_unpoison_memory_region(memory, size);
#endif
    }
    static void forbid([[maybe_unused]] const void* memory, [[maybe_unused]] std::size_t size) {
#ifdef ORVXML_POISON
        __asan_poison_memory_region(memory, size);
#endif
    }

private:
    friend class Arena;
    friend class NodeMemory;

    // What fills it holds on to it as so many nodes would.
    static constexpr std::uint32_t kFilling = std::uint32_t{1} << 31;

    Slab() = default;
    static Slab* makeIn(void* memory);

    char* begin() { return reinterpret_cast<char*>(this + 1); }
    char* end() { return reinterpret_cast<char*>(this) + kBytes - kSpared; }

    void noteChange() noexcept;

    // So many nodes, or whatever holds on to it, have gone.
    void release(std::uint32_t number) noexcept;

    Arena* owner = nullptr;
    Slab* next = nullptr;
    std::atomic<std::uint32_t> living{kFilling};
    bool isFromStock = false;
};

static_assert(sizeof(Slab) % 16 == 8, "nodes follow the header");
static_assert(__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= 16, "nodes elsewhere are at multiples of 16");

}  // namespace Xml
