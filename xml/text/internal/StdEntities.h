#pragma once

#include <string>

namespace Xml {

// Appends `text` with each of & < > " ' as its standard reference.
void appendEscaped(std::string& result, const std::string& text);

}  // namespace Xml
