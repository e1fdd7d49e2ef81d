#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Xml::test {

// What another processor made of a document.
struct PeerVerdict {
    bool isAccepted = false;
    bool hasSkipped = false;  // a reference that it did not read
    std::string events;       // as EventLines has them, with attributes in the order of the tag
    std::string error;
    std::int64_t errorAt = -1;  // Expat's alone: the byte
};

// Expat, with namespaces (the verdict alone) or without; parameter entities of the internal subset are read.
PeerVerdict askExpat(std::string_view text, bool hasNamespaces);

// Whether Expat refuses the document because of a reference to a parameter entity that is not declared, or only within
// another one. XML 4.1, [69] PEReference: that is a constraint of validity.
bool isAboutAParameterEntity(const PeerVerdict& verdict, std::string_view text);

// libxml2, entities replaced; the verdict is of both recommendations where there are namespaces.
PeerVerdict askLibxml2(std::string_view text, bool hasNamespaces);

}  // namespace Xml::test
