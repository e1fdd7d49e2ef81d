#pragma once

#include "xml/dtd/AttDef.h"
#include "xml/dtd/Dtd.h"
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace Xml {

// What the readers and validation use of a Dtd beside its public operations.
struct DtdAccess {
    static bool isDeclared(const Dtd& dtd, const std::string& element) {
        return dtd.elements.find(element) != dtd.elements.end();
    }

    // The name and the model of a declared element; null where it is not declared.
    using Declaration = std::pair<const std::string, std::unique_ptr<ContentSpec>>;
    static const Declaration* findDeclaration(const Dtd& dtd, const std::string& element) {
        const auto declaration = dtd.elements.find(element);
        return declaration != dtd.elements.end() ? &*declaration : nullptr;
    }

    // The model of a declared element, else null.
    static const ContentSpec* findModel(const Dtd& dtd, const std::string& element) {
        const Declaration* const declaration = findDeclaration(dtd, element);
        return declaration != nullptr ? declaration->second.get() : nullptr;
    }

    // All that is declared, in the byte order of names.
    static const std::string& name(const Dtd& dtd) { return dtd.name; }
    static const auto& elements(const Dtd& dtd) { return dtd.elements; }
    static const auto& attributeLists(const Dtd& dtd) { return dtd.attributeLists; }
    static const auto& entities(const Dtd& dtd) { return dtd.entities; }

    static AttType rule(const AttDef& definition) { return definition.rule; }

    // The list with the element's attributes; null while none is defined.
    using AttributeList = Dtd::AttributeList;
    static AttributeList* findList(Dtd& dtd, const std::string& element) {
        const auto list = dtd.attributeLists.find(element);
        return list != dtd.attributeLists.end() ? &list->second : nullptr;
    }
    static const AttributeList* findList(const Dtd& dtd, const std::string& element) {
        const auto list = dtd.attributeLists.find(element);
        return list != dtd.attributeLists.end() ? &list->second : nullptr;
    }

    // While a validation by this Dtd is under way: its number; else 0.
    static std::uint64_t& validationRun(const Dtd& dtd) { return dtd.validationRun; }

    // The list with the element's attributes, made without definitions where there is none.
    static AttributeList& makeList(Dtd& dtd, const std::string& element) { return dtd.attributeLists[element]; }

    // Takes the definition into a list. False, and it stays the caller's, where the attribute is defined already. The
    // Dtd of the list is for the caller to touch.
    static bool define(AttributeList& list, const std::string& attribute, AttDef* definition) {
        if (!list.definitions.try_emplace(attribute, definition).second) return false;
        if (definition->isRequired()) ++list.required;
        return true;
    }

    // Bytes that were read for the Dtd before a reading that uses it, or aside from it: an external subset, a prolog
    // read as a step of its own. They count in the bound below, for a fragment that is read with a document's Dtd as
    // well.
    static std::int64_t bytesReadElsewhere(const Dtd& dtd) { return dtd.bytesRead; }
    static void addBytesRead(Dtd& dtd, std::int64_t count) { dtd.bytesRead += count; }

    // The bound on text from references that was set, 0 when there is none.
    static std::int64_t entityGrowthLimit();
};

}  // namespace Xml
