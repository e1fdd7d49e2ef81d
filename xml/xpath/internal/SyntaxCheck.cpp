#include "xml/xpath/internal/SyntaxCheck.h"

#include "xml/xpath/internal/SyntaxWalk.h"
#include <variant>

namespace Xml {

namespace {

struct Watcher {
    bool noNodes;
    PathError& error;

    static bool beforeOperand(const ExpressionItem&) { return true; }
    bool afterOperand(const ExpressionItem& item, std::size_t depth) {
        const bool asksContext = noNodes && depth == 1 && std::holds_alternative<Function>(item.operand);
        return !asksContext || error.set(XPath::CONTEXT_IS_NOT_A_NODE, {});
    }
    static void beforeStep(const Path&) {}
    static bool afterStep(const Path::Read&) { return true; }
    static bool afterExpression(const Expression::Items&, std::size_t) { return true; }
};

}  // namespace

bool checkSyntax(Expression& query, bool noNodes, Expressions& expressions, PathError& error) {
    return walkSyntax(query, expressions, error, Watcher{noNodes, error});
}

}  // namespace Xml
