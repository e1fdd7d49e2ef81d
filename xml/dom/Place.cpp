#include "xml/dom/Place.h"

#include "xml/dom/internal/NodeAccess.h"

namespace Xml {

Place placeOf(const Object& node) { return NodeAccess::place(node); }

}  // namespace Xml
