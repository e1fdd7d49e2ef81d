#pragma once

#include "xml/stream/internal/Scan.h"
#include <algorithm>
#include <cstddef>

namespace Xml {

// Tells runs of bytes without a CR from others, at next to no cost for a run: bytes are looked through in blocks, ahead
// of what is asked about. A run without a CR makes no line breaks, unless it begins after one.
//
// For one piece of memory, whose bytes stay, and for runs that are asked about from front to back. The cost is linear
// in the bytes of the runs and one block.
class ReturnsAhead {
public:
    explicit ReturnsAhead(const char* begin = nullptr) : clear(begin) {}

    // Whether there is a CR in [from, to). The memory ends at `end`.
    bool in(const char* from, const char* to, const char* end) {
        if (to <= clear) return false;
        return (from <= clear && *clear == '\r') || look(from, to, end);
    }

    // The first of them, where there is one.
    const char* first() const { return clear; }

private:
    [[gnu::noinline]] bool look(const char* from, const char* to, const char* end) {
        constexpr std::ptrdiff_t kBlock = 1024;
        clear = std::max(from, clear);
        if (clear >= to) return false;
        const char* const blockEnd = end - clear > kBlock ? clear + kBlock : end;
        const char* const stop = std::max(to, blockEnd);
        const char* const found = Scan::find(clear, stop, '\r');
        clear = found != nullptr ? found : stop;
        return clear < to;
    }

    const char* clear;  // up to here there is no CR, from the run on that was asked about last
};

}  // namespace Xml
