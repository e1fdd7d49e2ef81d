#pragma once

#include <cstdint>

namespace Xml {

// How often a content particle may occur.
enum RepType : std::uint32_t {
    REP_ONCE = 0,
    REP_OPTIONAL = 1,      // "?"
    REP_ZERO_OR_MORE = 2,  // "*"
    REP_ONE_OR_MORE = 3,   // "+"
};

}  // namespace Xml
