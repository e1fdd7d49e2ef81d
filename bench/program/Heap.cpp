// malloc tells what it has given out; mappings made past it pass through the functions below, which stand before those
// of the C library for all that is linked dynamically. malloc's own mappings do not pass here.
#include "Heap.h"
#include "Measure.h"
#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<std::size_t> mapped{0};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) void* mmap(void* at, std::size_t size, int protection, int flags, int file,
                                                  off_t offset) noexcept {
    void* const result = reinterpret_cast<void*>(syscall(SYS_mmap, at, size, protection, flags, file, offset));
    if (result != MAP_FAILED) mapped += size;
    return result;
}

__attribute__((visibility("default"))) int munmap(void* at, std::size_t size) noexcept {
    const int result = static_cast<int>(syscall(SYS_munmap, at, size));
    if (result == 0) mapped -= size;
    return result;
}
}

namespace bench {

std::size_t usedHeap() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd + mapped;
}

void checkHeapCounting() {
    constexpr std::size_t kSize = 1 << 20;
    constexpr std::size_t kSlack = 1 << 13;  // headers, alignment, small remains that malloc keeps at hand
    const auto expectCounted = [](const char* how, auto take, auto giveBack) {
        const std::size_t before = usedHeap();
        void* const memory = take();
        keep(memory);  // memory that nothing looks at would not be taken
        const std::size_t taken = usedHeap() - before;
        giveBack(memory);
        if (taken < kSize || taken > kSize + kSlack || usedHeap() > before + kSlack) {
            throw std::logic_error(std::string("memory taken by ") + how + " is not counted");
        }
    };
    expectCounted(
        "malloc", [] { return std::malloc(kSize); }, [](void* memory) { std::free(memory); });
    expectCounted(
        "new", [] { return ::operator new(kSize); }, [](void* memory) { ::operator delete(memory); });
    expectCounted(
        "aligned_alloc", [] { return std::aligned_alloc(4096, kSize); }, [](void* memory) { std::free(memory); });
    expectCounted(
        "mmap", [] { return mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0); },
        [](void* memory) { munmap(memory, kSize); });
}

}  // namespace bench
