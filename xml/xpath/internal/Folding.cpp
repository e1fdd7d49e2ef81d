#include "xml/xpath/internal/Folding.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
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
    if (domainOf(scalar.kind, values.front().kind) == Domain::Numbers) {
        const double number = ConvertToNumber(scalar);
        keepIf(values, [&](const Value& value) { return CompareValue(number, ConvertToNumber(value), op); });
    } else {
        ValueText text(scalar);
        keepIf(values, [&](const Value& value) {
            ValueText other(value);
            return text.holds(other, op);
        });
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

// The right values of one tag, looked through once, so that it costs at most a binary search to say whether a left
// value satisfies a comparison with any of them.
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
        return CompareValue(text.compare(*sorted.front()), 0, op) || CompareValue(text.compare(*sorted.back()), 0, op);
    }

private:
    std::vector<std::unique_ptr<ValueText>> sorted;
};

// Comparing one with each is quicker than sorting up to about this many.
constexpr std::ptrdiff_t kFew = 4;

// The left values for which the comparison holds with any right value of their tag.
Values satisfied(const Values& left, const Values& right, Operator op) {
    Values kept;
    forEachTag(left, right, [&](auto from, auto to, auto rightFrom, auto rightTo) {
        const auto keep = [&](auto anySatisfies) { std::copy_if(from, to, std::back_inserter(kept), anySatisfies); };
        // For more left values than one each right one would be read again and again.
        const bool isQuick = to - from == 1 && rightTo - rightFrom <= kFew;
        if (isQuick) {
            keep([&](const Value& value) {
                return std::any_of(rightFrom, rightTo,
                                   [&](const Value& other) { return CompareResultItems(value, other, op); });
            });
        } else if (domainOf(from->kind, rightFrom->kind) == Domain::Numbers) {
            const NumberRange range(rightFrom, rightTo);
            keep([&](const Value& value) { return range.anySatisfies(value, op); });
        } else {
            const TextRange range(rightFrom, rightTo);
            keep([&](const Value& value) { return range.anySatisfies(value, op); });
        }
    });
    return kept;
}

// How many pairs of one left and one right value of the same tag there are, as far as kMostPairs; then any larger
// number.
std::size_t countPairs(const Values& left, const Values& right) {
    std::size_t pairs = 0;
    forEachTag(left, right, [&](auto from, auto to, auto rightFrom, auto rightTo) {
        const auto lefts = static_cast<std::size_t>(to - from);
        const auto rights = static_cast<std::size_t>(rightTo - rightFrom);
        const bool fits = pairs <= kMostPairs && lefts <= (kMostPairs - pairs) / rights;
        pairs = fits ? pairs + lefts * rights : kMostPairs + 1;
    });
    return pairs;
}

// The number of each pair.
Values combined(const Values& left, const Values& right, std::size_t pairs, Operator op) {
    Values made;
    made.reserve(pairs);
    std::vector<double> numbers;
    forEachTag(left, right, [&](auto from, auto to, auto rightFrom, auto rightTo) {
        numbers.clear();
        std::transform(rightFrom, rightTo, std::back_inserter(numbers), ConvertToNumber);
        for (; from != to; ++from) {
            const double number = ConvertToNumber(*from);
            for (const double other : numbers)
                made.push_back(Value::ofNumber(from->tag, CalculusOnValue(number, other, op)));
        }
    });
    return made;
}

enum class Rank { Product, Sum, Order, Equality, None };

Rank rankOf(Operator op) {
    switch (op) {
    case Operator::Divide:
    case Operator::Multiply: return Rank::Product;
    case Operator::Plus:
    case Operator::Minus: return Rank::Sum;
    case Operator::LessThan:
    case Operator::LessOrEqual:
    case Operator::GreaterThan:
    case Operator::GreaterOrEqual: return Rank::Order;
    case Operator::Equal:
    case Operator::NotEqual: return Rank::Equality;
    case Operator::None: break;
    }
    return Rank::None;
}

}  // namespace

bool CalculusOnExpressionItems(Values& left, const Values& right, Operator op, VisitBudget& budget) {
    // Whether one side is taken with each value of the other one; else there are pairs.
    const bool isEach = isScalar(left) || isScalar(right);
    const std::size_t made = isScalar(left) ? right.size() : isEach ? left.size() : countPairs(left, right);
    if (!isEach && made > kMostPairs) return false;
    budget.spend(made);
    if (budget.isSpent()) return false;
    if (!isEach) {
        left = combined(left, right, made, op);
    } else if (isScalar(left)) {
        const double number = ConvertToNumber(left.front());
        left = right;
        for (Value& value : left)
            value = Value::ofNumber(value.tag, CalculusOnValue(number, ConvertToNumber(value), op));
    } else {
        const double number = ConvertToNumber(right.front());
        for (Value& value : left)
            value = Value::ofNumber(value.tag, CalculusOnValue(ConvertToNumber(value), number, op));
    }
    return true;
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

bool fold(const Expression::Items& items, std::pmr::vector<Values>& values, VisitBudget& budget) {
    if (items.size() == 1) return true;
    std::pmr::vector<Operator> operators(values.get_allocator());
    operators.reserve(items.size());
    for (const ExpressionItem& item : items) operators.push_back(item.op);
    std::size_t count = operators.size();
    for (const Rank rank : {Rank::Product, Rank::Sum, Rank::Order, Rank::Equality}) {
        std::size_t left = 0;
        for (std::size_t right = 1; right < count; ++right) {
            if (rankOf(operators[left]) != rank) {
                if (++left != right) values[left] = std::move(values[right]);
            } else if (rank == Rank::Product || rank == Rank::Sum) {
                if (!CalculusOnExpressionItems(values[left], values[right], operators[left], budget)) return false;
            } else {
                CompareExpressionItems(values[left], values[right], operators[left]);
            }
            operators[left] = operators[right];
        }
        count = left + 1;
    }
    return true;
}

}  // namespace Xml
