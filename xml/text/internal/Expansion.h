#pragma once

#include "xml/text/DataHolder.h"
#include <cstdint>
#include <limits>

namespace Xml {

class Dtd;

// How much text references to the entities of a Dtd have made, and how much they may.
struct Expansion {
    std::int64_t made = 0;
    std::int64_t most = std::numeric_limits<std::int64_t>::max();
};

// As replaceEntities, counting in `expansion`. Stops before the bound would be passed: false, and `text` is unchanged.
bool expandReferences(DataHolder& text, const Dtd* dtd, Expansion& expansion);

}  // namespace Xml
