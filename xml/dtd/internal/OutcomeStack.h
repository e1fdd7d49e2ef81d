#pragma once

#include "xml/dtd/ChildQueue.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Xml {

class ChildrenSpec;

// What came of a repetition: whether it matched, and what it left.
struct Outcome {
    bool matched;
    ChildQueue left;
};

// Outcomes of repetitions by the place where they began: those pushed last are dropped first.
//
// Pushing is cheap; an outcome is found once it has been indexed. The index is a table with open addressing. It needs
// no marks for what has been taken out of it, because that was put in last: no other entry was moved on by it.
class OutcomeStack {
public:
    std::size_t size() const { return entries.size(); }
    void push(const ChildrenSpec& spec, const ChildQueue& start, const Outcome& outcome) {
        entries.push_back({&spec, start, outcome, kNotIndexed});
    }

    // Where the outcome pushed last began. There has to be one.
    const ChildQueue& lastStart() const { return entries.back().start; }

    // Indexes the outcomes from number `first` on. All after it may not be indexed yet.
    void index(std::size_t first);

    // Of the indexed ones; null if there is none. Of several for one place it is the first that was pushed.
    const Outcome* find(const ChildrenSpec& spec, const ChildQueue& start) const;

    // Drops all but the first `count`.
    void dropTo(std::size_t count);

private:
    struct Entry {
        const ChildrenSpec* spec;
        ChildQueue start;
        Outcome outcome;
        std::size_t slot;
    };

    static constexpr std::size_t kNotIndexed = static_cast<std::size_t>(-1);

    std::size_t firstSlot(const ChildrenSpec* spec, const ChildQueue& start) const;
    void putIntoSlot(std::size_t number);
    void grow();

    std::vector<Entry> entries;
    // One more than the number of an entry, 0 where free; their count is a power of two.
    std::vector<std::size_t> slots;
    std::size_t indexed = 0;  // how many entries are in slots
    unsigned shift = 0;       // from 64 bits to those of a slot's number
};

}  // namespace Xml
