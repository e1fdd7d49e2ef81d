#include "xml/standard/internal/SourceText.h"

#include <cstddef>

namespace Xml {

namespace {

constexpr std::size_t kHead = 128;  // most declarations end within it
constexpr std::size_t kAtOnce = std::size_t{64} << 10;

}  // namespace

SourceText::SourceText(std::string_view source, std::string_view encoding, Extent extent) : decoding(encoding) {
    decoding.keepSource(source);
    std::string_view left = source;
    const auto decode = [&](std::size_t size) {
        const std::string_view piece = left.substr(0, size);
        left.remove_prefix(piece.size());
        return decoding.decode(piece, own);
    };
    while (!decoding.isSettled() && !left.empty()) {
        if (!decode(kHead)) return;
    }
    if (decoding.isSettled() && decoding.isUtf8()) {
        isOwn = false;
        within = decoding.textWithin(source, extent == Extent::Whole);
        return;
    }
    own.reserve(source.size());
    while (!left.empty()) {
        if (!decode(kAtOnce)) return;
    }
    if (extent == Extent::Whole) decoding.finish(own);
}

}  // namespace Xml
