#pragma once

#include "xml/dom/internal/TreeBuilder.h"
#include "xml/stream/internal/Scan.h"
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Xml {

// Adds the attributes of a tag that are written as most are, from the end of the name or the value before them on: a
// space, the name that the tree expects, an equal sign, and a plain value in double quotes. Returns where something
// else begins, which is the end of the run of bytes [from, to) at most.
//
// `isOrdinary(name)` says whether any attribute of that name may be taken; `plainEnd(value, to)` where a value that
// begins there stops to be plain. `note(name)` hears where the name of each begins.
template <class Attributes, class IsOrdinary, class PlainEnd, class Note>
[[gnu::always_inline]] inline const char* addExpected(const char* from, const char* to, TreeBuilder& tree,
                                                      Attributes& attributes, IsOrdinary isOrdinary, PlainEnd plainEnd,
                                                      Note note) {
    static constexpr char kBeforeValue[] = {'=', '"'};
    constexpr std::ptrdiff_t kRoom = Scan::kWordSize + sizeof kBeforeValue;  // a name is looked at in words
    while (from != to && *from == ' ') {
        const SharedName* const name = tree.expectedName();
        if (name == nullptr || !isOrdinary(*name)) break;
        const auto size = static_cast<std::ptrdiff_t>(name->text.size());
        if (to - from < size + kRoom || !name->beginsWithin(from + 1, to)) break;
        const char* const sign = from + 1 + size;
        if (!Scan::isSame<std::uint16_t>(sign, kBeforeValue)) break;
        const char* const value = sign + sizeof kBeforeValue;
        const char* const valueEnd = plainEnd(value, to);
        if (valueEnd == to || *valueEnd != '"') break;
        tree.takeExpectedName();
        note(from + 1);
        attributes.add(*name, std::string_view(value, static_cast<std::size_t>(valueEnd - value)));
        from = valueEnd + 1;
    }
    return from;
}

}  // namespace Xml
