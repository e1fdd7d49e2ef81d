#include "xml/standard/internal/DtdText.h"

#include "xml/dtd/internal/DtdAccess.h"
#include "xml/standard/internal/ModelText.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/text/internal/ByteClasses.h"
#include "xml/text/internal/Escape.h"
#include <cstddef>
#include <string_view>

namespace Xml {

namespace {

// Whether the text begins with a reference by a name of ASCII.
bool isReferenceByName(std::string_view text) {
    const char* const end = text.data() + text.size();
    const char* const name = text.data() + 1;
    if (name == end || !ByteClass::is(*name, ByteClass::kNameStart)) return false;
    const char* const to = ByteClass::endOf<ByteClass::kNameChar>(name, end);
    return to != end && *to == ';';
}

// References to characters are resolved when the declaration is read, those by name when the entity is.
std::string entityLiteral(std::string_view replacement) {
    std::string result = "\"";
    for (std::size_t i = 0; i < replacement.size(); ++i) {
        const char c = replacement[i];
        if (c == '%' || c == '"' || c == '\r' || (c == '&' && !isReferenceByName(replacement.substr(i)))) {
            result += "&#" + std::to_string(static_cast<int>(c)) + ";";
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string attributeLiteral(std::string_view value) {
    std::string result = "\"";
    for (const char c : value) {
        if (std::string_view("<&\"\t\n\r").find(c) != std::string_view::npos) {
            result += "&#" + std::to_string(static_cast<int>(c)) + ";";
        } else {
            result += c;
        }
    }
    return result + '"';
}

std::string identifier(std::string_view text) {
    const char quote = text.find('"') == std::string_view::npos ? '"' : '\'';
    return quote + std::string(text) + quote;
}

std::string externalId(const std::string& publicId, const std::string& systemId) {
    if (publicId.empty()) return " SYSTEM " + identifier(systemId);
    return " PUBLIC " + identifier(publicId) + ' ' + identifier(systemId);
}

std::string definitionOf(const EntityDecl& declaration) {
    if (declaration.kind == EntityDecl::Kind::Internal) return ' ' + entityLiteral(declaration.text);
    const std::string id = externalId(declaration.publicId, declaration.systemId);
    return declaration.kind == EntityDecl::Kind::Unparsed ? id + " NDATA " + declaration.notation : id;
}

// One with a value alone: the value is text, not markup. Where it is what XML takes the name for anyway, XML says how
// that is declared.
std::string definitionOf(const std::string& name, const std::string& value) {
    if (const char c = Syntax::predefined(name); c != 0 && value == std::string(1, c)) {
        return ' ' + entityLiteral("&#" + std::to_string(static_cast<int>(c)) + ";");
    }
    std::string replacement;
    for (const char c : value) {
        const bool isMarkup = c == '&' || c == '<' || c == '>';
        if (c == '\r') {
            replacement += "&#13;";
        } else if (isMarkup) {
            replacement += referenceFor(c);
        } else {
            replacement += c;
        }
    }
    return ' ' + entityLiteral(replacement);
}

void addEntities(std::string& text, const Dtd& dtd) {
    for (const auto& [name, declaration] : dtd.getParameterEntityDecls())
        text += "<!ENTITY % " + name + definitionOf(declaration) + ">\n";
    const auto& declarations = dtd.getEntityDecls();
    for (const auto& [name, value] : DtdAccess::entities(dtd)) {
        if (declarations.find(name) == declarations.end())
            text += "<!ENTITY " + name + definitionOf(name, value) + ">\n";
    }
    for (const auto& [name, declaration] : declarations) text += "<!ENTITY " + name + definitionOf(declaration) + ">\n";
}

std::string ruleOf(const AttDef& definition) {
    switch (DtdAccess::rule(definition)) {
    case REQUIRED: return "#REQUIRED";
    case IMPLIED: return "#IMPLIED";
    case FIXED: return "#FIXED " + attributeLiteral(definition.getDefault());
    case DEFAULT: break;
    }
    return attributeLiteral(definition.getDefault());
}

void addElements(std::string& text, const Dtd& dtd) {
    for (const auto& [name, model] : DtdAccess::elements(dtd)) {
        text += "<!ELEMENT " + name + ' ' + modelText(*model) + ">\n";
    }
    for (const auto& [element, list] : DtdAccess::attributeLists(dtd)) {
        if (list.definitions.empty()) continue;
        text += "<!ATTLIST " + element;
        for (const auto& [attribute, definition] : list.definitions) {
            text += "\n\t" + attribute + ' ' + ownText([&of = *definition](OutStream& out) { of.typeToStream(out); }) +
                    ' ' + ruleOf(*definition);
        }
        text += ">\n";
    }
}

}  // namespace

std::string declarationsOf(const Dtd& dtd) {
    std::string text;
    for (const auto& [name, declaration] : dtd.getNotationDecls()) {
        text += "<!NOTATION " + name;
        if (declaration.systemId.empty() && !declaration.publicId.empty()) {
            text += " PUBLIC " + identifier(declaration.publicId);
        } else {
            text += externalId(declaration.publicId, declaration.systemId);
        }
        text += ">\n";
    }
    addEntities(text, dtd);
    addElements(text, dtd);
    return text;
}

}  // namespace Xml
