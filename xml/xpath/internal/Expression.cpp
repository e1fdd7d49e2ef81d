#include "xml/xpath/internal/Expression.h"

#include "xml/xpath/internal/PathText.h"
#include <algorithm>
#include <cstring>

namespace Xml {

namespace {

bool isDigit(OrvSys::uni16char unit) { return unit >= u'0' && unit <= u'9'; }

}  // namespace

const Path::Read* Path::step(std::size_t number, Expressions& expressions, PathError& error) {
    if (number < steps.size()) return steps[number].get();
    auto read = std::make_unique<Read>();
    if (!read->step.read(expressions.text, next, end, error)) return nullptr;
    read->depth = read->step.slashes + (steps.empty() ? 0 : steps.back()->depth + 1);
    for (const Span& predicate : read->step.predicates) read->predicates.push_back(expressions.add(predicate));
    if (tail == 0 && !steps.empty() && steps.back()->step.isParent() && !read->step.isParent()) tail = steps.size();
    steps.push_back(std::move(read));
    return steps.back().get();
}

void Expression::split(const PathText& whole) {
    Unit begin = text.begin;
    for (Unit at = begin; at != text.end;) {
        const Unit operandEnd = at;
        const Operator op = ExtractOperator(at, text.end);
        if (op != Operator::None) {
            items.emplace_back(begin, operandEnd, op);
            begin = at;
        } else if (*at == u'[' && !whole.isClosedBracket(at)) {
            at = text.end;
        } else {
            at = whole.behind(at);
        }
    }
    items.emplace_back(begin, text.end, Operator::None);
}

bool ExpressionItem::read(const PathText& whole, PathError& error) {
    if (text.begin != text.end && IsBeginLiteral(*text.begin)) {
        string = std::make_unique<Literal>(OrvSys::Uni16String(text.begin + 1, whole.behind(text.begin) - 1));
        kind = Kind::String;
        return true;
    }
    if (text.begin != text.end && isDigit(*text.begin)) {
        kind = Kind::Number;
        return readNumber(whole, error);
    }
    if (startsWith(text.begin, text.end, "position")) {
        kind = Kind::Position;
        return readCall(whole, "position", error);
    }
    if (startsWith(text.begin, text.end, "last")) {
        kind = Kind::Last;
        return readCall(whole, "last", error);
    }
    kind = Kind::Path;
    path.isAbsolute = startsWith(text.begin, text.end, "/");
    path.next = text.begin + (path.isAbsolute ? 1 : 0);
    path.end = text.end;
    return true;
}

// Digit by digit, so that a number has always been the same double.
bool ExpressionItem::readNumber(const PathText& whole, PathError& error) {
    double place = 0;  // of the next digit behind the point
    for (Unit at = text.begin; at != text.end; ++at) {
        if (*at == u'.' && place == 0) {
            place = 10;
        } else if (!isDigit(*at)) {
            return error.tell(XPath::ILLEGAL_CHAR_IN_NUMBER, whole.written(text.begin, text.end));
        } else if (place == 0) {
            number = number * 10 + (*at - u'0');
        } else {
            number += (*at - u'0') / place;
            place *= 10;
        }
    }
    return true;
}

// What stands between the parentheses does not matter.
bool ExpressionItem::readCall(const PathText& whole, const char* name, PathError& error) {
    const auto refuse = [&](XPath::ErrorCode code) { return error.tell(code, whole.written(text.begin, text.end)); };
    const Unit open = text.begin + std::strlen(name);
    if (open == text.end || *open != u'(') return refuse(XPath::MISSING_OPENING_PARENTHESE_AFTER_FUNCTION);
    const Unit close = std::find(open + 1, text.end, u')');
    if (close == text.end) return refuse(XPath::MISSING_CLOSING_PARENTHESE_AFTER_FUNCTION);
    return close + 1 == text.end || refuse(XPath::ILLEGAL_CHAR_AFTER_FUNCTION);
}

}  // namespace Xml
