#pragma once

#include "xml/dom/internal/NodeAccess.h"

namespace Xml {

// Whether all are character data, as the model (#PCDATA) asks; those up to the first that is not get the link.
inline bool matchCharData(NodeSpan children, const Dtd* dtd) {
    for (Object* const child : children) {
        if (isElement(*child) || !isCharData(*child)) return false;
        child->setDtd(dtd);
    }
    return true;
}

}  // namespace Xml
