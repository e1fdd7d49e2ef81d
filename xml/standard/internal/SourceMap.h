#pragma once

#include "xml/standard/internal/Encodings.h"
#include "xml/standard/internal/ForeignOffsets.h"
#include "xml/standard/internal/Places.h"
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Xml {

// Where places of a text of UTF-8 are in the source that it was made from. In the encodings that have names here that
// follows from the characters before the place; in others ForeignOffsets finds it, and needs the bytes of the source.
class SourceMap {
public:
    // The text is in that encoding, after a byte order mark. Once more where it turns out to be in another one.
    void begin(Encoding encoding, std::size_t markSize);

    // From that place on, ASCII before it, the platform converts.
    void beginForeign(std::string encoding, std::int64_t text, std::int64_t source);

    // The next bytes of the source for the platform, before they are converted.
    void took(std::string_view bytes);

    // The source stays in memory as a whole: no bytes are kept.
    void useWhole(std::string_view source) { whole = source; }

    std::int64_t sourceOffset(const TextPosition& place);

    // No place before that one is asked again.
    void forget(std::int64_t textOffset);

private:
    // What the platform converted.
    struct Foreign {
        ForeignOffsets offsets;
        std::int64_t text;  // where the text of it begins
    };

    std::string_view bytesAtHand() const;

    Encoding form = Encoding::Utf8;
    std::int64_t mark = 0;

    std::optional<Foreign> foreign;
    std::optional<std::string_view> whole;
    std::string kept;  // without a whole source: what ForeignOffsets needs of it
};

}  // namespace Xml
