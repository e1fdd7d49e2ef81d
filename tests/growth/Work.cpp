#include "growth/Work.h"

#include <cstdlib>
#include <gtest/gtest.h>
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

void expectLinear(const Jobs& jobs, Kind kind, int n, long long fixed) {
    const Work small = workOf(jobs(n));
    const Work large = workOf(jobs(8 * n));
    EXPECT_GE(large[kind], 4 * n) << kKindNames[kind] << ": not counted";
    for (std::size_t i = 0; i < kKinds; ++i) {
        EXPECT_LE(large[i], small[i] * 88 / 10 + (i == AllocatedBytes ? 64 * fixed : fixed))
            << kKindNames[i] << ": " << small[i] << " at n = " << n << ", " << large[i] << " at 8n";
    }
}

void expectLinearIn(const Jobs& jobs, Kind kind, int n, long long least) {
    const long long small = workOf(jobs(n))[kind];
    const long long large = workOf(jobs(8 * n))[kind];
    EXPECT_GE(large, least) << kKindNames[kind] << ": not counted";
    EXPECT_LE(large, small * 88 / 10 + 64) << kKindNames[kind] << ": " << small << " at n = " << n;
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
