#include "xml/text/internal/LargePages.h"

#include <cerrno>
#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace Xml {

#ifdef MADV_HUGEPAGE

namespace {

// What is done here fails without a trace.
class KeptErrno {
public:
    KeptErrno() = default;
    KeptErrno(const KeptErrno&) = delete;
    KeptErrno& operator=(const KeptErrno&) = delete;
    ~KeptErrno() { errno = before; }

private:
    const int before = errno;
};

// What lies in memory of whole pages of such a size.
struct WholePages {
    WholePages(const void* memory, std::size_t size, std::uintptr_t page) {
        const auto from = reinterpret_cast<std::uintptr_t>(memory);
        begin = (from + page - 1) & ~(page - 1);
        const std::uintptr_t end = (from + size) & ~(page - 1);
        bytes = end > begin ? end - begin : 0;
    }

    void advise(int advice) const {
        if (bytes > 0) madvise(reinterpret_cast<void*>(begin), bytes, advice);
    }

    std::uintptr_t begin = 0;
    std::size_t bytes = 0;
};

// Looking at one page costs little; having the system look at all, when they are there, costs as much as filling them.
[[maybe_unused]] bool isFresh(const WholePages& pages, std::uintptr_t page) {
    unsigned char isThere = 0;
    return pages.bytes > 0 && mincore(reinterpret_cast<void*>(pages.begin + pages.bytes - page), page, &isThere) == 0 &&
           (isThere & 1) == 0;
}

}  // namespace

void LargePages::ask(void* memory, std::size_t size) {
    const KeptErrno kept;
    WholePages(memory, size, kBytes).advise(MADV_HUGEPAGE);
}

void LargePages::askForAll(void* memory, std::size_t size) {
    ask(memory, size);
#ifdef MADV_POPULATE_WRITE
    const KeptErrno kept;
    static const auto kSmallPage = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const WholePages small(memory, size, kSmallPage);
    if (isFresh(small, kSmallPage)) small.advise(MADV_POPULATE_WRITE);
#endif
}

// The system gives no alignment: of twice as much one page lies where it should, and the rest goes back.
void* LargePages::map() {
    const KeptErrno kept;
    void* const memory = mmap(nullptr, 2 * kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    char* const first = static_cast<char*>(memory);
    const std::size_t before = kBytes - reinterpret_cast<std::uintptr_t>(first) % kBytes;
    char* const page = first + before;
    unmap(first, before);
    if (before != kBytes) unmap(page + kBytes, kBytes - before);
    ask(page, kBytes);
    return page;
}

bool LargePages::offer([[maybe_unused]] void* page) noexcept {
#ifdef MADV_FREE
    const KeptErrno kept;
    return madvise(page, kBytes, MADV_FREE) == 0;
#else
    return false;
#endif
}

// A process has so many mappings at most, and a hole makes two of one. Without another the addresses stay, and the
// memory goes.
void LargePages::unmap(void* memory, std::size_t size) noexcept {
    const KeptErrno kept;
    if (munmap(memory, size) != 0) madvise(memory, size, MADV_DONTNEED);
}

#else

void LargePages::ask(void*, std::size_t) {}
void LargePages::askForAll(void*, std::size_t) {}
void* LargePages::map() { return nullptr; }
bool LargePages::offer(void*) noexcept { return false; }
void LargePages::unmap(void*, std::size_t) noexcept {}

#endif

}  // namespace Xml
