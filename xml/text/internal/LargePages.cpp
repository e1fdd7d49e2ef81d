#include "xml/text/internal/LargePages.h"

#include <cerrno>
#ifdef __linux__
#include <sys/mman.h>
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

}  // namespace

void LargePages::ask(void* memory, std::size_t size) {
    const KeptErrno kept;
    const auto from = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = (from + kBytes - 1) & ~(kBytes - 1);
    const std::uintptr_t end = (from + size) & ~(kBytes - 1);
    if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
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
void* LargePages::map() { return nullptr; }
bool LargePages::offer(void*) noexcept { return false; }
void LargePages::unmap(void*, std::size_t) noexcept {}

#endif

}  // namespace Xml
