#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory_resource>
#include <new>

namespace Xml {

// Memory for what the text of a query is taken apart into: pieces of it on the stack one after the other, as long as
// there is room, then pieces of the heap. tests/memory runs queries whose every piece comes from the heap.
class QueryMemory final : public std::pmr::memory_resource {
public:
    QueryMemory() = default;
    QueryMemory(const QueryMemory&) = delete;
    QueryMemory& operator=(const QueryMemory&) = delete;

    // Whether there is no room on the stack. For tests, while no query runs.
    static inline bool isFromHeap = false;

private:
    static constexpr std::size_t kAlignment = alignof(std::max_align_t);

    void* do_allocate(std::size_t bytes, std::size_t) override {
        const std::size_t size = (bytes + kAlignment - 1) / kAlignment * kAlignment;
        if (isFromHeap || size > room.size() - taken) return ::operator new(bytes);
        void* const piece = room.data() + taken;
        taken += size;
        return piece;
    }

    // Pieces of the stack are not used again.
    void do_deallocate(void* piece, std::size_t, std::size_t) override {
        const std::less<const void*> isBefore;
        if (isBefore(piece, room.data()) || !isBefore(piece, room.data() + room.size())) ::operator delete(piece);
    }

    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override { return this == &other; }

    // A path of some 100 characters needs no more.
    alignas(kAlignment) std::array<std::byte, 4096> room;
    std::size_t taken = 0;
};

}  // namespace Xml
