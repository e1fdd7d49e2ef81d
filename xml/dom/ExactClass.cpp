#include "xml/dom/ExactClass.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CDataSection.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Comment.h"
#include "xml/dom/Element.h"
#include "xml/dom/Instruction.h"
#include <typeinfo>

namespace Xml::internal {

namespace {

NodeClass classOf(const std::type_info& type) {
    if (type == typeid(Element)) return NodeClass::Element;
    if (type == typeid(CharData)) return NodeClass::CharData;
    if (type == typeid(Attribute)) return NodeClass::Attribute;
    if (type == typeid(Comment)) return NodeClass::Comment;
    if (type == typeid(Instruction)) return NodeClass::Instruction;
    if (type == typeid(CDataSection)) return NodeClass::CDataSection;
    return NodeClass::Other;
}

}  // namespace

NodeClass ExactClass::look(const Object& node) const {
    const NodeClass found = classOf(typeid(node));
    value.store(found, std::memory_order_relaxed);
    return found;
}

}  // namespace Xml::internal
