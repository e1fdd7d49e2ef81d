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

    // Bytes that were read for the Dtd before a reading that uses it, or aside from it: an external subset, a prolog read as a step
    // of its own. They count in the bound below, for a fragment that is read with a document's Dtd as well.
    static std::int64_t bytesReadElsewhere(const Dtd& dtd) { return dtd.bytesRead; }
    static void addBytesRead(Dtd& dtd, std::int64_t count) { dtd.bytesRead += count; }

    // The bound on text from references that was set, 0 when there is none.
    static std::int64_t entityGrowthLimit();
};

}  // namespace Xml
