#include "models/NaiveXPath.h"

#include "orvsys/Localization.h"
#include "support/PathErrorKeys.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeKind.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Xml::test {

namespace {

using Text = NaiveXPath::Text;
using OrvSys::uni16char;

Text wide(const char* text) { return OrvSys::PlatformCStringToUni16Char(text); }

bool startsWith(const Text& text, std::size_t at, const Text& what) { return text.compare(at, what.size(), what) == 0; }

// --- Characters: four classes look at the low byte of a unit only, so that U+0141 is a letter like U+0041 ---

char lowByte(uni16char c) { return static_cast<char>(c & 0xFF); }

bool IsWhiteSpace(uni16char unit) {
    const char c = lowByte(unit);
    return c == '\t' || c == '\n' || c == '\r' || c == ' ';
}

bool IsBeginLiteral(uni16char unit) { return lowByte(unit) == '\'' || lowByte(unit) == '"'; }

bool isFirstNCChar(uni16char unit) {
    const char c = lowByte(unit);
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isNCChar(uni16char unit) {
    const char c = lowByte(unit);
    return isFirstNCChar(unit) || c == '-' || c == '.' || (c >= '0' && c <= '9');
}

bool isDigit(uni16char unit) { return unit >= u'0' && unit <= u'9'; }

// Whether a name, without prefix, runs from `at` to the end of the text.
bool isNameToTheEnd(const Text& text, std::size_t at) {
    return at < text.size() && isFirstNCChar(text[at]) &&
           std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), isNCChar);
}

NaiveXPath::Item nodeItem(Object* node, int tag = -1) {
    NaiveXPath::Item item;
    item.contextTag = tag;
    item.node = node;
    return item;
}

NaiveXPath::Item numberItem(double number, int tag = -1) {
    NaiveXPath::Item item;
    item.contextTag = tag;
    item.kind = NaiveXPath::NUMBER;
    item.number = number;
    return item;
}

NaiveXPath::Item stringItem(const Text& string) {
    NaiveXPath::Item item;
    item.kind = NaiveXPath::STRING;
    item.string = string;
    return item;
}

// What a comparison and arithmetic apply to every item of the other side.
bool isScalar(const NaiveXPath::Items& values) { return values.size() == 1 && values[0].contextTag == -1; }

bool areNodes(const NaiveXPath::Items& items) {
    return std::all_of(items.begin(), items.end(), [](const auto& item) { return item.kind == NaiveXPath::NODE; });
}

void AddNode(Object* node, NaiveXPath::Items& list) {
    for (const auto& item : list) {
        if (item.node == node) return;
    }
    list.push_back(nodeItem(node));
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------
// The query object
// ---------------------------------------------------------------------------------------------------------------------

NaiveXPath::NaiveXPath(Object* context) : results{nodeItem(context)} {
    Object* top = context;
    while (top != nullptr && !top->isDocument()) top = top->getParent();
    if (top != nullptr) document = top->toDocument();
}

bool NaiveXPath::FindNodes(const Text& written) {
    const Text path = RemoveWhiteSpaces(written);
    const Items before = results;
    if (!syntaxCheck) results.clear();
    if (path.empty()) return fail(XPath::NO_XPATH_SPECIFIED, Text());

    const bool absolute = path[0] == u'/';
    if (!absolute && before.empty()) {
        return fail(XPath::RELATIVE_XPATH_EXPRESSION_NOT_ALLOWED_WITHOUT_CONTEXT_NODES, path);
    }
    if (isNestedTooDeeply(path)) return fail(XPath::EXPRESSION_NESTED_TOO_DEEPLY, Text());

    Object* const top = document;
    Items list = absolute ? Items{nodeItem(top)} : before;
    if (!syntaxCheck && areNodes(list) && list[0].node == nullptr) return false;
    if (path != u"/" && !EvaluateExpression(list, path, false, 1)) return false;
    if (syntaxCheck) return true;

    // Nodes lose their tags, and one that was reached from several context nodes stays once.
    if (areNodes(list)) {
        for (const Item& item : list) AddNode(item.node, results);
    } else {
        results = list;
    }
    return true;
}

unsigned NaiveXPath::GetValues(const Text& path) {
    if (document == nullptr) return 0;
    reset();
    syntaxCheck = false;
    return FindNodes(path) ? static_cast<unsigned>(results.size()) : 0;
}

Text NaiveXPath::GetValue(const Text& path, int token) {
    if (document == nullptr) return Text();
    reset();
    syntaxCheck = false;
    if (!FindNodes(path) || results.empty()) return Text();
    return GetValue(0U, token);
}

Text NaiveXPath::GetValue(unsigned index, int token) {
    errorCode = XPath::NONE;
    if (index >= results.size()) {
        errorCode = XPath::INDEX_OUT_OF_BOUNDS;
        return Text();
    }
    const Item& item = results[index];
    const Text whole = ConvertToString(item);
    const bool ofAttribute = item.kind == NODE && item.node != nullptr && item.node->isAttribute();
    if (token == -1 || !ofAttribute) return whole;

    std::vector<Text> words;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (whole[at] == u' ') continue;
        if (at == 0 || whole[at - 1] == u' ') words.emplace_back();
        words.back() += whole[at];
    }
    if (token < 0 || static_cast<std::size_t>(token) >= words.size()) {
        errorCode = XPath::INDEX_OUT_OF_BOUNDS;
        return Text();
    }
    return words[static_cast<std::size_t>(token)];
}

