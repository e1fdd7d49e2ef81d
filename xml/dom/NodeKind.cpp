#include "xml/dom/NodeKind.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"

namespace Xml {

using internal::LeafKind;

NodeKind kindOf(const Object& node) {
    switch (NodeAccess::marks(node).leafKind()) {
    case LeafKind::CData: return NodeKind::CData;
    case LeafKind::Comment: return NodeKind::Comment;
    case LeafKind::Instruction: return NodeKind::Instruction;
    case LeafKind::Plain: break;
    }
    if (isElement(node)) return NodeKind::Element;
    if (isCharData(node)) return NodeKind::Text;
    if (isAttribute(node)) return NodeKind::Attribute;
    if (node.isDocument()) return NodeKind::Document;
    return node.isDtd() ? NodeKind::Dtd : NodeKind::Other;
}

bool isDefault(const Attribute& attribute) { return NodeAccess::isSupplied(attribute); }

}  // namespace Xml
