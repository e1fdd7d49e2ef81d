#include "growth/Work.h"

#include <cstdlib>
#include <new>

namespace Xml::test {

Work totals = {};

Work workOf(const std::function<void()>& job) {
    const Work before = totals;
    job();
    Work work = totals;
    for (std::size_t i = 0; i < work.size(); ++i) work[i] -= before[i];
    return work;
}

}  // namespace Xml::test

namespace {

void* allocate(std::size_t bytes) noexcept {
    ++Xml::test::totals[Xml::test::Allocations];
    Xml::test::totals[Xml::test::AllocatedBytes] += static_cast<long long>(bytes);
    return std::malloc(bytes > 0 ? bytes : 1);
}

void* allocateOrThrow(std::size_t bytes) {
    if (void* memory = allocate(bytes)) return memory;
    throw std::bad_alloc();
}

}  // namespace

// All forms but those for extended alignment, so that none meets another's memory.
void* operator new(std::size_t bytes) { return allocateOrThrow(bytes); }
void* operator new[](std::size_t bytes) { return allocateOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
