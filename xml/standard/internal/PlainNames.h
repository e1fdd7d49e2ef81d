#pragma once

#include "xml/text/internal/ByteClasses.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// Names of ASCII without a colon, as most are.
namespace Xml::PlainNames {

constexpr std::uint8_t kStart = 1;
constexpr std::uint8_t kGoesOn = 2;

constexpr std::array<std::uint8_t, 256> makeTable() {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::uint8_t classes = i == ':' ? 0 : ByteClass::kTable[i];
        if ((classes & ByteClass::kNameStart) != 0) table[i] = kStart;
        if ((classes & ByteClass::kNameChar) != 0) table[i] = static_cast<std::uint8_t>(table[i] | kGoesOn);
    }
    return table;
}

inline constexpr std::array<std::uint8_t, 256> kTable = makeTable();

inline bool is(char c, std::uint8_t wanted) { return (kTable[static_cast<unsigned char>(c)] & wanted) != 0; }

// Where the name ends that begins there; `from` where none does. What ends it may be what makes it another name: a
// colon, or what is not ASCII.
inline const char* endOf(const char* from, const char* to) {
    if (from == to || !is(*from, kStart)) return from;
    for (++from; to - from >= 4; from += 4) {
        if (!is(from[0], kGoesOn)) return from;
        if (!is(from[1], kGoesOn)) return from + 1;
        if (!is(from[2], kGoesOn)) return from + 2;
        if (!is(from[3], kGoesOn)) return from + 3;
    }
    while (from != to && is(*from, kGoesOn)) ++from;
    return from;
}

// Names of one tag. One that was there before is always noticed, and a few that were not are taken for such.
class Seen {
public:
    // The name is not empty.
    void add(std::string_view name) {
        const auto byte = [name](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(name[i])); };
        const auto size = static_cast<unsigned>(name.size());
        const std::uint64_t bit = std::uint64_t{1} << ((byte(0) + 5 * byte(name.size() - 1) + 11 * size) % 64);
        isTwice |= (bits & bit) != 0;
        bits |= bit;
    }
    bool maybeTwice() const { return isTwice; }

private:
    std::uint64_t bits = 0;
    bool isTwice = false;
};

}  // namespace Xml::PlainNames
