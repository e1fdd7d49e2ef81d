#include "xml/xpath/XPath.h"

#include "orvsys/Localization.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/xpath/internal/Evaluation.h"
#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/NodeMap.h"
#include "xml/xpath/internal/PathText.h"
#include "xml/xpath/internal/Value.h"
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

namespace Xml {

namespace {

// Predicates may be nested this deep.
constexpr std::size_t kDeepest = 1000;

// The names of the codes, in their order.
constexpr const char* kErrorNames[] = {"NONE",
                                       "INDEX OUT OF BOUNDS",
                                       "NODE NOT FOUND",
                                       "NODE CONTAINS NO DATA",
                                       "DOUBLE SLASH AT THE END NOT ALLOWED",
                                       "NO XPATH SPECIFIED",
                                       "ILLEGAL CHAR AFTER ATTRIBUTEVALUE",
                                       "ILLEGAL CHAR AFTER FUNCTION",
                                       "ILLEGAL CHAR AFTER KINDTEST",
                                       "ILLEGAL CHAR IN NUMBER",
                                       "ILLEGAL CHAR AFTER PREDICATE",
                                       "NO VALID ATTRIBUTE NAME",
                                       "NO VALID NAME OR TEST",
                                       "RELATIVE XPATH EXPRESSION NOT ALLOWED WITHOUT CONTEXT NODES",
                                       "SLASH AT END NOT ALLOWED",
                                       "NO VALID AXIS",
                                       "NO VALID INITIAL AXIS",
                                       "NO VALID COMPARISON OPERATOR",
                                       "MISSING QUOTE BEFORE ATTRIBUTE VALUE",
                                       "MISSING QUOTE AFTER ATTRIBUTE VALUE",
                                       "MISSING CLOSING BRACKET AFTER PREDICATE",
                                       "MISSING CLOSING PARENTHESE AFTER FUNCTION",
                                       "MISSING OPENING PARENTHESE AFTER FUNCTION",
                                       "MISSING CLOSING PARENTHESE AFTER KIND TEST",
                                       "MISSING OPENING PARENTHESE AFTER KIND TEST",
                                       "FIRST LAST OR NUMBER AFTER POSITION EXPECTED",
                                       "CONTEXT IS NOT A NODE",
                                       "EXPRESSION NESTED TOO DEEPLY"};
static_assert(std::size(kErrorNames) == XPath::EXPRESSION_NESTED_TOO_DEEPLY + 1);

// Whether the message of an error ends with the part of the path that caused it.
bool hasErrorText(XPath::ErrorCode code) {
    switch (code) {
    case XPath::NONE:
    case XPath::INDEX_OUT_OF_BOUNDS:
    case XPath::NO_XPATH_SPECIFIED:
    case XPath::CONTEXT_IS_NOT_A_NODE:
    case XPath::EXPRESSION_NESTED_TOO_DEEPLY: return false;
    default: return true;
    }
}

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
    boolean = is(Value::Kind::Boolean) && other.boolean;
    contextTag = other.contextTag;
    kind = other.kind;
    return *this;
}

XPath::XPath(Object* context) : document(documentAbove(context)), nodes{context} {}

XPath::~XPath() = default;

void XPath::reset() {
    errorCode = NONE;
    errorDepth = 0;
    errorText.clear();
}

bool XPath::FindNodes(const OrvSys::Uni16String& path) {
    const PathText text(path);
    const bool isEmpty = text.begin() == text.end();
    const bool isAbsolute = startsWith(text.begin(), text.end(), "/");
    if (!isEmpty && !isAbsolute && GetNrOfResults() == 0) {
        return fail(RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES,
                    text.written(text.begin(), text.end()));
    }
    std::vector<Object*> contexts = {document};
    const bool noNodes = !isAbsolute && nodes.empty();
    if (!syntaxCheck) {
        if (!isAbsolute) contexts = std::move(nodes);
        nodes.clear();
        results.clear();
    }
    if (isEmpty) return fail(NO_XPATH_SPECIFIED, {});
    if (text.nesting() > kDeepest) return fail(EXPRESSION_NESTED_TOO_DEEPLY, {});
    if (!syntaxCheck && !noNodes && contexts.front() == nullptr)
        return false;  // made over no node, or outside of a document
    if (equals(text.begin(), text.end(), "/")) {
        if (!syntaxCheck) nodes = std::move(contexts);
        return true;
    }

    Absence absence;
    absence.code = errorCode;
    absence.depth = errorDepth;
    Expressions expressions(text);
    Evaluation evaluation(expressions, document, syntaxCheck, absence);
    const bool ok = evaluation.run(*expressions.add({text.begin(), text.end()}), contexts, noNodes);
    setError(evaluation, text);
    if (ok && !syntaxCheck) setResults(evaluation);
    return ok;
}

bool XPath::fail(ErrorCode code, OrvSys::Uni16String&& text) {
    errorCode = code;
    errorText = std::move(text);
    return false;
}

// Texts are made before anything is set: where memory runs out for one, no code stands without it.
void XPath::setError(const Evaluation& evaluation, const PathText& text) {
    const Absence& absence = evaluation.absence();
    const PathError& error = evaluation.error();
    OrvSys::Uni16String made;
    if (error.code != NONE) {
        made = error.text;
    } else if (absence.step != nullptr) {
        made = absence.withPredicates ? absence.step->withPredicates(text) : absence.step->withAxis(text);
    }
    errorDepth = absence.depth;
    errorCode = error.code != NONE ? error.code : absence.code;
    if (error.code != NONE || absence.step != nullptr) errorText = std::move(made);
}

// Of nodes each is a result once, though it may be the value of several context nodes; values are results as they are. All or,
// where memory runs out, none of them.
void XPath::setResults(Evaluation& evaluation) {
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
        if (value.kind == Value::Kind::Boolean) item.boolean = value.boolean;
        foundValues.push_back(item);
    }
    nodes = std::move(foundNodes);
    results = std::move(foundValues);
}

