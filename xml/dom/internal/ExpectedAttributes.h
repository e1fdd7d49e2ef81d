#pragma once

#include "xml/dom/internal/TreeBuilder.h"
#include "xml/stream/internal/Scan.h"
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Xml {

// Takes the attributes of a tag that are written as most are, from the end of the name or the value before them on: a
// space, the name that the tree expects, an equal sign, and a plain value in double quotes. Returns where something
// else begins, which is the end of the run of bytes [from, to) at most.
//
// `isOrdinary(name)` says whether any attribute of that name may be taken; `plainEnd(value)` where a value that begins
// there stops to be plain. `take(begin, name, value)` takes one whose name begins there.
template <class IsOrdinary, class PlainEnd, class Take>
[[gnu::always_inline]] inline const char* takeExpected(const char* from, const char* to, TreeBuilder& tree,
                                                       IsOrdinary isOrdinary, PlainEnd plainEnd, Take take) {
    static constexpr char kBeforeValue[] = {'=', '"'};
    while (to - from > Scan::kWordSize && *from == ' ') {
        const char* const begin = from + 1;
        const SharedName* const name = tree.expectedName();
        if (name == nullptr || !isOrdinary(*name) || !name->beginsWithin(begin, to)) break;
        const char* const sign = begin + name->text.size();
        if (to - sign < 2 || !Scan::isSame<std::uint16_t>(sign, kBeforeValue)) break;
        const char* const value = sign + sizeof kBeforeValue;
        const char* const valueEnd = plainEnd(value);
        if (valueEnd == to || *valueEnd != '"') break;
        tree.takeExpectedName();
        take(begin, *name, std::string_view(value, static_cast<std::size_t>(valueEnd - value)));
        from = valueEnd + 1;
    }
    return from;
}

}  // namespace Xml
