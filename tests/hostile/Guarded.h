#pragma once

#include <cstddef>
#include <functional>
#include <string>

// Runs what an attacker may have thought out where it cannot do harm: in a process of its own, with 256 KiB of stack,
// bounded memory and a deadline.
namespace Xml::test {

struct Bounds {
    // Bytes that may be allocated at a time, beside what there was before. More is refused, as memory that runs out is.
    // Not under sanitizers, which bring an allocator of their own.
    std::size_t memory = std::size_t{64} << 20;

    // Of processor time.
    unsigned seconds = 60;
};

#ifdef __SANITIZE_ADDRESS__
constexpr bool kMemoryIsBounded = false;
#else
constexpr bool kMemoryIsBounded = true;
#endif

// What the job returns; or how it ended instead, such as "killed by signal 11 (Segmentation fault)" or "threw
// std::bad_alloc". After it stands " [memory was not given back]" when the job has not given all of it back.
//
// What the library makes only once is there before the job begins. Diagnostics are not printed.
std::string runGuarded(const std::function<std::string()>& job, const Bounds& bounds = {});

// For a job that does many things: what it is at, which its outcome names when it does not survive that.
void nowAt(const std::string& what);

}  // namespace Xml::test
