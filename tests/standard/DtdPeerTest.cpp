// The Dtd of a document that was read, beside the internal subset of libxml2.
#include "standard/Documents.h"
#include "standard/Models.h"
#include "support/Rounds.h"
#include "xml/dom/Document.h"
#include "xml/dtd/AttEnumeratedType.h"
#include "xml/dtd/AttTokenType.h"
#include "xml/dtd/Dtd.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/standard/Read.h"
#include "xml/standard/internal/Lexer.h"
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/valid.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {
namespace {

// What is declared, by a name of it: "element a", "attribute a x", "entity e", "parameter p", "notation n".
using Declared = std::map<std::string, std::string>;

std::string external(const std::string& publicId, const std::string& systemId) { return publicId + " " + systemId; }

// --- libxml2 ---

struct FreeDocument {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

std::string textOf(const xmlChar* text) { return text != nullptr ? reinterpret_cast<const char*>(text) : ""; }
std::string textOf(const xmlChar* prefix, const xmlChar* name) {
    return prefix == nullptr ? textOf(name) : textOf(prefix) + ":" + textOf(name);
}

std::string typeOf(const xmlAttribute& attribute) {
    static const char* const kTypes[] = {"",         "CDATA",   "ID",       "IDREF", "IDREFS",  "ENTITY",
                                         "ENTITIES", "NMTOKEN", "NMTOKENS", "",      "NOTATION"};
    std::string type = kTypes[attribute.atype];
    for (const xmlEnumeration* value = attribute.tree; value != nullptr; value = value->next) {
        type += "|" + textOf(value->name);
    }
    return type;
}

std::string ruleOf(const xmlAttribute& attribute) {
    switch (attribute.def) {
    case XML_ATTRIBUTE_REQUIRED: return " required";
    case XML_ATTRIBUTE_IMPLIED: return " implied";
    default: return attribute.defaultValue != nullptr ? " default " + textOf(attribute.defaultValue) : " invalid";
    }
}

void add(Declared& all, const xmlEntity& entity) {
    const std::string name = textOf(entity.name);
    const std::string ids = external(textOf(entity.ExternalID), textOf(entity.SystemID));
    switch (entity.etype) {
    case XML_INTERNAL_GENERAL_ENTITY: all["entity " + name] = textOf(entity.content); break;
    case XML_EXTERNAL_GENERAL_PARSED_ENTITY: all["entity " + name] = "external " + ids; break;
    case XML_EXTERNAL_GENERAL_UNPARSED_ENTITY:
        all["entity " + name] = "unparsed " + ids + " " + textOf(entity.content);
        break;
    case XML_INTERNAL_PARAMETER_ENTITY: all["parameter " + name] = textOf(entity.content); break;
    case XML_EXTERNAL_PARAMETER_ENTITY: all["parameter " + name] = "external " + ids; break;
    default: break;
    }
}

Declared declaredIn(xmlDtd& subset) {
    Declared all;
    for (const xmlNode* node = subset.children; node != nullptr; node = node->next) {
        if (node->type == XML_ELEMENT_DECL) {
            const auto& element = *reinterpret_cast<const xmlElement*>(node);
            if (element.etype == XML_ELEMENT_TYPE_UNDEFINED) continue;
            all["element " + textOf(element.prefix, element.name)] = normalModel(&element);
        } else if (node->type == XML_ATTRIBUTE_DECL) {
            const auto& attribute = *reinterpret_cast<const xmlAttribute*>(node);
            all["attribute " + textOf(attribute.elem) + " " + textOf(attribute.prefix, attribute.name)] =
                typeOf(attribute) + ruleOf(attribute);
        } else if (node->type == XML_ENTITY_DECL) {
            add(all, *reinterpret_cast<const xmlEntity*>(node));
        }
    }
    const auto addNotation = [](void* notation, void* to, const xmlChar*) {
        const auto& declared = *static_cast<const xmlNotation*>(notation);
        (*static_cast<Declared*>(to))["notation " + textOf(declared.name)] =
            external(textOf(declared.PublicID), textOf(declared.SystemID));
    };
    if (subset.notations != nullptr) {
        xmlHashScan(static_cast<xmlHashTable*>(subset.notations), addNotation, &all);
    }
    return all;
}

// --- A Dtd ---

std::string typeOf(const AttDef& definition) {
    static const char* const kTypes[] = {"ID", "IDREF", "IDREFS", "ENTITY", "ENTITIES", "NMTOKEN", "NMTOKENS"};
    if (const auto* const type = dynamic_cast<const AttTokenType*>(&definition)) {
        return kTypes[static_cast<std::size_t>(type->getKind())];
    }
    const auto* const type = dynamic_cast<const AttEnumeratedType*>(&definition);
    if (type == nullptr) return "CDATA";
    std::string text = type->getKind() == AttEnumeratedType::Kind::Notations ? "NOTATION" : "";
    for (const std::string& value : type->getValues()) text += "|" + value;
    return text;
}

// libxml2 drops values that do not fit the type. Of an enumeration those are no tokens, of notations no name; before
// tokens it passes over white space that came by references.
bool isKept(const AttDef& definition) {
    using Kind = AttTokenType::Kind;
    const DataHolder& value = definition.getDefault();
    const auto* const choice = dynamic_cast<const AttEnumeratedType*>(&definition);
    const auto* const token = dynamic_cast<const AttTokenType*>(&definition);
    if (choice != nullptr && choice->getKind() == AttEnumeratedType::Kind::Notations) {
        return AttTokenType(Kind::IdRef, IMPLIED).validate(value);
    }
    if (choice == nullptr && (token == nullptr || token->getKind() != Kind::NmTokens))
        return definition.validate(value);
    const std::size_t from = value.find_first_not_of(" \t\n\r");
    return from != std::string::npos && AttTokenType(Kind::NmTokens, IMPLIED).validate(value.substr(from));
}

std::string ruleOf(const AttDef& definition) {
    if (!definition.hasDefault()) return definition.isRequired() ? " required" : " implied";
    return isKept(definition) ? " default " + definition.getDefault() : " invalid";
}

std::string textOf(const EntityDecl& entity) {
    const std::string ids = external(entity.publicId, entity.systemId);
    switch (entity.kind) {
    case EntityDecl::Kind::Internal: return entity.text;
    case EntityDecl::Kind::External: return "external " + ids;
    default: return "unparsed " + ids + " " + entity.notation;
    }
}

Declared declaredIn(const Dtd& dtd, const Declarations& names) {
    Declared all;
    for (const auto& [element, text] : names.models) {
        all["element " + element] = normalModel(*DtdAccess::findModel(dtd, element));
    }
    for (const auto& [element, rules] : names.elements) {
        for (const auto& [attribute, definition] : DtdAccess::findList(dtd, element)->definitions) {
            all["attribute " + element + " " + attribute] = typeOf(*definition) + ruleOf(*definition);
        }
    }
    for (const auto& [name, entity] : dtd.getEntityDecls()) all["entity " + name] = textOf(entity);
    for (const auto& [name, entity] : dtd.getParameterEntityDecls()) all["parameter " + name] = textOf(entity);
    for (const auto& [name, notation] : dtd.getNotationDecls()) {
        all["notation " + name] = external(notation.publicId, notation.systemId);
    }
    return all;
}

// libxml2 takes a CR for the end of a line in the text of a parameter entity too, where it came by a reference. Line
// ends are those of external entities (2.11).
std::string withoutReturns(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r') {
            result += text[i];
        } else if (text[i + 1] != '\n') {
            result += '\n';
        }
    }
    return result;
}

std::string shown(const Declared& all) {
    std::string text;
    for (const auto& [what, value] : all) text += what + " = " + withoutReturns(value) + "\n";
    return text;
}

// libxml2 prints warnings for every value that does not fit its type.
class Quiet {
public:
    Quiet() {
        xmlSetStructuredErrorFunc(nullptr, [](void*, xmlError*) {});
    }
    ~Quiet() { xmlSetStructuredErrorFunc(nullptr, nullptr); }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;
};

// libxml2 knows the five entities by itself.
void forgetPredefined(Declared& all) {
    for (const char* const name : {"lt", "amp"}) all.erase("entity " + std::string(name));
}

TEST(DtdPeerTest, HoldsWhatLibxml2FindsInTheInternalSubset) {
    const Quiet quiet;
    Dice dice(13);
    int compared = 0;
    std::size_t declarations = 0;
    for (int i = 0; i < rounds(40'000) && !HasFailure(); ++i) {
        const std::string text = randomDocument(dice);
        Lexer lexer({});
        lexer.setWindow(text, true);
        Lexer::Event event;
        do event = lexer.next();
        while (event != Lexer::Event::Doctype && event != Lexer::Event::Start && event != Lexer::Event::Failed);
        if (event != Lexer::Event::Doctype || !lexer.declarations().areProcessed()) continue;

        const ReadResult ours = readText(text);
        const std::unique_ptr<xmlDoc, FreeDocument> theirs(
            xmlReadMemory(text.data(), static_cast<int>(text.size()), "x", "UTF-8",
                          XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
        if (!ours || theirs == nullptr) continue;
        SCOPED_TRACE(text);
        ASSERT_NE(ours.get()->getDtd(), nullptr);
        Declared expected = declaredIn(*theirs->intSubset);
        Declared found = declaredIn(*ours.get()->getDtd(), lexer.declarations());
        forgetPredefined(expected);
        forgetPredefined(found);
        EXPECT_EQ(shown(found), shown(expected));
        ++compared;
        declarations += found.size();
    }
    EXPECT_GT(compared, atLeast(10'000));
    EXPECT_GT(declarations, static_cast<std::size_t>(compared));
}

}  // namespace
}  // namespace Xml::test
