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

// Whole pages beyond that, which the system may empty when it runs short. So their list lies elsewhere.
class OfferedPages {
public:
    void* take() {
        const std::lock_guard<std::mutex> lock(mutex);
        return count > 0 ? pages[--count] : nullptr;
    }

    // False where it has enough.
    bool keep(void* page) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (count == kMost) return false;
        pages[count++] = page;
        return true;
    }

private:
    static constexpr std::size_t kMost = (std::size_t{1} << 30) / LargePages::kBytes;

    std::mutex mutex;
    void* pages[kMost] = {};
    std::size_t count = 0;
};

OfferedPages& offeredPages() {
    static NeverDestroyed<OfferedPages> offered;
    return offered.get();
}

}  // namespace

SlabStock::~SlabStock() {
    if (next != end) LargePages::unmap(next, static_cast<std::size_t>(end - next));
}

void* SlabStock::take() {
    if (next == end) {
        if (void* const memory = keptSlabs().take()) return memory;
        next = static_cast<char*>(offeredPages().take());
        if (next == nullptr) next = static_cast<char*>(LargePages::map());
        end = next;
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
        letGo();
        end = slab + Slab::kBytes;
    }
    first = slab;
    if (reinterpret_cast<std::uintptr_t>(first) % LargePages::kBytes == 0) letGo();
}

// A page is offered before another tree can take it, which fills it.
void SlabStock::Return::letGo() noexcept {
    const auto size = static_cast<std::size_t>(end - first);
    const bool isKept = size == LargePages::kBytes && LargePages::offer(first) && offeredPages().keep(first);
    if (size > 0 && !isKept) LargePages::unmap(first, size);
    first = end = nullptr;
}

}  // namespace Xml
