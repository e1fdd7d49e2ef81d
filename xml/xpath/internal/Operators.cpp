#include "xml/xpath/internal/Operators.h"

#include <cstddef>
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

// The shortest operator that begins with a blank.
constexpr std::ptrdiff_t kShortestWithBlank = 3;

// Whether a blank before the unit may belong to an operator: most do not.
bool mayFollowBlank(OrvSys::uni16char unit) {
    return unit == u'+' || unit == u'-' || unit == u'*' || (unit >= u'd' && unit <= u'n');
}

}  // namespace

Operator ExtractOperator(Unit& at, Unit end) {
    if (at == end || !mayBeginOperator(*at)) return Operator::None;
    if (*at == u' ' && (end - at < kShortestWithBlank || !mayFollowBlank(at[1]))) return Operator::None;
    for (const OperatorName& row : oOperatorNames) {
        if (*at != static_cast<unsigned char>(row.text[0]) || !startsWith(at, end, row.text)) continue;
        at += std::strlen(row.text);
        return row.op;
    }
    return Operator::None;
}

}  // namespace Xml
