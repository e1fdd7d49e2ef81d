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
// other as they did before: the name that came last after the same ones is tried first, then the recent ones. O(log n)
// for the others, whatever names a document chooses.
//
// Which ones those are follows from the tree: in a tag its name and the last attributes, after an element its name and
// that of the one around it. What stood before does not count, so that what has been seen once is expected.
class NameTable {
public:
    NameTable() { Words::clear<kFewContexts * sizeof(SharedName*)>(reinterpret_cast<char*>(followers.data())); }

    const SharedName& find(std::string_view name, NodeMemory& memory) {
        SharedName*& next = followers[context];
        if (next == nullptr || !next->is(name, SharedName::headOf(name))) next = &findOther(name, memory);
        return take(*next);
    }

    // The name that begins a run of bytes [at, to) and goes as far as they are of these classes, the first one aside.
    // `at` is set to its end. Null where that is the end of the run: it may go on.
    template <std::uint8_t Classes>
    [[gnu::always_inline]] const SharedName* read(const char*& at, const char* to, NodeMemory& memory) {
        const SharedName* const next = followers[context];
        if (next != nullptr && next->begins(at, to)) {
            const char* const end = at + next->text.size();
            if (end != to && !ByteClass::is(*end, Classes)) {
                at = end;
                return &take(*next);
            }
        }
        return readOther<Classes>(at, to, memory);
    }

    // The name that came last after the same names, null without one; and that it has come again.
    const SharedName* expected() const { return followers[context]; }
    void takeExpected() { take(*followers[context]); }

    // The name that came last is that of an element.
    void begin(const SharedName& name) { context = name.number * 3 & lastInTag; }

    // The next name comes after the end of an element, within another one; of the outermost one it may be null.
    void end(const SharedName& name, const SharedName* around) {
        const std::uint32_t outer = around != nullptr ? around->number : 0;
        context = ((outer * 5 + name.number) & lastInTag) + lastInTag + 1;
    }

private:
    static constexpr std::size_t kRecents = 128;
    static constexpr std::size_t kFew = 16;  // are looked through one by one
    static constexpr std::uint32_t kFewContexts = 32;
    static constexpr std::uint32_t kContexts = 512;

    static std::size_t placeOf(std::string_view name) {
        if (name.empty()) return 0;
        const auto byte = [&name](std::size_t i) { return static_cast<unsigned char>(name[i]); };
        return (name.size() * 5 + byte(0) * 3u + byte(name.size() / 2) * 7u + byte(name.size() - 1)) % kRecents;
    }

    const SharedName& take(const SharedName& name) {
        context = (context << 3 ^ name.number) & lastInTag;
        return name;
    }

    // A name that is not the expected one. A small document has mostly new and short ones: those are found or made
    // without a call.
    template <std::uint8_t Classes>
    [[gnu::noinline]] const SharedName* readOther(const char*& at, const char* to, NodeMemory& memory) {
        const char* const from = at;
        at = Scan::endOf<Classes>(from + 1, to);
        if (at == to) return nullptr;
        const std::string_view name(from, static_cast<std::size_t>(at - from));
        if (name.size() <= sizeof(Words::Word) && to - from >= Scan::kWordSize && areFew()) {
            const Words::Word head = Scan::wordAt(from) & Words::maskOf(name.size());
            SharedName* kept = findAmongFew(name, head);
            if (kept == nullptr) kept = addQuickly(name, head, memory);
            if (kept != nullptr) return &take(*(followers[context] = kept));
        }
        return &takeOther(name, memory);
    }

    [[gnu::noinline]] const SharedName& takeOther(std::string_view name, NodeMemory& memory) {
        SharedName*& next = followers[context];
        next = &findElsewhere(name, memory);
        return take(*next);
    }

    [[gnu::noinline]] SharedName& findOther(std::string_view name, NodeMemory& memory) {
        return findElsewhere(name, memory);
    }

    [[gnu::always_inline]] SharedName& findElsewhere(std::string_view name, NodeMemory& memory) {
        const Words::Word head = SharedName::headOf(name);
        if (!areMany()) {
            SharedName* const kept = findAmongFew(name, head);
            return kept != nullptr ? *kept : add(name, head, memory);
        }
        SharedName*& recent = recents[placeOf(name)];
        if (recent == nullptr || !recent->is(name, head)) {
            const auto found = all.find(name);
            recent = found != all.end() ? found->second : &add(name, head, memory);
        }
        return *recent;
    }

    // Looks through all of them; null where it is none.
    [[gnu::always_inline]] SharedName* findAmongFew(std::string_view name, Words::Word head) const {
        SharedName* kept = newest;
        while (kept != nullptr && !kept->is(name, head)) kept = kept->next;
        return kept;
    }

    // Whether one more is no reason to look for them in another way.
    bool areFew() const { return newest == nullptr || newest->number + 1 < kFew; }
    bool areMany() const { return newest != nullptr && newest->number >= kFew; }

    SharedName& add(std::string_view name, Words::Word head, NodeMemory& memory) {
        newest = &memory.takeName(name, head);
        if (areMany()) noteMany();
        return *newest;
    }

    // One more of a few; null where there is no room for it at hand.
    SharedName* addQuickly(std::string_view name, Words::Word head, NodeMemory& memory) {
        SharedName* const made = memory.takeNameAtHand(name, head);
        if (made != nullptr) newest = made;
        return made;
    }

    [[gnu::noinline]] void noteMany() {
        if (newest->number == kFew) prepareForMany();
        for (SharedName* kept = newest; kept != nullptr && all.emplace(kept->text, kept).second;) kept = kept->next;
    }

    void prepareForMany() {
        std::fill(followers.begin() + kFewContexts, followers.end(), nullptr);
        lastInTag = kContexts / 2 - 1;
        recents.fill(nullptr);
    }

    // Made of the names that count, so that some fall together; in the lower half within tags, in the upper half after
    // elements.
    std::uint32_t context = 0;
    std::uint32_t lastInTag = kFewContexts / 2 - 1;
    SharedName* newest = nullptr;  // from there on all of them

    // What came last in each context. A small document should not wait until all of it is empty: only as much is used
    // as there are contexts.
    std::array<SharedName*, kContexts> followers;

    // Once they are more than a few.
    std::array<SharedName*, kRecents> recents;
    std::map<std::string_view, SharedName*> all;
};

}  // namespace Xml