Text NaiveXPath::GetValue(Object* node) const {
    if (node == nullptr) return Text();
    if (node->isAttribute()) return OrvSys::UTF8ToUni16Char(node->toAttribute()->getValue());
    if (node->isCharData()) return OrvSys::UTF8ToUni16Char(node->toCharData()->getData());
    if (node->isElement()) {
        Element* const element = node->toElement();
        for (int i = 0; i < element->getChildCount(); ++i) {
            if (element->getChild(i)->isCharData()) return OrvSys::UTF8ToUni16Char(element->getCharData());
        }
    }
    return Text();
}

bool NaiveXPath::SyntaxOK(const Text& path) {
    reset();
    syntaxCheck = true;
    return FindNodes(path);
}

Text NaiveXPath::GetErrorString() const {
    const std::string key = std::string("xpat/xerr/") + kPathErrorKeys[errorCode];
    Text text = OrvSys::Localization::GetString(key, "XPath", Text());
    if ((errorCode >= 2 && errorCode <= 4) || (errorCode >= 6 && errorCode <= 25)) text += u" --> " + errorText;
    return text;
}

void NaiveXPath::reset() {
    errorCode = XPath::NONE;
    errorDepth = 0;
    errorText.clear();
}

// For `return fail(...)`.
bool NaiveXPath::fail(XPath::ErrorCode code, const Text& text) {
    errorCode = code;
    errorText = text;
    return false;
}

// ---------------------------------------------------------------------------------------------------------------------
// Text
// ---------------------------------------------------------------------------------------------------------------------

// A quote, and all up to the same one. Without that the literal runs to the end, and still gets it when quotes are
// kept.
Text NaiveXPath::ExtractLiteral(const Text& text, std::size_t& at, bool keepQuotes) {
    const uni16char quote = text[at++];
    Text inner;
    while (at < text.size() && text[at] != quote) inner += text[at++];
    if (at < text.size()) ++at;
    return keepQuotes ? quote + inner + quote : inner;
}

// A "[" and all up to the "]" that belongs to it; false when there is none.
bool NaiveXPath::ExtractPredicate(const Text& text, std::size_t& at, Text& predicate, bool keepBrackets) {
    predicate.clear();
    int depth = 0;
    while (at < text.size()) {
        if (IsBeginLiteral(text[at])) {
            predicate += ExtractLiteral(text, at, true);
            continue;
        }
        const uni16char c = text[at++];
        if (c == u'[') {
            ++depth;
            if (depth > 1 || keepBrackets) predicate += c;
        } else if (c == u']') {
            if (depth > 1 || keepBrackets) predicate += c;
            --depth;
            if (depth == 0) return true;
        } else {
            predicate += c;
        }
    }
    return false;
}

NaiveXPath::Operator NaiveXPath::ExtractOperator(const Text& text, std::size_t& at) {
    // The first row that fits wins, so "<=" stands before "<".
    static const struct {
        const char* text;
        Operator op;
    } kOperatorNames[] = {
        {" eq ", EQUAL},
        {"=", EQUAL},
        {" ne ", NOT_EQUAL},
        {"!=", NOT_EQUAL},
        {" le ", LESS_OR_EQUAL},
        {"<=", LESS_OR_EQUAL},
        {" lt ", LESS},
        {"<", LESS},
        {" ge ", GREATER_OR_EQUAL},
        {">=", GREATER_OR_EQUAL},
        {" gt ", GREATER},
        {">", GREATER},
        {" + ", PLUS},
        {" - ", MINUS},
        {" div ", DIVIDE},
        {" * ", MULTIPLY},
    };
    for (const auto& row : kOperatorNames) {
        if (startsWith(text, at, wide(row.text))) {
            at += std::strlen(row.text);
            return row.op;
        }
    }
    return NO_OPERATOR;
}

