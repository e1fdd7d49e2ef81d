#pragma once

#include "xml/dtd/internal/FastValidation.h"

namespace Xml::test {

// As long as it lives, the Matcher decides everything: results are the same, and cost more.
class WithoutFastValidation {
public:
    explicit WithoutFastValidation(bool without = true) : before(FastValidation::setEnabled(!without)) {}
    ~WithoutFastValidation() { FastValidation::setEnabled(before); }
    WithoutFastValidation(const WithoutFastValidation&) = delete;
    WithoutFastValidation& operator=(const WithoutFastValidation&) = delete;

private:
    bool before;
};

}  // namespace Xml::test
