#include "xml/xpath/internal/OneStep.h"

#include "xml/xpath/internal/axes/PreorderWalk.h"
#include <cstdint>

namespace Xml {

bool isOneStep(const Path::Read& first) {
    const Step& step = first.step;
    const bool isPlain = step.axis == Axis::Attribute || step.axis == Axis::Child || step.axis == Axis::Self;
    return isPlain && step.isLast && step.slashes == 0 && step.predicates.empty();
}

bool walkOneStep(QueryState& state, const Path::Read& read, const Walk::Start& start, Values& values) {
    const Step& step = read.step;
    const Missed missed{&step, start.depth + read.depth, Missed::Name::WithAxis};
    Absence& absence = state.absences.top();
    std::vector<Object*> found;
    std::int32_t tag = 0;
    for (Object* const context : start.contexts) {
        found.clear();
        Taker taker(step.test, found, start.wanted, state.axes.budget());
        taker.visit();
        if (step.axis == Axis::Attribute) {
            taker.takeAttributes(*context);
        } else if (step.axis == Axis::Self) {
            taker.take(*context);
        } else {
            Object* root = nullptr;
            taker.take(childrenOf(*context, root));
        }
        if (!state.isAffordable()) return false;
        if (found.empty()) {
            absence.foundNothing(missed);
        } else {
            absence.found();
        }
        for (Object* const node : found) values.push_back(Value::ofNode(tag, node));
        ++tag;
    }
    return true;
}

}  // namespace Xml
