#pragma once

#include "xml/Export.h"
#include <cstdint>

namespace Xml {

class Object;

// What a node is. An object of a class that is derived from one of the library's is what that is; Other is any other
// class of a caller's.
enum class NodeKind : std::uint8_t { Element, Text, CData, Comment, Instruction, Attribute, Document, Dtd, Other };

ORVXML_API NodeKind kindOf(const Object& node);

}  // namespace Xml
