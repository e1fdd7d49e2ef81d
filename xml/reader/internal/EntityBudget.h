#pragma once

#include "xml/reader/Reader.h"
#include <cstdint>

namespace Xml {

class DataHolder;
class Dtd;
class InStream;

// How much text references to entities may make in one reading, so that a small document cannot fill the memory.
// Documents may be large: only what is out of all proportion to the bytes that were read is refused.
//
// A reading is what the outermost reader reads, with all readers that it runs; the steps of a DocumentReader are one.
// Its budget is its own: of a Dtd that much is read with, each reading may make as much text as the first.
class EntityBudget {
public:
    // Replaces the references in a value that has just been read from `in`, by the entities of `dtd` where it is given.
    // False, and the value is unchanged, when all text that such references made would pass the bound (see
    // Dtd::setEntityGrowthLimit).
    bool expand(const InStream& in, DataHolder& value, const Dtd* dtd);

    // Bytes made so far.
    std::int64_t spent() const { return made; }

    // What a reader draws on: the budget that the reader that runs it gave it, else `own`.
    static EntityBudget& of(const Reader& reader, EntityBudget& own) {
        return reader.givenBudget != nullptr ? *reader.givenBudget : own;
    }

    // Gives a reader the budget of the reading that it is a part of: for all that it reads.
    static void give(Reader& part, EntityBudget& budget) { part.givenBudget = &budget; }

    // The same with what the reader that runs it was given, if it was.
    static void passOn(const Reader& whole, Reader& part) { part.givenBudget = whole.givenBudget; }

private:
    std::int64_t made = 0;
};

inline constexpr char kEntityTextTooLarge[] = "entity text too large";

}  // namespace Xml
