#include "xml/xpath/internal/Value.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/text/internal/ClassicNumbers.h"
#include <algorithm>

namespace Xml {

namespace {

// The orders of two texts that an operator accepts, up to the mark -2.
constexpr int oGoodValuesLess[] = {-1, -2};
constexpr int oGoodValuesLessOrEqual[] = {-1, 0, -2};
constexpr int oGoodValuesEqual[] = {0, -2};
constexpr int oGoodValuesGreater[] = {1, -2};
constexpr int oGoodValuesGreaterOrEqual[] = {0, 1, -2};
constexpr int oGoodValuesNotEqual[] = {-1, 1, -2};
constexpr int oGoodValuesNone[] = {-2};

const int* goodValues(Operator op) {
    switch (op) {
    case Operator::LessThan: return oGoodValuesLess;
    case Operator::LessOrEqual: return oGoodValuesLessOrEqual;
    case Operator::Equal: return oGoodValuesEqual;
    case Operator::GreaterThan: return oGoodValuesGreater;
    case Operator::GreaterOrEqual: return oGoodValuesGreaterOrEqual;
    case Operator::NotEqual: return oGoodValuesNotEqual;
    default: return oGoodValuesNone;
    }
}

// The character data that an element or a character data node has its text from; null where there is none.
const CharData* dataOf(const Object& node) {
    if (node.isCharData()) return static_cast<const CharData*>(&node);
    if (!node.isElement()) return nullptr;
    const NodeSpan children = NodeAccess::children(static_cast<const Element&>(node));
    const auto* const first =
        std::find_if(children.begin(), children.end(), [](const Object* c) { return c->isCharData(); });
    return first != children.end() ? static_cast<const CharData*>(*first) : nullptr;
}

}  // namespace

Literal::Literal(const OrvSys::Uni16String& itsText)
    : text(itsText),
      bytes(OrvSys::Uni16CharToPlatformCString(text)),
      faithful(OrvSys::UTF8ToUni16Char(bytes) == text) {}

Value Value::ofNode(std::int32_t tag, Object* node) {
    Value value;
    value.tag = tag;
    value.kind = Kind::Node;
    value.node = node;
    return value;
}

Value Value::ofString(std::int32_t tag, const Literal* string) {
    Value value;
    value.tag = tag;
    value.kind = Kind::String;
    value.string = string;
    return value;
}

Value Value::ofNumber(std::int32_t tag, double number) {
    Value value;
    value.tag = tag;
    value.kind = Kind::Number;
    value.number = number;
    return value;
}

Value Value::ofBoolean(std::int32_t tag, bool boolean) {
    Value value;
    value.tag = tag;
    value.kind = Kind::Boolean;
    value.boolean = boolean;
    return value;
}

const std::string& textOf(const Object& node, std::string& buffer) {
    if (node.isAttribute()) return static_cast<const Attribute&>(node).getValue();
    const CharData* const data = dataOf(node);
    if (data == nullptr) {
        buffer.clear();
        return buffer;
    }
    if (data->data().find('&') == std::string::npos) return data->data();
    DataHolder decoded;
    data->getData(&decoded);
    buffer = std::move(decoded);
    return buffer;
}

OrvSys::Uni16String textOf(double number) {
    const std::string text = Classic::fixedPoint(number, 6);
    return {text.begin(), text.end()};
}

double ConvertToNumber(const Value& value) {
    std::string buffer;
    switch (value.kind) {
    case Value::Kind::Node: return Classic::atof(textOf(*value.node, buffer).c_str());
    case Value::Kind::String: return Classic::atof(value.string->bytes.c_str());
    case Value::Kind::Number: return value.number;
    case Value::Kind::Boolean: return value.boolean ? 1.0 : 0.0;
    }
    return 0.0;
}

OrvSys::Uni16String ConvertToString(const Value& value) {
    std::string buffer;
    switch (value.kind) {
    case Value::Kind::Node: return OrvSys::UTF8ToUni16Char(textOf(*value.node, buffer));
    case Value::Kind::String: return value.string->text;
    case Value::Kind::Number: return textOf(value.number);
    case Value::Kind::Boolean: return value.boolean ? u"1" : u"0";
    }
    return {};
}

bool ConvertToBoolean(const Value& value) {
    return value.kind == Value::Kind::Boolean ? value.boolean : !ConvertToString(value).empty();
}

ValueText::ValueText(const Value& value) {
    if (value.kind == Value::Kind::Node) {
        bytes = &textOf(*value.node, buffer);
    } else if (value.kind == Value::Kind::String) {
        if (value.string->faithful) bytes = &value.string->bytes;
        wide = &value.string->text;
    } else {
        ownWide = ConvertToString(value);
        wide = &ownWide;
    }
}

int ValueText::compare(ValueText& other) {
    if (bytes != nullptr && other.bytes != nullptr) {
        const auto [place, otherPlace] =
            std::mismatch(bytes->begin(), bytes->end(), other.bytes->begin(), other.bytes->end());
        const int next = place == bytes->end() ? -1 : static_cast<unsigned char>(*place);
        const int otherNext = otherPlace == other.bytes->end() ? -1 : static_cast<unsigned char>(*otherPlace);
        // Equal bytes widen to equal units, and ASCII behind them to a unit of its own.
        if (next == otherNext) return 0;
        if (next < 0x80 && otherNext < 0x80) return next < otherNext ? -1 : 1;
    }
    return std::clamp(OrvSys::Uni16CharCompare(widened(), other.widened()), -1, 1);
}

const OrvSys::Uni16String& ValueText::widened() {
    if (wide == nullptr) {
        ownWide = OrvSys::UTF8ToUni16Char(*bytes);
        wide = &ownWide;
    }
    return *wide;
}

double CalculusOnValue(double left, double right, Operator op) {
    switch (op) {
    case Operator::Plus: return left + right;
    case Operator::Minus: return left - right;
    case Operator::Divide: return left / right;
    case Operator::Multiply: return left * right;
    default: return 0.0;
    }
}

bool CompareValue(double left, double right, Operator op) {
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

bool CompareBooleans(bool left, bool right, Operator op) {
    return CompareValue(left ? 1.0 : 0.0, right ? 1.0 : 0.0, op);
}

bool CompareOrder(int order, Operator op) {
    const int* good = goodValues(op);
    while (*good != -2 && *good != order) ++good;
    return *good != -2;
}

Domain domainOf(Value::Kind left, Value::Kind right) {
    using Kind = Value::Kind;
    if (left == Kind::Number || right == Kind::Number) return Domain::Numbers;
    if (left == Kind::String || right == Kind::String) return Domain::Texts;
    return left == Kind::Node && right == Kind::Node ? Domain::Texts : Domain::Booleans;
}

bool CompareResultItems(const Value& left, const Value& right, Operator op) {
    switch (domainOf(left.kind, right.kind)) {
    case Domain::Numbers: return CompareValue(ConvertToNumber(left), ConvertToNumber(right), op);
    case Domain::Booleans: return CompareBooleans(ConvertToBoolean(left), ConvertToBoolean(right), op);
    case Domain::Texts: break;
    }
    ValueText text(left);
    ValueText other(right);
    return CompareOrder(text.compare(other), op);
}

}  // namespace Xml
