#include "xml/dom/internal/Slab.h"

#include "xml/dom/internal/Arena.h"
#include <cstdlib>
#include <new>

namespace Xml {

namespace {

// The slabs that a thread has freed last, for the next that it needs: a program that reads one small document after
// the other would take and give back pages of the system all the time.
class FreeSlabs {
public:
    ~FreeSlabs() {
        while (void* const memory = take()) std::free(memory);
        gone = true;
    }

    void* take() { return count > 0 ? slabs[--count] : nullptr; }

    // False where it keeps enough, or none any more: documents may outlive the last moments of their thread.
    bool keep(void* memory) {
        if (gone || count == kMost) return false;
        slabs[count++] = memory;
        return true;
    }

private:
    static constexpr std::size_t kMost = 4;

    void* slabs[kMost] = {};
    std::size_t count = 0;
    bool gone = false;
};

thread_local FreeSlabs freeSlabs;

}  // namespace

Slab* Slab::make() {
    void* memory = freeSlabs.take();
    if (memory == nullptr && posix_memalign(&memory, kBytes, kUsed) != 0) throw std::bad_alloc();
    allow(memory, sizeof(Slab));
    Slab* const made = ::new (memory) Slab;
    forbid(made->begin(), static_cast<std::size_t>(made->end() - made->begin()));
    return made;
}

void Slab::free(Slab* slab) noexcept {
    if (freeSlabs.keep(slab)) {
        forbid(slab, kUsed);
    } else {
        allow(slab, kUsed);
        std::free(slab);
    }
}

void Slab::noteChange() noexcept { owner->noteChange(); }

void Slab::release(std::uint32_t number) noexcept {
    if (living.fetch_sub(number, std::memory_order_acq_rel) == number) owner->release(*this);
}

}  // namespace Xml
