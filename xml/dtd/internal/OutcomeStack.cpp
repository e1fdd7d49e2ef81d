#include "xml/dtd/internal/OutcomeStack.h"

#include <cstdint>

namespace Xml {

namespace {

constexpr unsigned kFirstSlotBits = 4;

}  // namespace

std::size_t OutcomeStack::firstSlot(const ChildrenSpec* spec, const ChildQueue& start) const {
    const Object* const child = start.empty() ? nullptr : start.front();
    const std::uint64_t key =
        31 * (reinterpret_cast<std::uintptr_t>(spec) + start.size()) + reinterpret_cast<std::uintptr_t>(child);
    return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15U >> shift);  // the upper bits depend on all others
}

const Outcome* OutcomeStack::find(const ChildrenSpec& spec, const ChildQueue& start) const {
    if (indexed == 0) return nullptr;
    for (std::size_t slot = firstSlot(&spec, start); slots[slot] != 0; slot = (slot + 1) & (slots.size() - 1)) {
        const Entry& entry = entries[slots[slot] - 1];
        if (entry.spec == &spec && entry.start == start) return &entry.outcome;
    }
    return nullptr;
}

void OutcomeStack::index(std::size_t first) {
    while (2 * (indexed + entries.size() - first) > slots.size()) grow();
    for (std::size_t number = first; number < entries.size(); ++number) putIntoSlot(number);
    indexed += entries.size() - first;
}

void OutcomeStack::putIntoSlot(std::size_t number) {
    std::size_t slot = firstSlot(entries[number].spec, entries[number].start);
    while (slots[slot] != 0) slot = (slot + 1) & (slots.size() - 1);
    slots[slot] = number + 1;
    entries[number].slot = slot;
}

void OutcomeStack::grow() {
    const unsigned bits = slots.empty() ? kFirstSlotBits : 64 - shift + 1;
    slots.assign(std::size_t{1} << bits, 0);
    shift = 64 - bits;
    for (std::size_t number = 0; number < entries.size(); ++number) {
        if (entries[number].slot != kNotIndexed) putIntoSlot(number);
    }
}

void OutcomeStack::dropTo(std::size_t count) {
    while (entries.size() > count) {
        if (entries.back().slot != kNotIndexed) {
            slots[entries.back().slot] = 0;
            --indexed;
        }
        entries.pop_back();
    }
}

}  // namespace Xml
