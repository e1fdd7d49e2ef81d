#pragma once

#include "xml/dom/Place.h"
#include "xml/standard/internal/Places.h"
#include "xml/standard/internal/SourceText.h"
#include <cstdint>

namespace Xml {

// Places of a text as they are in its source, which counts bytes of its own encoding.
class SourcePlaces {
public:
    // The source must stay.
    explicit SourcePlaces(SourceText& itsSource) : source(itsSource) {}

    // The place of an offset in the text, where a character begins or the text ends. Rising offsets cost what lies
    // between them.
    Place of(std::int64_t offset);

private:
    SourceText& source;
    Places places;
};

}  // namespace Xml
