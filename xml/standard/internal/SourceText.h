#pragma once

#include "xml/standard/internal/Decoder.h"
#include <string>
#include <string_view>

namespace Xml {

// A source that is in memory as a whole, as UTF-8. Where it is that it is not copied. The source must stay.
class SourceText {
public:
    // A part ends anywhere: of a character that is cut off nothing is said.
    enum class Extent : unsigned char { Whole, Part };

    // `encoding` is known from outside; empty: it is not known.
    explicit SourceText(std::string_view source, std::string_view encoding = {}, Extent extent = Extent::Whole);

    // All of it, without a byte order mark; after a failure what comes before it.
    std::string_view text() const { return isOwn ? std::string_view(own) : within; }

    const Decoder& decoder() const { return decoding; }
    Decoder& decoder() { return decoding; }

private:
    Decoder decoding;
    bool isOwn = true;
    std::string own;
    std::string_view within;
};

}  // namespace Xml
