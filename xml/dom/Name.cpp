#include "xml/dom/Name.h"

#include "xml/text/internal/EmptyData.h"

namespace Xml::internal {

const std::string& Name::emptyText() { return emptyData(); }

}  // namespace Xml::internal
