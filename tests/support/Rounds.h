#pragma once

namespace Xml::test {

// How many of `full` random cases to run: all of them in a plain build, an eighth where instruments slow each one down.
constexpr int rounds(int full) {
#ifdef ORVXML_INSTRUMENTED
    return full < 8 ? 1 : full / 8;
#else
    return full;
#endif
}

}  // namespace Xml::test
