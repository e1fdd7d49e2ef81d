// What the process has taken of the heap. Counted is what the library has not given back: what malloc holds as taken,
// with its own headers and rounding, wherever it came from (new, malloc, aligned_alloc), and what was mapped past
// malloc.
#pragma once
#include <cstddef>

namespace bench {

std::size_t usedHeap();

// Whether each of the ways to take memory is counted. Throws std::logic_error where one is not.
void checkHeapCounting();

}  // namespace bench
