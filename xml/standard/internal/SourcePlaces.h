#pragma once

#include "xml/standard/internal/LineRuns.h"
#include "xml/standard/internal/PlaceSource.h"
#include "xml/standard/internal/Places.h"
#include "xml/standard/internal/SourceText.h"
#include <cstdint>

namespace Xml {

// Places of a text as they are in its source, which counts bytes of its own encoding.
class SourcePlaces final : public PlaceSource {
public:
    // The source must stay.
    explicit SourcePlaces(SourceText& itsSource);

private:
    Place find(std::int64_t offset) override;

    SourceText& source;
    LineRuns lines;  // of a source that is the text
    Places places;
};

}  // namespace Xml
