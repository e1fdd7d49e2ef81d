#pragma once

#include "xml/dom/Place.h"
#include "xml/standard/internal/LineRuns.h"
#include <cstdint>

namespace Xml {

// Says where a place of the text is in the source.
class PlaceSource {
public:
    // The place of an offset in the text, where a character begins or the text ends. Rising offsets cost what lies
    // between them.
    Place of(std::int64_t offset) { return run->has(offset) ? run->placeOf(offset) : find(offset); }

protected:
    ~PlaceSource() = default;
    virtual Place find(std::int64_t offset) = 0;

    // Where places need not be found; none at first.
    static constexpr LineRun kNone{};
    const LineRun* run = &kNone;
};

}  // namespace Xml
