#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Xml::internal {

// An attribute of a tag, its value normalised.
//
// Not for callers.
struct TagAttribute {
    TagAttribute() {}  // to be assigned

    // Made in its place: what is copied there waits for the stores.
    TagAttribute(std::string_view itsName, std::string_view itsValue, bool isSupplied)
        : name(itsName), value(itsValue), isDefault(isSupplied) {}

    std::string_view name, value;
    bool isDefault;  // supplied by the document type
};

// An event as a reader shows it, which is asked for its parts in line; all views are good until the next one.
//
// Not for callers.
struct EventAtHand {
    void clear() {
        name = {};  // one by one: what is copied on waits for the store
        text = {};
        attributeCount = 0;
    }

    std::string_view name, text;
    const TagAttribute* attributes = nullptr;
    std::size_t attributeCount = 0;
    std::size_t depth = 0;
    std::int64_t offset = -1;
};

}  // namespace Xml::internal
