#include "xml/xpath/internal/Together.h"

#include "xml/xpath/internal/OneByOne.h"
#include <algorithm>
#include <utility>

namespace Xml {

bool mayWalkTogether(const ExpressionItem& item, unsigned depth, unsigned depthAlone) {
    if (std::find(item.text.begin, item.text.end, u'[') != item.text.end) return false;
    const auto slashes = static_cast<unsigned>(std::count(item.text.begin, item.text.end, u'/'));
    return depthAlone == 0 || depth + slashes <= depthAlone;
}

bool walkTogether(QueryState& state, Path& path, const std::vector<Object*>& contexts, unsigned depth,
                  std::vector<Object*>& found) {
    NodeList list;
    NodeList next;
    list.nodes = contexts;
    list.mayNest = true;
    bool anyFound = false;
    for (std::size_t number = 0;; ++number) {
        Path::Read* const read = path.step(number, state.expressions, state.error);
        if (read == nullptr) {
            // Of walks one after the other it is the first to come this far that fails.
            if (number > 0) state.absences.top().found();
            return false;
        }
        state.axes.collect(read->step, list, Taker::kAll, read->hint, next);
        if (!state.isAffordable()) return false;
        std::swap(list, next);
        anyFound = anyFound || !list.nodes.empty();
        if (read->step.isLast || list.nodes.empty()) break;
    }
    if (anyFound) {
        state.absences.top().append(absenceOneByOne(state.axes, path, contexts, depth));
    } else {
        state.absences.top().foundNothing({&path.steps.front()->step, depth, Missed::Name::WithAxis});
    }
    found = std::move(list.nodes);
    return state.isAffordable();
}

}  // namespace Xml
