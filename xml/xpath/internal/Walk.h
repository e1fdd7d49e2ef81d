#pragma once

#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/PositionTest.h"
#include "xml/xpath/internal/QueryState.h"
#include "xml/xpath/internal/Value.h"
#include "xml/xpath/internal/axes/Taker.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Xml {

// The walk of one operand that is a path, step by step: from each context node in turn, or once from the document.
//
// It stops where there is something to do for its owner, and goes on from there with the next call of go().
//
// What came of a walk from a node, or of the rest of one, is kept with the path where it may come again. The model
// tests hold it, tests/xpath/OutcomesTest.cpp that keeping changes nothing.
class Walk {
public:
    // Lists that outlive a walk, for their memory.
    struct Room {
        NodeList list;
        NodeList found;
    };

    // What it goes out from.
    struct Start {
        const std::vector<Object*>& contexts;
        unsigned depth;      // in errors, of the first step
        std::size_t wanted;  // as many nodes are enough from each context node
        bool mayComeAgain;   // whether another walk of this path may go out from the same nodes
    };

    // What to evaluate next: a predicate that asks for more than a position.
    struct Predicate {
        Expression& expression;
        const std::vector<Object*>& contexts;
        bool reverse;    // whether positions count from the end
        unsigned depth;  // in errors, of the step that it belongs to
    };

    // Why it stops.
    enum class Stop {
        Predicate,  // predicate() is to be evaluated, and filter() to be called with what comes of it
        Found,      // found() is what the walk from a context node has found; it may be taken away
        Done,
        Failed  // the error is set
    };

    Walk(QueryState& itsState, Path& itsPath, const Start& itsStart, Room& itsRoom)
        : state(itsState), path(itsPath), start(itsStart), room(itsRoom) {}

    Stop go();

    Predicate predicate() const;

    // Keeps the nodes for which the predicate has a value.
    void filter(const Values& outcome);

    std::vector<Object*>& found() { return room.list.nodes; }

    // The number of the context node that it was found from; -1 for the document.
    std::int32_t tag() const { return path.isAbsolute ? -1 : static_cast<std::int32_t>(context) - 1; }

    // Whether all that it finds is found from one node.
    bool isSingle() const { return path.isAbsolute || start.contexts.size() == 1; }

private:
    enum class At { Begin, Step, Predicates, End };

    void beginContext();
    bool takeStep();
    void endStep();
    void endContext();
    void use(const Outcome& outcome);
    bool isTail() const;
    std::size_t enoughFor(Path::Read& next) const;
    void record(Missed::Name name);
    void filter(const PositionTest& test);
    void endFilter(std::size_t kept);
    Path::Read& read() const { return *path.steps[step]; }

    // Whether positions count from the end for the predicate that comes next.
    bool isReverse() const { return predicate_ == 0 && read().step.isReverse(); }

    QueryState& state;
    Path& path;
    const Start start;
    Room& room;  // `list` is what the last step has found

    At at = At::Begin;
    std::size_t context = 0;  // as many were gone out from, the one that the walk is at included
    std::size_t step = 0;
    std::size_t predicate_ = 0;        // of that step, the one to evaluate next
    const Object* keptWalk = nullptr;  // the node that the walk under way is kept for; null for none
    const Object* keptTail = nullptr;  // the node that the rest of it is kept for
};

}  // namespace Xml
