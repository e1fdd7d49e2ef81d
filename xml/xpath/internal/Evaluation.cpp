#include "xml/xpath/internal/Evaluation.h"

#include "xml/xpath/internal/Folding.h"
#include "xml/xpath/internal/OneStep.h"
#include "xml/xpath/internal/Together.h"
#include "xml/xpath/internal/Walk.h"
#include <cstdint>
#include <optional>
#include <utility>
#include <variant>

namespace Xml {

namespace {

// The value of last() among so many context nodes.
void callLast(std::size_t contexts, bool reverse, Values& result) {
    if (contexts == 0) return;
    const auto size = static_cast<std::int32_t>(contexts);
    result.push_back(reverse ? Value::ofNumber(0, 1) : Value::ofNumber(size - 1, size));
}

// The values of position() among so many context nodes.
void callPosition(std::size_t contexts, bool reverse, Values& result) {
    result.reserve(contexts);
    const auto size = static_cast<std::int32_t>(contexts);
    for (std::int32_t i = 0; i < size; ++i) {
        result.push_back(Value::ofNumber(i, reverse ? size - i : i + 1));
    }
}

}  // namespace

// An expression under evaluation.
struct Evaluation::Frame {
    explicit Frame(std::pmr::memory_resource* memory) : values(memory) {}

    bool isBarePath() const { return items->size() == 1; }

    Frame* below = nullptr;
    Frame* above = nullptr;  // null where none was needed yet
    Expression::Items* items = nullptr;
    const std::vector<Object*>* contexts = nullptr;
    bool reverse = false;             // whether positions count from the end
    unsigned depth = 0;               // in errors, of the first step of a path
    std::size_t operand = 0;          // the number of the one that is evaluated now
    std::pmr::vector<Values> values;  // of the operands before it, and its own

    std::optional<Walk> walk;  // of that operand, where it is a path
    Walk::Room room;
};

Evaluation::Evaluation(Expressions& expressions, Document* document, VisitBudget budget, std::size_t mostKept)
    : state{expressions, Axes(document, budget), OutcomeRoom(mostKept), {}, {}}, frames(expressions.memory) {}

Evaluation::~Evaluation() = default;

bool Evaluation::isWhole(const Frame& frame) const { return frame.below == nullptr; }

bool Evaluation::run(Expression& query, const Start& itsStart) {
    start = &itsStart;
    push(query, start->contexts, false, 1);
    return go();
}

void Evaluation::push(Expression& expression, const std::vector<Object*>& contexts, bool reverse, unsigned depth) {
    Frame* pushed = top != nullptr ? top->above : nullptr;
    if (pushed == nullptr) {
        pushed = &frames.emplace_back(state.expressions.memory);
        pushed->below = top;
        if (top != nullptr) top->above = pushed;
    }
    top = pushed;
    ++height;
    Frame& frame = *pushed;
    frame.items = &expression.items(state.expressions.text);
    frame.contexts = &contexts;
    frame.reverse = reverse;
    frame.depth = depth;
    frame.operand = 0;
    frame.values.resize(frame.items->size());
    for (Values& ofOperand : frame.values) ofOperand.clear();
}

bool Evaluation::go() {
    while (top != nullptr) {
        Frame& frame = *top;
        const bool ok = frame.walk                            ? goOn(frame)
                        : frame.operand < frame.items->size() ? beginOperand(frame)
                                                              : end(frame);
        if (!ok) return false;
    }
    return true;
}

bool Evaluation::beginOperand(Frame& frame) {
    ExpressionItem& item = (*frame.items)[frame.operand];
    if (!item.read(state.expressions, state.error)) return false;

    const Function* const function = std::get_if<Function>(&item.operand);
    Path* const path = std::get_if<Path>(&item.operand);
    const bool asksContext = function != nullptr || (path != nullptr && !path->isAbsolute);
    if (asksContext && start->noNodes && isWhole(frame)) return state.error.set(XPath::CONTEXT_IS_NOT_A_NODE, {});
    if (path != nullptr) return beginWalk(frame, item, *path);

    Values& result = frame.values[frame.operand++];
    const std::size_t contexts = frame.contexts->size();
    if (function != nullptr && *function == Function::Last) {
        callLast(contexts, frame.reverse, result);
    } else if (function != nullptr) {
        callPosition(contexts, frame.reverse, result);
    } else if (const Literal* const string = std::get_if<Literal>(&item.operand)) {
        result.push_back(Value::ofString(-1, string));
    } else if (const double* const number = std::get_if<double>(&item.operand)) {
        result.push_back(Value::ofNumber(-1, *number));
    }
    return true;
}

bool Evaluation::beginWalk(Frame& frame, ExpressionItem& item, Path& path) {
    if (path.isAbsolute && state.axes.document() == nullptr) return false;
    const bool isQuery = isWhole(frame) && frame.isBarePath();
    if (isQuery && !path.isAbsolute && frame.contexts->size() > 1 &&
        mayWalkTogether(item, frame.depth, start->depthAlone)) {
        ++frame.operand;
        return walkTogether(state, path, *frame.contexts, frame.depth, nodes);
    }
    const bool isTest = !isWhole(frame) && frame.isBarePath();  // a predicate that asks only whether there is a node
    const bool mayComeAgain = height > 2 || (height == 2 && frames.front().contexts->size() > 1);
    const Walk::Start from{*frame.contexts, frame.depth, isTest ? 1 : Taker::kAll, mayComeAgain};
    if (!path.isAbsolute && !isQuery && !mayComeAgain && !frame.contexts->empty()) {
        const Path::Read* const first = path.step(0, state.expressions, state.error);
        if (first == nullptr) return false;
        if (isOneStep(*first)) return walkOneStep(state, *first, from, frame.values[frame.operand++]);
    }
    frame.walk.emplace(state, path, from, frame.room);
    return true;
}

bool Evaluation::goOn(Frame& frame) {
    switch (frame.walk->go()) {
    case Walk::Stop::Predicate: {
        const Walk::Predicate predicate = frame.walk->predicate();
        push(predicate.expression, predicate.contexts, predicate.reverse, predicate.depth);
        return true;
    }
    case Walk::Stop::Found: gather(frame); return true;
    case Walk::Stop::Done:
        frame.walk.reset();
        ++frame.operand;
        return true;
    case Walk::Stop::Failed: break;
    }
    return false;
}

// Adds what the walk from a context node has found to the operand's values, or to the nodes that are the query's.
void Evaluation::gather(Frame& frame) {
    std::vector<Object*>& found = frame.walk->found();
    if (!isWhole(frame) || !frame.isBarePath()) {
        const std::int32_t tag = frame.walk->tag();
        for (Object* const node : found) frame.values[frame.operand].push_back(Value::ofNode(tag, node));
    } else if (frame.walk->isSingle()) {
        nodes.swap(found);
    } else {
        for (Object* const node : found) {
            if (taken.insert(node).second) nodes.push_back(node);
        }
    }
}

// Folds the values of the operands into that of the expression, which goes to the query, or to the step that it is a
// predicate of.
bool Evaluation::end(Frame& frame) {
    if (!fold(*frame.items, frame.values, state.axes.budget()))
        return state.error.set(XPath::EXPRESSION_TOO_COSTLY, {});
    top = frame.below;
    --height;
    if (top == nullptr) {
        values = std::move(frame.values.front());
    } else {
        top->walk->filter(frame.values.front());
    }
    return true;
}

}  // namespace Xml
