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

const Slab::Source* ownSource = nullptr;

void* takeMemory() {
    if (ownSource != nullptr) return ownSource->take(Slab::kBytes - Slab::kSpared);
    if (void* const memory = freeSlabs.take()) return memory;
    void* memory = nullptr;
    return posix_memalign(&memory, Slab::kBytes, Slab::kBytes - Slab::kSpared) == 0 ? memory : nullptr;
}

void giveMemory(void* memory) {
    if (ownSource != nullptr) {
        ownSource->give(memory);
    } else if (!freeSlabs.keep(memory)) {
        std::free(memory);
    }
}

}  // namespace

void Slab::setSource(const Source* source) { ownSource = source; }

Slab* Slab::make() {
    void* const memory = takeMemory();
    if (memory == nullptr) throw std::bad_alloc();
    return makeIn(memory);
}

Slab* Slab::make(SlabStock& stock) {
    if (ownSource != nullptr || kIsPoisoned) return make();
    void* const memory = stock.take();
    if (memory == nullptr) return make();
    Slab* const made = makeIn(memory);
    made->isFromStock = true;
    return made;
}

Slab* Slab::makeIn(void* memory) {
    allow(memory, sizeof(Slab));
    Slab* const made = ::new (memory) Slab;
    forbid(made->begin(), static_cast<std::size_t>(made->end() - made->begin()));
    return made;
}

void Slab::free(Slab* slab, SlabStock::Return& toStock) noexcept {
    allow(slab, kBytes - kSpared);
    slab->isFromStock ? toStock.give(slab) : giveMemory(slab);
}

void Slab::noteChange() noexcept { owner->noteChange(); }

void Slab::release(std::uint32_t number) noexcept {
    if (living.fetch_sub(number, std::memory_order_acq_rel) == number) owner->release(*this);
}

}  // namespace Xml
