#pragma once

#include "xml/dom/Place.h"
#include "xml/dom/internal/SortByName.h"
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Xml {

// The attributes of one tag, before there are nodes for them, with what GivenAttributes do not keep: where each stands
// in the tag and in the source, and whether the document type supplied it.
//
//     TagAttributes attributes;
//     attributes.add(tree.name("b"), "1", &place);
//     attributes.addDefault(tree.name("a"), "2", nullptr);
//     attributes.sort();
//     if (const TagAttributes::Given* again = attributes.findRepeated()) ...
//     tree.setAttributes(attributes);
class TagAttributes {
public:
    struct Given {
        Given() {}  // to be assigned

        // Made in its place: what is copied there waits for the stores.
        Given(const SharedName& itsName, std::string_view itsValue, std::uint32_t itsOrder, bool isDefault)
            : name(&itsName), bytes(itsValue), order(itsOrder), isSupplied(isDefault) {}

        std::string_view value() const { return bytes; }

        const SharedName* name;  // of the NameTable of the tree
        std::string_view bytes;  // of the value
        std::uint32_t order;
        bool isSupplied;
    };

    void clear() {
        all.clear();
        places.clear();
        isSorted = true;
        padded = false;
    }

    // Whether each value is padded (see GivenText); not at first.
    bool arePadded() const { return padded; }
    void setPadded() { padded = true; }

    // In the order of the tag; of all or of none the place.
    void add(const SharedName& name, std::string_view value, const Place* place) { add(name, value, place, false); }

    // One that the document type supplies; after those of the tag.
    void addDefault(const SharedName& name, std::string_view value, const Place* place) {
        add(name, value, place, true);
    }

    bool empty() const { return all.empty(); }
    std::size_t size() const { return all.size(); }
    const Given* begin() const { return all.data(); }
    const Given* end() const { return all.data() + all.size(); }

    bool havePlaces() const { return !places.empty(); }

    // Its place in the source; null where none was given.
    const Place* placeOf(const Given& given) const { return places.empty() ? nullptr : &places[given.order]; }

    // Puts them in the byte order of their names.
    void sort() {
        if (isSorted) return;
        sortByName(all.data(), all.data() + all.size());
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
    void add(const SharedName& name, std::string_view value, const Place* place, bool isSupplied) {
        if (!all.empty()) isSorted &= all.back().name->isBefore(name);
        all.emplace_back(name, value, static_cast<std::uint32_t>(all.size()), isSupplied);
        if (place != nullptr) places.push_back(*place);
    }

    std::vector<Given> all;
    std::vector<Place> places;  // in the order of the tag
    bool isSorted = true;
    bool padded = false;
};

}  // namespace Xml
