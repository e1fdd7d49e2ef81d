#pragma once

#include "xml/xpath/internal/Absence.h"
#include <vector>

namespace Xml {

// The absence of a query, and on top of it those of the parts that are under way and will be kept. Steps are added to
// the top one. tests/xpath/AbsenceTest.cpp holds it.
class AbsenceStack {
public:
    Absence& top() { return open.back(); }

    // Begins a part.
    void begin() { open.emplace_back(); }

    // Ends the part begun last, and adds it to what it is a part of. Returns the absence of the part alone.
    Absence end() {
        const Absence part = open.back();
        open.pop_back();
        open.back().append(part);
        return part;
    }

    // The absence of the query, the parts that are under way included.
    Absence whole() const {
        Absence absence;
        for (const Absence& part : open) absence.append(part);
        return absence;
    }

private:
    std::vector<Absence> open = std::vector<Absence>(1);  // the query first
};

}  // namespace Xml
