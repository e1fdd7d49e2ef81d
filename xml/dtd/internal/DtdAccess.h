#pragma once

#include "xml/dtd/AttDef.h"
#include "xml/dtd/Dtd.h"
#include <cstdint>
#include <string>

namespace Xml {

// What the readers use of a Dtd beside its public operations.
struct DtdAccess {
    static bool isDeclared(const Dtd& dtd, const std::string& element) {
        return dtd.elements.find(element) != dtd.elements.end();
    }

    // The list with the element's attributes; null while none is defined.
    using AttributeList = Dtd::AttributeList;
    static AttributeList* findList(Dtd& dtd, const std::string& element) {
        const auto list = dtd.attributeLists.find(element);
        return list != dtd.attributeLists.end() ? &list->second : nullptr;
    }

    // Takes the definition into a list. False, and it stays the caller's, where the attribute is defined already. The Dtd of the
    // list is for the caller to touch.
    static bool define(AttributeList& list, const std::string& attribute, AttDef* definition) {
        if (!list.definitions.emplace(attribute, definition).second) return false;
        if (definition->isRequired()) ++list.required;
        return true;
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
