#pragma once

#include "orvsys/Uni16.h"
#include "xml/xpath/internal/Operators.h"
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

class Object;

// A string of an expression, with its 8-bit text.
struct Literal {
    explicit Literal(const OrvSys::Uni16String& itsText);
    explicit Literal(std::string itsBytes);

    OrvSys::Uni16String text;
    std::string bytes;
    bool faithful;  // whether `bytes` widen to `text` again: half of a surrogate pair does not
    bool unique;    // whether no other bytes widen to it: malformed ones all become U+FFFD
};

// What an expression computes with. It refers to its string or node and does not own it.
struct Value {
    enum class Kind : std::int32_t { Node, String, Number };  // as the kinds of XPath::ResultItem

    static Value ofNode(std::int32_t tag, Object* node);
    static Value ofString(std::int32_t tag, const Literal* string);
    static Value ofNumber(std::int32_t tag, double number);

    std::int32_t tag;  // the index of the context node that it was computed for; -1: for none
    Kind kind;
    union {
        Object* node;
        const Literal* string;
        double number;
    };
};

// The value of an expression or of a part of one. All are of one kind, and in the order of their tags: paths and
// functions give them so, and neither computing nor comparing changes it.
using Values = std::vector<Value>;

// The text of a node (see XPath::GetValue): as it stands in the node where it can, else in `buffer`. The tree is not
// touched.
std::string_view textOf(const Object& node, std::string& buffer);

// "2.000000", whole and with a point under every locale; "inf", "nan", also with a minus.
OrvSys::Uni16String textOf(double number);

double ConvertToNumber(const Value& value);
OrvSys::Uni16String ConvertToString(const Value& value);

// A value as text, for comparing it again and again. It stays 8-bit text as long as that tells the order; 16-bit text
// is made at most once. The value's string or node must stay.
class ValueText {
public:
    explicit ValueText(const Value& value);
    ValueText(const ValueText&) = delete;
    ValueText& operator=(const ValueText&) = delete;

    // Below 0, 0 or above 0, by the values of 16-bit units.
    int compare(ValueText& other);

    // Whether `this op other` holds; for no operator but the six comparisons.
    bool holds(ValueText& other, Operator op);

private:
    const OrvSys::Uni16String& widened();

    std::optional<std::string_view> bytes;      // nothing where they would not tell the text
    bool unique = false;                        // whether no other bytes than those widen to the text
    const OrvSys::Uni16String* wide = nullptr;  // null until it is made
    std::string buffer;
    OrvSys::Uni16String ownWide;
};

double CalculusOnValue(double left, double right, Operator op);

// Whether `left op right` holds; for no operator but the six comparisons. Of texts it is asked of their order and 0.
template <class Number>
bool CompareValue(Number left, Number right, Operator op) {
    switch (op) {
    case Operator::LessThan: return left < right;
    case Operator::LessOrEqual: return left <= right;
    case Operator::Equal: return left == right;
    case Operator::GreaterThan: return left > right;
    case Operator::GreaterOrEqual: return left >= right;
    case Operator::NotEqual: return left != right;
    default: return false;
    }
}

// What two values are compared as: as numbers where one is a number, else as texts.
enum class Domain { Numbers, Texts };
Domain domainOf(Value::Kind left, Value::Kind right);

// Whether `left op right` holds.
bool CompareResultItems(const Value& left, const Value& right, Operator op);

}  // namespace Xml
