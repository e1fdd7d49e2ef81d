#pragma once

#include <cstdint>
#include <string>

namespace Xml {

// What XML 1.0 declares about an entity, general or parameter. Identifiers are as they were written, with line ends as
// LF, and empty without.
struct EntityDecl {
    enum class Kind : std::uint8_t { Internal, External, Unparsed };

    Kind kind = Kind::Internal;
    std::string text;                // the replacement text of an internal one: references by name stay in it
    std::string publicId, systemId;  // of the others
    std::string notation;            // of an unparsed one
};

// The same about a notation.
struct NotationDecl {
    std::string publicId, systemId;
};

}  // namespace Xml
