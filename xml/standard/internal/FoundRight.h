#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Xml {

// Strings that were found to be right, by their addresses: a tree has few names for many nodes, and shares them. Some
// are forgotten, so that looking costs the same however many there are. None may change meanwhile.
class FoundRight {
public:
    bool has(const std::string& text) const { return all[placeOf(text)] == &text; }
    void add(const std::string& text) { all[placeOf(text)] = &text; }

private:
    static constexpr std::size_t kPlaces = 256;

    static std::size_t placeOf(const std::string& text) {
        const auto address = reinterpret_cast<std::uintptr_t>(&text);
        return (address >> 4 ^ address >> 12) % kPlaces;
    }

    std::array<const std::string*, kPlaces> all{};
};

}  // namespace Xml
