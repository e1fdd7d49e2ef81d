#pragma once

#include "xml/dom/internal/NodeAccess.h"
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Xml {

// What is known of elements while a validation is under way: a word each, 0 for nothing.
//
// An element has the number of its place here, and the place has the element: only when both agree is it the element's.
// So nothing has to be cleared at the end, and an element that goes meanwhile is never looked at.
//
// The validations that code of callers starts within another one use the table of the outermost in their thread: the
// number that an element has is that of its last word.
class VerdictTable {
public:
    VerdictTable() = default;
    VerdictTable(const VerdictTable&) = delete;
    VerdictTable& operator=(const VerdictTable&) = delete;

    std::uint64_t of(const Element& element) const {
        const std::size_t place = placeOf(element);
        return place < entries.size() && entries[place].element == &element ? entries[place].word : 0;
    }

    // Keeps a word that is not 0; 0 forgets it.
    void keep(const Element& element, std::uint64_t word) {
        const std::size_t place = placeOf(element);
        if (place < entries.size() && entries[place].element == &element) {
            entries[place].word = word;
        } else if (word != 0 && entries.size() < std::numeric_limits<std::uint32_t>::max()) {
            entries.push_back({&element, word});
            NodeAccess::marks(element).setNumber(static_cast<std::uint32_t>(entries.size()));
        }
    }

    // While one of these is there, the table of the outermost one is that of the thread.
    class Use {
    public:
        explicit Use(VerdictTable& own);
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

        VerdictTable& table() const { return inUse; }

    private:
        VerdictTable& inUse;
        bool isOutermost;
    };

private:
    struct Entry {
        const Element* element;
        std::uint64_t word;
    };

    // A number counts from 1; 0 becomes a place that there never is.
    static std::size_t placeOf(const Element& element) { return std::size_t{NodeAccess::marks(element).number()} - 1; }

    std::vector<Entry> entries;
};

}  // namespace Xml
