#pragma once

#include "xml/text/DataHolder.h"
#include "xml/text/internal/Decode.h"

namespace Xml {

class Dtd;

// As replaceEntities, counting in `expansion`. Stops before the bound would be passed: false, and `text` is unchanged.
bool expandReferences(DataHolder& text, const Dtd* dtd, Expansion& expansion);

}  // namespace Xml
