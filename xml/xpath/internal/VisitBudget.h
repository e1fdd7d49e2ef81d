#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace Xml {

// How many more nodes a query may look at. What looks at nodes spends from it, a row of siblings or a region at a time,
// and stops as soon as it is spent.
class VisitBudget {
public:
    // A limit that is not above 0 is none.
    explicit VisitBudget(std::int64_t limit) : left(limit > 0 ? limit : std::numeric_limits<std::int64_t>::max()) {}

    void spend(std::size_t visits) { left -= static_cast<std::int64_t>(visits); }

    // Whether more was asked for than the limit allows.
    bool isSpent() const { return left < 0; }

private:
    std::int64_t left;
};

}  // namespace Xml
