#pragma once

#include "xml/xpath/internal/Absence.h"
#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/NodeMap.h"
#include "xml/xpath/internal/PathError.h"
#include "xml/xpath/internal/QueryState.h"
#include "xml/xpath/internal/Value.h"
#include "xml/xpath/internal/VisitBudget.h"
#include <cstddef>
#include <list>
#include <memory_resource>
#include <vector>

namespace Xml {

class Document;
class Object;

// Evaluates one query.
//
// Operands are evaluated one after the other and folded by the rank of the operators between them. A relative path is
// walked from each context node, step by step; the nodes that a step has found are the context of its predicates, which
// are expressions. Predicates within predicates are kept on a stack in the heap: an expression under evaluation is a
// frame, which waits in the middle of a walk while a predicate of the step is evaluated in the frame above it.
class Evaluation {
public:
    // As many nodes as the outcomes of walks may hold, all together.
    static constexpr std::size_t kMostKept = 4'000'000;

    Evaluation(Expressions& expressions, Document* itsDocument, VisitBudget budget, std::size_t mostKept = kMostKept);
    ~Evaluation();

    // What the query starts from.
    struct Start {
        const std::vector<Object*>& contexts;  // none of them null
        bool noNodes;  // whether the context holds values instead, so that every operand that asks for it is an error
        unsigned depthAlone;  // how deep an earlier query missed a step, where its error was forgotten since; else 0
    };

    // False on an error.
    bool run(Expression& query, const Start& start);

    // The value of the query: the nodes that it found, each once, where it is just a path; else the values.
    std::vector<Object*> nodes;
    Values values;

    PathError& error() { return state.error; }
    Absence absence() const { return state.absences.whole(); }

private:
    struct Frame;

    bool go();
    void push(Expression& expression, const std::vector<Object*>& contexts, bool reverse, unsigned depth);
    bool beginOperand(Frame& frame);
    bool beginWalk(Frame& frame, ExpressionItem& item, Path& path);
    bool goOn(Frame& frame);
    void gather(Frame& frame);
    bool end(Frame& frame);
    bool isWhole(const Frame& frame) const;

    QueryState state;
    const Start* start = nullptr;
    NodeMap taken;  // those of `nodes`, where several context nodes may find the same

    std::pmr::list<Frame> frames;  // those above the top one are kept for their memory
    Frame* top = nullptr;
    std::size_t height = 0;
};

}  // namespace Xml
