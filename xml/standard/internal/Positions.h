#pragma once

#include "xml/dom/Place.h"
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Xml {

// Lines and columns of offsets in a text of which only a part is there, the window. It moves on with the reading.
class Positions {
public:
    // The text from the first byte on that was not let go.
    void setWindow(std::string_view text) { window = text; }

    // Lets go of bytes at the beginning of the window.
    void release(std::size_t byteCount);

    // Of an offset in the window or at its end. Rising offsets cost what lies between them.
    Place of(std::int64_t offset) const;

    std::int64_t begin() const { return first.offset; }
    std::string_view text() const { return window; }

private:
    struct Mark {
        std::int64_t offset;
        int line, column;
        bool isAfterReturn;
    };
    void advance(Mark& mark, std::int64_t to) const;

    std::string_view window;
    Mark first{0, 1, 1, false};
    mutable Mark last{0, 1, 1, false};  // the last one that was asked for
};

// The line of the text that the byte at `at` stands in, and below it a caret under that byte. At most 160 characters of
// the line; tabs are repeated, control characters are U+FFFD.
std::string excerptOf(std::string_view text, std::size_t at);

}  // namespace Xml
