#pragma once

#include "xml/standard/internal/Converter.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// Where places of a text are in the source that it was converted from by the platform, which alone knows how many bytes
// each character has. As far as places are asked it converts the source once more, a byte at a time, and keeps a table
// of what came of a few KB of it, or of what was not forgotten.
//
// The place in the source is the first one with so much text before it. Where an encoding keeps a character until the
// one after it is known, that is after the character's first bytes.
class ForeignOffsets {
public:
    // The encoding of that name converts the source from that place on, and gives the text from that place on.
    ForeignOffsets(std::string encoding, std::int64_t text, std::int64_t source);

    // The place in the source of an offset in the text. `bytes` is the source from sourceBegin() on, as far as it is at
    // hand. Places in rising order cost one conversion in all; for one before the table it begins again.
    std::int64_t sourceOffset(std::int64_t text, std::string_view bytes);

    // From where on the source has to be at hand.
    std::int64_t sourceBegin() const { return begin.source; }

    // Moves that to a place in the text; none before it may be asked from then on.
    void forget(std::int64_t text, std::string_view bytes);

private:
    struct Point {
        std::int64_t text;
        std::int64_t source;
    };

    // Makes the table reach to that place, if there are so many bytes, and returns where it is.
    std::size_t placeInTable(std::int64_t text, std::string_view bytes);
    void restart();
    void dropTable();
    bool extend(std::string_view bytes);

    const std::string encoding;
    Point begin;
    bool isWhole = true;  // nothing was forgotten

    std::unique_ptr<Converter> converter;
    Point table;                     // where it begins
    std::vector<std::int64_t> made;  // for each byte from there on, how much text those before it made; and the end
    std::size_t waiting = 0;         // of the bytes in the table, the last ones, of which no character has come yet
};

}  // namespace Xml
