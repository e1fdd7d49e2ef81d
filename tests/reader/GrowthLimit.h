#pragma once

#include "xml/dtd/Dtd.h"
#include <cstdint>

namespace Xml::test {

// Another bound on the text that readers make from references, for as long as a test needs it.
class GrowthLimit {
public:
    explicit GrowthLimit(std::int64_t bytes) : before(Dtd::setEntityGrowthLimit(bytes)) {}
    ~GrowthLimit() { Dtd::setEntityGrowthLimit(before); }
    GrowthLimit(const GrowthLimit&) = delete;
    GrowthLimit& operator=(const GrowthLimit&) = delete;

private:
    std::int64_t before;
};

}  // namespace Xml::test
