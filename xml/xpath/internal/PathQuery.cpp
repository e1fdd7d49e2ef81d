#include "xml/xpath/internal/PathQuery.h"

#include "xml/dom/Document.h"
#include "xml/dom/internal/EditingAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/xpath/internal/Evaluation.h"
#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/NodeMap.h"
#include "xml/xpath/internal/PathText.h"
#include "xml/xpath/internal/QueryError.h"
#include "xml/xpath/internal/QueryMemory.h"
#include "xml/xpath/internal/StrictSyntax.h"
#include "xml/xpath/internal/Value.h"
#include <utility>

namespace Xml {

namespace {

// The document that a node is in. A tree without one has the top element as the root of one that it does not know of,
// as long as this lives.
class DocumentAbove {
public:
    explicit DocumentAbove(Object& node) {
        Object* top = &node;
        while (top->getParent() != nullptr && !top->isDocument()) top = top->getParent();
        if (top->isDocument()) {
            found = static_cast<Document*>(top);
            return;
        }
        found = &made.emplace(nullptr, nullptr);
        if (isElement(*top)) EditingAccess::root(*made).reset(static_cast<Element*>(top));
    }
    ~DocumentAbove() {
        if (made) EditingAccess::root(*made).release();
    }
    DocumentAbove(const DocumentAbove&) = delete;
    DocumentAbove& operator=(const DocumentAbove&) = delete;

    Document* get() const { return found; }
    bool isResult(const Object* node) const { return !made || node != found; }

private:
    std::optional<Document> made;
    Document* found = nullptr;
};

PathAnswer failed(std::size_t place, XPath::ErrorCode code, const std::string& part) {
    PathAnswer answer;
    std::string text = part;
    if (code != XPath::NONE) {
        text = OrvSys::Uni16CharToPlatformCString(QueryError::textOf(code));
        if (!part.empty()) text += ": " + part;
    }
    answer.fault = PathFault{place, code, std::move(text)};
    return answer;
}

// Of nodes each once, though it may be the value of several context nodes.
void takeResults(Evaluation& evaluation, const DocumentAbove& document, PathAnswer& answer) {
    NodeMap taken;
    const auto take = [&](Object* node) {
        if (document.isResult(node)) answer.nodes.push_back(node);
    };
    for (Object* const node : evaluation.nodes) take(node);
    for (const Value& value : evaluation.values) {
        switch (value.kind) {
        case Value::Kind::Node:
            if (taken.insert(value.node).second) take(value.node);
            break;
        case Value::Kind::String: answer.values.push_back(value.string->bytes); break;
        case Value::Kind::Number:
            answer.values.push_back(OrvSys::Uni16CharToPlatformCString(textOf(value.number)));
            break;
        }
    }
}

}  // namespace

PathAnswer answerPath(Object& from, std::string_view path) {
    OrvSys::Uni16String units;
    if (const auto fault = toByteUnits(path, units)) return failed(fault->place, fault->code, fault->text);
    QueryMemory memory;
    const PathText text(units, &memory, PathUnits::Bytes);
    if (text.begin() == text.end()) return failed(0, XPath::NO_XPATH_SPECIFIED, {});
    if (text.nesting() > kDeepestPath) return failed(0, XPath::EXPRESSION_NESTED_TOO_DEEPLY, {});

    const DocumentAbove document(from);
    PathAnswer answer;
    if (equals(text.begin(), text.end(), "/")) {
        if (document.isResult(document.get())) answer.nodes.push_back(document.get());
        return answer;
    }
    Expressions expressions(text, &memory);
    Expression& query = *expressions.add({text.begin(), text.end()});
    if (const auto fault = checkStrictly(query, expressions)) return failed(fault->place, fault->code, fault->text);

    const bool isAbsolute = startsWith(text.begin(), text.end(), "/");
    const std::vector<Object*> contexts(1, isAbsolute ? document.get() : &from);
    Evaluation evaluation(expressions, document.get(), VisitBudget(VisitBudget::commonLimit()));
    if (!evaluation.run(query, {contexts, false, 0})) return failed(0, evaluation.error().code, {});
    takeResults(evaluation, document, answer);
    return answer;
}

}  // namespace Xml
