#pragma once

#include "xml/Export.h"
#include <cstdint>

namespace Xml {

class Object;

// A place in a source. Where it is not known all of it is as at first.
struct Place {
    std::int64_t offset = -1;  // in bytes of the source as it was delivered, from 0 on; a byte order mark counts
    int line = 0;              // from 1 on; LF, CR LF and CR end a line
    int column = 0;            // from 1 on, in code points; a byte order mark does not count
};

// Where the node began in the source that it was read from, if that was asked for. It stays with the node wherever that
// goes; a copy has none.
ORVXML_API Place placeOf(const Object& node);

}  // namespace Xml
