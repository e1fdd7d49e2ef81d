#pragma once

#include "xml/stream/internal/ReadAhead.h"

namespace Xml::test {

// As long as it lives, streams remember nothing of what they read ahead: results are the same, and cost more.
class WithoutReadAhead {
public:
    WithoutReadAhead() : before(ReadAhead::setEnabled(false)) {}
    ~WithoutReadAhead() { ReadAhead::setEnabled(before); }
    WithoutReadAhead(const WithoutReadAhead&) = delete;
    WithoutReadAhead& operator=(const WithoutReadAhead&) = delete;

private:
    bool before;
};

}  // namespace Xml::test
