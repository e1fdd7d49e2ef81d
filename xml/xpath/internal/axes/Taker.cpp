#include "xml/xpath/internal/axes/Taker.h"

#include "xml/text/internal/NeverDestroyed.h"

namespace Xml {

Taker Taker::forAll(std::vector<Object*>& nodes) const {
    static NeverDestroyed<NodeTest> any;
    return {any.get(), nodes, kAll, budget};
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
