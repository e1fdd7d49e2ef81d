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
    return readModel() && readEnd(StandardRules::kElementdecl);
}

bool DtdParser::readModel() {
    if (in.at == in.end) return in.expected(in.at, StandardRules::kContentspec, "a content model");
    if (Syntax::mayBecome(in, "EMPTY") || Syntax::mayBecome(in, "ANY")) {
        return in.endsEarly(in.at, StandardRules::kContentspec, {});
    }
    if (startsWith(in, "EMPTY")) return in.at += 5, true;
    if (startsWith(in, "ANY")) return in.at += 3, true;
    if (*in.at != '(') return expected(StandardRules::kContentspec, "EMPTY, ANY or \"(\"");
    const char* const opening = in.at++;
    Syntax::skipWhite(in);
    if (in.at != in.end && Syntax::mayBecome(in, "#PCDATA")) return in.endsEarly(in.at, StandardRules::kMixed, {});
    if (startsWith(in, "#PCDATA")) return in.at += 7, readMixed();
    return readChildren(opening);
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
        hasNames = true;
    }
    ++in.at;
    if (in.at != in.end && *in.at == '*') {
        ++in.at;
    } else if (hasNames) {
        return expected(StandardRules::kMixed, "\"*\" after a mixed model with names");
    }
    return true;
}

void DtdParser::readRepetition() {
    if (in.at != in.end && (*in.at == '?' || *in.at == '*' || *in.at == '+')) ++in.at;
}

// A name, or the beginning of a group.
bool DtdParser::readParticle(bool& isGroup) {
    Syntax::skipWhite(in);
    isGroup = in.at != in.end && *in.at == '(';
    if (isGroup) {
        ++in.at;
        return true;
    }
    std::string_view name;
    if (StandardNames::nameEnd(in.at, in.end) == in.at) {
        return expected(StandardRules::kCp, "the name of an element or \"(\"");
    }
    if (!readQName(name, "the name of an element")) return false;
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
            ++in.at;
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
        if (!readWhite(StandardRules::kAttDef) || !readAttributeType(rule.isCData) ||
            !readWhite(StandardRules::kAttDef))
            return false;
        if (!readDefault(element, name, std::move(rule))) return false;
    }
}

bool DtdParser::readAttributeType(bool& isCData) {
    isCData = false;
    if (in.at != in.end && *in.at == '(') return readChoices(false);
    const char* const from = in.at;
    const char* const to = StandardNames::nmtokenEnd(from, in.end);
    if (to == in.end && in.isGrowing()) return in.endsEarly(from, StandardRules::kAttType, {});
    const std::string_view word = viewOf(from, to);
    if (word == "NOTATION") {
        in.at = to;
        if (!readWhite(StandardRules::kNotationType)) return false;
        if (in.at == in.end || *in.at != '(') return expected(StandardRules::kNotationType, "\"(\"");
        return readChoices(true);
    }
    isCData = word == "CDATA";
    for (const char* const type : {"CDATA", "ID", "IDREF", "IDREFS", "ENTITY", "ENTITIES", "NMTOKEN", "NMTOKENS"}) {
        if (word == type) return in.at = to, true;
    }
    return expected(StandardRules::kAttType, "the type of an attribute");
}

bool DtdParser::readChoices(bool areNames) {
    const char* const rule = areNames ? StandardRules::kNotationType : StandardRules::kEnumeration;
    do {
        ++in.at;
        Syntax::skipWhite(in);
        if (areNames) {
            std::string_view name;
            if (!readName(name, "the name of a notation")) return false;
        } else {
            const char* const to = StandardNames::nmtokenEnd(in.at, in.end);
            if (to == in.at) return expected(StandardRules::kNmtoken, "a name token");
            in.at = to;
        }
        Syntax::skipWhite(in);
    } while (in.at != in.end && *in.at == '|');
    if (in.at == in.end || *in.at != ')') return expected(rule, "\"|\" or \")\"");
    ++in.at;
    return true;
}

// The first definition of an attribute counts.
bool DtdParser::readDefault(std::string_view element, std::string_view name, AttributeRule rule) {
    bool isFixed = false;
    if (in.at != in.end && *in.at == '#') {
        const char* const to = StandardNames::nmtokenEnd(in.at + 1, in.end);
        if (to == in.end && in.isGrowing()) return in.endsEarly(in.at, StandardRules::kDefaultDecl, {});
        const std::string_view word = viewOf(in.at, to);
        isFixed = word == "#FIXED";
        if (!isFixed && word != "#REQUIRED" && word != "#IMPLIED") {
            return expected(StandardRules::kDefaultDecl, "#REQUIRED, #IMPLIED, #FIXED or a value");
        }
        in.at = to;
        if (isFixed && !readWhite(StandardRules::kDefaultDecl)) return false;
        rule.hasDefault = isFixed;
    } else {
        if (in.at == in.end || (*in.at != '"' && *in.at != '\'')) {
            return expected(StandardRules::kDefaultDecl, "#REQUIRED, #IMPLIED, #FIXED or a value in quotes");
        }
        rule.hasDefault = true;
    }
    if (rule.hasDefault) {
        if (in.at != in.end && *in.at == '%') return expected(StandardRules::kDefaultDecl, "a value");
        values.setUnknownAllowed(!declared.areProcessed());
        std::string_view plain;
        bool isPlain = false;
        if (!values.readAttribute(plain, isPlain, rule.value)) return false;
        if (isPlain) rule.value = plain;
        if (!rule.isCData && !isCollapsed(rule.value)) rule.value = collapsed(rule.value);
    }
    if (!declared.areProcessed()) return true;
    auto rules = declared.elements.find(element);
    if (rules == declared.elements.end()) rules = declared.elements.emplace(element, ElementRules()).first;
    if (rules->second.all.find(name) != rules->second.all.end()) return true;
    const auto added = rules->second.all.emplace(name, std::move(rule)).first;
    if (added->second.hasDefault) rules->second.defaults.emplace_back(added->first, &added->second);
    return true;
}

}  // namespace Xml
