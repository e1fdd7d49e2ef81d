#pragma once

#include <cstddef>

namespace Xml::test {

// How many bytes all allocations of the program have asked for so far, those that were given back included.
std::size_t askedMemory();

}  // namespace Xml::test
