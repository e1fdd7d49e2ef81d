#pragma once

#include "xml/standard/internal/Declarations.h"
#include <map>
#include <string>
#include <string_view>

namespace Xml {

// The text that a reference to each internal general entity stands for: its replacement text with the references in it
// resolved, those in what they stand for too, in whatever order they are declared. Markup is text like any other.
//
// A reference stays as it is where there is no such text: to an entity that is external, unparsed or not declared, or
// that refers back to itself. So does every one from that on by which references would have made more than 64 KB and 16
// times the replacement texts: what is declared and never used must not fill the memory.
std::map<std::string_view, std::string> entityValues(const Entities& general);

}  // namespace Xml
