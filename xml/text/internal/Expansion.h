#pragma once

#include "xml/text/DataHolder.h"
#include "xml/text/internal/Decode.h"
#include <string_view>

namespace Xml {

class Dtd;

// As replaceEntities, counting in `expansion`. Stops before the bound would be passed: false, and `text` is unchanged.
bool expandReferences(DataHolder& text, const Dtd* dtd, Expansion& expansion);

// What replaceEntities makes of the text.
DataHolder decodedText(std::string_view text, const Dtd* dtd);

}  // namespace Xml
