#include "fuzz/Target.h"

#include <cstddef>
#include <cstdint>
#include <string>

// What libFuzzer calls, and a replay.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size <= Xml::fuzz::kLongestInput) Xml::fuzz::check(std::string(data, data + size));
    return 0;
}
