#include "xml/standard/internal/SourcePlaces.h"

#include <algorithm>
#include <limits>

namespace Xml {

Place SourcePlaces::of(std::int64_t offset) {
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    const TextPosition& place = places.at(offset, source.text());
    return {source.decoder().sourceOffset(place), static_cast<int>(std::min(place.line, kMost)),
            static_cast<int>(std::min(place.column, kMost))};
}

}  // namespace Xml
