#include "xml/xpath/internal/Walk.h"

#include <utility>

namespace Xml {

Walk::Stop Walk::go() {
    const std::size_t contexts = path.isAbsolute ? 1 : start.contexts.size();
    for (;;) {
        switch (at) {
        case At::Begin:
            if (context == contexts) return Stop::Done;
            beginContext();
            break;
        case At::Step:
            if (!takeStep()) return Stop::Failed;
            break;
        case At::Predicates:
            if (predicate_ < read().predicates.size()) {
                state.axes.budget().spend(room.list.nodes.size());
                if (!state.isAffordable()) return Stop::Failed;
                const PositionTest* const test = read().predicates[predicate_].positionTest(state.expressions);
                if (test == nullptr) return Stop::Predicate;
                filter(*test);
            } else {
                endStep();
            }
            break;
        case At::End:
            endContext();
            if (!state.isAffordable()) return Stop::Failed;
            if (!found().empty()) return Stop::Found;
            break;
        }
    }
}

// Puts the node to go out from into the list; or what comes of the walk, where it is known.
//
// It may be known within a predicate of a predicate, whose context nodes may come again and again: without that each
// level could multiply the walks.
inline void Walk::beginContext() {
    step = 0;
    at = At::Step;
    room.list.mayNest = false;
    room.list.nodes.clear();
    if (path.isAbsolute) {
        ++context;
        room.list.nodes.push_back(state.axes.document());
        return;
    }
    Object* const node = start.contexts[context++];
    if (start.mayComeAgain) {
        if (const Outcome* const known = path.walks.find(node)) return use(*known);
        if (state.room.isLeft()) {
            state.absences.begin();
            keptWalk = node;
        }
    }
    room.list.nodes.push_back(node);
}

// Whether what comes of the walk from this step on depends on one node only, to which other context nodes, or other
// walks from the document, may lead as well.
inline bool Walk::isTail() const {
    if (room.list.nodes.size() != 1) return false;
    return path.isAbsolute ? step == 0 && start.mayComeAgain : step > 0 && step == path.tail;
}

// How many nodes the step has to find.
inline std::size_t Walk::enoughFor(Path::Read& next) const {
    if (next.predicates.empty()) return next.step.isLast ? start.wanted : Taker::kAll;
    if (next.step.isReverse()) return Taker::kAll;
    const PositionTest* const test = next.predicates.front().positionTest(state.expressions);
    return test != nullptr ? test->enough() : Taker::kAll;
}

// Puts what the next step finds into the list; or what the rest of the walk finds, where it is known. False on an
// error.
inline bool Walk::takeStep() {
    Path::Read* const next = path.step(step, state.expressions, state.error);
    if (next == nullptr) return false;
    if (isTail()) {
        const Object* const node = room.list.nodes.front();
        if (const Outcome* const known = path.tails.find(node)) {
            use(*known);
            return true;
        }
        if (state.room.isLeft()) {
            state.absences.begin();
            keptTail = node;
        }
    }
    state.axes.collect(next->step, room.list, enoughFor(*next), next->hint, room.found);
    if (!state.isAffordable()) return false;
    std::swap(room.list, room.found);
    record(Missed::Name::WithAxis);
    predicate_ = 0;
    at = At::Predicates;
    return true;
}

inline void Walk::endStep() {
    if (read().step.isLast || room.list.nodes.empty()) {
        at = At::End;
    } else {
        ++step;
        at = At::Step;
    }
}

inline void Walk::endContext() {
    if (found().size() > start.wanted) found().resize(start.wanted);
    if (const Object* const node = std::exchange(keptTail, nullptr))
        path.tails.keep(node, found(), state.absences.end(), state.room);
    if (const Object* const node = std::exchange(keptWalk, nullptr))
        path.walks.keep(node, found(), state.absences.end(), state.room);
    at = At::Begin;
}

void Walk::use(const Outcome& outcome) {
    state.axes.budget().spend(outcome.found.size());
    state.absences.top().append(outcome.absence);
    room.list.nodes = outcome.found;
    at = At::End;
}

inline void Walk::record(Missed::Name name) {
    if (room.list.nodes.empty()) {
        state.absences.top().foundNothing({&read().step, start.depth + read().depth, name});
    } else {
        state.absences.top().found();
    }
}

Walk::Predicate Walk::predicate() const {
    return {*read().predicates[predicate_].expression, room.list.nodes, isReverse(), start.depth + read().depth};
}

void Walk::filter(const Values& outcome) {
    std::vector<Object*>& list = room.list.nodes;
    std::size_t kept = 0;
    std::int32_t last = -1;
    for (const Value& value : outcome) {
        if (value.tag == last) continue;
        last = value.tag;
        list[kept++] = list[static_cast<std::size_t>(last)];
    }
    endFilter(kept);
}

// The same for a predicate that asks for the position only.
void Walk::filter(const PositionTest& test) {
    const bool reverse = isReverse();
    std::vector<Object*>& list = room.list.nodes;
    const std::size_t size = list.size();
    std::size_t kept = 0;
    if (!test.isLast()) {
        for (std::size_t i = 0; i < size; ++i) {
            if (test.holds(static_cast<double>(reverse ? size - i : i + 1))) list[kept++] = list[i];
        }
    } else if (size > 0) {
        if (!reverse) list.front() = list.back();
        kept = 1;
    }
    endFilter(kept);
}

inline void Walk::endFilter(std::size_t kept) {
    room.list.nodes.resize(kept);
    ++predicate_;
    record(Missed::Name::WithPredicates);
}

}  // namespace Xml
