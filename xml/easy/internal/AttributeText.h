#pragma once

#include "xml/dom/Element.h"
#include <optional>
#include <string_view>

namespace Xml {

// The value of the attribute, or the default of the Dtd that the element links to. Nothing without both. Good until the
// attribute, or the Dtd, is changed.
std::optional<std::string_view> attributeText(const Element& element, std::string_view attribute);

}  // namespace Xml
