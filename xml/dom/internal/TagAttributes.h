#pragma once

#include "xml/dom/Marks.h"
#include "xml/dom/Text.h"
#include "xml/dom/internal/FewFirst.h"
#include "xml/dom/internal/SortByName.h"
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

// The attributes of one tag, before there are nodes for them, with what GivenAttributes do not keep: where each stands
// in the tag and in the source, and whether the document type supplied it.
//
//     TagAttributes attributes;
//     attributes.add(tree.name("b"), "1", 7);
//     attributes.addDefault(tree.name("a"), "2", 3);
//     attributes.sort();
//     if (const TagAttributes::Given* again = attributes.findRepeated()) ...
//     tree.setAttributes(attributes);
class TagAttributes {
public:
    struct Given {
        Given() {}  // to be assigned

        // Made in its place: what is copied there waits for the stores.
        Given(const SharedName& itsName, std::string_view itsValue, std::uint32_t itsOrder)
            : name(&itsName), bytes(itsValue.data()), size(itsValue.size()), order(itsOrder) {}

        std::string_view value() const { return {bytes, size}; }

        const SharedName* name;  // of the NameTable of the tree
        const char* bytes;       // of the value
        std::size_t size;
        std::uint32_t order;  // where it stands in the tag, from 0 on
        bool isSupplied = false;
    };

    void clear() {
        all.clear();
        if (!offsets.empty()) offsets.clear();
        count = 0;
        last = 0;
        longSize = 0;
        isSorted = true;
        padded = false;
    }

    // Whether each value is padded (see GivenText); not at first.
    bool arePadded() const { return padded; }
    void setPadded() { padded = true; }

    // In the order of the tag; of all or of none the offset in the source, which is Marks::kNoOffset else.
    void add(const SharedName& name, std::string_view value, std::int64_t offset) { add(name, value, offset, false); }

    // One that the document type supplies; after those of the tag.
    void addDefault(const SharedName& name, std::string_view value, std::int64_t offset) {
        add(name, value, offset, true);
    }

    // The same without the offset; that may be given after all of them, in the order of the tag.
    void add(const SharedName& name, std::string_view value) {
        all.add(name, value, count++);
        longSize += longSizeOf(value);
        const Words::Word order = name.order();
        isSorted &= last < order;
        last = order;
    }
    void addOffset(std::int64_t offset) { offsets.push_back(offset); }

    bool empty() const { return all.empty(); }
    std::size_t size() const { return all.size(); }
    const Given* begin() const { return all.begin(); }
    const Given* end() const { return all.end(); }
    const Given& operator[](std::size_t number) const { return all[number]; }

    // Another value for one of them.
    void setValue(std::size_t number, std::string_view value) {
        Given& given = all[number];
        longSize += longSizeOf(value) - longSizeOf(given.value());
        given.bytes = value.data();
        given.size = value.size();
    }

    // The bytes of all values that are not short.
    std::size_t longBytes() const { return longSize; }

    // Its offset in the source, where that was given.
    std::int64_t offsetOf(const Given& given) const {
        return offsets.empty() ? internal::Marks::kNoOffset : offsets[given.order];
    }

    // Whether they are in the byte order of their names, each of another name, for certain.
    bool areSorted() const { return isSorted; }

    // Puts them in that order.
    void sort() {
        if (isSorted) return;
        if (all.size() == 2 && all[1].name->isBefore(*all[0].name)) {
            std::swap(all[0], all[1]);
        } else {
            sortByName(all.begin(), all.end());
        }
        isSorted = true;
    }

    // Of those that have the name of one before them in the tag the first in the order of names; null where each has a
    // name of its own. They are sorted.
    const Given* findRepeated() const {
        const Given* before = nullptr;
        for (const Given& given : all) {
            if (before != nullptr && given.name == before->name) return &given;
            before = &given;
        }
        return nullptr;
    }

private:
    static std::size_t longSizeOf(std::string_view value) { return internal::isShort(value) ? 0 : value.size(); }

    void add(const SharedName& name, std::string_view value, std::int64_t offset, bool isSupplied) {
        add(name, value);
        all.back().isSupplied = isSupplied;
        if (offset != internal::Marks::kNoOffset) offsets.push_back(offset);
    }

    FewFirst<Given> all;
    std::vector<std::int64_t> offsets;  // in the order of the tag
    std::uint32_t count = 0;            // of those that were given
    std::size_t longSize = 0;
    Words::Word last = 0;  // the order of the last one's name
    bool isSorted = true;  // for certain
    bool padded = false;
};

}  // namespace Xml
