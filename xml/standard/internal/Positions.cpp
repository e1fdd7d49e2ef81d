#include "xml/standard/internal/Positions.h"

namespace Xml {

void Positions::release(std::size_t byteCount) {
    const std::int64_t to = first + static_cast<std::int64_t>(byteCount);
    places.forget(to, window, first);
    window.remove_prefix(byteCount);
    first = to;
}

Place Positions::of(std::int64_t offset) const {
    const TextPosition& place = places.at(offset, window, first);
    return placeAt(place.offset, place);
}

}  // namespace Xml
