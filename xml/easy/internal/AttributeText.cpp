#include "xml/easy/internal/AttributeText.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/Dtd.h"
#include <algorithm>
#include <string>

namespace Xml {

std::optional<std::string_view> attributeText(const Element& element, std::string_view attribute) {
    const AttributeSpan all = NodeAccess::attributes(element);
    const auto isBefore = [](const Attribute* one, std::string_view name) { return NodeAccess::name(*one) < name; };
    const auto* const found = std::lower_bound(all.begin(), all.end(), attribute, isBefore);
    if (found != all.end() && NodeAccess::name(**found) == attribute) return NodeAccess::text(**found);

    const Dtd* const dtd = NodeAccess::dtd(element);
    if (dtd == nullptr) return {};
    const std::string name(attribute);
    if (!dtd->hasDefaultValue(NodeAccess::name(element), name)) return {};
    return dtd->getDefaultValue(NodeAccess::name(element), name).toString();
}

}  // namespace Xml