// Literals and what stands in brackets stay as they are, and so does the white space that belongs to an operator.
Text NaiveXPath::RemoveWhiteSpaces(const Text& path) {
    Text result;
    for (std::size_t at = 0; at < path.size();) {
        if (IsBeginLiteral(path[at])) {
            result += ExtractLiteral(path, at, true);
        } else if (path[at] == u'[') {
            Text predicate;
            ExtractPredicate(path, at, predicate, true);
            result += predicate;
        } else if (!IsWhiteSpace(path[at])) {
            result += path[at++];
        } else {
            const std::size_t start = at;
            if (ExtractOperator(path, at) == NO_OPERATOR) {
                ++at;
            } else {
                result.append(path, start, at - start);
            }
        }
    }
    return result;
}

// Whether more than 1,000 brackets are open at once.
bool NaiveXPath::isNestedTooDeeply(const Text& path) {
    int depth = 0;
    for (std::size_t at = 0; at < path.size();) {
        if (IsBeginLiteral(path[at])) {
            ExtractLiteral(path, at, true);
            continue;
        }
        const uni16char c = path[at++];
        if (c == u'[' && ++depth > 1000) return true;
        if (c == u']' && depth > 0) --depth;
    }
    return false;
}

// ---------------------------------------------------------------------------------------------------------------------
// Steps
// ---------------------------------------------------------------------------------------------------------------------

// Cuts off one step, up to a "/" outside brackets, and moves past that.
bool NaiveXPath::SplitLocationPath(const Text& path, std::size_t& at, Text& step) {
    step.clear();
    const std::size_t start = at;
    int depth = 0;
    while (at < path.size()) {
        if (IsBeginLiteral(path[at])) {
            step += ExtractLiteral(path, at, true);
            continue;
        }
        const uni16char c = path[at++];
        if (c == u'/' && depth == 0) {
            if (at == path.size()) return fail(XPath::SLASH_AT_END_NOT_ALLOWED, path.substr(start));
            return true;
        }
        if (c == u'[') ++depth;
        if (c == u']') --depth;
        step += c;
    }
    return true;
}

// item[2][@id='x'] is cut into the step "item" and the predicates "2" and "@id='x'".
bool NaiveXPath::ExtractPredicates(Text& step, std::vector<Text>& predicates) {
    Text head;
    std::size_t at = 0;
    while (at < step.size() && step[at] != u'[') {
        if (IsBeginLiteral(step[at])) {
            head += ExtractLiteral(step, at, true);
        } else {
            head += step[at++];
        }
    }
    while (at < step.size()) {
        if (step[at] != u'[') return fail(XPath::ILLEGAL_CHAR_AFTER_PREDICATE, u"[" + predicates.back() + u"]");
        Text predicate;
        if (!ExtractPredicate(step, at, predicate, false)) {
            return fail(XPath::MISSING_CLOSING_BRACKET_AFTER_PREDICATE, u"[" + predicate);
        }
        predicates.push_back(predicate);
    }
    step = head;
    return true;
}

bool NaiveXPath::ExtractAxis(Text& step, Axis& axis) {
    static const struct {
        const char* name;
        Axis axis;
    } kAxisNames[] = {
        {"descendant-or-self", DESCENDANT_OR_SELF},
        {"ancestor-or-self", ANCESTOR_OR_SELF},
        {"attribute", ATTRIBUTE},
        {"child", CHILD},
        {"descendant", DESCENDANT},
        {"parent", PARENT},
        {"ancestor", ANCESTOR},
        {"following-sibling", FOLLOWING_SIBLING},
        {"preceding-sibling", PRECEDING_SIBLING},
        {"following", FOLLOWING},
        {"preceding", PRECEDING},
        {"self", SELF},
    };
    axis = NO_AXIS;
    if (step == u".." || step == u".") {
        axis = step == u".." ? PARENT : SELF;
        step = u"node()";
        return true;
    }
    const std::size_t colons = step.find(u"::");
    if (colons != Text::npos) {
        for (const auto& row : kAxisNames) {
            if (step.substr(0, colons) != wide(row.name)) continue;
            axis = row.axis;
            step = step.substr(colons + 2);
            return true;
        }
        return fail(XPath::NO_VALID_AXIS, step);
    }
    if (startsWith(step, 0, u"@")) {
        axis = ATTRIBUTE;
        step = step.substr(1);
    } else {
        axis = CHILD;
    }
    return true;
}

