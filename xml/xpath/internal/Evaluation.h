#pragma once

#include "xml/xpath/internal/Absence.h"
#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/NodeMap.h"
#include "xml/xpath/internal/PathError.h"
#include "xml/xpath/internal/Value.h"
#include <cstddef>
#include <memory>
#include <vector>

namespace Xml {

class Document;
class Object;

// Evaluates one query.
//
// Operands are evaluated one after the other and folded by the rank of the operators between them. A relative path is walked from
// each context node, step by step; the nodes that a step has found are the context of its predicates, which are expressions.
// Predicates within predicates are kept on a stack in the heap: an expression under evaluation is a frame, which waits in the
// middle of a walk while a predicate of the step is evaluated in the frame above it.
class Evaluation {
public:
    // With `check` expressions are only read, each once, without nodes. `before` is what earlier queries left.
    Evaluation(Expressions& itsExpressions, Document* itsDocument, bool itsCheck, const Absence& before);
    ~Evaluation();

    // Evaluates the expression from the context nodes, none of which is null. With `noNodes` the context holds values instead, and
    // every operand that asks for it is an error. False on an error.
    bool run(Expression& expression, const std::vector<Object*>& contexts, bool noNodes);

    // The value of the expression: the nodes that it found, each once, where it is just a path; else the values.
    std::vector<Object*> nodes;
    Values values;

    const PathError& error() const { return error_; }
    const Absence& absence() const { return absence_; }

private:
    struct Frame;

    bool go();
    void push(Expression& expression, const std::vector<Object*>& contexts, bool reverse, unsigned depth);
    bool isWhole(const Frame& frame) const { return &frame == frames.front().get(); }
    bool beginItem(Frame& frame);
    void callFunction(const Frame& frame, ExpressionItem::Kind function, Values& result) const;

    bool walk(Frame& frame);
    bool startFrom(Frame& frame, Path& path);
    bool takeStep(Frame& frame, Path& path);
    void endContext(Frame& frame, Path& path);
    void useOutcome(Frame& frame, Path& path, const Path::Outcome& outcome);
    void keep(Path& path, NodeMap& numbers, const Object* from, const std::vector<Object*>& found);
    void filter(Frame& frame, const Values& outcome);

    bool mayWalkTogether(const Frame& frame) const;
    void recordOneByOne(const Frame& frame, Path& path);
    void record(const NodeList& list, unsigned depth, const Path::Read& read, bool withPredicates);

    Expressions& expressions;
    Document* const document;
    const bool check;
    bool contextWithoutNodes = false;  // of the whole query; within predicates there are only nodes
    std::size_t stored = 0;            // how many nodes the outcomes of paths hold
    NodeMap taken;                     // those of `nodes`, where several context nodes may find the same
    Absence absence_;
    PathError error_;

    std::vector<std::unique_ptr<Frame>> frames;  // those from `height` on are kept for their memory
    std::size_t height = 0;
};

}  // namespace Xml
