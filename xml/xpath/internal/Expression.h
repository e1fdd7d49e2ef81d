#pragma once

#include "xml/xpath/internal/Operators.h"
#include "xml/xpath/internal/Outcomes.h"
#include "xml/xpath/internal/PathError.h"
#include "xml/xpath/internal/PositionTest.h"
#include "xml/xpath/internal/Step.h"
#include "xml/xpath/internal/Value.h"
#include "xml/xpath/internal/axes/Siblings.h"
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory_resource>
#include <optional>
#include <variant>
#include <vector>

namespace Xml {

class PathText;
class Expressions;
class Expression;

// A location path. Its steps are read one by one as walks come to them: what is wrong with a step that no walk comes to
// is never found.
struct Path {
    Path(Unit begin, Unit itsEnd, std::pmr::memory_resource* memory);
    Path(const Path&) = delete;
    Path(Path&&) = default;
    ~Path() = default;

    struct Predicate {
        explicit Predicate(Expression* itsExpression) : expression(itsExpression) {}

        // Null where it asks for more than a position. Found out at the first call.
        const PositionTest* positionTest(const Expressions& expressions);

        Expression* expression;

    private:
        enum class Found : std::uint8_t { NotRead, Position, Other };

        PositionTest position;
        Found found = Found::NotRead;
    };

    struct Read {
        explicit Read(std::pmr::memory_resource* memory) : step(memory), predicates(memory) {}

        Step step;
        unsigned depth = 0;  // of the step in the path: 0 for the first one, one more for each slash
        std::pmr::vector<Predicate> predicates;
        std::optional<SiblingHint> hint;
    };

    // The step with that number, which must be the first or follow one that is not the last. Null, and the error set,
    // where it cannot be read.
    Read* step(std::size_t number, Expressions& expressions, PathError& error);

    bool isAbsolute;
    Unit next;  // where the first step begins that was not read yet
    Unit end;
    std::pmr::list<Read> owned;
    std::pmr::vector<Read*> steps;

    // Of walks that may come again: from context nodes; and, where one node is left to go on from there, from the step
    // after the first ones upwards, or from the first one of an absolute path. Context nodes often share a parent, and
    // always the document.
    Outcomes walks;
    Outcomes tails;
    std::size_t tail = 0;  // the step after the first ones upwards; 0 where there is none
};

// A function of an expression.
enum class Function { Position, Last };

// One operand of an expression, and the operator after it.
struct ExpressionItem {
    // What it is, once it was read.
    using Operand = std::variant<std::monostate, Literal, double, Function, Path>;

    ExpressionItem(Unit begin, Unit end, Operator itsOp) : text{begin, end}, op(itsOp) {}

    // Finds out what the operand is, at the first call. False, and the error set, where it is nothing.
    bool read(const Expressions& expressions, PathError& error);

    Span text;
    Operator op;
    Operand operand;

private:
    bool readNumber(const PathText& whole, PathError& error);
    bool readCall(const PathText& whole, Function function, const char* name, PathError& error);
};

// A whole query, or what stands in the brackets of a predicate: operands with operators between them.
class Expression {
public:
    Expression(Span itsText, std::pmr::memory_resource* memory) : text(itsText), items_(memory) {}

    // At least one; taken apart at the first call.
    using Items = std::pmr::vector<ExpressionItem>;
    Items& items(const PathText& whole);

private:
    Span text;
    Items items_;
};

// The expressions of one query, the text that they are parts of, and the memory for them. They do not own each other,
// so that no depth of nesting makes the end of a query recurse.
class Expressions {
public:
    explicit Expressions(const PathText& itsText,
                         std::pmr::memory_resource* itsMemory = std::pmr::get_default_resource())
        : text(itsText), memory(itsMemory), all(memory) {}

    Expression* add(Span span) { return &all.emplace_back(span, memory); }

    const PathText& text;

    // For what is as large as the path, and not for what is as large as the tree: it is given back with the query.
    std::pmr::memory_resource* const memory;

private:
    std::pmr::list<Expression> all;
};

}  // namespace Xml
