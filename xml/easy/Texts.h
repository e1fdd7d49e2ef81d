#pragma once

#include "xml/Export.h"
#include "xml/dom/Element.h"
#include "xml/dom/Object.h"
#include <string>
#include <string_view>

namespace Xml {

// All text below the node, as it is meant: references in it are resolved, to entities by the linked Dtd. Comments and
// instructions are no text of the elements around them; each has its own, and an attribute its value.
ORVXML_API std::string textOf(const Object& node);

// Replaces all children by the text; by nothing where that is empty. Where memory runs out nothing has changed.
ORVXML_API void setText(Element& e, std::string_view text);

}  // namespace Xml
