#pragma once

#include "xml/dtd/Dtd.h"
#include <cstdint>
#include <string>

namespace Xml {

// What the readers use of a Dtd beside its public operations.
struct DtdAccess {
    static bool isDeclared(const Dtd& dtd, const std::string& element) {
        return dtd.elements.find(element) != dtd.elements.end();
    }
    static bool isDefined(const Dtd& dtd, const std::string& element, const std::string& attribute) {
        return dtd.findDefinition(element, attribute) != nullptr;
    }

    // Bytes made so far, over all readers that use this Dtd.
    static std::int64_t& entityGrowth(Dtd& dtd) { return dtd.entityGrowth; }

    // Bytes read for the document elsewhere than in the session at hand: the external subset, a prolog read as a step of its
    // own.
    static std::int64_t& bytesReadBefore(Dtd& dtd) { return dtd.bytesRead; }

    // The bound that was set, 0 when there is none.
    static std::int64_t entityGrowthLimit();
};

}  // namespace Xml
