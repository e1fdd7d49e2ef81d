#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace Xml {

// How many more nodes a query may look at, and numbers it may make. What looks at nodes spends from it, a row of
// siblings at a time at most, and stops as soon as it is spent; what makes numbers spends them before it makes them.
class VisitBudget {
public:
    // A limit that is not above 0 is none.
    explicit VisitBudget(std::int64_t limit) : left(limit > 0 ? limit : std::numeric_limits<std::int64_t>::max()) {}

    // The limit that XPath::setWorkLimit has set.
    static std::int64_t commonLimit();

    void spend(std::size_t visits) { left -= static_cast<std::int64_t>(visits); }

    // Whether more was asked for than the limit allows.
    bool isSpent() const { return left < 0; }

    std::size_t visitsLeft() const { return isSpent() ? 0 : static_cast<std::size_t>(left); }

private:
    std::int64_t left;
};

}  // namespace Xml
