#pragma once

namespace Xml::test {

// How many of `full` random cases to run: all of them in a plain build, an eighth where instruments slow each one down. Decided by
// one source, so that all others compile to the same in both builds.
int rounds(int full);

}  // namespace Xml::test
