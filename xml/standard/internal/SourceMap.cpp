#include "xml/standard/internal/SourceMap.h"

#include <utility>

namespace Xml {

void SourceMap::begin(Encoding encoding, std::size_t markSize) {
    form = encoding;
    mark = static_cast<std::int64_t>(markSize);
}

void SourceMap::beginForeign(std::string encoding, std::int64_t text, std::int64_t source) {
    foreign.emplace(Foreign{{std::move(encoding), text, source}, text});
}

void SourceMap::took(std::string_view bytes) {
    if (foreign && !whole) kept += bytes;
}

std::int64_t SourceMap::sourceOffset(const TextPosition& place) {
    if (foreign && place.offset > foreign->text) return foreign->offsets.sourceOffset(place.offset, bytesAtHand());
    switch (form) {
    case Encoding::Latin1: return mark + place.characters;
    case Encoding::Utf16Le:
    case Encoding::Utf16Be: return mark + 2 * (place.characters + place.wide);
    case Encoding::Utf32Le:
    case Encoding::Utf32Be: return mark + 4 * place.characters;
    default: return mark + place.offset;
    }
}

void SourceMap::forget(std::int64_t textOffset) {
    if (!foreign || textOffset <= foreign->text) return;
    const std::int64_t before = foreign->offsets.sourceBegin();
    foreign->offsets.forget(textOffset, bytesAtHand());
    if (!whole) kept.erase(0, static_cast<std::size_t>(foreign->offsets.sourceBegin() - before));
}

std::string_view SourceMap::bytesAtHand() const {
    return whole ? whole->substr(static_cast<std::size_t>(foreign->offsets.sourceBegin())) : std::string_view(kept);
}

}  // namespace Xml
