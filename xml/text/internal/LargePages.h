#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Memory that the system gives in pages of 2 MB. Taking it in pages of 4 KB costs as much as filling it several times.
// It is a matter of cost only: where the system has no such pages, or gives none, nothing else is different.
namespace Xml::LargePages {

constexpr std::uintptr_t kBytes = std::uintptr_t{2} << 20;

// Asks for large pages for memory that is about to be filled, as far as whole ones lie in it.
void ask(void* memory, std::size_t size);

// The same for memory of which all is about to be filled, which comes at once where it is fresh. Small pages that come
// one by one, each when it is first touched, take twice as long.
void askForAll(void* memory, std::size_t size);

// Makes room in an empty string for so many bytes at most.
inline void reserve(std::string& text, std::size_t size) {
    text.reserve(size);
    if (size >= kBytes) ask(text.data(), size);
}

// Makes room in an empty string for so many bytes, which all come at once: where they are few, they make it themselves.
inline void reserveAll(std::string& text, std::size_t size) {
    constexpr std::size_t kMany = std::size_t{256} << 10;
    if (size < kMany) return;
    text.reserve(size);
    askForAll(text.data(), size);
}

// One large page of the caller's own; null where the system has none to give.
void* map();

// Offers a page that map() gave to the system, which takes its memory only when it runs short. Until then, and after
// that too, the page may be filled again; what was in it is lost. False where the system knows no such offer.
bool offer(void* page) noexcept;

// Gives back so much of what map() gave: any part of it that is whole small pages.
void unmap(void* memory, std::size_t size) noexcept;

}  // namespace Xml::LargePages
