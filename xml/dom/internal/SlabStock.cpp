#include "xml/dom/internal/SlabStock.h"

#include "xml/dom/internal/Slab.h"
#include "xml/text/internal/LargePages.h"
#include "xml/text/internal/NeverDestroyed.h"
#include <cstddef>
#include <mutex>
#include <new>
#include <utility>

namespace Xml {

namespace {

// What trees have given back, in a list that lies in that memory itself. The last comes first, since it is the
// likeliest to be in the processor's cache.
class KeptSlabs {
public:
    void* take() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (last == nullptr) return nullptr;
        --count;
        return std::exchange(last, last->before);
    }

    // False where it has enough.
    bool keep(void* memory) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (count == kMost) return false;
        ++count;
        last = ::new (memory) Kept{last};
        return true;
    }

private:
    struct Kept {
        Kept* before;
    };

    static constexpr std::size_t kMost = (std::size_t{32} << 20) / Slab::kBytes;

    std::mutex mutex;
    Kept* last = nullptr;
    std::size_t count = 0;
};

KeptSlabs& keptSlabs() {
    static NeverDestroyed<KeptSlabs> kept;
    return kept.get();
}

}  // namespace

SlabStock::~SlabStock() {
    if (next != end) LargePages::unmap(next, static_cast<std::size_t>(end - next));
}

void* SlabStock::take() {
    if (next == end) {
        if (void* const memory = keptSlabs().take()) return memory;
        next = end = static_cast<char*>(LargePages::map());
        if (next == nullptr) return nullptr;
        end += LargePages::kBytes;
    }
    return std::exchange(next, next + Slab::kBytes);
}

// A tree gives its slabs back from the newest one on, so that each lies before the last.
void SlabStock::Return::give(void* memory) noexcept {
    if (keptSlabs().keep(memory)) return;
    char* const slab = static_cast<char*>(memory);
    if (slab + Slab::kBytes != first) {
        unmap();
        end = slab + Slab::kBytes;
    }
    first = slab;
}

void SlabStock::Return::unmap() noexcept {
    if (first != end) LargePages::unmap(first, static_cast<std::size_t>(end - first));
    first = end = nullptr;
}

}  // namespace Xml
