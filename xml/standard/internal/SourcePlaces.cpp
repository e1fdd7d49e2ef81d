#include "xml/standard/internal/SourcePlaces.h"

namespace Xml {

SourcePlaces::SourcePlaces(SourceText& itsSource)
    : source(itsSource), runs(itsSource.text(), itsSource.decoder().sourceOffset({})) {}

Place SourcePlaces::find(std::int64_t offset) {
    if (source.decoder().isUtf8()) {
        run = &runs.run(offset);
        return run->placeOf(offset);
    }
    const TextPosition& place = places.at(offset, source.text());
    return placeAt(source.decoder().sourceOffset(place), place);
}

}  // namespace Xml