bool NaiveXPath::ExtractKindTest(const Text& step, KindTest& kind, Text& name) {
    // A keyword is looked for at the beginning of the step, whatever follows: `nodes` is a failed node().
    static const struct {
        const char* keyword;
        KindTest kind;
    } kKindTests[] = {
        {"node", NODE_TEST}, {"element", ELEMENT_TEST},        {"attribute", ATTRIBUTE_TEST},
        {"text", TEXT_TEST}, {"document-node", DOCUMENT_TEST},
    };
    kind = NAME_TEST;
    name.clear();
    for (const auto& row : kKindTests) {
        const Text keyword = wide(row.keyword);
        if (!startsWith(step, 0, keyword)) continue;
        kind = row.kind;
        if (step == keyword) return true;
        if (step[keyword.size()] != u'(') return fail(XPath::MISSING_OPENING_PARENTHESE_AFTER_KIND_TEST, step);
        const std::size_t inner = keyword.size() + 1;
        const std::size_t close = step.find(u')', inner);
        if (close == Text::npos) return fail(XPath::MISSING_CLOSING_PARENTHESE_AFTER_KIND_TEST, step);
        if (close > inner && !GetNameTest(step.substr(inner, close - inner), name)) return false;
        if (close + 1 < step.size()) return fail(XPath::ILLEGAL_CHAR_AFTER_KINDTEST, step);
        return true;
    }
    return GetNameTest(step, name);
}

// The name is empty for "*", ":b" for "*:b", "p:" for "p:*", else as written.
bool NaiveXPath::GetNameTest(const Text& text, Text& name) {
    if (text == u"*") {
        name.clear();
        return true;
    }
    if (startsWith(text, 0, u"*")) {
        if (text[1] != u':' || !isNameToTheEnd(text, 2)) return fail(XPath::NO_VALID_NAME_OR_TEST, text);
        name = text.substr(1);
        return true;
    }
    // A bad first character fails without an error.
    if (text.empty() || !isFirstNCChar(text[0])) return false;

    std::size_t at = 1;
    while (at < text.size() && isNCChar(text[at])) ++at;
    if (at < text.size()) {
        if (text[at] != u':') return fail(XPath::NO_VALID_NAME_OR_TEST, text);
        if (text.substr(at + 1) == u"*") {
            name = text.substr(0, at + 1);
            return true;
        }
        if (!isNameToTheEnd(text, at + 1)) return fail(XPath::NO_VALID_NAME_OR_TEST, text);
    }
    name = text;
    return true;
}

// ---------------------------------------------------------------------------------------------------------------------
// Nodes
// ---------------------------------------------------------------------------------------------------------------------

class NaiveXPath::Collector {
public:
    Collector(KindTest kindTest, const Text& nameTest, Items& found) : kind(kindTest), name(nameTest), list(found) {}

    void collect(Axis axis, Object* node, Document* tree) {
        switch (axis) {
        case NO_AXIS: break;
        case ATTRIBUTE: GetAttributesOf(node); break;
        case CHILD: GetChildrenOf(node); break;
        case DESCENDANT: GetDescendantsOf(node, false); break;
        case PARENT: GetParentOf(node); break;
        case ANCESTOR: GetAncestorsOf(node, false); break;
        case FOLLOWING_SIBLING: GetFollowingSiblingsOf(node); break;
        case PRECEDING_SIBLING: GetPrecedingSiblingsOf(node); break;
        case FOLLOWING:
            if (tree != nullptr && node != tree->getRoot()) {
                GetFollowingOfHelper(tree->getRoot(), node, false);
            }
            break;
        case PRECEDING: GetPrecedingOf(node, tree); break;
        case DESCENDANT_OR_SELF: GetDescendantsOf(node, true); break;
        case ANCESTOR_OR_SELF: GetAncestorsOf(node, true); break;
        case SELF: GetSelfOf(node); break;
        }
    }

private:
    void GetSelfOf(Object* node) {
        if (kindOf(*node) == NodeKind::Comment || kindOf(*node) == NodeKind::Instruction) return;
        if (CompliesToKindTest(node)) AddNode(node, list);
    }

    void GetChildrenOf(Object* node) {
        if (node->isDocument()) {
            if (Element* const root = node->toDocument()->getRoot()) GetSelfOf(root);
        } else if (node->isElement()) {
            Element* const element = node->toElement();
            for (int i = 0; i < element->getChildCount(); ++i) GetSelfOf(element->getChild(i));
        }
    }

    void GetParentOf(Object* node) {
        if (!node->isElement() && !node->isAttribute() && !node->isCharData()) return;
        if (node->getParent() != nullptr) GetSelfOf(node->getParent());
    }

