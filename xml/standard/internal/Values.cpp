#include "xml/standard/internal/Values.h"

#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/Runs.h"
#include "xml/standard/internal/Syntax.h"

namespace Xml {

using Syntax::viewOf;

namespace {

// The bytes at which an attribute's value is not just copied. In an entity quotes are data.
template <char... Quote>
const char* valueEnd(const char* from, const char* to) {
    return Runs::of<'<', '&', '\t', '\n', '\r', Quote...>(from, to).end;
}

const char* valueEnd(char quote, const char* from, const char* to) {
    return quote == '"' ? valueEnd<'"'>(from, to) : valueEnd<'\''>(from, to);
}

}  // namespace

bool Values::failAtLess(const char* where, bool isWritten) {
    return in.fail(where, isWritten ? StandardRules::kAttValue : StandardRules::kNoLessThanInAttributeValues,
                   "\"<\" in the value of an attribute");
}

bool Values::readAttribute(std::string_view& plain, std::string& buffer) {
    if (in.at == in.end || (*in.at != '"' && *in.at != '\'')) {
        return in.expected(in.at, StandardRules::kAttValue, "a value in quotes");
    }
    const char* const opening = in.at;
    const char* const from = opening + 1;
    const char* const to = valueEnd(*opening, from, in.end);
    if (to != in.end && *to == *opening) {
        plain = viewOf(from, to);
        in.at = to + 1;
        return true;
    }
    buffer.append(from, to);
    in.at = to;
    return readRest(*opening, opening, buffer);
}

// White space is a space, wherever it stands; a line end of the document is one character. A reference to an entity is
// the text of that, read in the same way.
bool Values::readRest(char quote, const char* opening, std::string& buffer) {
    const std::size_t base = in.height();
    for (;;) {
        const bool isOutside = in.height() == base;
        const char* const to = isOutside ? valueEnd(quote, in.at, in.end) : valueEnd<>(in.at, in.end);
        buffer.append(in.at, to);
        in.at = to;
        if (to == in.end) {
            if (isOutside)
                return in.endsEarly(opening, StandardRules::kAttValue, "the value that begins here does not end");
            in.leave();
            continue;
        }
        switch (*to) {
        case '<': return failAtLess(to, isOutside);
        case '&':
            if (!readReference(buffer)) return false;
            break;
        case '\r':
            if (!in.isInEntity() && in.end - to > 1 && to[1] == '\n') ++in.at;
            [[fallthrough]];
        case '\t':
        case '\n':
            buffer += ' ';
            ++in.at;
            break;
        default:
            if (!isOutside || *to != quote) return Syntax::failAtCharacter(in, to);
            ++in.at;
            return true;
        }
    }
}

bool Values::readReference(std::string& buffer) {
    const char* const from = in.at;
    if (in.end - from >= 2 && from[1] == '#') return Syntax::readCharacterReference(in, buffer);
    std::string_view name;
    if (!Syntax::readReferenceName(in, name, namespaces)) return false;
    if (const char c = Syntax::predefined(name)) {
        buffer += c;
        return true;
    }
    if (mayBeUnknown && declared.general.find(name) == declared.general.end()) return true;
    DeclaredEntity* const entity = find(name, from);
    if (entity == nullptr) return false;
    if (entity->kind == DeclaredEntity::Kind::External) {
        return in.fail(from, StandardRules::kNoExternalEntityReferences,
                       "&" + std::string(name) + "; is external, in the value of an attribute");
    }
    if (entity->text.find("]]>") != std::string::npos && entity->text.find('<') == std::string::npos) {
        return in.fail(from, StandardRules::kCharData, "\"]]>\" in the text of &" + std::string(name) + ";");
    }
    return in.enter(name, *entity, from, 0);
}

const char* Values::whereUndeclared() const {
    if (declared.hasUnread) return " is not declared before a parameter entity that is not read, and may be in that";
    if (declared.hasExternalSubset) return " is not declared in what is read, and may be in what is not read";
    return " is not declared, and what it stands for is not known";
}

DeclaredEntity* Values::find(std::string_view& name, const char* reference) {
    const auto found = declared.general.find(name);
    const std::string shown = "&" + std::string(name) + ";";
    if (found == declared.general.end()) {
        if (declared.mustDeclare()) {
            in.fail(reference, StandardRules::kEntityDeclared, shown + " is not declared");
        } else {
            in.fail(reference, StandardRules::kEntityDeclared, shown + whereUndeclared(), Problem::Kind::Refused);
        }
        return nullptr;
    }
    name = found->first;
    DeclaredEntity& entity = found->second;
    if (entity.kind == DeclaredEntity::Kind::Unparsed) {
        in.fail(reference, StandardRules::kParsedEntity, shown + " is unparsed");
        return nullptr;
    }
    if (entity.isInParameterEntity && declared.mustDeclare() && !in.isInParameterEntity()) {
        in.fail(reference, StandardRules::kEntityDeclared,
                "the declaration of " + shown + " that counts stands within a parameter entity");
        return nullptr;
    }
    return &entity;
}

bool Values::readEntity(std::string& text) {
    if (in.at == in.end || (*in.at != '"' && *in.at != '\'')) {
        return in.expected(in.at, StandardRules::kEntityValue, "a value in quotes");
    }
    const char* const opening = in.at++;
    const auto endOf = [&](const char* from) {
        return *opening == '"' ? Runs::of<'"', '%', '&', '\r'>(from, in.end).end
                               : Runs::of<'\'', '%', '&', '\r'>(from, in.end).end;
    };
    for (;;) {
        const char* const to = endOf(in.at);
        text.append(in.at, to);
        in.at = to;
        if (to == in.end) {
            return in.endsEarly(opening, StandardRules::kEntityValue, "the value that begins here does not end");
        }
        if (*to == *opening) {
            ++in.at;
            return true;
        }
        if (*to == '\r') {
            ++in.at;
            if (in.isInEntity()) {
                text += '\r';
            } else {
                text += '\n';
                if (in.at != in.end && *in.at == '\n') ++in.at;
            }
        } else if (*to == '&') {
            std::string_view name;
            if (in.end - to >= 2 && to[1] == '#') {
                if (!Syntax::readCharacterReference(in, text)) return false;
            } else if (!Syntax::readReferenceName(in, name, namespaces)) {
                return false;
            } else {
                text.append(to, in.at);
            }
        } else if (*to == '%') {
            std::string_view name;
            if (!Syntax::readReferenceName(in, name, namespaces)) return false;
            return in.fail(to, StandardRules::kPEsInInternalSubset, "%" + std::string(name) + "; within a declaration");
        } else {
            return Syntax::failAtCharacter(in, to);
        }
    }
}

bool isCollapsed(std::string_view value) {
    return value.empty() || (value.front() != ' ' && value.back() != ' ' && value.find("  ") == std::string_view::npos);
}

std::string collapsed(std::string_view value) {
    std::string result;
    for (const char c : value) {
        if (c != ' ' || (!result.empty() && result.back() != ' ')) result += c;
    }
    if (!result.empty() && result.back() == ' ') result.pop_back();
    return result;
}

}  // namespace Xml
