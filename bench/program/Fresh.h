// What is measured once in a process of its own: the first parse, the heap after it, and queries that may take too long
// or too much memory. Each writes its figures on one line, split by tabs.
#pragma once
#include <cstddef>
#include <string>

namespace bench {

// Seconds of the first parse of the process; the tree lives on. The row says which way a library goes that has several.
void measureFirstParse(const std::string& row, const std::string& library, const std::string& path);

// The bytes of the heap that a tree has taken, and how many nodes it has as this library counts them.
void measureHeap(const std::string& library, const std::string& path);

// Seconds of one query over a shape with so many elements, so many times, fewer where it takes long. Throws
// std::runtime_error where something else than what is there was found.
void measureShapeQuery(const std::string& library, const std::string& name, std::size_t count, int repetitions);

}  // namespace bench
