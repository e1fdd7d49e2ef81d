#include "xml/dom/ExactClass.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include <typeinfo>

namespace Xml::internal {

namespace {

NodeClass classOf(const std::type_info& type) {
    if (type == typeid(Element)) return NodeClass::Element;
    if (type == typeid(CharData)) return NodeClass::CharData;
    if (type == typeid(Attribute)) return NodeClass::Attribute;
    return NodeClass::Other;
}

}  // namespace

NodeClass ExactClass::look(const Object& node) const {
    const NodeClass found = classOf(typeid(node));
    value.store(found, std::memory_order_relaxed);
    return found;
}

}  // namespace Xml::internal
