#pragma once

#include "xml/dom/internal/Arena.h"
#include <algorithm>
#include <cstddef>

namespace Xml {

// Puts attributes that are given in the byte order of their names; those of one name stay in their order.
template <class Given>
void sortByName(Given* begin, Given* end) {
    const auto isBefore = [](const Given& a, const Given& b) { return a.name->isBefore(*b.name); };
    constexpr std::ptrdiff_t kInsertable = 32;
    if (end - begin > kInsertable) {
        std::stable_sort(begin, end, isBefore);
        return;
    }
    for (Given* next = begin + 1; next < end; ++next) {
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
