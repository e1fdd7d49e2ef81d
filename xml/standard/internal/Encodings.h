#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// The encodings that are known without help, by their names and by the first bytes of a source.
namespace Xml {

enum class Encoding : std::uint8_t {
    Utf8,
    Ascii,
    Latin1,
    Utf16,  // in either order
    Utf16Le,
    Utf16Be,
    Utf32,  // in either order
    Utf32Le,
    Utf32Be,
    Other,  // one that the platform may know, or none
};

// By its registered name or a usual alias, whatever the case of its letters.
Encoding encodingNamed(std::string_view name);

// Whether the name can be one of an encoding: EncName of XML. No other is asked for.
bool isEncodingName(std::string_view name);

// Whether a source that names the first can be what it was taken for: UTF-16 and UTF-32 are so in either order.
bool isSameEncoding(Encoding named, Encoding taken);

// Its registered name; empty for Other.
const char* nameOf(Encoding encoding);

// The bytes that a character of ASCII has there: 1, 2 or 4.
std::size_t unitOf(Encoding encoding);

constexpr std::size_t kOpeningSize = 4;

// What the first bytes of a source say.
struct Opening {
    enum class Kind : std::uint8_t {
        Bytes,       // nothing: those of ASCII are as in ASCII, and only a declaration can say more
        Marked,      // a byte order mark
        Unmarked,    // the form that "<" has in UTF-16 or UTF-32
        Unreadable,  // the form that it has in what cannot be read
    };

    Kind kind = Kind::Bytes;
    Encoding encoding = Encoding::Utf8;
    std::size_t markSize = 0;
    const char* name = "";  // of what cannot be read
};

// Of the first four bytes, or as many as there are.
Opening openingOf(std::string_view bytes);

// The same where the encoding is known and one of those that have names here: a mark is one only where it fits, and
// UTF-16 or UTF-32 is in the order of the first bytes, else with the high byte first.
Opening openingOf(std::string_view bytes, Encoding given);

}  // namespace Xml
