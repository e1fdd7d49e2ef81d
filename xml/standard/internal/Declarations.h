#pragma once

#include "xml/dom/Place.h"
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

// An entity as it was declared.
struct DeclaredEntity {
    enum class Kind : std::uint8_t { Internal, External, Unparsed };
    Kind kind = Kind::Internal;
    bool isParameter = false;
    bool isInParameterEntity = false;  // the declaration
    bool isOpen = false;               // its replacement text is being read
    Place declaredAt;                  // in the document
    std::string text;                  // the replacement text of an internal one
    std::string publicId, systemId;    // of the others, as written
    std::string notation;              // of an unparsed one
};
using Entities = std::map<std::string, DeclaredEntity, std::less<>>;

// What is declared about one attribute of an element type.
struct AttributeRule {
    bool isCData = true;
    bool hasDefault = false;
    std::string value;      // of the default, normalised
    std::uint64_t tag = 0;  // the number of the last tag that gave the attribute
};
struct ElementRules {
    std::map<std::string, AttributeRule, std::less<>> all;
    std::vector<std::pair<std::string_view, AttributeRule*>> defaults;  // in the order of their declarations
};

// What a document type declares, as far as reading the document needs it. Maps in order: a document chooses its names
// so that any hash fails.
struct Declarations {
    bool isPresent = false;
    bool isStandalone = false;
    bool hasExternalSubset = false;
    bool hasParameterReferences = false;
    bool hasUnread = false;  // a parameter entity that was not read

    Entities general;
    Entities parameter;
    std::map<std::string, ElementRules, std::less<>> elements;

    // Whether entity and attribute-list declarations count: after something that is not read they do not.
    bool areProcessed() const { return !hasUnread || isStandalone; }

    // Whether a reference has to name an entity that is declared here: Entity Declared.
    bool mustDeclare() const { return isStandalone || (!hasExternalSubset && !hasParameterReferences); }
};

}  // namespace Xml
