#pragma once

#include "xml/dom/Place.h"
#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace Xml {

// A place in a text of UTF-8, and what stands before it.
struct TextPosition {
    std::int64_t offset = 0;      // in bytes of the text
    std::int64_t line = 1;        // LF, CR LF and CR end one
    std::int64_t column = 1;      // counts characters
    std::int64_t characters = 0;  // before the place
    std::int64_t wide = 0;        // those of them above U+FFFF
};

// The same as a place of the source, of which the offset is given. What is too large for a line or a column is the
// largest that there is.
inline Place placeAt(std::int64_t sourceOffset, const TextPosition& where) {
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    return {sourceOffset, static_cast<int>(std::min(where.line, kMost)),
            static_cast<int>(std::min(where.column, kMost))};
}

// Where places of a text are, as line and column. It counts on from the place that was asked last, so that places asked
// in rising order cost one walk over the text in all; a place before that one is counted from the beginning.
//
// The text need not be held whole: `held` is what is at hand of it, well-formed UTF-8 of whole characters, and `from`
// is the offset of its first byte. What stands before a place that was forgotten is not looked at again and may go. The
// end of what is held counts as the end of the text: a CR before it ends a line.
//
//     Places places;
//     places.at(1000, text);              // the text as a whole
//     places.forget(5000, held, 4096);    // a stream: what stands before 5000 may go
//     places.at(6000, rest, 5000);
class Places {
public:
    // The place of an offset within what is held, or of its end. It is where a character begins.
    // Good until the next one is asked.
    const TextPosition& at(std::int64_t offset, std::string_view held, std::int64_t from = 0);

    // Makes a place the beginning of all that is asked from then on.
    void forget(std::int64_t offset, std::string_view held, std::int64_t from);

private:
    struct Count {
        TextPosition place;
        bool afterReturn = false;  // a CR stands before it, and has not ended a line yet: an LF may follow
    };

    void goTo(std::int64_t offset, std::string_view held, std::int64_t from);

    Count beginning;
    Count last;
    TextPosition answer;  // where it is not the last count: a CR turned out to end a line
};

}  // namespace Xml
