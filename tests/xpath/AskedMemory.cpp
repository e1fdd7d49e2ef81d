#include "xpath/AskedMemory.h"

#include "support/HeapOperators.h"
#include <cstdlib>

namespace Xml::test {

namespace {
std::size_t asked = 0;
}  // namespace

std::size_t askedMemory() { return asked; }

void* allocate(std::size_t bytes, bool, std::size_t alignment) noexcept {
    asked += bytes;
    return plainMemory(bytes, alignment);
}

void giveBack(void* memory) noexcept { std::free(memory); }

}  // namespace Xml::test
