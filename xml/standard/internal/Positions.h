#pragma once

#include "xml/dom/Place.h"
#include "xml/standard/internal/Places.h"
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Xml {

// The places of a text of which only a part is there, the window. It moves on with the reading.
class Positions {
public:
    // The text from the first byte on that was not let go.
    void setWindow(std::string_view text) { window = text; }

    // Lets go of bytes at the beginning of the window.
    void release(std::size_t byteCount);

    // Of an offset in the window or at its end, as one of the text. Rising offsets cost what lies between them. What is
    // before the place is good until the next one is asked.
    Place of(std::int64_t offset) const;
    const TextPosition& before(std::int64_t offset) const { return places.at(offset, window, first); }

    std::int64_t begin() const { return first; }
    std::string_view text() const { return window; }

private:
    std::string_view window;
    std::int64_t first = 0;  // the offset of its first byte
    mutable Places places;
};

}  // namespace Xml
