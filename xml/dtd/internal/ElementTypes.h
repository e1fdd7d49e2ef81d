#pragma once

#include "xml/dtd/internal/DtdAccess.h"
#include "xml/dtd/internal/FoundNames.h"
#include "xml/dtd/internal/ModelStates.h"
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace Xml {

// What a Dtd says of the elements of one name, where their model is plain: of the library's classes, and all of this
// Dtd.
struct ElementType {
    // What may stand in it: whatever there is; the elements that `start` says; text; both. Where there may be text, the
    // children that fit get the link.
    enum class Content : std::uint8_t { Anything, Elements, Text, Mixed };

    const DtdAccess::AttributeList* attributes;  // null without
    ModelStates::State start;                    // before the first child
    Content content;
    bool mayBeEmpty;
};

// The element types of a Dtd for the elements of a tree, each made when it is first asked for. Names that nodes share
// are found by their addresses, others by their texts. The Dtd, its models and the shared names must stay as they are.
class ElementTypes {
public:
    explicit ElementTypes(const Dtd& itsDtd) : dtd(itsDtd) {}

    // Null where the name is not declared, or its model is not plain.
    const ElementType* find(const std::string& name);

    // The type of a child of this name that comes at a state, and the state after it. Null where the name may not come,
    // or has no type.
    struct Child {
        const ElementType* type;
        ModelStates::State next;
    };
    Child findChild(ModelStates::State at, const std::string& name) {
        const ModelStates::State next = states.next(at, name);
        return {next != ModelStates::kNone ? find(name) : nullptr, next};
    }
    Child findSharedChild(ModelStates::State at, const std::string& name) {
        return children.get(name, at, [&] { return findChild(at, name); });
    }

    // The definition of an attribute in the list of an element type; null without.
    static const AttDef* findAttribute(const DtdAccess::AttributeList& list, const std::string& name) {
        const auto definition = list.definitions.find(name);
        return definition != list.definitions.end() ? definition->second.get() : nullptr;
    }
    const AttDef* findSharedAttribute(const DtdAccess::AttributeList& list, const std::string& name) {
        const auto context = reinterpret_cast<std::uintptr_t>(&list);
        return attributes.get(name, context, [&] { return findAttribute(list, name); });
    }

    // Whether no more children need come at the state.
    bool mayEnd(ModelStates::State at) const { return states.mayEnd(at); }

private:
    bool setContent(ElementType& type, const ContentSpec& model);

    const Dtd& dtd;
    ModelStates states;  // of all types
    std::map<std::string_view, ElementType> types;
    FoundNames<Child> children;
    FoundNames<const AttDef*> attributes;
};

}  // namespace Xml