unsigned XPath::GetNrOfResults() const { return static_cast<unsigned>(nodes.empty() ? results.size() : nodes.size()); }

unsigned XPath::GetValues(const OrvSys::Uni16String& path) {
    if (document == nullptr) return 0;
    reset();
    syntaxCheck = false;
    return FindNodes(path) ? GetNrOfResults() : 0;
}

OrvSys::Uni16String XPath::GetValue(const OrvSys::Uni16String& path, int token) {
    return GetValues(path) > 0 ? GetValue(0U, token) : OrvSys::Uni16String();
}

OrvSys::Uni16String XPath::GetValue(unsigned index, int token) {
    errorCode = NONE;
    if (index >= GetNrOfResults()) {
        errorCode = INDEX_OUT_OF_BOUNDS;
        return {};
    }
    if (nodes.empty()) {
        const ResultItem& item = results[index];
        if (item.kind == static_cast<std::int32_t>(Value::Kind::String)) return item.string;
        return item.kind == static_cast<std::int32_t>(Value::Kind::Number) ? textOf(item.number)
               : item.boolean                                              ? u"1"
                                                                           : u"0";
    }
    Object* const node = nodes[index];
    OrvSys::Uni16String text = GetValue(node);
    if (token != -1 && node != nullptr && node->isAttribute() && !takeWord(text, token)) {
        errorCode = INDEX_OUT_OF_BOUNDS;
        return {};
    }
    return text;
}

OrvSys::Uni16String XPath::GetValue(Object* node) const {
    std::string buffer;
    return node != nullptr ? OrvSys::UTF8ToUni16Char(textOf(*node, buffer)) : OrvSys::Uni16String();
}

bool XPath::SyntaxOK(const OrvSys::Uni16String& path) {
    reset();
    syntaxCheck = true;
    return FindNodes(path);
}

OrvSys::Uni16String XPath::GetErrorString() {
    const std::string key = std::string("xpat/xerr/") + kErrorNames[errorCode];
    OrvSys::Uni16String text = OrvSys::Localization::GetString(key, "XPath", {});
    if (hasErrorText(errorCode)) text += u" --> " + errorText;
    return text;
}

XPath::ErrorCode XPath::GetErrorCode() const { return errorCode; }

const XPath::ResultItem& XPath::GetResult(unsigned index) const {
    if (results.empty()) {
        results.resize(nodes.size());
        for (std::size_t i = 0; i < nodes.size(); ++i) results[i].node = nodes[i];
    }
    return results[index];
}

}  // namespace Xml
