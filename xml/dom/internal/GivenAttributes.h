#pragma once

#include "xml/dom/Marks.h"
#include "xml/dom/Text.h"
#include "xml/dom/internal/FewFirst.h"
#include "xml/dom/internal/SortByName.h"
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace Xml {

// The attributes of one tag, before there are nodes for them: names of one NameTable, and values whose bytes are
// elsewhere. In the order of the text at first.
class GivenAttributes {
public:
    struct Given {
        Given() {}  // to be assigned
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
    GivenAttributes(const GivenAttributes&) = delete;
    GivenAttributes& operator=(const GivenAttributes&) = delete;

    void clear() {
        all.clear();
        last = 0;
        longSize = 0;
        isSorted = true;
        padded = false;
    }
    void add(const SharedName& name, std::string_view value) {
        all.add(name, value);
        longSize += longSizeOf(value);
        const Words::Word order = name.order();
        isSorted &= last < order;
        last = order;
    }

    // Another value for one of them.
    void setValue(std::size_t place, std::string_view value) {
        Given& given = all[place];
        longSize += longSizeOf(value) - longSizeOf(given.value());
        given = Given(*given.name, value);
    }

    // The bytes of all values that are not short.
    std::size_t longBytes() const { return longSize; }

    // Whether each value is padded (see GivenText); not at first.
    bool arePadded() const { return padded; }
    void setPadded() { padded = true; }

    // Where they are in the source is not known, as it may be of TagAttributes.
    static constexpr std::int64_t offsetOf(const Given&) { return internal::Marks::kNoOffset; }

    bool empty() const { return all.empty(); }
    std::size_t size() const { return all.size(); }
    const Given& operator[](std::size_t place) const { return all[place]; }
    const Given* begin() const { return all.begin(); }
    const Given* end() const { return all.end(); }

    // Puts them in the byte order of their names. Of several with one name the last stays.
    void sort() {
        if (isSorted) return;
        if (size() == 2 && all[1].name->isBefore(*all[0].name)) {
            std::swap(all[0], all[1]);
        } else {
            sortByName(all.begin(), all.end());
            removeRepeated();
        }
        isSorted = true;
    }

private:
    static std::size_t longSizeOf(std::string_view value) { return internal::isShort(value) ? 0 : value.size(); }

    // Of those with one name, which stand together, all but the last.
    void removeRepeated() {
        const auto isRepeated = [](const Given& a, const Given& b) { return a.name == b.name; };
        Given* kept = std::adjacent_find(all.begin(), all.end(), isRepeated);
        if (kept == all.end()) return;
        for (const Given* given = kept + 1; given != all.end(); ++given) {
            if (given->name != kept->name) {
                ++kept;
            } else {
                longSize -= longSizeOf(kept->value());
            }
            *kept = *given;
        }
        all.endAt(kept + 1);
    }

    FewFirst<Given> all;
    Words::Word last = 0;  // the order of the last one's name
    std::size_t longSize = 0;
    bool isSorted = true;  // for certain
    bool padded = false;
};

}  // namespace Xml
