#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Xml {

// What has been found for names, each in some context, by their addresses: so what is found by a text is looked up once
// for a name that many nodes share. It takes no more memory where ever new names come: at some size it forgets all and
// begins anew.
template <class Value>
class FoundNames {
public:
    // An address, or a number.
    using Context = std::uintptr_t;

    FoundNames() : entries(kFirstSize) {}

    // What was found for the name there; else what `find` finds, which is kept.
    template <class Find>
    Value get(const std::string& name, Context context, Find find) {
        const std::size_t place = placeOf(&name, context);
        const Entry& entry = entries[place & mask];
        return entry.name == &name && entry.context == context ? entry.value : getElsewhere(place, name, context, find);
    }

private:
    // Powers of two.
    static constexpr std::size_t kFirstSize = 16;
    static constexpr std::size_t kLastSize = 4096;

    struct Entry {
        const std::string* name = nullptr;
        Context context = 0;
        Value value{};
    };

    static std::size_t placeOf(const std::string* name, Context context) {
        constexpr std::uint64_t kMix = 0x9e3779b97f4a7c15u;
        return static_cast<std::size_t>((reinterpret_cast<std::uintptr_t>(name) + context * 0x2545f491u) * kMix >> 48);
    }

    template <class Find>
    Value getElsewhere(std::size_t place, const std::string& name, Context context, Find find) {
        for (std::size_t at = place;; ++at) {
            const Entry& entry = entries[at & mask];
            if (entry.name == nullptr) break;
            if (entry.name == &name && entry.context == context) return entry.value;
        }
        const Value value = find();
        if (2 * (count + 1) > entries.size()) makeRoom();
        put({&name, context, value});
        ++count;
        return value;
    }

    void makeRoom() {
        const bool isLast = entries.size() == kLastSize;
        std::vector<Entry> before(isLast ? kLastSize : 2 * entries.size());
        before.swap(entries);
        mask = entries.size() - 1;
        if (isLast) {
            count = 0;
            return;
        }
        for (const Entry& entry : before) {
            if (entry.name != nullptr) put(entry);
        }
    }

    void put(const Entry& entry) {
        std::size_t at = placeOf(entry.name, entry.context);
        while (entries[at & mask].name != nullptr) ++at;
        entries[at & mask] = entry;
    }

    std::vector<Entry> entries;
    std::size_t mask = kFirstSize - 1;
    std::size_t count = 0;
};

}  // namespace Xml
