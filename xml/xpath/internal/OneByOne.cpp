#include "xml/xpath/internal/OneByOne.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Xml {

namespace {

// How many of the last context nodes the first step finds nothing from. It finds something from one of them.
//
// That one is looked for from the end, in blocks that double; in the block that has it, by halves. All of them together
// are hardly more context nodes than there are.
std::ptrdiff_t countLastInVain(Axes& axes, Path::Read& first, const std::vector<Object*>& contexts) {
    NodeList from;
    NodeList found;
    from.mayNest = true;
    const auto anyFinds = [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        from.nodes.assign(contexts.rbegin() + begin, contexts.rbegin() + end);
        axes.collect(first.step, from, 1, first.hint, found);
        return !found.nodes.empty();
    };
    const auto count = static_cast<std::ptrdiff_t>(contexts.size());
    std::ptrdiff_t begin = 0;  // as many last ones find nothing
    std::ptrdiff_t end = 1;    // one of as many last ones does
    while (end < count && !anyFinds(begin, end)) {
        begin = end;
        end = std::min(2 * end, count);
    }
    while (end - begin > 1) {
        const std::ptrdiff_t middle = begin + (end - begin) / 2;
        (anyFinds(begin, middle) ? end : begin) = middle;
    }
    return begin;
}

}  // namespace

Absence absenceOneByOne(Axes& axes, Path& path, const std::vector<Object*>& contexts, unsigned depth) {
    Path::Read& first = *path.steps.front();
    const std::ptrdiff_t inVain = countLastInVain(axes, first, contexts);
    Absence absence;
    NodeList list;
    NodeList next;
    list.nodes.push_back(contexts.rbegin()[inVain]);
    for (Path::Read* const read : path.steps) {
        axes.collect(read->step, list, Taker::kAll, read->hint, next);
        std::swap(list, next);
        if (list.nodes.empty()) {
            absence.foundNothing({&read->step, depth + read->depth, Missed::Name::WithAxis});
            break;
        }
        absence.found();
    }
    if (inVain > 0) absence.foundNothing({&first.step, depth, Missed::Name::WithAxis});
    return absence;
}

}  // namespace Xml
