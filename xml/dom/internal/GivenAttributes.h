#pragma once

#include "xml/dom/Marks.h"
#include "xml/dom/internal/AttributeList.h"
#include <algorithm>
#include <cstdint>
#include <string_view>

namespace Xml {

// The attributes of one tag, before there are nodes for them: names and values alone. Of several with one name the last
// stays.
class GivenAttributes : public AttributeList<NameAndValue> {
public:
    using Given = NameAndValue;

    void clear() { AttributeList::clear(); }
    void add(const SharedName& name, std::string_view value) { AttributeList::add(name, value); }

    // Where they are in the source is not known, as it may be of TagAttributes.
    static constexpr std::int64_t offsetOf(const Given&) { return internal::Marks::kNoOffset; }

    // Puts them in the byte order of their names.
    void sort() {
        if (!areSorted() && sortAll()) removeRepeated();
    }

private:
    // Of those with one name, which stand together, all but the last.
    void removeRepeated() {
        const auto isRepeated = [](const Given& a, const Given& b) { return a.name == b.name; };
        Given* kept = std::adjacent_find(all.begin(), all.end(), isRepeated);
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
};

}  // namespace Xml
