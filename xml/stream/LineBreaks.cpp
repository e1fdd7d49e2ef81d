#include "xml/stream/LineBreaks.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

// Positions rise as long as a source is read from front to back, and what is read again after going back is found among
// them. So they are one sorted list. A caller that jumps ahead and comes back to what was never read breaks the order;
// from then on the numbers of all positions are in a table, and the first position that is not before a given one is
// looked for among the leaders, those that are greater than all positions met earlier: these rise again.

namespace Xml::internal {

namespace {

template <class Value>
void makeRoom(std::vector<Value>& values) {
    if (values.size() == values.capacity()) values.reserve(2 * values.size() + 1);
}

}  // namespace

struct LineBreaks::OutOfOrder {
    std::unordered_map<int, std::size_t> numbers;  // by the position
    std::vector<std::size_t> leaders;              // numbers
};

LineBreaks::LineBreaks() = default;

LineBreaks::~LineBreaks() = default;

// The position is not the greatest one of a sorted list.
void LineBreaks::recordBetween(int position) {
    if (outOfOrder == nullptr) {
        if (std::binary_search(positions.begin(), positions.end(), position)) return;
        leaveOrder();
    }
    const bool leads = greatest() < position;
    // Room first: then all of it happens or nothing.
    makeRoom(positions);
    makeRoom(outOfOrder->leaders);
    if (!outOfOrder->numbers.emplace(position, positions.size()).second) return;
    if (leads) outOfOrder->leaders.push_back(positions.size());
    positions.push_back(position);
}

int LineBreaks::greatest() const {
    return outOfOrder == nullptr ? positions.back() : positions[outOfOrder->leaders.back()];
}

void LineBreaks::leaveOrder() {
    auto made = std::make_unique<OutOfOrder>();
    made->leaders.resize(positions.size());
    std::iota(made->leaders.begin(), made->leaders.end(), std::size_t{0});
    for (std::size_t i = 0; i < positions.size(); ++i) made->numbers.emplace(positions[i], i);
    outOfOrder = std::move(made);
}

int LineBreaks::lineAt(int position) const {
    std::size_t number = positions.size();
    if (outOfOrder != nullptr) {
        const auto found = outOfOrder->numbers.find(position);
        if (found != outOfOrder->numbers.end()) number = found->second + 1;
    } else {
        const std::size_t first = firstNotBefore(position);
        if (first < positions.size() && positions[first] == position) number = first + 1;
    }
    return static_cast<int>(std::max(number, std::size_t{1}));
}

int LineBreaks::columnAt(int position) const {
    const std::size_t first = firstNotBefore(position);
    return first == 0 ? position : position - positions[first - 1];
}

// The number of the first kept position that is not less than this one, how many there are when all are less.
std::size_t LineBreaks::firstNotBefore(int position) const {
    if (outOfOrder == nullptr) {
        const auto found = std::lower_bound(positions.begin(), positions.end(), position);
        return static_cast<std::size_t>(found - positions.begin());
    }
    const auto& leaders = outOfOrder->leaders;
    const auto found = std::partition_point(leaders.begin(), leaders.end(),
                                            [&](std::size_t number) { return positions[number] < position; });
    return found == leaders.end() ? positions.size() : *found;
}

}  // namespace Xml::internal
