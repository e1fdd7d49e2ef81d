#pragma once

#include "xml/dom/Marks.h"
#include "xml/dom/internal/AttributeList.h"
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Xml {

// One of TagAttributes.
struct GivenInTag : NameAndValue {
    GivenInTag() {}  // to be assigned
    GivenInTag(const SharedName& itsName, std::string_view itsValue, std::uint32_t itsOrder)
        : NameAndValue(itsName, itsValue), order(itsOrder) {}

    std::uint32_t order;  // where it stands in the tag, from 0 on
    bool isSupplied = false;
};

// The attributes of one tag, before there are nodes for them, with what GivenAttributes do not keep: where each stands
// in the tag and in the source, and whether the document type supplied it.
//
//     TagAttributes attributes;
//     attributes.add(tree.name("b"), "1", 7);
//     attributes.addDefault(tree.name("a"), "2", 3);
//     if (!attributes.sort()) ... // a name is there again
//     tree.setAttributes(attributes);
class TagAttributes : public AttributeList<GivenInTag> {
public:
    using Given = GivenInTag;

    void clear() {
        AttributeList::clear();
        if (!offsets.empty()) offsets.clear();
    }

    // In the order of the tag; of all or of none the offset in the source, which is Marks::kNoOffset else.
    void add(const SharedName& name, std::string_view value, std::int64_t offset) { add(name, value, offset, false); }

    // One that the document type supplies; after those of the tag.
    void addDefault(const SharedName& name, std::string_view value, std::int64_t offset) {
        add(name, value, offset, true);
    }

    // The same without the offset; that may be given after all of them, in the order of the tag.
    void add(const SharedName& name, std::string_view value) {
        AttributeList::add(name, value, static_cast<std::uint32_t>(size()));
    }
    void addOffset(std::int64_t offset) { offsets.push_back(offset); }

    // Its offset in the source, where that was given.
    std::int64_t offsetOf(const Given& given) const {
        return offsets.empty() ? internal::Marks::kNoOffset : offsets[given.order];
    }

    // Puts them in the byte order of their names. The first time it returns whether each has a name of its own.
    bool sort() { return areSorted() || !sortAll(); }

private:
    void add(const SharedName& name, std::string_view value, std::int64_t offset, bool isSupplied) {
        add(name, value);
        all.back().isSupplied = isSupplied;
        if (offset != internal::Marks::kNoOffset) offsets.push_back(offset);
    }

    std::vector<std::int64_t> offsets;  // in the order of the tag
};

}  // namespace Xml
