#pragma once

#include "xml/reader/internal/FastContent.h"

namespace Xml::test {

// As long as it lives, all content is read by tokens: results are the same, and cost more.
class WithoutFastContent {
public:
    WithoutFastContent() : before(FastContent::setEnabled(false)) {}
    ~WithoutFastContent() { FastContent::setEnabled(before); }
    WithoutFastContent(const WithoutFastContent&) = delete;
    WithoutFastContent& operator=(const WithoutFastContent&) = delete;

private:
    bool before;
};

}  // namespace Xml::test
