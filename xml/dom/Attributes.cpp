#include "xml/dom/Attributes.h"

#include "xml/dom/internal/NodeAccess.h"
#include <algorithm>
#include <memory>

namespace Xml::internal {

Attributes::~Attributes() {
    for (const Attribute* attribute : sorted.span()) delete attribute;
}

// The place of the attribute of that name, or the one where it would go.
std::size_t Attributes::placeOf(const std::string& name) const {
    const AttributeSpan all = sorted.span();
    const auto* const place =
        std::lower_bound(all.begin(), all.end(), name,
                         [](const Attribute* a, const std::string& n) { return NodeAccess::name(*a) < n; });
    return static_cast<std::size_t>(place - all.begin());
}

bool Attributes::isAt(std::size_t place, const std::string& name) const {
    return place < sorted.size() && sorted[place]->getName() == name;
}

Attribute* Attributes::find(const std::string& name) const {
    const std::size_t place = placeOf(name);
    return isAt(place, name) ? sorted[place] : nullptr;
}

void Attributes::set(std::unique_ptr<Attribute> attribute) {
    const std::size_t place = placeOf(attribute->getName());
    if (isAt(place, attribute->getName())) {
        const std::unique_ptr<Attribute> before(sorted[place]);
        NodeAccess::setOrder(*attribute, NodeAccess::order(*before));
        sorted.set(place, attribute.release());
    } else {
        sorted.insert(place, attribute.get());
        putLastInTag(*attribute.release());
    }
}

// The next order is noted beside the attributes, where there is room for it. Elsewhere they are few and are looked at.
void Attributes::putLastInTag(const Attribute& attribute) const {
    std::uint64_t* const noted = sorted.note();
    std::uint64_t next = noted != nullptr ? *noted : 0;
    if (next == 0) {
        for (const Attribute* const each : sorted.span()) next = std::max(next, NodeAccess::order(*each) + 1);
    }
    NodeAccess::setOrder(attribute, std::min(next, Marks::kMostNumber));
    if (noted != nullptr) *noted = next + 1;
}

bool Attributes::remove(const std::string& name) {
    const std::size_t place = placeOf(name);
    if (!isAt(place, name)) return false;
    remove(place);
    return true;
}

void Attributes::remove(std::size_t place) { delete sorted.remove(place); }

}  // namespace Xml::internal
