#pragma once

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include <algorithm>
#include <iterator>
#include <vector>

namespace Xml {

// Comments and instructions are no content: models pass over them, and a caller's own model gets the list without them.
inline bool isEmptyContent(NodeSpan children) {
    return std::all_of(children.begin(), children.end(), [](const Object* child) { return isPassedOver(*child); });
}

inline std::vector<Object*> contentOf(NodeSpan children) {
    std::vector<Object*> content;
    content.reserve(children.size());
    std::remove_copy_if(children.begin(), children.end(), std::back_inserter(content),
                        [](const Object* child) { return isPassedOver(*child); });
    return content;
}

// Whether all are character data, as the model (#PCDATA) asks; those up to the first that is not get the link.
inline bool matchCharData(NodeSpan children, const Dtd* dtd) {
    for (Object* const child : children) {
        if (isPassedOver(*child)) continue;
        if (isElement(*child) || !isCharData(*child)) return false;
        child->setDtd(dtd);
    }
    return true;
}

}  // namespace Xml
