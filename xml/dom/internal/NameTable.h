#pragma once

#include "xml/dom/internal/Arena.h"
#include "xml/stream/internal/Scan.h"
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

namespace Xml {

// The names that the nodes of one arena share: each is kept once. A tree has few names, and they mostly follow each
// other as they did before: the name that came last after the same names is tried first, then the recent ones. O(log n)
// for the others, whatever names a document chooses.
class NameTable {
public:
    NameTable() { std::fill_n(followers.begin(), kFewContexts, nullptr); }

    const SharedName& find(std::string_view name, NodeMemory& memory) {
        SharedName*& next = followers[context];
        if (next == nullptr || !isSame(*next, name)) next = &findElsewhere(name, memory);
        return take(*next);
    }

    // The name that begins a run of bytes [at, to) and goes as far as they are of these classes, the first one aside.
    // `at` is set to its end. Null where that is the end of the run: it may go on.
    template <std::uint8_t Classes>
    const SharedName* read(const char*& at, const char* to, NodeMemory& memory) {
        SharedName*& next = followers[context];
        const char* const from = at;
        if (next != nullptr && next->begins(from, to)) {
            at = from + next->text.size();
            if (at != to && !ByteClass::is(*at, Classes)) return &take(*next);
        }
        at = Scan::endOf<Classes>(from + 1, to);
        if (at == to) return nullptr;
        next = &findElsewhere({from, static_cast<std::size_t>(at - from)}, memory);
        return &take(*next);
    }

private:
    static constexpr std::size_t kRecents = 128;
    static constexpr std::size_t kFew = 16;  // are looked through one by one
    static constexpr std::uint32_t kFewContexts = 64;
    static constexpr std::uint32_t kContexts = 256;

    static bool isSame(const SharedName& kept, std::string_view name) {
        return kept.text.size() == name.size() && kept.head == Words::wordOf(name.data(), name.size()) &&
               (name.size() <= sizeof kept.head || kept.text == name);
    }

    static std::size_t placeOf(std::string_view name) {
        if (name.empty()) return 0;
        const auto byte = [&name](std::size_t i) { return static_cast<unsigned char>(name[i]); };
        return (name.size() * 5 + byte(0) * 3u + byte(name.size() / 2) * 7u + byte(name.size() - 1)) % kRecents;
    }

    const SharedName& take(const SharedName& name) {
        context = (context << 2 ^ name.number) & lastContext;
        return name;
    }

    [[gnu::noinline]] SharedName& findElsewhere(std::string_view name, NodeMemory& memory) {
        if (!areMany()) {
            for (SharedName* kept = newest; kept != nullptr; kept = kept->next)
                if (isSame(*kept, name)) return *kept;
            return add(name, memory);
        }
        SharedName*& recent = recents[placeOf(name)];
        if (recent == nullptr || !isSame(*recent, name)) {
            const auto found = all.find(name);
            recent = found != all.end() ? found->second : &add(name, memory);
        }
        return *recent;
    }

    bool areMany() const { return newest != nullptr && newest->number >= kFew; }

    SharedName& add(std::string_view name, NodeMemory& memory) {
        newest = &memory.takeName(name);
        if (newest->number == kFew) prepareForMany();
        if (areMany()) {
            for (SharedName* kept = newest; kept != nullptr && all.emplace(kept->text, kept).second;) kept = kept->next;
        }
        return *newest;
    }

    void prepareForMany() {
        std::fill(followers.begin() + kFewContexts, followers.end(), nullptr);
        lastContext = kContexts - 1;
        recents.fill(nullptr);
    }

    std::uint32_t context = 0;  // made of the last few names
    std::uint32_t lastContext = kFewContexts - 1;
    SharedName* newest = nullptr;  // from there on all of them

    // What came last in each context. A small document should not wait until all of it is empty: only as much is used
    // as there are contexts.
    std::array<SharedName*, kContexts> followers;

    // Once they are more than a few.
    std::array<SharedName*, kRecents> recents;
    std::map<std::string_view, SharedName*> all;
};

}  // namespace Xml
