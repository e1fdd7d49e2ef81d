#pragma once

#include "xml/dom/internal/Arena.h"
#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace Xml {

// The names that the nodes of one arena share: each is kept once. A tree has few names and uses each many times, so
// most are found among the recent ones; O(log n) for the others, whatever names a document chooses.
class NameTable {
public:
    const std::string& find(std::string_view name, NodeMemory& memory) {
        const std::string*& recent = recents[placeOf(name)];
        if (recent == nullptr || *recent != name) recent = &findAmongAll(name, memory);
        return *recent;
    }

private:
    static constexpr std::size_t kRecents = 64;

    static std::size_t placeOf(std::string_view name) {
        if (name.empty()) return 0;
        const auto byte = [&name](std::size_t i) { return static_cast<unsigned char>(name[i]); };
        return (name.size() * 5 + byte(0) * 3u + byte(name.size() / 2) * 7u + byte(name.size() - 1)) % kRecents;
    }

    const std::string& findAmongAll(std::string_view name, NodeMemory& memory) {
        if (const auto found = all.find(name); found != all.end()) return *found->second;
        const std::string& kept = memory.takeName(name);
        all.emplace(kept, &kept);
        return kept;
    }

    std::array<const std::string*, kRecents> recents{};
    std::map<std::string_view, const std::string*> all;
};

}  // namespace Xml
