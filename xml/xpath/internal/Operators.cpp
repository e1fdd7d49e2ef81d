#include "xml/xpath/internal/Operators.h"

#include <cstring>

namespace Xml {

namespace {

struct OperatorName {
    const char* text;
    Operator op;
};

// The first that fits is taken: the longer stands before what it begins with.
constexpr OperatorName oOperatorNames[] = {
    {" eq ", Operator::Equal},        {"=", Operator::Equal},          {" ne ", Operator::NotEqual},
    {"!=", Operator::NotEqual},       {" le ", Operator::LessOrEqual}, {"<=", Operator::LessOrEqual},
    {" lt ", Operator::LessThan},     {"<", Operator::LessThan},       {" ge ", Operator::GreaterOrEqual},
    {">=", Operator::GreaterOrEqual}, {" gt ", Operator::GreaterThan}, {">", Operator::GreaterThan},
    {" + ", Operator::Plus},          {" - ", Operator::Minus},        {" div ", Operator::Divide},
    {" * ", Operator::Multiply},
};

}  // namespace

Operator ExtractOperator(Unit& at, Unit end) {
    if (at == end || !mayBeginOperator(*at)) return Operator::None;
    for (const OperatorName& row : oOperatorNames) {
        if (!startsWith(at, end, row.text)) continue;
        at += std::strlen(row.text);
        return row.op;
    }
    return Operator::None;
}

}  // namespace Xml
