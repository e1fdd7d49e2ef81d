#pragma once

#include "xml/xpath/internal/Absence.h"
#include <vector>

namespace Xml {

// The absence of a query, and on top of it those of the parts that are under way and will be kept. Steps are added to
// the top one. tests/xpath/AbsenceTest.cpp holds it.
class AbsenceStack {
public:
    Absence& top() { return parts.empty() ? query : parts.back(); }

    // Begins a part.
    void begin() { parts.emplace_back(); }

    // Ends the part begun last, and adds it to what it is a part of. Returns the absence of the part alone.
    Absence end() {
        const Absence part = parts.back();
        parts.pop_back();
        top().append(part);
        return part;
    }

    // The absence of the query, the parts that are under way included.
    Absence whole() const {
        Absence absence = query;
        for (const Absence& part : parts) absence.append(part);
        return absence;
    }

private:
    Absence query;               // without the parts that are under way
    std::vector<Absence> parts;  // the one begun first in front
};

}  // namespace Xml
