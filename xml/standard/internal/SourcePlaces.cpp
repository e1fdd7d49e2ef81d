#include "xml/standard/internal/SourcePlaces.h"

namespace Xml {

Place SourcePlaces::of(std::int64_t offset) {
    const TextPosition& place = places.at(offset, source.text());
    return placeAt(source.decoder().sourceOffset(place), place);
}

}  // namespace Xml
