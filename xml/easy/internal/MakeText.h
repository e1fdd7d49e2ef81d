#pragma once

#include "xml/dom/CharData.h"
#include <memory>
#include <string_view>

namespace Xml {

// Character data of that text, which is as it is meant.
std::unique_ptr<CharData> makeText(std::string_view text);

}  // namespace Xml
