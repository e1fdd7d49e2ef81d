#include "xml/xpath/internal/Value.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/text/internal/ClassicNumbers.h"
#include <algorithm>
#include <utility>

namespace Xml {

namespace {

// The character data that an element or a character data node has its text from; null where there is none.
const CharData* dataOf(const Object& node) {
    if (isCharData(node)) return static_cast<const CharData*>(&node);
    if (!isElement(node)) return nullptr;
    const NodeSpan children = NodeAccess::children(static_cast<const Element&>(node));
    const auto* const first =
        std::find_if(children.begin(), children.end(), [](const Object* c) { return isCharData(*c); });
    return first != children.end() ? static_cast<const CharData*>(*first) : nullptr;
}

}  // namespace

Literal::Literal(const OrvSys::Uni16String& itsText)
    : text(itsText),
      bytes(OrvSys::Uni16CharToPlatformCString(text)),
      faithful(OrvSys::UTF8ToUni16Char(bytes) == text),
      unique(faithful && text.find(u'\uFFFD') == OrvSys::Uni16String::npos) {}

Literal::Literal(std::string itsBytes)
    : text(OrvSys::UTF8ToUni16Char(itsBytes)),
      bytes(std::move(itsBytes)),
      faithful(true),
      unique(text.find(u'\uFFFD') == OrvSys::Uni16String::npos) {}

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

std::string_view textOf(const Object& node, std::string& buffer) {
    if (isAttribute(node)) return NodeAccess::text(static_cast<const Attribute&>(node));
    const CharData* const data = dataOf(node);
    if (data == nullptr) return {};
    if (const std::string_view held = NodeAccess::text(*data); held.find('&') == std::string::npos) return held;
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
    case Value::Kind::Node: return Classic::atof(textOf(*value.node, buffer));
    case Value::Kind::String: return Classic::atof(value.string->bytes);
    case Value::Kind::Number: return value.number;
    }
    return 0.0;
}

OrvSys::Uni16String ConvertToString(const Value& value) {
    std::string buffer;
    switch (value.kind) {
    case Value::Kind::Node: return OrvSys::UTF8ToUni16Char(std::string(textOf(*value.node, buffer)));
    case Value::Kind::String: return value.string->text;
    case Value::Kind::Number: return textOf(value.number);
    }
    return {};
}

ValueText::ValueText(const Value& value) {
    if (value.kind == Value::Kind::Node) {
        bytes = textOf(*value.node, buffer);
    } else if (value.kind == Value::Kind::String) {
        if (value.string->faithful) bytes = value.string->bytes;
        unique = value.string->unique;
        wide = &value.string->text;
    } else {
        ownWide = ConvertToString(value);
        wide = &ownWide;
    }
}

int ValueText::compare(ValueText& other) {
    if (bytes && other.bytes) {
        const auto [place, otherPlace] =
            std::mismatch(bytes->begin(), bytes->end(), other.bytes->begin(), other.bytes->end());
        const int next = place == bytes->end() ? -1 : static_cast<unsigned char>(*place);
        const int otherNext = otherPlace == other.bytes->end() ? -1 : static_cast<unsigned char>(*otherPlace);
        // Equal bytes widen to equal units, and ASCII after them to a unit of its own.
        if (next == otherNext) return 0;
        if (next < 0x80 && otherNext < 0x80) return next < otherNext ? -1 : 1;
    }
    return OrvSys::Uni16CharCompare(widened(), other.widened());
}

bool ValueText::holds(ValueText& other, Operator op) {
    const bool isEquality = op == Operator::Equal || op == Operator::NotEqual;
    if (isEquality && bytes && other.bytes && (unique || other.unique))
        return (*bytes == *other.bytes) == (op == Operator::Equal);
    return CompareValue(compare(other), 0, op);
}

const OrvSys::Uni16String& ValueText::widened() {
    if (wide == nullptr) {
        ownWide = OrvSys::UTF8ToUni16Char(std::string(*bytes));
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

Domain domainOf(Value::Kind left, Value::Kind right) {
    return left == Value::Kind::Number || right == Value::Kind::Number ? Domain::Numbers : Domain::Texts;
}

bool CompareResultItems(const Value& left, const Value& right, Operator op) {
    if (domainOf(left.kind, right.kind) == Domain::Numbers)
        return CompareValue(ConvertToNumber(left), ConvertToNumber(right), op);
    ValueText text(left);
    ValueText other(right);
    return text.holds(other, op);
}

}  // namespace Xml
