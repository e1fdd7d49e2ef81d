#include "xml/xpath/internal/Folding.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
#include <new>
#include <vector>

namespace Xml {

namespace {

bool isScalar(const Values& values) { return values.size() == 1 && values.front().tag == -1; }

// Calls visit(from, to, rightFrom, rightTo) for the values of each tag that both sides have.
template <class Visit>
void forEachTag(const Values& left, const Values& right, Visit visit) {
    auto other = right.begin();
    for (auto from = left.begin(); from != left.end();) {
        const std::int32_t tag = from->tag;
        const auto isPast = [tag](const Value& value) { return value.tag > tag; };
        const auto to = std::find_if(from, left.end(), isPast);
        while (other != right.end() && other->tag < tag) ++other;
        const auto otherEnd = std::find_if(other, right.end(), isPast);
        if (other != otherEnd) visit(from, to, other, otherEnd);
        from = to;
        other = otherEnd;
    }
}

// Calls holds(value) for each of the values and keeps those for which it does.
template <class Holds>
void keepIf(Values& values, Holds holds) {
    values.erase(std::remove_if(values.begin(), values.end(), [&](const Value& value) { return !holds(value); }),
                 values.end());
}

// Keeps those of the values for which `scalar op value` holds.
void keepAgainst(const Value& scalar, Values& values, Operator op) {
    if (values.empty()) return;
    switch (domainOf(scalar.kind, values.front().kind)) {
    case Domain::Numbers: {
        const double number = ConvertToNumber(scalar);
        keepIf(values, [&](const Value& value) { return CompareValue(number, ConvertToNumber(value), op); });
        break;
    }
    case Domain::Texts: {
        ValueText text(scalar);
        keepIf(values, [&](const Value& value) {
            ValueText other(value);
            return CompareOrder(text.compare(other), op);
        });
        break;
    }
    case Domain::Booleans: {
        const bool boolean = ConvertToBoolean(scalar);
        keepIf(values, [&](const Value& value) { return CompareBooleans(boolean, ConvertToBoolean(value), op); });
        break;
    }
    }
}

// The operator that holds for (b, a) where `op` holds for (a, b).
Operator mirrored(Operator op) {
    switch (op) {
    case Operator::LessThan: return Operator::GreaterThan;
    case Operator::LessOrEqual: return Operator::GreaterOrEqual;
    case Operator::GreaterThan: return Operator::LessThan;
    case Operator::GreaterOrEqual: return Operator::LessOrEqual;
    default: return op;
    }
}

// The right values of one tag, looked through once, so that it costs at most a binary search to say whether a left value
// satisfies a comparison with any of them.
class NumberRange {
public:
    template <class Iterator>
    NumberRange(Iterator from, Iterator to) {
        for (; from != to; ++from) {
            const double number = ConvertToNumber(*from);
            if (std::isnan(number)) {
                hasNaN = true;
            } else {
                sorted.push_back(number);
            }
        }
        std::sort(sorted.begin(), sorted.end());
    }

    bool anySatisfies(const Value& left, Operator op) const {
        const double number = ConvertToNumber(left);
        if (op == Operator::NotEqual && (hasNaN || std::isnan(number))) return true;
        if (sorted.empty() || std::isnan(number)) return false;
        if (op == Operator::Equal) return std::binary_search(sorted.begin(), sorted.end(), number);
        return CompareValue(number, sorted.front(), op) || CompareValue(number, sorted.back(), op);
    }

private:
    bool hasNaN = false;  // "not a number" has no place in an order: it differs from all and is nothing else
    std::vector<double> sorted;
};

class TextRange {
public:
    template <class Iterator>
    TextRange(Iterator from, Iterator to) {
        for (; from != to; ++from) sorted.push_back(std::make_unique<ValueText>(*from));
        std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a->compare(*b) < 0; });
    }

    bool anySatisfies(const Value& left, Operator op) const {
        ValueText text(left);
        if (op == Operator::Equal) {
            const auto place = std::partition_point(sorted.begin(), sorted.end(),
                                                    [&text](const auto& other) { return other->compare(text) < 0; });
            return place != sorted.end() && (*place)->compare(text) == 0;
        }
        return CompareOrder(text.compare(*sorted.front()), op) || CompareOrder(text.compare(*sorted.back()), op);
    }

private:
    std::vector<std::unique_ptr<ValueText>> sorted;
};

// As many numbers arithmetic may make of pairs. Pairs multiply with every operand, so that a short path could ask for more
// than any memory holds; it is told so at once.
constexpr std::size_t kMostPairs = 16'000'000;

// Comparing one with each is quicker than sorting up to about this many.
constexpr std::ptrdiff_t kFew = 4;

// The left values for which the comparison holds with any right value of their tag.
Values satisfied(const Values& left, const Values& right, Operator op) {
    Values kept;
    forEachTag(left, right, [&](auto from, auto to, auto rightFrom, auto rightTo) {
        const auto keep = [&](auto anySatisfies) { std::copy_if(from, to, std::back_inserter(kept), anySatisfies); };
        const Domain domain = domainOf(from->kind, rightFrom->kind);
        // For more left values than one each right one would be read again and again.
        const bool isQuick = to - from == 1 && rightTo - rightFrom <= kFew;
        if (isQuick || domain == Domain::Booleans) {
            keep([&](const Value& value) {
                return std::any_of(rightFrom, rightTo,
                                   [&](const Value& other) { return CompareResultItems(value, other, op); });
            });
        } else if (domain == Domain::Numbers) {
            const NumberRange range(rightFrom, rightTo);
            keep([&](const Value& value) { return range.anySatisfies(value, op); });
        } else {
            const TextRange range(rightFrom, rightTo);
            keep([&](const Value& value) { return range.anySatisfies(value, op); });
        }
    });
    return kept;
}

}  // namespace

void CalculusOnExpressionItems(Values& left, const Values& right, Operator op) {
    if (isScalar(left)) {
        const double number = ConvertToNumber(left.front());
        left = right;
        for (Value& value : left)
            value = Value::ofNumber(value.tag, CalculusOnValue(number, ConvertToNumber(value), op));
    } else if (isScalar(right)) {
        const double number = ConvertToNumber(right.front());
        for (Value& value : left)
            value = Value::ofNumber(value.tag, CalculusOnValue(ConvertToNumber(value), number, op));
    } else {
        Values pairs;
        std::vector<double> numbers;
        forEachTag(left, right, [&](auto from, auto to, auto rightFrom, auto rightTo) {
            if (static_cast<std::size_t>(to - from) >
                (kMostPairs - pairs.size()) / static_cast<std::size_t>(rightTo - rightFrom))
                throw std::bad_alloc();
            numbers.clear();
            std::transform(rightFrom, rightTo, std::back_inserter(numbers), ConvertToNumber);
            for (; from != to; ++from) {
                const double number = ConvertToNumber(*from);
                for (const double other : numbers)
                    pairs.push_back(Value::ofNumber(from->tag, CalculusOnValue(number, other, op)));
            }
        });
        left = std::move(pairs);
    }
}

void CompareExpressionItems(Values& left, const Values& right, Operator op) {
    if (isScalar(left)) {
        const Value scalar = left.front();
        left = right;
        keepAgainst(scalar, left, op);
        for (Value& value : left) {
            const std::int32_t tag = value.tag;
            value = scalar;
            value.tag = tag;
        }
    } else if (isScalar(right)) {
        keepAgainst(right.front(), left, mirrored(op));
    } else {
        left = satisfied(left, right, op);
    }
}

}  // namespace Xml
