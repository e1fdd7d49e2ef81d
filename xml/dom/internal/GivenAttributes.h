#pragma once

#include "xml/dom/internal/SortByName.h"
#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

// The attributes of one tag, before there are nodes for them: names of one NameTable, and values whose bytes are
// elsewhere. In the order of the text at first.
class GivenAttributes {
public:
    struct Given {
        Given(const SharedName& itsName, std::string_view itsValue)
            : name(&itsName), bytes(itsValue.data()), size(itsValue.size()) {}

        // Field by field, as they were written: what is loaded in wider steps than it was stored waits for the stores.
        Given(const Given& other) : name(other.name), bytes(other.bytes), size(other.size) {}
        Given& operator=(const Given& other) {
            name = other.name;
            bytes = other.bytes;
            size = other.size;
            return *this;
        }
        ~Given() = default;

        std::string_view value() const { return {bytes, size}; }

        const SharedName* name;
        const char* bytes;  // of the value
        std::size_t size;
    };

    GivenAttributes() = default;

    // With room for so many.
    explicit GivenAttributes(std::size_t count) { all.reserve(count); }

    void clear() {
        all.clear();
        isSorted = true;
        padded = false;
    }
    void add(const SharedName& name, std::string_view value) {
        if (!all.empty()) isSorted &= all.back().name->isBefore(name);
        all.emplace_back(name, value);
    }

    // Whether each value is padded (see GivenText); not at first.
    bool arePadded() const { return padded; }
    void setPadded() { padded = true; }

    bool empty() const { return all.empty(); }
    std::size_t size() const { return all.size(); }
    Given& operator[](std::size_t place) { return all[place]; }
    const Given* begin() const { return all.data(); }
    const Given* end() const { return all.data() + all.size(); }

    // Puts them in the byte order of their names. Of several with one name the last stays.
    void sort() {
        if (isSorted) return;
        if (all.size() == 2 && all[0].name != all[1].name) {
            std::swap(all[0], all[1]);
        } else {
            sortByName(all);
            removeRepeated();
        }
        isSorted = true;
    }

private:
    // Of those with one name, which stand together, all but the last.
    void removeRepeated() {
        const auto isRepeated = [](const Given& a, const Given& b) { return a.name == b.name; };
        auto kept = std::adjacent_find(all.begin(), all.end(), isRepeated);
        if (kept == all.end()) return;
        for (auto next = kept + 1; next != all.end(); ++next) {
            if (next->name != kept->name) ++kept;
            *kept = *next;
        }
        all.erase(kept + 1, all.end());
    }

    std::vector<Given> all;
    bool isSorted = true;
    bool padded = false;
};

}  // namespace Xml
