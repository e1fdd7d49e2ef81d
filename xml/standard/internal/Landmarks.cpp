#include "xml/standard/internal/Landmarks.h"

#include <algorithm>
#include <limits>

namespace Xml {

namespace {

// As far as columns go: from the largest on all are the same.
Place after(const Place& landmark, std::int64_t offset) {
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    const std::int64_t column = landmark.column + (offset - landmark.offset);
    return {offset, landmark.line, static_cast<int>(std::min(column, kMost))};
}

}  // namespace

void Landmarks::add(const Place& place) {
    if (!all.empty() && all.back().line == place.line && after(all.back(), place.offset).column == place.column) return;
    all.push_back(place);
}

Place Landmarks::of(std::int64_t offset) const {
    const auto next = std::upper_bound(all.begin(), all.end(), offset,
                                       [](std::int64_t wanted, const Place& place) { return wanted < place.offset; });
    return after(next[-1], offset);
}

}  // namespace Xml
