#include "xml/xpath/internal/SyntaxCheck.h"

#include <cstddef>
#include <variant>
#include <vector>

namespace Xml {

namespace {

// An expression that is being read, and what of it is read next.
struct Reading {
    Expression::Items& items;
    std::size_t item = 0;
    std::size_t step = 0;
    std::size_t predicate = 0;
};

}  // namespace

bool checkSyntax(Expression& query, bool noNodes, Expressions& expressions, PathError& error) {
    std::vector<Reading> open;
    open.push_back({query.items(expressions.text)});
    while (!open.empty()) {
        Reading& place = open.back();
        if (place.item == place.items.size()) {
            open.pop_back();
            continue;
        }
        ExpressionItem& item = place.items[place.item];
        if (!item.read(expressions, error)) return false;
        Path* const path = std::get_if<Path>(&item.operand);
        if (path == nullptr) {
            const bool asksContext = noNodes && open.size() == 1 && std::holds_alternative<Function>(item.operand);
            if (asksContext) return error.set(XPath::CONTEXT_IS_NOT_A_NODE, {});
            ++place.item;
            continue;
        }
        const Path::Read* const read = path->step(place.step, expressions, error);
        if (read == nullptr) return false;
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
