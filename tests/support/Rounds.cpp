#include "support/Rounds.h"

#include <algorithm>

namespace Xml::test {

int rounds(int full) { return std::max(full / ORVXML_ROUNDS_DIVISOR, 1); }

}  // namespace Xml::test
