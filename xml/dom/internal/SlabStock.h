#pragma once

namespace Xml {

// Where the slabs of larger trees come from: memory in large pages, which the system gives in a tenth of the time. What
// trees give back is kept for the next ones, as far as it is not much, whichever thread needs it.
//
// While a tree grows, its stock holds the rest of the last page; the end of the stock gives that back to the system.
class SlabStock {
public:
    SlabStock() = default;
    SlabStock(const SlabStock&) = delete;
    SlabStock& operator=(const SlabStock&) = delete;
    ~SlabStock();

    // Memory for one slab; null where there is none of this kind.
    void* take();

    // Memory that take() gave, of whichever stock, and in whichever thread.
    static void give(void* memory) noexcept;

private:
    // The rest of a page.
    char* next = nullptr;
    char* end = nullptr;
};

}  // namespace Xml
