#pragma once

#include "xml/xpath/internal/Absence.h"
#include "xml/xpath/internal/Axes.h"
#include "xml/xpath/internal/NodeMap.h"
#include "xml/xpath/internal/Operators.h"
#include "xml/xpath/internal/PathError.h"
#include "xml/xpath/internal/Step.h"
#include "xml/xpath/internal/Value.h"
#include <cstddef>
#include <deque>
#include <memory>
#include <vector>

namespace Xml {

class PathText;
class Expressions;
struct Expression;

// A location path. Its steps are read one by one as walks come to them: what is wrong with a step that none comes to is nobody's
// concern.
struct Path {
    struct Read {
        Step step;
        unsigned depth = 0;  // of the step in the path: 0 for the first one, one more for each slash
        std::vector<Expression*> predicates;
        SiblingHint hint;
    };

    // The step with that number, which must be the first or follow one that is not the last. Null, and the error told, where it
    // cannot be read.
    const Read* step(std::size_t number, Expressions& expressions, PathError& error);

    bool isAbsolute = false;
    Unit next = nullptr;  // where the first step begins that was not read yet
    Unit end = nullptr;
    std::vector<std::unique_ptr<Read>> steps;
    std::size_t tail = 0;  // the step behind the first ones upwards; 0 where there is none

    // What came of a walk, or of the rest of one.
    struct Outcome {
        std::vector<Object*> found;
        Absence absence;
    };

    // The numbers in `outcomes` of walks that may come again: from context nodes; and from that step on, or from the first one
    // of an absolute path, where there is one node to go on from. Context nodes often share a parent, and always the document.
    NodeMap walkedFrom;
    NodeMap tailFrom;
    std::vector<Outcome> outcomes;
};

// One operand of an expression, and the operator behind it.
struct ExpressionItem {
    enum class Kind { Unread, String, Number, Position, Last, Path };

    ExpressionItem(Unit begin, Unit end, Operator itsOp) : text{begin, end}, op(itsOp) {}

    // Finds out what the operand is. False, and the error told, where it is nothing.
    bool read(const PathText& whole, PathError& error);

    Span text;
    Operator op;
    Kind kind = Kind::Unread;
    std::unique_ptr<Literal> string;
    double number = 0;
    Path path;

private:
    bool readNumber(const PathText& whole, PathError& error);
    bool readCall(const PathText& whole, const char* name, PathError& error);
};

// A whole query, or what stands in the brackets of a predicate: operands with operators between them. It is taken apart when
// it is first evaluated.
struct Expression {
    explicit Expression(Span itsText) : text(itsText) {}

    void split(const PathText& whole);

    Span text;
    std::vector<ExpressionItem> items;  // none before split
};

// The expressions of one query, and the text that they are parts of. They do not own each other, so that no depth of nesting
// makes the end of a query recurse.
class Expressions {
public:
    explicit Expressions(const PathText& itsText) : text(itsText) {}

    Expression* add(Span span) { return &all.emplace_back(span); }

    const PathText& text;

private:
    std::deque<Expression> all;
};

}  // namespace Xml
