#include "xml/dtd/internal/Repetitions.h"

#include <algorithm>

namespace Xml {

void Repetitions::enterElement() {
    outer.push_back(here);
    here = Level();
    here.firstEnd = ends.size();
    here.firstOutcome = outcomes.size();
    here.indexed = outcomes.size();
}

void Repetitions::leaveElement() {
    forget();
    here = outer.back();
    outer.pop_back();
}

void Repetitions::turnTo(const Dtd& dtd) {
    if (here.decidedBy != nullptr) {
        forget();
        here.firstOfOneDtd = passCount();
    }
    here.decidedBy = &dtd;
}

// Drops all that is kept about these children.
void Repetitions::forget() {
    ends.dropTo(here.firstEnd);
    outcomes.dropTo(here.firstOutcome);
    here.indexed = here.firstOutcome;
}

void Repetitions::keepEnd(const ChildrenSpec& spec, const ChildQueue& start, const Outcome& outcome) {
    if (passCount() <= here.firstOfOneDtd) return;
    if (ends.size() > here.firstEnd && !(ends.lastStart() == start)) ends.dropTo(here.firstEnd);
    ends.push(spec, start, outcome);
    ends.index(ends.size() - 1);
}

void Repetitions::keepPasses(const ChildrenSpec& spec, std::uint32_t first, std::size_t matching,
                             const Outcome& outcome) {
    // Where the repetition around it began its pass at the same child, that one is asked there: of repetitions right
    // within each other not each is kept for every child.
    const bool isAskedAround = first > here.firstOfOneDtd && passes[first - 1] == passes[first];
    const std::uint32_t firstToKeep = std::max(first + (isAskedAround ? 1 : 0), here.firstOfOneDtd);
    for (std::size_t i = firstToKeep; i < passes.size(); ++i) {
        if (passes[i].empty()) break;
        const bool matches = outcome.matched && i - first < matching;
        if (matches || i == first) outcomes.push(spec, passes[i], {matches, outcome.left});
    }
    dropPasses(first);
}

void Repetitions::giveUp() {
    outcomes.index(here.indexed);
    here.indexed = outcomes.size();
}

}  // namespace Xml