    void GetAttributesOf(Object* node) {
        if (!node->isElement()) return;
        Element* const element = node->toElement();
        for (int i = 0; i < element->getAttributeCount(); ++i) GetSelfOf(element->getAttribute(i));
    }

    void GetDescendantsOf(Object* node, bool orSelf) {
        if (orSelf) GetSelfOf(node);
        if (node->isDocument()) {
            if (Element* const root = node->toDocument()->getRoot()) GetDescendantsOf(root, true);
        } else if (node->isElement()) {
            Element* const element = node->toElement();
            for (int i = 0; i < element->getChildCount(); ++i) GetDescendantsOf(element->getChild(i), true);
        }
    }

    // Outermost first.
    void GetAncestorsOf(Object* node, bool orSelf) {
        if (node->getParent() != nullptr) GetAncestorsOf(node->getParent(), true);
        if (orSelf) GetSelfOf(node);
    }

    void GetFollowingSiblingsOf(Object* node) {
        bool after = false;
        for (Object* sibling : siblingsOf(node)) {
            if (after) GetSelfOf(sibling);
            if (sibling == node) after = true;
        }
    }

    void GetPrecedingSiblingsOf(Object* node) {
        for (Object* sibling : siblingsOf(node)) {
            if (sibling == node) break;
            GetSelfOf(sibling);
        }
    }

    // The children of the parent, for a child of an element.
    static std::vector<Object*> siblingsOf(Object* node) {
        std::vector<Object*> siblings;
        Object* const parent = node->getParent();
        if (parent == nullptr || !parent->isElement() || node->isAttribute()) return siblings;
        Element* const element = parent->toElement();
        for (int i = 0; i < element->getChildCount(); ++i) siblings.push_back(element->getChild(i));
        return siblings;
    }

    // What was found in a subtree is not carried back up: nothing after the parent of the target is reached.
    void GetFollowingOfHelper(Object* node, Object* target, bool started) {
        if (node == nullptr || !node->isElement()) return;
        Element* const element = node->toElement();
        for (int i = 0; i < element->getChildCount(); ++i) {
            Object* const child = element->getChild(i);
            if (started) GetSelfOf(child);
            if (child == target) {
                started = true;
            } else {
                GetFollowingOfHelper(child, target, started);
            }
        }
    }

    void GetPrecedingOf(Object* node, Document* tree) {
        if (tree == nullptr || tree->getRoot() == nullptr || node == tree->getRoot()) return;
        ancestors.clear();
        for (Object* up = node->getParent(); up != nullptr; up = up->getParent()) ancestors.push_back(up);
        GetPrecedingOfHelper(tree->getRoot(), node);
    }

    // Takes what is met before the target; true when the target has been met. The root is never taken.
    bool GetPrecedingOfHelper(Element* element, Object* target) {
        for (int i = 0; i < element->getChildCount(); ++i) {
            Object* const child = element->getChild(i);
            if (child == target) return true;
            if (!IsAncestor(child)) GetSelfOf(child);
            if (child->isElement() && GetPrecedingOfHelper(child->toElement(), target)) return true;
        }
        return false;
    }

    bool IsAncestor(Object* node) const {
        return std::find(ancestors.begin(), ancestors.end(), node) != ancestors.end();
    }

    bool CompliesToKindTest(Object* node) const {
        switch (kind) {
        case TEXT_TEST: return node->isCharData();
        case DOCUMENT_TEST: return node->isDocument();
        case ELEMENT_TEST: return node->isElement() && compliesToName(node);
        case ATTRIBUTE_TEST: return node->isAttribute() && compliesToName(node);
        case NAME_TEST:
        case NODE_TEST: return compliesToName(node);
        }
        return false;
    }

    bool compliesToName(Object* node) const {
        if (name.empty()) return true;
        if (!node->isAttribute() && !node->isElement()) return false;
        const Text nodeName = OrvSys::UTF8ToUni16Char(node->isAttribute() ? node->toAttribute()->getName()
                                                                          : node->toElement()->getName());
        if (name.back() == u':') return startsWith(nodeName, 0, name);
        if (name.front() == u':') {
            const std::size_t colon = nodeName.find(u':');
            return colon != Text::npos && nodeName.substr(colon + 1) == name.substr(1);
        }
        return nodeName == name;
    }

    const KindTest kind;
    const Text name;
    Items& list;
    std::vector<Object*> ancestors;
};

