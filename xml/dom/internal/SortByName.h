#pragma once

#include "xml/dom/internal/Arena.h"
#include <algorithm>
#include <cstddef>
#include <vector>

namespace Xml {

// Puts attributes that are given in the byte order of their names; those of one name stay in their order.
template <class Given>
void sortByName(std::vector<Given>& all) {
    const auto isBefore = [](const Given& a, const Given& b) { return a.name->isBefore(*b.name); };
    constexpr std::size_t kInsertable = 32;
    if (all.size() > kInsertable) {
        std::stable_sort(all.begin(), all.end(), isBefore);
        return;
    }
    Given* const begin = all.data();
    for (Given* next = begin + 1; next < begin + all.size(); ++next) {
        if (!isBefore(*next, next[-1])) continue;
        const Given moved = *next;
        Given* to = next;
        do {
            *to = to[-1];
            --to;
        } while (to != begin && isBefore(moved, to[-1]));
        *to = moved;
    }
}

}  // namespace Xml
