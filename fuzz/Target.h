#pragma once

#include <cstddef>
#include <string>

// What each target defines.
namespace Xml::fuzz {

// Longer inputs, in bytes, are passed over: on those the naive models take too long.
extern const std::size_t kLongestInput;

// Ends the process where a property does not hold for the input.
void check(const std::string& input);

}  // namespace Xml::fuzz
