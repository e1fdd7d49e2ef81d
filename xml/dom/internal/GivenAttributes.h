#pragma once

#include "xml/dom/Place.h"
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
        next = first;
        last = 0;
        isSorted = true;
        padded = false;
    }
    void add(const SharedName& name, std::string_view value) {
        if (next == limit) makeRoom();
        *next++ = Given(name, value);
        const Words::Word order = name.order();
        isSorted &= last < order;
        last = order;
    }

    // Whether each value is padded (see GivenText); not at first.
    bool arePadded() const { return padded; }
    void setPadded() { padded = true; }

    // They have none in the source, as TagAttributes may.
    static bool havePlaces() { return false; }
    static const Place* placeOf(const Given&) { return nullptr; }

    bool empty() const { return next == first; }
    std::size_t size() const { return static_cast<std::size_t>(next - first); }
    Given& operator[](std::size_t place) { return first[place]; }
    const Given* begin() const { return first; }
    const Given* end() const { return next; }

    // Puts them in the byte order of their names. Of several with one name the last stays.
    void sort() {
        if (isSorted) return;
        if (size() == 2 && first[1].name->isBefore(*first[0].name)) {
            std::swap(first[0], first[1]);
        } else {
            sortByName(first, next);
            removeRepeated();
        }
        isSorted = true;
    }

private:
    // Of those with one name, which stand together, all but the last.
    void removeRepeated() {
        const auto isRepeated = [](const Given& a, const Given& b) { return a.name == b.name; };
        Given* kept = std::adjacent_find(first, next, isRepeated);
        if (kept == next) return;
        for (const Given* given = kept + 1; given != next; ++given) {
            if (given->name != kept->name) ++kept;
            *kept = *given;
        }
        next = kept + 1;
    }

    [[gnu::noinline]] void makeRoom() {
        std::vector<Given> larger(2 * size());
        next = std::copy(first, next, larger.data());
        many = std::move(larger);
        first = many.data();
        limit = first + many.size();
    }

    static constexpr std::size_t kFew = 8;  // most tags have no more, and need no other memory

    Given few[kFew];
    std::vector<Given> many;
    Given* first = few;
    Given* next = few;
    Given* limit = few + kFew;
    Words::Word last = 0;  // the order of the last one's name
    bool isSorted = true;  // for certain
    bool padded = false;
};

}  // namespace Xml