// Walks the path from `at` over the context; what the last step finds becomes the results. The walk ends without them
// at a step that finds nothing: what stands after it is not read.
bool NaiveXPath::FindNextNodes(const Text& path, std::size_t at, const Items& context, unsigned depth) {
    if (at < path.size() && path[at] == u'/') {
        Items all;
        Collector collector(NAME_TEST, Text(), all);
        for (const Item& item : context) collector.collect(DESCENDANT_OR_SELF, item.node, document);
        ++at;
        if (at == path.size()) return fail(XPath::DOUBLE_SLASH_AT_THE_END_NOT_ALLOWED, u"//");
        return FindNextNodes(path, at, all, depth + 1);
    }

    Text step;
    std::vector<Text> predicates;
    Axis axis = NO_AXIS;
    KindTest kind = NAME_TEST;
    Text name;
    if (!SplitLocationPath(path, at, step)) return false;
    if (!ExtractPredicates(step, predicates)) return false;
    const Text stepWithAxis = step;
    if (!ExtractAxis(step, axis)) return false;
    if (!ExtractKindTest(step, kind, name)) return false;

    Items found;
    if (!syntaxCheck) {
        Collector collector(kind, name, found);
        for (const Item& item : context) collector.collect(axis, item.node, document);
    }
    keepBook(found, stepWithAxis, depth);

    Text stepWithPredicates = step;
    for (const Text& predicate : predicates) stepWithPredicates += u"[" + predicate + u"]";
    for (std::size_t i = 0; i < predicates.size(); ++i) {
        const bool backwards = axis == PARENT || axis == ANCESTOR || axis == PRECEDING_SIBLING || axis == PRECEDING ||
                               axis == ANCESTOR_OR_SELF;
        Items outcome = found;
        if (!EvaluateExpression(outcome, predicates[i], i == 0 && backwards, depth)) return false;
        if (!syntaxCheck) found = filtered(found, outcome);
        keepBook(found, stepWithPredicates, depth);
    }

    if (at == path.size()) {
        if (!syntaxCheck) results = found;
        return true;
    }
    if (found.empty() && !syntaxCheck) return true;
    return FindNextNodes(path, at, found, depth + 1);
}

// The error NODE NOT FOUND names the deepest step that found nothing, until any step finds something.
void NaiveXPath::keepBook(const Items& found, const Text& text, unsigned depth) {
    if (syntaxCheck) return;
    if (!found.empty() && errorCode == XPath::NODE_NOT_FOUND) {
        errorCode = XPath::NONE;
        errorDepth = 0;
    }
    if (found.empty() && (errorCode == XPath::NONE || errorCode == XPath::NODE_NOT_FOUND) && errorDepth < depth) {
        errorCode = XPath::NODE_NOT_FOUND;
        errorText = text;
        errorDepth = depth;
    }
}

// A predicate keeps the nodes whose indices are tags in its outcome. What belongs to no node keeps nothing, but for a
// lone true.
NaiveXPath::Items NaiveXPath::filtered(const Items& nodes, const Items& outcome) {
    if (outcome.size() == 1 && outcome[0].kind == BOOLEAN && outcome[0].boolean) return nodes;
    Items kept;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const bool keep = std::any_of(outcome.begin(), outcome.end(), [i](const Item& item) {
            return item.contextTag == static_cast<int>(i) && !(item.kind == BOOLEAN && !item.boolean);
        });
        if (keep) kept.push_back(nodes[i]);
    }
    return kept;
}

// ---------------------------------------------------------------------------------------------------------------------
// Expressions
// ---------------------------------------------------------------------------------------------------------------------

