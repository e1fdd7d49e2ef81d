#pragma once

#include "xml/standard/internal/EntityStack.h"
#include <optional>
#include <string>

namespace Xml {

// What an XML declaration says.
struct XmlDeclaration {
    bool isPresent = false;
    std::string version, encoding;
    std::optional<bool> standalone;
};

// Reads the declaration, where there is one: the document begins at `at`.
bool readXmlDeclaration(EntityStack& in, XmlDeclaration& declaration);

}  // namespace Xml
