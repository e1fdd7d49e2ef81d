#include "xml/standard/internal/DtdParser.h"

#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/Runs.h"
#include "xml/text/internal/StandardNames.h"
#include <algorithm>
#include <utility>

namespace Xml {

using Syntax::startsWith;

// --- What stands between declarations ---

bool DtdParser::readSubset() {
    for (bool isEnd = false; !isEnd;) {
        if (!readNext(isEnd)) return false;
    }
    return true;
}

bool DtdParser::readNext(bool& isEnd) {
    Syntax::skipWhite(in);
    if (in.at == in.end) return endEntity();
    switch (*in.at) {
    case '%': return readParameterReference();
    case '<': return readMarkup();
    case ']':
        if (!in.isInEntity()) {
            ++in.at;
            isEnd = true;
            return true;
        }
        [[fallthrough]];
    default: return failBetween();
    }
}

bool DtdParser::endEntity() {
    if (!in.isInEntity()) return in.endsEarly(in.at, StandardRules::kIntSubset, "the document type does not end");
    in.leave();
    return true;
}

bool DtdParser::readMarkup() {
    std::string_view text;
    std::string_view target;
    bool hasReturn = false;
    const auto reads = [this](std::string_view keyword) {
        if (!startsWith(in, keyword)) return false;
        in.at += keyword.size();
        return true;
    };
    if (startsWith(in, "<!--")) return Syntax::readComment(in, text, hasReturn);
    if (startsWith(in, "<?")) return Syntax::readInstruction(in, target, text, hasReturn, namespaces);
    if (reads("<!ELEMENT")) return readElement();
    if (reads("<!ATTLIST")) return readAttributeList();
    if (reads("<!ENTITY")) return readEntityDeclaration();
    if (reads("<!NOTATION")) return readNotation();
    if (startsWith(in, "<![")) {
        return in.failUnlessKeyword(in.at, StandardRules::kConditionalSections,
                                    "a conditional section, which stands in external entities only");
    }
    if (startsWith(in, "<!"))
        return in.failUnlessKeyword(
            in.at, StandardRules::kMarkupdecl,
            "\"<!\" begins neither a comment nor <!ELEMENT, <!ATTLIST, <!ENTITY or <!NOTATION, in capitals");
    return failBetween();
}

bool DtdParser::failBetween() {
    const char* const rule = in.isInEntity() ? StandardRules::kPEBetweenDeclarations : StandardRules::kIntSubset;
    return in.expected(in.at, rule, "a declaration");
}

// A reference to what is not declared, or not read, ends the processing of declarations, not their reading.
bool DtdParser::readParameterReference() {
    const char* const from = in.at;
    std::string_view name;
    if (!Syntax::readReferenceName(in, name, namespaces)) return false;
    declared.hasParameterReferences = true;
    const auto found = declared.parameter.find(name);
    if (found == declared.parameter.end() || found->second.kind != DeclaredEntity::Kind::Internal) {
        declared.hasUnread = true;
        return true;
    }
    return in.enter(found->first, found->second, from, 0);
}

// --- What all declarations have ---

bool DtdParser::expected(const char* rule, const char* what) {
    if (in.at != in.end && *in.at == '%' && StandardNames::nameEnd(in.at + 1, in.end) != in.at + 1) {
        return in.fail(in.at, StandardRules::kPEsInInternalSubset,
                       std::string(what) + " expected, found a reference to a parameter entity within a declaration");
    }
    return in.expected(in.at, rule, what);
}

bool DtdParser::readName(std::string_view& name, const char* what) {
    if (in.at != in.end && *in.at == '%') return expected(StandardRules::kName, what);
    return Syntax::readPlainName(in, name, what, namespaces);
}

bool DtdParser::readQName(std::string_view& name, const char* what) {
    if (in.at != in.end && *in.at == '%') return expected(StandardRules::kName, what);
    return Syntax::readQName(in, name, what, namespaces);
}

bool DtdParser::readWhite(const char* rule) { return Syntax::skipWhite(in) || expected(rule, "white space"); }

bool DtdParser::readEnd(const char* rule) {
    Syntax::skipWhite(in);
    if (in.at == in.end || *in.at != '>') return expected(rule, "\">\"");
    ++in.at;
    return true;
}

// --- Entities and notations ---

bool DtdParser::readEntityDeclaration() {
    const char* const from = in.at;
    if (!readWhite(StandardRules::kEntityDecl)) return false;
    DeclaredEntity entity;
    entity.isParameter = in.at != in.end && *in.at == '%';
    if (entity.isParameter) {
        ++in.at;
        if (!readWhite(StandardRules::kPEDecl)) return false;
    }
    const char* const rule = entity.isParameter ? StandardRules::kPEDecl : StandardRules::kGEDecl;
    std::string_view name;
    if (!entity.isParameter && StandardNames::nameEnd(in.at, in.end) == in.at) {
        return expected(StandardRules::kEntityDecl, "a name or \"%\"");
    }
    if (!readName(name, "the name of an entity")) return false;
    if (!readWhite(rule)) return false;
    Syntax::ExternalId id;
    if (!Syntax::readExternalId(in, id, false)) return false;
    if (!id.isPresent) {
        if (in.at == in.end || (*in.at != '"' && *in.at != '\'')) {
            return expected(entity.isParameter ? StandardRules::kPEDef : StandardRules::kEntityDef,
                            "a value in quotes, SYSTEM or PUBLIC");
        }
        if (!values.readEntity(entity.text)) return false;
    } else {
        entity.kind = DeclaredEntity::Kind::External;
        entity.publicId = std::move(id.publicId);
        entity.systemId = std::move(id.systemId);
        if (!entity.isParameter && !readUnparsed(entity)) return false;
    }
    if (!readEnd(rule)) return false;
    if (!declared.areProcessed()) return true;
    entity.isInParameterEntity = in.isInEntity();
    entity.declaredAt = in.placeOf(in.offsetOf(from - std::string_view("<!ENTITY").size()));
    (entity.isParameter ? declared.parameter : declared.general).emplace(name, std::move(entity));
    return true;
}

bool DtdParser::readUnparsed(DeclaredEntity& entity) {
    const char* const before = in.at;
    const bool hasWhite = Syntax::skipWhite(in);
    if (Syntax::mayBecome(in, "NDATA")) return in.endsEarly(in.at, StandardRules::kNDataDecl, {});
    if (!startsWith(in, "NDATA")) {
        in.at = before;
        return true;
    }
    if (!hasWhite) return in.expected(before, StandardRules::kGEDecl, "white space");
    in.at += 5;
    std::string_view notation;
    if (!readWhite(StandardRules::kNDataDecl) || !readName(notation, "the name of a notation")) return false;
    entity.kind = DeclaredEntity::Kind::Unparsed;
    entity.notation = notation;
    return true;
}

bool DtdParser::readNotation() {
    if (!readWhite(StandardRules::kNotationDecl)) return false;
    std::string_view name;
    if (!readName(name, "the name of a notation")) return false;
    if (!readWhite(StandardRules::kNotationDecl)) return false;
    Syntax::ExternalId id;
    if (!Syntax::readExternalId(in, id, true)) return false;
    if (!id.isPresent) return expected(StandardRules::kNotationDecl, "SYSTEM or PUBLIC");
    if (!readEnd(StandardRules::kNotationDecl)) return false;
    declared.notations.emplace(name, NotationDecl{std::move(id.publicId), std::move(id.systemId)});
    return true;
}

}  // namespace Xml
