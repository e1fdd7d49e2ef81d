#pragma once

#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/EntityStack.h"
#include <cstddef>
#include <string>
#include <string_view>

namespace Xml {

// Reads what stands in quotes and may have references: values of attributes, and of entities.
class Values {
public:
    Values(EntityStack& stack, Declarations& declarations, bool hasNamespaces)
        : in(stack), declared(declarations), namespaces(hasNamespaces) {}

    // From the opening quote on. What the value is as text of type CDATA: where that stands there as it is, `plain` is
    // it, else it is appended and `plain` stays without data.
    bool readAttribute(std::string_view& plain, std::string& buffer);

    // The same from a byte within the value on, up to the closing quote; what was before has been appended.
    bool readRest(char quote, const char* opening, std::string& buffer);

    // The replacement text of an entity. Nothing is looked up: references by name stay.
    bool readEntity(std::string& text);

    // Whether an entity may be unknown: where declarations do not count, what is referred to may be declared in one.
    void setUnknownAllowed(bool isAllowed) { mayBeUnknown = isAllowed; }

    // The entity of a general reference, which has been read up to `at`; null after a failure.
    DeclaredEntity* find(std::string_view& name, const char* reference);

private:
    bool readReference(std::string& buffer);
    bool failAtLess(const char* where, bool isWritten);
    const char* whereUndeclared() const;

    EntityStack& in;
    Declarations& declared;
    bool namespaces;
    bool mayBeUnknown = false;
};

// A value of another type than CDATA: without spaces at its ends, one between words.
bool isCollapsed(std::string_view value);
std::string collapsed(std::string_view value);

}  // namespace Xml
