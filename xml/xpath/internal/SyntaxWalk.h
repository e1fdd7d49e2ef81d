#pragma once

#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/PathError.h"
#include <cstddef>
#include <variant>
#include <vector>

namespace Xml {

// Reads a query from its first operand to its last, in paths from step to step, after each step in its predicates, in
// the order in which an evaluation that finds something everywhere would. False on the first thing that is wrong.
// Nothing recurses with the nesting of predicates.
//
// The watcher hears of all: `beforeOperand(item)` and `beforeStep(path)` before one is read, `afterOperand(item,
// depth)` of one that is no path, `afterStep(read)`, and `afterExpression(items, depth)` of a whole query, which is of
// depth 1, or a predicate. All but beforeStep return whether to go on.
template <class Watcher>
bool walkSyntax(Expression& query, Expressions& expressions, PathError& error, Watcher&& watcher) {
    // An expression that is being read, and what of it is read next.
    struct Reading {
        Expression::Items& items;
        std::size_t item = 0;
        std::size_t step = 0;
        std::size_t predicate = 0;
    };

    std::vector<Reading> open;
    open.push_back({query.items(expressions.text)});
    while (!open.empty()) {
        Reading& place = open.back();
        if (place.item == place.items.size()) {
            if (!watcher.afterExpression(place.items, open.size())) return false;
            open.pop_back();
            continue;
        }
        ExpressionItem& item = place.items[place.item];
        const bool isNew = place.step == 0 && place.predicate == 0;
        if (isNew && !watcher.beforeOperand(item)) return false;
        if (!item.read(expressions, error)) return false;
        Path* const path = std::get_if<Path>(&item.operand);
        if (path == nullptr) {
            if (!watcher.afterOperand(item, open.size())) return false;
            ++place.item;
            continue;
        }
        if (place.predicate == 0) watcher.beforeStep(*path);
        const Path::Read* const read = path->step(place.step, expressions, error);
        if (read == nullptr) return false;
        if (place.predicate == 0 && !watcher.afterStep(*read)) return false;
        if (place.predicate < read->predicates.size()) {
            Expression& predicate = *read->predicates[place.predicate++].expression;
            open.push_back({predicate.items(expressions.text)});
            continue;
        }
        place.predicate = 0;
        ++place.step;
        if (!read->step.isLast) continue;
        place.step = 0;
        ++place.item;
    }
    return true;
}

}  // namespace Xml
