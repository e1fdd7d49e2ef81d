#include "xml/xpath/internal/Expression.h"

#include "xml/xpath/internal/ByteUnits.h"
#include "xml/xpath/internal/PathText.h"
#include <algorithm>
#include <cstring>

namespace Xml {

namespace {

// Room for so many steps is made at once.
constexpr std::size_t kSome = 8;

bool isDigit(OrvSys::uni16char unit) { return unit >= u'0' && unit <= u'9'; }

}  // namespace

Path::Path(Unit begin, Unit itsEnd, std::pmr::memory_resource* memory)
    : isAbsolute(startsWith(begin, itsEnd, "/")),
      next(begin + (isAbsolute ? 1 : 0)),
      end(itsEnd),
      owned(memory),
      steps(memory) {}

Path::Read* Path::step(std::size_t number, Expressions& expressions, PathError& error) {
    if (number < steps.size()) return steps[number];
    const Read* const before = steps.empty() ? nullptr : steps.back();
    Read& read = owned.emplace_back(expressions.memory);
    if (!read.step.read(expressions.text, next, end, error)) {
        owned.pop_back();
        return nullptr;
    }
    read.depth = read.step.slashes + (before != nullptr ? before->depth + 1 : 0);
    read.predicates.reserve(read.step.predicates.size());
    for (const Span& predicate : read.step.predicates) read.predicates.emplace_back(expressions.add(predicate));
    if (tail == 0 && before != nullptr && before->step.isParent() && !read.step.isParent()) tail = number;
    if (steps.empty() && !read.step.isLast) steps.reserve(kSome);
    steps.push_back(&read);
    return &read;
}

const PositionTest* Path::Predicate::positionTest(const Expressions& expressions) {
    if (found == Found::NotRead) {
        const std::optional<PositionTest> test = PositionTest::read(*expression, expressions);
        if (test) position = *test;
        found = test ? Found::Position : Found::Other;
    }
    return found == Found::Position ? &position : nullptr;
}

Expression::Items& Expression::items(const PathText& whole) {
    if (!items_.empty()) return items_;
    Unit begin = text.begin;
    if (!whole.mayHaveOperators()) {
        items_.emplace_back(begin, text.end, Operator::None);
        return items_;
    }
    for (Unit at = begin; at != text.end;) {
        if (isPlain(*at)) {
            ++at;
            continue;
        }
        const Unit operandEnd = at;
        const Operator op = mayBeginOperator(*at) ? ExtractOperator(at, text.end) : Operator::None;
        if (op != Operator::None) {
            if (items_.empty()) items_.reserve(2);
            items_.emplace_back(begin, operandEnd, op);
            begin = at;
        } else if (*at == u'[' && !whole.isClosedBracket(at)) {
            at = text.end;
        } else {
            at = whole.after(at);
        }
    }
    items_.emplace_back(begin, text.end, Operator::None);
    return items_;
}

bool ExpressionItem::read(const Expressions& expressions, PathError& error) {
    if (operand.index() != 0) return true;
    const PathText& whole = expressions.text;
    if (text.begin != text.end && IsBeginLiteral(*text.begin)) {
        const Unit begin = text.begin + 1;
        const Unit end = whole.after(text.begin) - 1;
        if (whole.hasByteUnits()) {
            operand.emplace<Literal>(ByteUnits::bytesOf(begin, end));
        } else {
            operand.emplace<Literal>(OrvSys::Uni16String(begin, end));
        }
        return true;
    }
    if (text.begin != text.end && isDigit(*text.begin)) return readNumber(whole, error);
    if (startsWith(text.begin, text.end, "position")) return readCall(whole, Function::Position, "position", error);
    if (startsWith(text.begin, text.end, "last")) return readCall(whole, Function::Last, "last", error);
    operand.emplace<Path>(text.begin, text.end, expressions.memory);
    return true;
}

// Digit by digit: that gives another double than reading the number as a whole where that is long.
bool ExpressionItem::readNumber(const PathText& whole, PathError& error) {
    double number = 0;
    double place = 0;  // of the next digit after the point
    for (Unit at = text.begin; at != text.end; ++at) {
        if (*at == u'.' && place == 0) {
            place = 10;
        } else if (!isDigit(*at)) {
            return error.set(XPath::ILLEGAL_CHAR_IN_NUMBER, whole.written(text.begin, text.end));
        } else if (place == 0) {
            number = number * 10 + (*at - u'0');
        } else {
            number += (*at - u'0') / place;
            place *= 10;
        }
    }
    operand = number;
    return true;
}

// What stands between the parentheses does not matter.
bool ExpressionItem::readCall(const PathText& whole, Function function, const char* name, PathError& error) {
    const auto refuse = [&](XPath::ErrorCode code) { return error.set(code, whole.written(text.begin, text.end)); };
    const Unit open = text.begin + std::strlen(name);
    if (open == text.end || *open != u'(') return refuse(XPath::MISSING_OPENING_PARENTHESE_AFTER_FUNCTION);
    const Unit close = std::find(open + 1, text.end, u')');
    if (close == text.end) return refuse(XPath::MISSING_CLOSING_PARENTHESE_AFTER_FUNCTION);
    if (close + 1 != text.end) return refuse(XPath::ILLEGAL_CHAR_AFTER_FUNCTION);
    operand = function;
    return true;
}

}  // namespace Xml
