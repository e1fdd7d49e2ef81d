#pragma once

#include "xml/dom/Place.h"
#include <cstdint>

namespace Xml {

// Says where a place of the text is in the source.
class PlaceSource {
public:
    // The place of an offset in the text, where a character begins or the text ends. Rising offsets cost what lies
    // between them.
    virtual Place of(std::int64_t offset) = 0;

protected:
    ~PlaceSource() = default;
};

}  // namespace Xml
