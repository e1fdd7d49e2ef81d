#pragma once

#include "xml/Export.h"
#include "xml/dom/Object.h"
#include <string>

// Names by Namespaces in XML 1.0. They only look: several threads may do so at the same time.
namespace Xml {

// The namespace of an element or of an attribute, by the declarations at it and at what is around it; declarations by
// default of the linked Dtd count. Empty where there is none: no declaration of the prefix, or of a default one; an
// attribute without prefix; any other node.
ORVXML_API std::string namespaceOf(const Object& node);

// What stands after and before the colon of the name (see nameOf). A name without colon, or with one that has not a
// name on each side, is the local name as a whole.
ORVXML_API std::string localNameOf(const Object& node);
ORVXML_API std::string prefixOf(const Object& node);

}  // namespace Xml
