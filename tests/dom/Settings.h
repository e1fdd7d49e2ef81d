#pragma once

#include "xml/dom/Element.h"
#include "xml/dom/Object.h"

namespace Xml::test {

// The RW optimisation as wanted for one scope.
class RewriteSetting {
public:
    explicit RewriteSetting(bool use) : before(Object::setRWOptimization(use)) {}
    ~RewriteSetting() { Object::setRWOptimization(before); }
    RewriteSetting(const RewriteSetting&) = delete;
    RewriteSetting& operator=(const RewriteSetting&) = delete;

private:
    bool before;
};

// The notation of empty elements as wanted for one scope.
class ShortNotation {
public:
    explicit ShortNotation(bool use) : before(Element::setShortNotationForEmptyTags(use)) {}
    ~ShortNotation() { Element::setShortNotationForEmptyTags(before); }
    ShortNotation(const ShortNotation&) = delete;
    ShortNotation& operator=(const ShortNotation&) = delete;

private:
    bool before;
};

}  // namespace Xml::test
