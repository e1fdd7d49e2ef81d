#include "xml/xpath/internal/Evaluation.h"

#include "xml/dom/Document.h"
#include "xml/xpath/internal/Axes.h"
#include "xml/xpath/internal/Folding.h"
#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace Xml {

namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// As many nodes the outcomes of walks may hold, all together. Behind that walks are made again.
constexpr std::size_t kMostStored = 4'000'000;

enum class Rank { Product, Sum, Order, Equality, None };

Rank rankOf(Operator op) {
    switch (op) {
    case Operator::Divide:
    case Operator::Multiply: return Rank::Product;
    case Operator::Plus:
    case Operator::Minus: return Rank::Sum;
    case Operator::LessThan:
    case Operator::LessOrEqual:
    case Operator::GreaterThan:
    case Operator::GreaterOrEqual: return Rank::Order;
    case Operator::Equal:
    case Operator::NotEqual: return Rank::Equality;
    case Operator::None: break;
    }
    return Rank::None;
}

// Folds the values of operands, one operator stands behind each, into the first.
void fold(std::vector<Values>& values, std::vector<Operator>& operators) {
    std::size_t count = operators.size();
    for (const Rank rank : {Rank::Product, Rank::Sum, Rank::Order, Rank::Equality}) {
        std::size_t left = 0;
        for (std::size_t right = 1; right < count; ++right) {
            if (rankOf(operators[left]) != rank) {
                if (++left != right) values[left] = std::move(values[right]);
            } else if (rank == Rank::Product || rank == Rank::Sum) {
                CalculusOnExpressionItems(values[left], values[right], operators[left]);
            } else {
                CompareExpressionItems(values[left], values[right], operators[left]);
            }
            operators[left] = operators[right];
        }
        count = left + 1;
    }
}

}  // namespace

namespace {

// Sets the book of steps that found nothing apart for what is to be kept as an outcome.
struct Book {
    void open(Absence& absence) {
        isOpen = true;
        before = std::exchange(absence, Absence());
    }

    // Puts it back, with what was recorded meanwhile behind it.
    void close(Absence& absence) {
        isOpen = false;
        before.append(absence);
        absence = before;
    }

    bool isOpen = false;
    Absence before;
};

}  // namespace

// An expression under evaluation.
struct Evaluation::Frame {
    void begin(Expression& itsExpression, const std::vector<Object*>& itsContexts, bool itsReverse, unsigned itsDepth) {
        expression = &itsExpression;
        contexts = &itsContexts;
        reverse = itsReverse;
        depth = itsDepth;
        item = 0;
        isWalking = false;
        walkBook.isOpen = false;
        tailBook.isOpen = false;
        isTogether = false;
        values.resize(expression->items.size());
        for (Values& ofItem : values) ofItem.clear();
    }

    const ExpressionItem& current() const { return expression->items[item]; }
    bool isBarePath() const { return expression->items.size() == 1; }

    Expression* expression = nullptr;
    const std::vector<Object*>* contexts = nullptr;
    bool reverse = false;        // whether positions count from the end
    unsigned depth = 0;          // in errors, of the first step of a path
    std::size_t item = 0;        // the operand that is evaluated now
    std::vector<Values> values;  // of the operands before it, and its own

    // The walk of that operand, where it is a path.
    bool isWalking = false;
    std::size_t context = 0;  // the number of the context node that it is at
    std::size_t step = 0;
    bool isStepTaken = false;   // whether `list` is what that step has found
    std::size_t predicate = 0;  // of that step, the one to evaluate next
    NodeList list;
    NodeList found;           // room for the next list
    bool isTogether = false;  // whether all context nodes are walked from at once
    Absence beforeTogether;
    Book walkBook;  // for Path::walkedFrom
    Book tailBook;  // for Path::tailFrom
    const Object* tailNode = nullptr;
};

Evaluation::Evaluation(Expressions& itsExpressions, Document* itsDocument, bool itsCheck, const Absence& before)
    : expressions(itsExpressions), document(itsDocument), check(itsCheck), absence_(before) {}

Evaluation::~Evaluation() = default;

