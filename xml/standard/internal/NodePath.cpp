#include "xml/standard/internal/NodePath.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/standard/internal/ElementPath.h"
#include <cstddef>
#include <vector>

namespace Xml {

namespace {

std::size_t numberAmongNamesakes(const Element& element, const Element& parent) {
    std::size_t number = 1;
    for (const Object* const child : NodeAccess::children(parent)) {
        if (child == &element) break;
        if (isElement(*child) && NodeAccess::name(static_cast<const Element&>(*child)) == NodeAccess::name(element)) {
            ++number;
        }
    }
    return number;
}

}  // namespace

std::string pathOf(const Object& node) {
    std::vector<const Element*> steps;
    for (const Object* at = &node; at != nullptr; at = at->getParent()) {
        if (isElement(*at)) steps.push_back(static_cast<const Element*>(at));
    }
    ElementPath path(steps.size());
    for (std::size_t i = steps.size(); i-- > 0;) {
        const bool isTop = i + 1 == steps.size();
        const std::size_t number = isTop ? 1 : numberAmongNamesakes(*steps[i], *steps[i + 1]);
        path.add(NodeAccess::name(*steps[i]), number);
    }
    return path.text();
}

}  // namespace Xml
