#pragma once

#include "xml/dom/Place.h"
#include "xml/standard/internal/LineRuns.h"
#include "xml/standard/internal/LineTable.h"
#include <cstdint>

namespace Xml {

// Says where a place of the text is in the source.
class PlaceSource {
public:
    // The place of an offset in the text, where a character begins or the text ends. Rising offsets cost what lies
    // between them.
    Place of(std::int64_t offset) {
        if (run->has(offset)) return run->placeOf(offset);
        return runs != nullptr ? (run = &runs->run(offset))->placeOf(offset) : find(offset);
    }

    // The text, where a place of it is one of the source and it is not too long for a LineTable; null otherwise.
    const LineRuns* lines() const {
        return runs != nullptr && runs->whole().size() <= LineTable::kMostBytes ? runs : nullptr;
    }

protected:
    ~PlaceSource() = default;
    virtual Place find(std::int64_t offset) = 0;

    // Where a place of the text is one of the source: places need not be found. Null otherwise.
    LineRuns* runs = nullptr;

private:
    static constexpr LineRun kNone{};
    const LineRun* run = &kNone;
};

}  // namespace Xml
