#pragma once

#include "xml/dom/internal/PlaceTable.h"
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Xml {

// All lines and columns of a text of UTF-8, for when the text is gone: where its lines begin, and which of its bytes
// are not the first of a character. Four bytes for each line, and up to 16 for 64 bytes of the text where those are
// not ASCII. LF, CR LF and CR end a line. What is too large for a line or a column is the largest that there is.
//
//     LineTable table(text, 0);
//     table.of(1000);  // O(log n)
class LineTable final : public PlaceTable {
public:
    static constexpr std::size_t kMostBytes = std::size_t{0xFFFFFFFF};

    // Of at most so many bytes. Each byte of the text is one of the source, after `shift` others.
    LineTable(std::string_view text, std::int64_t itsShift);

    Place of(std::int64_t offset) const override;

private:
    using Number = std::uint32_t;
    using Mask = std::uint64_t;  // of the bytes of a block
    static constexpr std::size_t kBlock = 64;

    // A block with bytes that are not the first of a character, and how many of those stand before it.
    struct WideBlock {
        Mask later;
        Number number;
        Number before;
    };

    void add(const char* block, std::size_t from, bool endsBeforeLineFeed);
    Number laterBefore(Number at) const;

    std::int64_t shift;
    std::vector<Number> begins;  // of all lines but the first
    std::vector<WideBlock> wide;
    Number laterCount = 0;
};

}  // namespace Xml
