#include "xml/standard/internal/SourcePlaces.h"

namespace Xml {

SourcePlaces::SourcePlaces(SourceText& itsSource)
    : source(itsSource), lines(itsSource.text(), itsSource.decoder().sourceOffset({})) {
    if (source.decoder().isUtf8()) runs = &lines;
}

Place SourcePlaces::find(std::int64_t offset) {
    const TextPosition& place = places.at(offset, source.text());
    return placeAt(source.decoder().sourceOffset(place), place);
}

}  // namespace Xml
