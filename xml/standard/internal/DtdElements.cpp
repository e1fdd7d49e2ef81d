// Declarations of elements and their attributes.
#include "xml/standard/internal/DtdParser.h"

#include "xml/standard/internal/Rules.h"
#include "xml/text/internal/StandardNames.h"
#include <utility>
#include <vector>

namespace Xml {

using Syntax::startsWith;
using Syntax::viewOf;

// --- Elements ---

bool DtdParser::readElement() {
    if (!readWhite(StandardRules::kElementdecl)) return false;
    std::string_view name;
    if (!readQName(name, "the name of an element")) return false;
    if (!readWhite(StandardRules::kElementdecl)) return false;
    model.clear();
    if (!readModel() || !readEnd(StandardRules::kElementdecl)) return false;
    declared.models.emplace(name, model);
    return true;
}

bool DtdParser::readModel() {
    if (in.at == in.end) return in.expected(in.at, StandardRules::kContentspec, "a content model");
    if (Syntax::mayBecome(in, "EMPTY") || Syntax::mayBecome(in, "ANY")) {
        return in.endsEarly(in.at, StandardRules::kContentspec, {});
    }
    const auto reads = [this](std::string_view keyword) {
        if (!startsWith(in, keyword)) return false;
        model += keyword;
        in.at += keyword.size();
        return true;
    };
    if (reads("EMPTY") || reads("ANY")) return true;
    const char* const opening = in.at;
    if (!reads("(")) return expected(StandardRules::kContentspec, "EMPTY, ANY or \"(\"");
    Syntax::skipWhite(in);
    if (in.at != in.end && Syntax::mayBecome(in, "#PCDATA")) return in.endsEarly(in.at, StandardRules::kMixed, {});
    return reads("#PCDATA") ? readMixed() : readChildren(opening);
}

bool DtdParser::readMixed() {
    bool hasNames = false;
    for (;;) {
        Syntax::skipWhite(in);
        if (in.at != in.end && *in.at == ')') break;
        if (in.at == in.end || *in.at != '|') return expected(StandardRules::kMixed, "\"|\" or \")\"");
        ++in.at;
        Syntax::skipWhite(in);
        std::string_view name;
        if (!readQName(name, "the name of an element")) return false;
        model.append("|").append(name);
        hasNames = true;
    }
    ++in.at;
    model += ')';
    if (in.at != in.end && *in.at == '*') {
        ++in.at;
        model += '*';
    } else if (hasNames) {
        return expected(StandardRules::kMixed, "\"*\" after a mixed model with names");
    }
    return true;
}

void DtdParser::readRepetition() {
    if (in.at != in.end && (*in.at == '?' || *in.at == '*' || *in.at == '+')) model += *in.at++;
}

// A name, or the beginning of a group.
bool DtdParser::readParticle(bool& isGroup) {
    Syntax::skipWhite(in);
    isGroup = in.at != in.end && *in.at == '(';
    if (isGroup) {
        model += *in.at++;
        return true;
    }
    std::string_view name;
    if (StandardNames::nameEnd(in.at, in.end) == in.at) {
        return expected(StandardRules::kCp, "the name of an element or \"(\"");
    }
    if (!readQName(name, "the name of an element")) return false;
    model += name;
    readRepetition();
    return true;
}

// Groups that are open, each with what stands between its particles: nothing yet, commas or bars. A choice has two
// particles at least, and that follows: a group of one has nothing between them.
bool DtdParser::readChildren(const char* opening) {
    std::vector<char> groups{0};
    for (;;) {
        bool isGroup = false;
        if (!readParticle(isGroup)) return false;
        if (isGroup) {
            groups.push_back(0);
            continue;
        }
        for (;;) {
            Syntax::skipWhite(in);
            if (in.at == in.end) {
                return in.endsEarly(opening, StandardRules::kChildren, "the group that begins here does not end");
            }
            if (*in.at != ')') break;
            model += *in.at++;
            readRepetition();
            groups.pop_back();
            if (groups.empty()) return true;
        }
        char& between = groups.back();
        if ((*in.at != ',' && *in.at != '|') || (between != 0 && between != *in.at)) {
            if (between == 0) return expected(StandardRules::kChildren, "\",\", \"|\" or \")\"");
            return expected(between == ',' ? StandardRules::kSeq : StandardRules::kChoice,
                            between == ',' ? "\",\" or \")\"" : "\"|\" or \")\"");
        }
        between = *in.at++;
        model += between;
    }
}

// --- Attributes ---

bool DtdParser::readAttributeList() {
    if (!readWhite(StandardRules::kAttlistDecl)) return false;
    std::string_view element;
    if (!readQName(element, "the name of an element")) return false;
    for (;;) {
        const bool hasWhite = Syntax::skipWhite(in);
        if (in.at != in.end && *in.at == '>') return ++in.at, true;
        if (!hasWhite) return expected(StandardRules::kAttlistDecl, "white space or \">\"");
        std::string_view name;
        if (StandardNames::nameEnd(in.at, in.end) == in.at) {
            return expected(StandardRules::kAttlistDecl, "the name of an attribute or \">\"");
        }
        if (!readQName(name, "the name of an attribute")) return false;
        AttributeRule rule;
        if (!readWhite(StandardRules::kAttDef) || !readAttributeType(rule) || !readWhite(StandardRules::kAttDef) ||
            !readDefaultRule(rule))
            return false;
        if (rule.hasDefault() && !readDefault(rule)) return false;
        if (declared.areProcessed()) define(element, name, std::move(rule));
    }
}

bool DtdParser::readAttributeType(AttributeRule& rule) {
    rule.isCData = false;
    if (in.at != in.end && *in.at == '(') return readChoices(false, rule.type);
    const char* const from = in.at;
    const char* const to = StandardNames::nmtokenEnd(from, in.end);
    if (to == in.end && in.isGrowing()) return in.endsEarly(from, StandardRules::kAttType, {});
    rule.type = viewOf(from, to);
    if (rule.type == "NOTATION") {
        in.at = to;
        if (!readWhite(StandardRules::kNotationType)) return false;
        if (in.at == in.end || *in.at != '(') return expected(StandardRules::kNotationType, "\"(\"");
        return readChoices(true, rule.type);
    }
    rule.isCData = rule.type == "CDATA";
    for (const char* const type : {"CDATA", "ID", "IDREF", "IDREFS", "ENTITY", "ENTITIES", "NMTOKEN", "NMTOKENS"}) {
        if (rule.type == type) return in.at = to, true;
    }
    return expected(StandardRules::kAttType, "the type of an attribute");
}

bool DtdParser::readChoices(bool areNames, std::string& type) {
    const char* const rule = areNames ? StandardRules::kNotationType : StandardRules::kEnumeration;
    do {
        type += *in.at++;
        Syntax::skipWhite(in);
        const char* const from = in.at;
        if (areNames) {
            std::string_view name;
            if (!readName(name, "the name of a notation")) return false;
        } else {
            const char* const to = StandardNames::nmtokenEnd(in.at, in.end);
            if (to == in.at) return expected(StandardRules::kNmtoken, "a name token");
            in.at = to;
        }
        type += viewOf(from, in.at);
        Syntax::skipWhite(in);
    } while (in.at != in.end && *in.at == '|');
    if (in.at == in.end || *in.at != ')') return expected(rule, "\"|\" or \")\"");
    type += *in.at++;
    return true;
}

bool DtdParser::readDefaultRule(AttributeRule& rule) {
    if (in.at == in.end || *in.at != '#') {
        if (in.at != in.end && (*in.at == '"' || *in.at == '\'')) return true;
        return expected(StandardRules::kDefaultDecl, "#REQUIRED, #IMPLIED, #FIXED or a value in quotes");
    }
    const char* const to = StandardNames::nmtokenEnd(in.at + 1, in.end);
    if (to == in.end && in.isGrowing()) return in.endsEarly(in.at, StandardRules::kDefaultDecl, {});
    const std::string_view word = viewOf(in.at, to);
    if (word == "#FIXED") {
        rule.defaultRule = FIXED;
    } else if (word == "#REQUIRED") {
        rule.defaultRule = REQUIRED;
    } else if (word == "#IMPLIED") {
        rule.defaultRule = IMPLIED;
    } else {
        return expected(StandardRules::kDefaultDecl, "#REQUIRED, #IMPLIED, #FIXED or a value");
    }
    in.at = to;
    return rule.defaultRule != FIXED || readWhite(StandardRules::kDefaultDecl);
}

bool DtdParser::readDefault(AttributeRule& rule) {
    if (in.at != in.end && *in.at == '%') return expected(StandardRules::kDefaultDecl, "a value");
    values.setUnknownAllowed(!declared.areProcessed());
    std::string_view plain;
    if (!values.readAttribute(plain, rule.value)) return false;
    if (plain.data() != nullptr) rule.value = plain;
    if (!rule.isCData && !isCollapsed(rule.value)) rule.value = collapsed(rule.value);
    return true;
}

// The first definition of an attribute counts.
void DtdParser::define(std::string_view element, std::string_view name, AttributeRule rule) {
    auto rules = declared.elements.find(element);
    if (rules == declared.elements.end()) rules = declared.elements.emplace(element, ElementRules()).first;
    if (rules->second.all.find(name) != rules->second.all.end()) return;
    const auto added = rules->second.all.emplace(name, std::move(rule)).first;
    AttributeRule& kept = added->second;
    if (kept.hasDefault()) rules->second.defaults.emplace_back(added->first, &kept);
}

}  // namespace Xml