bool Evaluation::run(Expression& expression, const std::vector<Object*>& contexts, bool noNodes) {
    contextWithoutNodes = noNodes;
    push(expression, contexts, false, 1);
    if (go()) return true;
    // What was recorded for outcomes under way counts.
    for (; height > 0; --height) {
        Frame& frame = *frames[height - 1];
        if (frame.tailBook.isOpen) frame.tailBook.close(absence_);
        if (frame.walkBook.isOpen) frame.walkBook.close(absence_);
    }
    Frame& whole = *frames.front();
    if (whole.isTogether) {
        absence_ = whole.beforeTogether;
        if (whole.step > 0) absence_.found();
    }
    return false;
}

void Evaluation::push(Expression& expression, const std::vector<Object*>& contexts, bool reverse, unsigned depth) {
    if (expression.items.empty()) expression.split(expressions.text);
    if (height == frames.size()) frames.push_back(std::make_unique<Frame>());
    frames[height++]->begin(expression, contexts, reverse, depth);
}

bool Evaluation::go() {
    std::vector<Operator> operators;
    for (;;) {
        Frame& frame = *frames[height - 1];
        if (frame.isWalking) {
            if (!walk(frame)) return false;
            continue;
        }
        if (frame.item < frame.expression->items.size()) {
            if (!beginItem(frame)) return false;
            continue;
        }
        if (!check && frame.values.size() > 1) {
            operators.clear();
            for (const ExpressionItem& item : frame.expression->items) operators.push_back(item.op);
            fold(frame.values, operators);
        }
        if (--height == 0) {
            values = std::move(frame.values.front());
            return true;
        }
        filter(*frames[height - 1], frame.values.front());
    }
}

bool Evaluation::beginItem(Frame& frame) {
    using Kind = ExpressionItem::Kind;
    ExpressionItem& item = frame.expression->items[frame.item];
    if (item.kind == Kind::Unread && !item.read(expressions.text, error_)) return false;

    const bool asksContext = item.kind == Kind::Position || item.kind == Kind::Last ||
                             (item.kind == Kind::Path && !item.path.isAbsolute && !check);
    if (asksContext && contextWithoutNodes && isWhole(frame)) return error_.tell(XPath::CONTEXT_IS_NOT_A_NODE, {});

    if (item.kind == Kind::Path) {
        if (item.path.isAbsolute && document == nullptr && !check) return false;
        frame.isWalking = true;
        frame.context = 0;
        frame.step = 0;
        frame.isStepTaken = false;
        frame.isTogether = mayWalkTogether(frame);
        if (frame.isTogether) frame.beforeTogether = std::exchange(absence_, Absence());
        return true;
    }
    Values& result = frame.values[frame.item++];
    if (check) return true;
    switch (item.kind) {
    case Kind::String: result.push_back(Value::ofString(-1, item.string.get())); break;
    case Kind::Number: result.push_back(Value::ofNumber(-1, item.number)); break;
    default: callFunction(frame, item.kind, result);
    }
    return true;
}

void Evaluation::callFunction(const Frame& frame, ExpressionItem::Kind function, Values& result) const {
    const std::size_t count = frame.contexts->size();
    if (count == 0) return;
    const auto size = static_cast<std::int32_t>(count);
    if (function == ExpressionItem::Kind::Last) {
        result.push_back(frame.reverse ? Value::ofNumber(0, 1) : Value::ofNumber(size - 1, size));
        return;
    }
    result.reserve(count);
    for (std::int32_t i = 0; i < size; ++i) result.push_back(Value::ofNumber(i, frame.reverse ? size - i : i + 1));
}

