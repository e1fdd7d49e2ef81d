#pragma once

#include "xml/Export.h"
#include <cstdint>

namespace Xml {

class Attribute;
class Object;

// What a node is. An object of a class that is derived from one of the library's is what that is; Other is any other
// class of a caller's.
enum class NodeKind : std::uint8_t { Element, Text, CData, Comment, Instruction, Attribute, Document, Dtd, Other };

ORVXML_API NodeKind kindOf(const Object& node);

// Whether the document type supplied the attribute when it was read, and its value has not been set since. A copy is
// what it is a copy of.
ORVXML_API bool isDefault(const Attribute& attribute);

}  // namespace Xml
