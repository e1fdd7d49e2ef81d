#pragma once

namespace Xml {

// Where the slabs of larger trees come from: memory in large pages, which the system gives in a tenth of the time. What
// trees give back is kept for the next ones, whichever thread needs it: some of it as slabs, and of the rest what is
// whole pages is offered to the system, which takes it when it runs short.
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

    // Takes back memory that take() gave, of whichever stock, and in whichever thread. What it does not keep goes in
    // whole pages, as far as it lies side by side, at the latest at the end: it takes ten times as long slab by slab.
    class Return {
    public:
        Return() = default;
        Return(const Return&) = delete;
        Return& operator=(const Return&) = delete;
        ~Return() { letGo(); }

        void give(void* memory) noexcept;

    private:
        void letGo() noexcept;

        // A piece of a page that is not kept.
        char* first = nullptr;
        char* end = nullptr;
    };

private:
    // The rest of a page.
    char* next = nullptr;
    char* end = nullptr;
};

}  // namespace Xml
