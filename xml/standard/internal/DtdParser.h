#pragma once

#include "xml/standard/internal/Declarations.h"
#include "xml/standard/internal/EntityStack.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/standard/internal/Values.h"
#include <cstddef>
#include <string>
#include <string_view>

namespace Xml {

// Reads an internal subset: the grammar of all declarations, and what reading the document needs of them. Parameter
// entities are read where declarations may stand, and nowhere else.
class DtdParser {
public:
    DtdParser(EntityStack& stack, Declarations& declarations, bool hasNamespaces)
        : in(stack), declared(declarations), values(stack, declarations, hasNamespaces), namespaces(hasNamespaces) {}

    // From the byte after '[' on, through the ']' that ends it.
    bool readSubset();

private:
    bool readNext(bool& isEnd);
    bool readMarkup();
    bool readParameterReference();
    bool endEntity();
    bool failBetween();

    // Declarations, each from the byte after its keyword on.
    bool readEntityDeclaration();
    bool readUnparsed(DeclaredEntity& entity);
    bool readNotation();
    bool readElement();
    bool readModel();
    bool readMixed();
    bool readChildren(const char* opening);
    bool readParticle(bool& isGroup);
    void readRepetition();
    bool readAttributeList();
    bool readAttributeType(AttributeRule& rule);
    bool readChoices(bool areNames, std::string& type);
    bool readDefaultRule(AttributeRule& rule);
    bool readDefault(AttributeRule& rule);
    void define(std::string_view element, std::string_view name, AttributeRule rule);

    // White space and '>'.
    bool readEnd(const char* rule);

    // What is expected is not there.
    bool expected(const char* rule, const char* what);
    bool readWhite(const char* rule);

    // Names of entities and notations; of elements and attributes.
    bool readName(std::string_view& name, const char* what);
    bool readQName(std::string_view& name, const char* what);

    EntityStack& in;
    Declarations& declared;
    Values values;
    bool namespaces;
    std::string model;  // the one at hand, as Declarations has it
};

}  // namespace Xml
