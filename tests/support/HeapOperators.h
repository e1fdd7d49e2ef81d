#pragma once

#include "support/HeapFunctions.h"
#include <cstddef>
#include <new>

// The operators new and delete of a test program that watches over its heap. One source of the program, and no other,
// includes this and defines the two functions of
// HeapFunctions.h.
namespace Xml::test {

inline void* allocateOrThrow(std::size_t bytes) {
    if (void* const memory = allocate(bytes, false)) return memory;
    throw std::bad_alloc();
}

}  // namespace Xml::test

// All forms but those for extended alignment, so that none meets another's memory.
void* operator new(std::size_t bytes) { return Xml::test::allocateOrThrow(bytes); }
void* operator new[](std::size_t bytes) { return Xml::test::allocateOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Xml::test::allocate(bytes, true); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Xml::test::allocate(bytes, true); }
void operator delete(void* memory) noexcept { Xml::test::giveBack(memory); }
void operator delete[](void* memory) noexcept { Xml::test::giveBack(memory); }
void operator delete(void* memory, std::size_t) noexcept { Xml::test::giveBack(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Xml::test::giveBack(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { Xml::test::giveBack(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { Xml::test::giveBack(memory); }
