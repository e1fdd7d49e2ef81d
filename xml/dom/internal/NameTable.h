#pragma once

#include "xml/dom/internal/Arena.h"
#include "xml/stream/internal/Scan.h"
#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace Xml {

// The names that the nodes of one arena share: each is kept once. A tree has few names, and they mostly follow each
// other as they did before: the name after this one is tried first, then the recent ones. O(log n) for the others,
// whatever names a document chooses.
class NameTable {
public:
    const std::string& find(std::string_view name, NodeMemory& memory) {
        SharedName* found = last != nullptr ? last->follower : nullptr;
        if (found == nullptr || !isSame(found->text, name)) found = &findElsewhere(name, memory);
        last = found;
        return found->text;
    }

private:
    static constexpr std::size_t kRecents = 128;

    static bool isSame(const std::string& kept, std::string_view name) {
        return kept.size() == name.size() && Scan::startsWith(name.data(), name.data() + name.size(), kept);
    }

    static std::size_t placeOf(std::string_view name) {
        if (name.empty()) return 0;
        const auto byte = [&name](std::size_t i) { return static_cast<unsigned char>(name[i]); };
        return (name.size() * 5 + byte(0) * 3u + byte(name.size() / 2) * 7u + byte(name.size() - 1)) % kRecents;
    }

    SharedName& findElsewhere(std::string_view name, NodeMemory& memory) {
        SharedName*& recent = recents[placeOf(name)];
        if (recent == nullptr || !isSame(recent->text, name)) recent = &findAmongAll(name, memory);
        if (last != nullptr) last->follower = recent;
        return *recent;
    }

    SharedName& findAmongAll(std::string_view name, NodeMemory& memory) {
        if (const auto found = all.find(name); found != all.end()) return *found->second;
        SharedName& kept = memory.takeName(name);
        all.emplace(kept.text, &kept);
        return kept;
    }

    SharedName* last = nullptr;  // what was found last
    std::array<SharedName*, kRecents> recents{};
    std::map<std::string_view, SharedName*> all;
};

}  // namespace Xml
