#pragma once

#include "xml/dom/Place.h"
#include "xml/dtd/AttDef.h"
#include "xml/dtd/EntityDecl.h"
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
struct DeclaredEntity : EntityDecl {
    bool isParameter = false;
    bool isInParameterEntity = false;  // the declaration
    bool isOpen = false;               // its replacement text is being read
    Place declaredAt;                  // in the document
};
using Entities = std::map<std::string, DeclaredEntity, std::less<>>;

// What is declared about one attribute of an element type.
struct AttributeRule {
    bool isCData = true;
    std::string type;  // "CDATA", "IDREFS", "(a|b)", "NOTATION(a|b)": as it is written, without white space
    AttType defaultRule = DEFAULT;
    std::string value;      // of the default, normalised
    std::uint64_t tag = 0;  // the number of the last tag that gave the attribute

    bool hasDefault() const { return defaultRule == DEFAULT || defaultRule == FIXED; }
};
struct ElementRules {
    std::map<std::string, AttributeRule, std::less<>> all;
    std::vector<std::pair<std::string_view, AttributeRule*>> defaults;  // in the order of their declarations
};

// What a document type declares, as far as reading the document needs it. Maps in order: a document chooses its names
// so that any hash fails.
struct Declarations {
    bool isPresent = false;
    std::string name;  // of the document type
    bool isStandalone = false;
    bool hasExternalSubset = false;
    bool hasParameterReferences = false;
    bool hasUnread = false;  // a parameter entity that was not read

    Entities general;
    Entities parameter;
    std::map<std::string, ElementRules, std::less<>> elements;
    std::map<std::string, NotationDecl, std::less<>> notations;

    // Content models as they are written, without white space: "EMPTY", "(#PCDATA|a)*", "(a,(b|c)?)+".
    std::map<std::string, std::string, std::less<>> models;

    // Whether entity and attribute-list declarations count: after something that is not read they do not.
    bool areProcessed() const { return !hasUnread || isStandalone; }

    // Whether an element of that name has the attribute with that value where its tag lacks it.
    bool supply(std::string_view element, std::string_view attribute, std::string_view value) const {
        const auto rules = elements.find(element);
        if (rules == elements.end()) return false;
        const auto rule = rules->second.all.find(attribute);
        return rule != rules->second.all.end() && rule->second.hasDefault() && rule->second.value == value;
    }

    // Whether a reference has to name an entity that is declared here: Entity Declared.
    bool mustDeclare() const { return isStandalone || (!hasExternalSubset && !hasParameterReferences); }
};

}  // namespace Xml
