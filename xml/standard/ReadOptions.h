#pragma once

#include "xml/Export.h"
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace Xml {

class Dtd;

// Which text of white space alone is kept. White space that came by a reference always is.
enum class Space : std::uint8_t {
    All,
    Content,  // all but what holds a line end, beside child elements of an element without other text, where xml:space
              // does not say preserve
    Dropped,  // none
};

// The text of an external entity, and where it was found: that is the base of what it refers to, and Problem::source.
struct Resolved {
    std::string text, name;
};

// Finds external entities: the identifiers as they are written, and the source, or Resolved::name, of the entity that
// declares it. Empty: there is none.
using Resolver = std::function<std::optional<Resolved>(const std::string& publicId, const std::string& systemId,
                                                       const std::string& base)>;

struct ReadOptions {
    std::string source;      // a name for problems; readFile sets the path
    std::string encoding;    // known from outside; empty: byte order mark, then declaration, then UTF-8
    bool namespaces = true;  // check Namespaces in XML 1.0
    Space space = Space::Content;
    bool keepComments = true, keepInstructions = true, keepCData = false;
    bool keepPlaces = false;               // placeOf knows every node
    bool validate = false;                 // not supported
    const Dtd* dtd = nullptr;              // not supported
    Resolver resolver;                     // not supported; filesBelow makes one
    std::int64_t maxBytes = 0;             // of the source; 0: no limit
    int maxDepth = 0;                      // 0: no limit, and none is needed for safety
    std::int64_t entityGrowth = 64 << 20;  // bytes that the document type makes, by references, nested ones too, and by
        // defaults, once they are also more than 100 times the bytes read; 0: no limit. An element from an entity
        // counts 96 bytes more, an attribute, a comment, an instruction or a section 32
    std::size_t maxProblems = 100;  // the first is given in any case
};

// Nothing is dropped: white space, comments, instructions and sections are kept.
ORVXML_API ReadOptions everything();

}  // namespace Xml
