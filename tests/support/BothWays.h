#pragma once

#include "support/WithoutFastContent.h"
#include <gtest/gtest.h>

namespace Xml::test {

// Calls `use` once as readers are elsewhere, and once with all content read by tokens.
template <class Use>
void bothWays(const Use& use) {
    {
        SCOPED_TRACE("from the window");
        use();
    }
    SCOPED_TRACE("by tokens");
    const WithoutFastContent off;
    use();
}

}  // namespace Xml::test