// Goes on with the walk of the frame's operand until it is done, or until a predicate is to be evaluated.
bool Evaluation::walk(Frame& frame) {
    Path& path = frame.expression->items[frame.item].path;
    const std::size_t contexts = path.isAbsolute || check || frame.isTogether ? 1 : frame.contexts->size();
    while (frame.context < contexts) {
        if (!frame.isStepTaken) {
            if (frame.step == 0 && !startFrom(frame, path)) continue;
            const Path::Read* const read = path.step(frame.step, expressions, error_);
            if (read == nullptr) return false;
            if (!check && !takeStep(frame, path)) continue;
            frame.isStepTaken = true;
            frame.predicate = 0;
        }
        const Path::Read& read = *path.steps[frame.step];
        if (frame.predicate < read.predicates.size()) {
            push(*read.predicates[frame.predicate], frame.list.nodes, frame.predicate == 0 && read.step.isReverse(),
                 frame.depth + read.depth);
            return true;
        }
        frame.isStepTaken = false;
        if (read.step.isLast || (!check && frame.list.nodes.empty())) {
            endContext(frame, path);
        } else {
            ++frame.step;
        }
    }
    if (frame.isTogether) recordOneByOne(frame, path);
    frame.isWalking = false;
    ++frame.item;
    return true;
}

// Puts the context that the walk is at into the frame's list. False where what comes of the walk is known already.
//
// It may be known within a predicate of a predicate, whose context nodes may come again and again: without that each level could
// multiply the walks.
bool Evaluation::startFrom(Frame& frame, Path& path) {
    frame.list.nested = frame.isTogether;
    frame.list.nodes.clear();
    if (check) return true;
    if (frame.isTogether) {
        frame.list.nodes = *frame.contexts;
        return true;
    }
    if (path.isAbsolute) {
        frame.list.nodes.push_back(document);
        return true;
    }
    Object* const context = (*frame.contexts)[frame.context];
    const bool mayComeAgain = height > 2 || (height == 2 && frames.front()->contexts->size() > 1);
    if (mayComeAgain) {
        if (const std::uint32_t* const known = path.walkedFrom.find(context)) {
            useOutcome(frame, path, path.outcomes[*known]);
            return false;
        }
        if (stored < kMostStored) frame.walkBook.open(absence_);
    }
    frame.list.nodes.push_back(context);
    return true;
}

void Evaluation::useOutcome(Frame& frame, Path& path, const Path::Outcome& outcome) {
    absence_.append(outcome.absence);
    frame.list.nodes = outcome.found;
    endContext(frame, path);
}

// Walking from all context nodes at once finds the same nodes in the same order as walking from one after the other, as long
// as no predicate looks at positions, and costs no more than what is found where their walks overlap. Where a depth stands
// alone it must be one that no step of the path can pass: what each walk recorded would count.
bool Evaluation::mayWalkTogether(const Frame& frame) const {
    const ExpressionItem& item = frame.current();
    if (!isWhole(frame) || !frame.isBarePath() || item.path.isAbsolute || check || frame.contexts->size() < 2)
        return false;
    if (std::find(item.text.begin, item.text.end, u'[') != item.text.end) return false;
    const auto slashes = static_cast<unsigned>(std::count(item.text.begin, item.text.end, u'/'));
    return !absence_.isDepthAlone() || frame.depth + slashes <= absence_.depth;
}

// Records what walks from one context node after the other would have recorded: what comes of the last one whose first step finds
// something, and that the first step finds nothing behind it. It is looked for from the end, in blocks that double; in the
// block that has it, by halves. All of them together are hardly more context nodes than there are.
void Evaluation::recordOneByOne(const Frame& frame, Path& path) {
    const bool anyFound = absence_.anyFound;
    absence_ = frame.beforeTogether;
    Path::Read& first = *path.steps.front();
    if (!anyFound) {
        absence_.foundNothing(first.step, frame.depth, false);
        return;
    }
    NodeList from;
    NodeList found;
    const auto lastOnes = frame.contexts->rbegin();
    const auto anyFinds = [&](std::ptrdiff_t begin, std::ptrdiff_t end) {
        from.nodes.assign(lastOnes + begin, lastOnes + end);
        from.nested = true;
        collect(first.step, from, document, found, 1, first.hint);
        return !found.nodes.empty();
    };
    const auto count = static_cast<std::ptrdiff_t>(frame.contexts->size());
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
    from.nodes.assign(1, lastOnes[begin]);
    from.nested = false;
    for (const auto& read : path.steps) {
        collect(read->step, from, document, found, kAll, read->hint);
        std::swap(from, found);
        record(from, frame.depth, *read, false);
        if (from.nodes.empty()) break;
    }
    if (begin > 0) absence_.foundNothing(first.step, frame.depth, false);
}

