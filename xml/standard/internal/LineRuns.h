#pragma once

#include "xml/dom/Place.h"
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

namespace Xml {

// Part of a line in which each character is one byte, so that a place is found by a subtraction.
struct LineRun {
    // Whether the place of an offset is within it, or at its end.
    bool has(std::int64_t offset) const { return offset >= from && offset <= to; }

    // Of such an offset. Each byte of the text is one of the source, after `shift` others.
    Place placeOf(std::int64_t offset) const {
        return {offset + shift, line, static_cast<int>(offset - lineBegin) + 1};
    }

    std::int64_t from = 0;
    std::int64_t to = -1;        // it is none
    std::int64_t lineBegin = 0;  // where the line would begin if all of it up to there were such characters
    std::int64_t shift = 0;
    int line = 1;
};

// Runs of a text of UTF-8 that is held as a whole. LF, CR LF and CR end a line. Rising offsets cost what lies between
// them; one before the run begins anew. What is too large for a line or a column is the largest that there is.
//
//     LineRuns runs(text, 0);
//     runs.run(1000).placeOf(1000);
class LineRuns {
public:
    LineRuns(std::string_view itsText, std::int64_t shift);

    std::string_view whole() const { return text; }
    std::int64_t shift() const { return now.shift; }

    // The one that has the offset, where a character begins or the text ends.
    const LineRun& run(std::int64_t offset);

private:
    [[gnu::noinline]] void passOther(std::int64_t offset);
    void beginLine();
    std::ptrdiff_t passCharacters(const char* from, std::ptrdiff_t count);
    void lookAhead();

    static constexpr std::int64_t kMost = std::numeric_limits<int>::max();

    std::string_view text;
    LineRun now;
};

}  // namespace Xml
