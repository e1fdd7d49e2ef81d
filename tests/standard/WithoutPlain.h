#pragma once

#include "xml/standard/internal/Lexer.h"

namespace Xml::test {

// As long as it lives, ordinary pieces of content are read in the general way.
class WithoutPlain {
public:
    WithoutPlain() : before(Lexer::setPlainEnabled(false)) {}
    ~WithoutPlain() { Lexer::setPlainEnabled(before); }
    WithoutPlain(const WithoutPlain&) = delete;
    WithoutPlain& operator=(const WithoutPlain&) = delete;

private:
    bool before;
};

}  // namespace Xml::test
