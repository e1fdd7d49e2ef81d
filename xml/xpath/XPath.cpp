#include "xml/xpath/XPath.h"

#include "xml/dom/Document.h"
#include "xml/xpath/internal/Evaluation.h"
#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/NodeMap.h"
#include "xml/xpath/internal/PathText.h"
#include "xml/xpath/internal/QueryError.h"
#include "xml/xpath/internal/QueryMemory.h"
#include "xml/xpath/internal/SyntaxCheck.h"
#include "xml/xpath/internal/Value.h"
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Xml {

namespace {

// See XPath::setWorkLimit.
std::int64_t workLimit = 0;

// The kind of a result that is a boolean, which no path yields.
constexpr std::int32_t kBoolean = 3;

Document* documentAbove(Object* node) {
    while (node != nullptr && !node->isDocument()) node = node->getParent();
    return node != nullptr ? node->toDocument() : nullptr;
}

// The part with that number, from 0, of the parts between blanks; false where there is none.
bool takeWord(OrvSys::Uni16String& text, int number) {
    for (std::size_t at = 0; number >= 0;) {
        const std::size_t begin = text.find_first_not_of(u' ', at);
        if (begin == OrvSys::Uni16String::npos) return false;
        at = text.find(u' ', begin);
        if (number-- > 0) continue;
        text = text.substr(begin, at - begin);
        return true;
    }
    return false;
}

}  // namespace

XPath::ResultItem::ResultItem(const ResultItem& other) { *this = other; }

XPath::ResultItem& XPath::ResultItem::operator=(const ResultItem& other) {
    const auto is = [&other](Value::Kind wanted) { return other.kind == static_cast<std::int32_t>(wanted); };
    node = is(Value::Kind::Node) ? other.node : nullptr;
    string = is(Value::Kind::String) ? other.string : OrvSys::Uni16String();
    number = is(Value::Kind::Number) ? other.number : 0;
    boolean = other.kind == kBoolean && other.boolean;
    contextTag = other.contextTag;
    kind = other.kind;
    return *this;
}

// What a query object keeps.
struct XPath::Kept {
    // What FindNodes does with a path.
    enum class Mode { Answers, Checks };

    explicit Kept(Object* context) : document(documentAbove(context)), nodes{context} {}

    bool find(const OrvSys::Uni16String& path);
    void setResults(Evaluation& evaluation);
    std::size_t count() const { return nodes.empty() ? values.size() : nodes.size(); }
    const ResultItem& result(unsigned index);

    Document* const document;  // above the context that it was made over
    Mode mode = Mode::Answers;
    QueryError error;
    std::vector<Object*> nodes;      // the results, where they are nodes
    std::vector<ResultItem> values;  // where they are not; those of nodes are made when one is asked for
};

bool XPath::Kept::find(const OrvSys::Uni16String& path) {
    QueryMemory memory;
    const PathText text(path, &memory);
    const bool isEmpty = text.begin() == text.end();
    const bool isAbsolute = startsWith(text.begin(), text.end(), "/");
    if (!isEmpty && !isAbsolute && count() == 0) {
        return error.set(RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES,
                         text.written(text.begin(), text.end()));
    }
    std::vector<Object*> contexts;
    std::vector<ResultItem> before;  // until the end: the path may be the text of one
    const bool noNodes = !isAbsolute && nodes.empty();
    if (mode == Mode::Answers) {
        contexts.swap(nodes);
        before.swap(values);
        if (isAbsolute) contexts.assign(1, document);
    }
    if (isEmpty) return error.set(NO_XPATH_SPECIFIED, {});
    if (text.nesting() > kDeepestPath) return error.set(EXPRESSION_NESTED_TOO_DEEPLY, {});

    const bool isDocument = equals(text.begin(), text.end(), "/");
    Expressions expressions(text, &memory);
    if (mode == Mode::Checks) {
        if (isDocument) return true;
        PathError wrong;
        const bool ok = checkSyntax(*expressions.add({text.begin(), text.end()}), noNodes, expressions, wrong);
        error.takeOver(Absence(), wrong, text);
        return ok;
    }
    if (!noNodes && contexts.front() == nullptr) return false;  // made over no node, or outside of a document
    if (isDocument) {
        nodes = std::move(contexts);
        return true;
    }
    Evaluation evaluation(expressions, document, VisitBudget(workLimit));
    const bool ok =
        evaluation.run(*expressions.add({text.begin(), text.end()}), {contexts, noNodes, error.depthAlone()});
    error.takeOver(evaluation.absence(), evaluation.error(), text);
    if (ok) setResults(evaluation);
    return ok;
}

// Of nodes each is a result once, though it may be the value of several context nodes; values are results as they are.
// All or, where memory runs out, none of them.
void XPath::Kept::setResults(Evaluation& evaluation) {
    std::vector<Object*> foundNodes = std::move(evaluation.nodes);
    std::vector<ResultItem> foundValues;
    NodeMap taken;
    for (const Value& value : evaluation.values) {
        if (value.kind == Value::Kind::Node) {
            if (taken.insert(value.node).second) foundNodes.push_back(value.node);
            continue;
        }
        ResultItem item;
        item.contextTag = value.tag;
        item.kind = static_cast<std::int32_t>(value.kind);
        if (value.kind == Value::Kind::String) item.string = value.string->text;
        if (value.kind == Value::Kind::Number) item.number = value.number;
        foundValues.push_back(item);
    }
    nodes = std::move(foundNodes);
    values = std::move(foundValues);
}

const XPath::ResultItem& XPath::Kept::result(unsigned index) {
    if (values.empty()) {
        values.resize(nodes.size());
        for (std::size_t i = 0; i < nodes.size(); ++i) values[i].node = nodes[i];
    }
    return values[index];
}

XPath::XPath(Object* context) : kept(std::make_unique<Kept>(context)) {}

XPath::~XPath() = default;

std::int64_t VisitBudget::commonLimit() { return workLimit; }

std::int64_t XPath::setWorkLimit(std::int64_t visits) { return std::exchange(workLimit, visits); }

bool XPath::FindNodes(const OrvSys::Uni16String& path) { return kept->find(path); }

unsigned XPath::GetNrOfResults() const { return static_cast<unsigned>(kept->count()); }

unsigned XPath::GetValues(const OrvSys::Uni16String& path) {
    if (kept->document == nullptr) return 0;
    kept->error.reset();
    kept->mode = Kept::Mode::Answers;
    return kept->find(path) ? GetNrOfResults() : 0;
}

OrvSys::Uni16String XPath::GetValue(const OrvSys::Uni16String& path, int token) {
    return GetValues(path) > 0 ? GetValue(0U, token) : OrvSys::Uni16String();
}

OrvSys::Uni16String XPath::GetValue(unsigned index, int token) {
    kept->error.setCode(NONE);
    if (index >= kept->count()) {
        kept->error.setCode(INDEX_OUT_OF_BOUNDS);
        return {};
    }
    if (kept->nodes.empty()) {
        const ResultItem& item = kept->values[index];
        return item.kind == static_cast<std::int32_t>(Value::Kind::String) ? item.string : textOf(item.number);
    }
    Object* const node = kept->nodes[index];
    OrvSys::Uni16String text = GetValue(node);
    if (token != -1 && node != nullptr && node->isAttribute() && !takeWord(text, token)) {
        kept->error.setCode(INDEX_OUT_OF_BOUNDS);
        return {};
    }
    return text;
}

OrvSys::Uni16String XPath::GetValue(Object* node) const {
    std::string buffer;
    return node != nullptr ? OrvSys::UTF8ToUni16Char(std::string(textOf(*node, buffer))) : OrvSys::Uni16String();
}

bool XPath::SyntaxOK(const OrvSys::Uni16String& path) {
    kept->error.reset();
    kept->mode = Kept::Mode::Checks;
    return kept->find(path);
}

OrvSys::Uni16String XPath::GetErrorString() { return kept->error.message(); }

XPath::ErrorCode XPath::GetErrorCode() const { return kept->error.code(); }

const XPath::ResultItem& XPath::GetResult(unsigned index) const { return kept->result(index); }

}  // namespace Xml