// The list holds the context before and the value afterwards.
bool NaiveXPath::EvaluateExpression(Items& list, const Text& written, bool reverse, unsigned depth) {
    std::vector<ExpressionItem> items = SplitExpression(RemoveWhiteSpaces(written));
    for (ExpressionItem& item : items) {
        if (!EvaluateExpressionItem(list, item.values, item.text, reverse, depth)) return false;
    }
    if (syntaxCheck) return true;

    const std::vector<Operator> kPasses[] = {
        {DIVIDE, MULTIPLY}, {PLUS, MINUS}, {LESS, LESS_OR_EQUAL, GREATER, GREATER_OR_EQUAL}, {EQUAL, NOT_EQUAL}};
    for (const auto& pass : kPasses) {
        for (std::size_t i = 0; i + 1 < items.size();) {
            ExpressionItem& left = items[i];
            const ExpressionItem& right = items[i + 1];
            if (std::find(pass.begin(), pass.end(), left.op) == pass.end()) {
                ++i;
                continue;
            }
            if (left.op >= PLUS) {
                CalculusOnExpressionItems(left, right);
            } else {
                CompareExpressionItems(left, right);
            }
            left.op = right.op;
            items.erase(items.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        }
    }
    list = items[0].values;
    return true;
}

// Operators are found anywhere outside literals and brackets, also within what would be a step.
std::vector<NaiveXPath::ExpressionItem> NaiveXPath::SplitExpression(const Text& expression) {
    std::vector<ExpressionItem> items(1);
    for (std::size_t at = 0; at < expression.size();) {
        if (IsBeginLiteral(expression[at])) {
            items.back().text += ExtractLiteral(expression, at, true);
        } else if (expression[at] == u'[') {
            Text predicate;
            ExtractPredicate(expression, at, predicate, true);
            items.back().text += predicate;
        } else {
            const Operator op = ExtractOperator(expression, at);
            if (op == NO_OPERATOR) {
                items.back().text += expression[at++];
            } else {
                items.back().op = op;
                items.emplace_back();
            }
        }
    }
    return items;
}

bool NaiveXPath::EvaluateExpressionItem(const Items& context, Items& values, const Text& text, bool reverse,
                                        unsigned depth) {
    values.clear();
    if (!text.empty() && IsBeginLiteral(text[0])) {
        std::size_t at = 0;
        values.push_back(stringItem(ExtractLiteral(text, at, false)));
        return true;
    }
    if (!text.empty() && isDigit(text[0])) return evaluateNumber(values, text);
    for (const char* function : {"position", "last"}) {
        const FunctionCall call = ExtractFunction(function, text);
        if (call == MALFORMED) return false;
        if (call == CALLED) return evaluateFunction(context, values, text, reverse);
    }
    return evaluatePath(context, values, text, depth);
}

// Digits, and at most one "." with digits or nothing after it.
bool NaiveXPath::evaluateNumber(Items& values, const Text& text) {
    double number = 0;
    std::size_t at = 0;
    for (; at < text.size() && isDigit(text[at]); ++at) number = number * 10 + (text[at] - u'0');
    if (at < text.size() && text[at] == u'.') {
        double power = 10;
        for (++at; at < text.size() && isDigit(text[at]); ++at, power *= 10) number += (text[at] - u'0') / power;
    }
    if (at < text.size()) return fail(XPath::ILLEGAL_CHAR_IN_NUMBER, text);
    values.push_back(numberItem(number));
    return true;
}

// Whether the text is a call of that function. Anything may stand between the parentheses, of which the first closing
// one counts.
NaiveXPath::FunctionCall NaiveXPath::ExtractFunction(const char* name, const Text& text) {
    if (!startsWith(text, 0, wide(name))) return ANOTHER;
    const std::size_t open = std::strlen(name);
    if (open >= text.size() || text[open] != u'(') {
        fail(XPath::MISSING_OPENING_PARENTHESE_AFTER_FUNCTION, text);
        return MALFORMED;
    }
    const std::size_t close = text.find(u')', open);
    if (close == Text::npos) {
        fail(XPath::MISSING_CLOSING_PARENTHESE_AFTER_FUNCTION, text);
        return MALFORMED;
    }
    if (close + 1 != text.size()) {
        fail(XPath::ILLEGAL_CHAR_AFTER_FUNCTION, text);
        return MALFORMED;
    }
    return CALLED;
}

bool NaiveXPath::evaluateFunction(const Items& context, Items& values, const Text& text, bool reverse) {
    if (!areNodes(context)) return fail(XPath::CONTEXT_IS_NOT_A_NODE, Text());
    if (syntaxCheck || context.empty()) return true;
    const int size = static_cast<int>(context.size());
    if (startsWith(text, 0, u"position")) {
        for (int i = 0; i < size; ++i) values.push_back(numberItem(reverse ? size - i : i + 1, i));
    } else {
        values.push_back(reverse ? numberItem(1, 0) : numberItem(size, size - 1));
    }
    return true;
}

// A path with a "/" before it is walked once, from the document; any other from each context node by itself, and what
// it finds carries the index of that node. A check walks once, without nodes.
bool NaiveXPath::evaluatePath(const Items& context, Items& values, const Text& text, unsigned depth) {
    const bool absolute = startsWith(text, 0, u"/");
    const std::size_t start = absolute ? 1 : 0;
    if (syntaxCheck) return FindNextNodes(text, start, Items(), depth);
    if (absolute && document == nullptr) return false;

    const Items saved = results;
    bool ok = true;
    const std::size_t walks = absolute ? 1 : context.size();
    for (std::size_t i = 0; ok && i < walks; ++i) {
        const Item from = absolute ? nodeItem(document) : context[i];
        if (from.kind != NODE) {
            ok = fail(XPath::CONTEXT_IS_NOT_A_NODE, Text());
            break;
        }
        results.clear();
        ok = FindNextNodes(text, start, {from}, depth);
        for (const Item& item : results) values.push_back(nodeItem(item.node, absolute ? -1 : static_cast<int>(i)));
    }
    results = saved;
    return ok;
}

// The left item gets the values. Between two sides of which neither is a scalar every left value meets those right
// values that have its tag.
void NaiveXPath::CalculusOnExpressionItems(ExpressionItem& left, const ExpressionItem& right) const {
    Items values;
    if (isScalar(left.values)) {
        for (const Item& b : right.values) {
            values.push_back(CalculusOnResultItems(left.values[0], b, left.op));
            values.back().contextTag = b.contextTag;
        }
    } else if (isScalar(right.values)) {
        for (const Item& a : left.values) values.push_back(CalculusOnResultItems(a, right.values[0], left.op));
    } else {
        for (const Item& a : left.values) {
            for (const Item& b : right.values) {
                if (a.contextTag == b.contextTag) values.push_back(CalculusOnResultItems(a, b, left.op));
            }
        }
    }
    left.values = values;
}

// The left item keeps those values that hold. A scalar on the left takes the tags of what holds on the right.
void NaiveXPath::CompareExpressionItems(ExpressionItem& left, const ExpressionItem& right) const {
    Items kept;
    if (isScalar(left.values)) {
        for (const Item& b : right.values) {
            if (!CompareResultItems(left.values[0], b, left.op)) continue;
            kept.push_back(left.values[0]);
            kept.back().contextTag = b.contextTag;
        }
    } else if (isScalar(right.values)) {
        for (const Item& a : left.values) {
            if (CompareResultItems(a, right.values[0], left.op)) kept.push_back(a);
        }
    } else {
        for (const Item& a : left.values) {
            const bool holds = std::any_of(right.values.begin(), right.values.end(), [&](const Item& b) {
                return a.contextTag == b.contextTag && CompareResultItems(a, b, left.op);
            });
            if (holds) kept.push_back(a);
        }
    }
    left.values = kept;
}

// A number with the tag of the left one.
NaiveXPath::Item NaiveXPath::CalculusOnResultItems(const Item& a, const Item& b, Operator op) const {
    const double x = ConvertToNumber(a);
    const double y = ConvertToNumber(b);
    double number = 0;
    if (op == PLUS) number = x + y;
    if (op == MINUS) number = x - y;
    if (op == DIVIDE) number = x / y;
    if (op == MULTIPLY) number = x * y;
    return numberItem(number, a.contextTag);
}

bool NaiveXPath::CompareResultItems(const Item& a, const Item& b, Operator op) const {
    const auto holds = [op](const auto& x, const auto& y) {
        switch (op) {
        case LESS: return x < y;
        case LESS_OR_EQUAL: return x <= y;
        case EQUAL: return x == y;
        case GREATER: return x > y;
        case GREATER_OR_EQUAL: return x >= y;
        case NOT_EQUAL: return x != y;
        default: return false;
        }
    };
    if (a.kind == NUMBER || b.kind == NUMBER) return holds(ConvertToNumber(a), ConvertToNumber(b));
    if (a.kind == STRING || b.kind == STRING || (a.kind == NODE && b.kind == NODE)) {
        return holds(OrvSys::Uni16CharCompare(ConvertToString(a), ConvertToString(b)), 0);
    }
    // Beside a boolean a node counts as true when its text is not empty.
    const auto isTrue = [this](const Item& item) {
        return item.kind == BOOLEAN ? item.boolean : !ConvertToString(item).empty();
    };
    return holds(isTrue(a), isTrue(b));
}

Text NaiveXPath::ConvertToString(const Item& item) const {
    switch (item.kind) {
    case NODE: return GetValue(item.node);
    case STRING: return item.string;
    case NUMBER: {
        char buffer[512];  // longer than any number
        std::snprintf(buffer, sizeof buffer, "%f", item.number);
        return wide(buffer);
    }
    case BOOLEAN: return item.boolean ? u"1" : u"0";
    }
    return Text();
}

double NaiveXPath::ConvertToNumber(const Item& item) const {
    switch (item.kind) {
    case NODE:
    case STRING: return std::atof(OrvSys::Uni16CharToPlatformCString(ConvertToString(item)).c_str());
    case NUMBER: return item.number;
    case BOOLEAN: return item.boolean ? 1 : 0;
    }
    return 0;
}

}  // namespace Xml::test
