#pragma once

#include "xml/xpath/internal/Characters.h"
#include <cstdint>

namespace Xml {

enum class Operator : std::uint8_t {
    LessThan,  // the first six compare
    LessOrEqual,
    Equal,
    GreaterThan,
    GreaterOrEqual,
    NotEqual,
    Plus,
    Minus,
    Divide,
    Multiply,
    None
};

inline bool isComparison(Operator op) { return op <= Operator::NotEqual; }

// The operator whose text stands at `at`, which moves after it; None, and `at` unmoved, where there is none. Words and
// the signs of arithmetic carry a blank on each side, so that `a - b` is apart from the name `a-b`.
Operator ExtractOperator(Unit& at, Unit end);

// Whether there may be one that begins with the unit.
inline bool mayBeginOperator(OrvSys::uni16char unit) {
    return unit == u' ' || unit == u'!' || unit == u'<' || unit == u'=' || unit == u'>';
}

// Whether the unit is none that may be white space, begin an operator, or begin or end what is enclosed: a character of
// a name, a slash or the like, as most are. It is looked up by the low byte; of what is not plain the unit decides.
inline bool isPlain(OrvSys::uni16char unit) {
    struct Units {
        constexpr Units() {
            for (const char c : {'\t', '\n', '\r', ' ', '!', '"', '\'', '<', '=', '>', '[', ']'})
                other[static_cast<unsigned char>(c)] = true;
        }
        bool other[0x100] = {};
    };
    static constexpr Units kUnits;
    return !kUnits.other[unit & 0xFF];
}

}  // namespace Xml
