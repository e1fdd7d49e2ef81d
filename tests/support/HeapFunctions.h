#pragma once

#include <cstddef>
#include <cstdlib>

// The heap of a test program that watches over it.
namespace Xml::test {

// Null when there is no memory. The caller is tolerant that asks by std::nothrow: it can do without.
void* allocate(std::size_t bytes, bool tolerant, std::size_t alignment = 0) noexcept;

// Takes null too.
void giveBack(void* memory) noexcept;

// What they may stand on; an alignment of 0 is that of malloc.
inline void* plainMemory(std::size_t bytes, std::size_t alignment) {
    if (alignment == 0) return std::malloc(bytes > 0 ? bytes : 1);
    void* memory = nullptr;
    return posix_memalign(&memory, alignment, bytes) == 0 ? memory : nullptr;
}

}  // namespace Xml::test