// Puts what the step finds into the frame's list. False where the rest of the walk was known already, and so the walk from this
// context node has ended.
bool Evaluation::takeStep(Frame& frame, Path& path) {
    Path::Read& read = *path.steps[frame.step];
    const bool isTail = path.isAbsolute ? frame.step == 0 : frame.step > 0 && frame.step == path.tail;
    if (isTail && frame.list.nodes.size() == 1) {
        frame.tailNode = frame.list.nodes.front();
        if (const std::uint32_t* const known = path.tailFrom.find(frame.tailNode)) {
            useOutcome(frame, path, path.outcomes[*known]);
            return false;
        }
        if (stored < kMostStored) frame.tailBook.open(absence_);
    }
    // A predicate that is just a path asks only whether there is a node.
    const bool oneIsEnough = read.step.isLast && read.predicates.empty() && frame.isBarePath() && !isWhole(frame);
    collect(read.step, frame.list, document, frame.found, oneIsEnough ? 1 : kAll, read.hint);
    std::swap(frame.list, frame.found);
    record(frame.list, frame.depth, read, false);
    return true;
}

// Adds what the walk from a context node has found to the operand's values.
void Evaluation::endContext(Frame& frame, Path& path) {
    std::vector<Object*>& found = frame.list.nodes;
    if (!isWhole(frame) && frame.isBarePath() && found.size() > 1) found.resize(1);
    if (frame.tailBook.isOpen) {
        keep(path, path.tailFrom, frame.tailNode, found);
        frame.tailBook.close(absence_);
    }
    if (frame.walkBook.isOpen) {
        keep(path, path.walkedFrom, (*frame.contexts)[frame.context], found);
        frame.walkBook.close(absence_);
    }
    if (!isWhole(frame) || !frame.isBarePath()) {
        const std::int32_t tag = path.isAbsolute ? -1 : static_cast<std::int32_t>(frame.context);
        for (Object* const node : found) frame.values[frame.item].push_back(Value::ofNode(tag, node));
    } else if (frame.isTogether || frame.contexts->size() == 1) {
        nodes.swap(found);
    } else {
        for (Object* const node : found) {
            if (taken.insert(node).second) nodes.push_back(node);
        }
    }
    ++frame.context;
    frame.step = 0;
}

void Evaluation::keep(Path& path, NodeMap& numbers, const Object* from, const std::vector<Object*>& found) {
    stored += found.size() + 1;
    numbers.insert(from, static_cast<std::uint32_t>(path.outcomes.size()));
    path.outcomes.push_back({found, absence_});
}

void Evaluation::record(const NodeList& list, unsigned depth, const Path::Read& read, bool withPredicates) {
    if (list.nodes.empty()) {
        absence_.foundNothing(read.step, depth + read.depth, withPredicates);
    } else {
        absence_.found();
    }
}

// Keeps the nodes for which the predicate has a value that is not false, or all for the one value true.
void Evaluation::filter(Frame& frame, const Values& outcome) {
    const Path& path = frame.current().path;
    const Path::Read& read = *path.steps[frame.step];
    ++frame.predicate;
    if (check) return;

    const auto isFalse = [](const Value& value) { return value.kind == Value::Kind::Boolean && !value.boolean; };
    const bool keepsAll =
        outcome.size() == 1 && outcome.front().kind == Value::Kind::Boolean && outcome.front().boolean;
    if (!keepsAll) {
        std::vector<Object*>& list = frame.list.nodes;
        std::size_t kept = 0;
        std::int32_t last = -1;
        for (const Value& value : outcome) {
            if (value.tag == last || isFalse(value)) continue;
            last = value.tag;
            list[kept++] = list[static_cast<std::size_t>(last)];
        }
        list.resize(kept);
    }
    record(frame.list, frame.depth, read, true);
}

}  // namespace Xml
