#pragma once

namespace Xml::test {

// How many of `full` random cases to run: all of them in a plain build, an eighth where instruments slow each one down.
// Decided by one source, so that all others compile to the same in both builds.
int rounds(int full);

// How many of them must come out in some way, `full` where all are run: half of that share of an eighth, which may be a
// poor one.
inline int atLeast(int full) { return rounds(full) == full ? full : rounds(full) / 2; }

}  // namespace Xml::test
