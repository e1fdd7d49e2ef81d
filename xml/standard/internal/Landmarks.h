#pragma once

#include "xml/dom/internal/PlaceTable.h"
#include <cstdint>
#include <vector>

namespace Xml {

// Places that are found one by one: landmarks, from each of which on, up to the next one, the column rises with the
// offset.
//
//     Landmarks landmarks;
//     landmarks.add({10, 2, 1});
//     landmarks.add({14, 2, 5});
//     landmarks.of(14);  // {14, 2, 5}
class Landmarks final : public PlaceTable {
public:
    // The place of a node. The offsets rise.
    void add(const Place& place);

    // Of an offset that was added. O(log n).
    Place of(std::int64_t offset) const override;

private:
    std::vector<Place> all;
};

}  // namespace Xml
