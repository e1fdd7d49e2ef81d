#include "xml/xpath/internal/Characters.h"

#include <cstring>

namespace Xml {

bool GetQName(Unit& at, Unit end, OrvSys::Uni16String& name) {
    const Unit begin = at;
    if (!skipNCName(at, end)) return false;
    if (at != end && *at == u':') {
        Unit local = at + 1;
        if (skipNCName(local, end)) at = local;
    }
    name.assign(begin, at);
    return true;
}

bool IsAttributeAxis(Unit& at, Unit end) {
    for (const char* marker : {"@", "attribute::"}) {
        if (!startsWith(at, end, marker)) continue;
        at += std::strlen(marker);
        return true;
    }
    return false;
}

}  // namespace Xml
