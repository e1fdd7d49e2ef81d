#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>
#ifdef __linux__
#include <sys/mman.h>
#endif

// Memory that the system gives in pages of 2 MB. Taking it in pages of 4 KB costs as much as filling it several times.
// It is a matter of cost only: where the system has no such pages, or gives none, nothing else is different.
namespace Xml::LargePages {

constexpr std::uintptr_t kBytes = std::uintptr_t{2} << 20;

// Asks for large pages for memory that is about to be filled, as far as whole pages lie in it.
inline void ask([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
    const auto from = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t begin = (from + kBytes - 1) & ~(kBytes - 1);
    const std::uintptr_t end = (from + size) & ~(kBytes - 1);
    const int before = errno;
    if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
    errno = before;
#endif
}

// Makes room in an empty string for so many bytes.
inline void reserve(std::string& text, std::size_t size) {
    text.reserve(size);
    if (size >= kBytes) ask(text.data(), size);
}

}  // namespace Xml::LargePages
