#include "xml/xpath/internal/axes/Taker.h"

namespace Xml {

Taker Taker::forAll(std::vector<Object*>& nodes) const {
    static const NodeTest any;
    return {any, nodes, kAll, budget};
}

void Taker::takeEachAttribute(const Element& element) {
    const AttributeSpan attributes = NodeAccess::attributes(element);
    visit(attributes.size());
    for (Attribute* const attribute : attributes) {
        if (isDone()) return;
        take(*attribute);
    }
}

}  // namespace Xml
