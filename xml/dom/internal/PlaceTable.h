#pragma once

#include "xml/dom/Place.h"
#include <cstdint>

namespace Xml {

// Where the nodes of one tree were read. A node holds its offset in the source alone; the tree has this for the rest.
// Asked by any thread.
class PlaceTable {
public:
    virtual ~PlaceTable() = default;

    // The place of a node that holds the offset.
    virtual Place of(std::int64_t offset) const = 0;

protected:
    PlaceTable() = default;
    PlaceTable(const PlaceTable&) = default;
    PlaceTable& operator=(const PlaceTable&) = default;
};

}  // namespace Xml
