#pragma once

#include "xml/dom/internal/Arena.h"
#include <algorithm>
#include <cstddef>

namespace Xml {

// Puts attributes that are given in the byte order of their names; those of one name stay in their order. Returns
// whether there are such.
template <class Given>
bool sortByName(Given* begin, Given* end) {
    const auto isBefore = [](const Given& a, const Given& b) { return a.name->isBefore(*b.name); };
    const auto isSame = [](const Given& a, const Given& b) { return a.name == b.name; };
    constexpr std::ptrdiff_t kInsertable = 32;
    if (end - begin > kInsertable) {
        std::stable_sort(begin, end, isBefore);
        return std::adjacent_find(begin, end, isSame) != end;
    }
    bool areSame = false;
    for (Given* next = begin + 1; next < end; ++next) {
        Given* to = next;
        if (isBefore(*next, next[-1])) {
            const Given moved = *next;
            do {
                *to = to[-1];
                --to;
            } while (to != begin && isBefore(moved, to[-1]));
            *to = moved;
        }
        areSame |= to != begin && isSame(*to, to[-1]);
    }
    return areSame;
}

}  // namespace Xml
