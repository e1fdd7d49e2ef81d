#include "xml/standard/internal/Syntax.h"

#include "xml/standard/internal/Rules.h"
#include "xml/text/internal/StandardNames.h"
#include <algorithm>
#include <cstdint>

namespace Xml::Syntax {

namespace {

bool isPubidChar(char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
    return std::string_view(" \r\n-'()+,./:=?;!*#@$_%").find(c) != std::string_view::npos;
}

// The opening quote.
bool readQuote(EntityStack& in, char& quote, const char* rule) {
    if (in.at == in.end || (*in.at != '"' && *in.at != '\'')) return in.expected(in.at, rule, "a literal in quotes");
    quote = *in.at++;
    return true;
}

// Up to the closing quote. In an entity a CR is no line end: it came there by a reference.
void takeLiteral(EntityStack& in, const char* to, std::string& text) {
    const std::string_view literal = viewOf(in.at, to);
    in.at = to + 1;
    text.clear();
    if (in.isInEntity()) {
        text = literal;
    } else {
        appendLines(text, literal);
    }
}

int digitOf(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return 16;
}

}  // namespace

bool readWhite(EntityStack& in, const char* rule) { return skipWhite(in) || in.expected(in.at, rule, "white space"); }

bool readByte(EntityStack& in, char byte, const char* rule, const char* what) {
    if (in.at == in.end || *in.at != byte) return in.expected(in.at, rule, what);
    ++in.at;
    return true;
}

// --- Names ---

bool readName(EntityStack& in, std::string_view& name, const char* what) {
    const char* const to = StandardNames::nameEnd(in.at, in.end);
    if (to == in.at) return in.expected(in.at, StandardRules::kName, what);
    if (to == in.end && in.isGrowing()) return in.endsEarly(in.at, StandardRules::kName, {});
    name = viewOf(in.at, to);
    in.at = to;
    return true;
}

bool checkPlainName(EntityStack& in, std::string_view name, const char* what) {
    if (name.find(':') == std::string_view::npos) return true;
    return in.fail(name.data(), StandardRules::kNCName, std::string(what) + " has no colon, found " + std::string(name),
                   Problem::Kind::Namespace);
}

bool readPlainName(EntityStack& in, std::string_view& name, const char* what, bool hasNamespaces) {
    return readName(in, name, what) && (!hasNamespaces || checkPlainName(in, name, what));
}

bool checkQName(EntityStack& in, std::string_view name, const char* colon) {
    if (colon == nullptr) return true;
    const char* const to = name.data() + name.size();
    if (colon != name.data() && StandardNames::isNCName(viewOf(colon + 1, to))) return true;
    return in.fail(name.data(), StandardRules::kQName, std::string(name) + " is no name with one prefix at most",
                   Problem::Kind::Namespace);
}

bool readQName(EntityStack& in, std::string_view& name, const char* what, bool hasNamespaces) {
    if (!readName(in, name, what)) return false;
    const std::size_t colon = hasNamespaces ? name.find(':') : std::string_view::npos;
    return colon == std::string_view::npos || checkQName(in, name, name.data() + colon);
}

// --- Literals ---

bool failAtCharacter(EntityStack& in, const char* where) {
    return in.fail(where, StandardRules::kChar, "a character that is not allowed: " + in.describe(where));
}

bool readSystemLiteral(EntityStack& in, std::string& text) {
    const char* const from = in.at;
    char quote = 0;
    if (!readQuote(in, quote, StandardRules::kSystemLiteral)) return false;
    const char* const to = (quote == '"' ? Runs::of<'"'>(in.at, in.end) : Runs::of<'\''>(in.at, in.end)).end;
    if (to == in.end)
        return in.endsEarly(from, StandardRules::kSystemLiteral, "the literal that begins here does not end");
    if (*to != quote) return failAtCharacter(in, to);
    takeLiteral(in, to, text);
    return true;
}

bool readPubidLiteral(EntityStack& in, std::string& text) {
    const char* const from = in.at;
    char quote = 0;
    if (!readQuote(in, quote, StandardRules::kPubidLiteral)) return false;
    const char* const to = std::find_if(in.at, in.end, [quote](char c) { return c == quote || !isPubidChar(c); });
    if (to == in.end)
        return in.endsEarly(from, StandardRules::kPubidLiteral, "the literal that begins here does not end");
    if (*to != quote) {
        return in.expected(to, StandardRules::kPubidChar, "a character of a public identifier");
    }
    takeLiteral(in, to, text);
    return true;
}

bool readExternalId(EntityStack& in, ExternalId& id, bool isNotation) {
    const bool isPublic = startsWith(in, "PUBLIC");
    if (!isPublic && !startsWith(in, "SYSTEM"))
        return (!mayBecome(in, "PUBLIC") && !mayBecome(in, "SYSTEM")) || in.endsEarly(in.at, "", {});
    id.isPresent = true;
    in.at += 6;
    if (!readWhite(in, isNotation && isPublic ? StandardRules::kNotationDecl : StandardRules::kExternalID))
        return false;
    if (!isPublic) return readSystemLiteral(in, id.systemId);
    if (!readPubidLiteral(in, id.publicId)) return false;
    if (isNotation) {
        const char* const next = whiteEnd(in.at, in.end);
        if (next == in.end) return in.endsEarly(in.at, StandardRules::kNotationDecl, "the declaration does not end");
        if (*next != '"' && *next != '\'') return true;
    }
    return readWhite(in, StandardRules::kExternalID) && readSystemLiteral(in, id.systemId);
}

// --- References ---

bool readCharacterReference(EntityStack& in, std::string& to) {
    const char* const from = in.at;
    const char* at = from + 2;
    const bool isHexadecimal = at != in.end && *at == 'x';
    if (isHexadecimal) ++at;
    const int base = isHexadecimal ? 16 : 10;
    constexpr std::uint32_t kTooLarge = 0x110000;
    std::uint32_t value = 0;
    const char* const digits = at;
    for (; at != in.end && digitOf(*at) < base; ++at) {
        value =
            std::min(value * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(digitOf(*at)), kTooLarge);
    }
    if (at == in.end) return in.endsEarly(from, StandardRules::kCharRef, "the character reference does not end");
    if (at == digits)
        return in.expected(at, StandardRules::kCharRef, isHexadecimal ? "a hexadecimal digit" : "a digit");
    if (*at != ';') return in.expected(at, StandardRules::kCharRef, "\";\" after a character reference");
    if (!StandardNames::isChar(value)) {
        return in.fail(from, StandardRules::kLegalCharacter, std::string(from, at + 1) + " is no character of XML");
    }
    Utf8::append(to, value);
    in.at = at + 1;
    return true;
}

bool readReferenceName(EntityStack& in, std::string_view& name, bool hasNamespaces) {
    const char* const from = in.at;
    const bool isParameter = *from == '%';
    const char* const rule = isParameter ? StandardRules::kPEReference : StandardRules::kEntityRef;
    const char* const to = StandardNames::nameEnd(from + 1, in.end);
    if (to == in.end) {
        constexpr const char* kText = "the reference does not end";
        if (isParameter) return in.isCutOff(from, rule, kText);
        return in.endsEarly(from, to != from + 1 ? rule : StandardRules::kReference, kText);
    }
    if (to == from + 1) {
        return in.expected(to, isParameter ? StandardRules::kName : StandardRules::kReference, "the name of an entity");
    }
    if (*to != ';') return in.expected(to, rule, "\";\" after " + std::string(from, to));
    name = viewOf(from + 1, to);
    if (hasNamespaces && !checkPlainName(in, name, "the name of an entity")) return false;
    in.at = to + 1;
    return true;
}

char predefined(std::string_view name) {
    if (name == "lt") return '<';
    if (name == "gt") return '>';
    if (name == "amp") return '&';
    if (name == "quot") return '"';
    if (name == "apos") return '\'';
    return 0;
}

// --- Comments, instructions, sections ---

bool readComment(EntityStack& in, std::string_view& text, bool& hasReturn) {
    const char* const from = in.at + 4;
    hasReturn = false;
    for (const char* at = from;;) {
        const Runs::Run run = Runs::of<'-'>(at, in.end);
        hasReturn |= run.hasReturn;
        if (in.end - run.end < 3) {
            if (run.end == in.end || *run.end == '-') {
                return in.endsEarly(in.at, StandardRules::kComment, "the comment that begins here does not end");
            }
        }
        if (*run.end != '-') return failAtCharacter(in, run.end);
        if (run.end[1] != '-') {
            at = run.end + 1;
            continue;
        }
        if (run.end[2] != '>') return in.fail(run.end, StandardRules::kComment, "\"--\" within a comment");
        text = viewOf(from, run.end);
        in.at = run.end + 3;
        return true;
    }
}

bool readInstruction(EntityStack& in, std::string_view& target, std::string_view& content, bool& hasReturn,
                     bool hasNamespaces) {
    const char* const from = in.at;
    const auto doesNotEnd = [&] {
        return in.endsEarly(from, StandardRules::kPI, "the instruction that begins here does not end");
    };
    const char* at = StandardNames::nameEnd(from + 2, in.end);
    if (at == in.end) return doesNotEnd();
    if (at == from + 2) return in.expected(at, StandardRules::kName, "the target of an instruction");
    target = viewOf(from + 2, at);
    const auto isLetter = [&](std::size_t i, char c) { return (target[i] | 0x20) == c; };
    if (target.size() == 3 && isLetter(0, 'x') && isLetter(1, 'm') && isLetter(2, 'l')) {
        const bool isDeclaration = target == "xml";
        return in.fail(from, StandardRules::kPITarget,
                       isDeclaration ? "an XML declaration stands at the very beginning only"
                                     : "the target " + std::string(target) + " is reserved");
    }
    if (hasNamespaces && !checkPlainName(in, target, "the target of an instruction")) return false;
    hasReturn = false;
    const char* const begin = whiteEnd(at, in.end);
    if (begin == at && (*at != '?' || in.end - at < 2 || at[1] != '>')) {
        if (in.end - at < 2) return doesNotEnd();
        return in.expected(at, StandardRules::kPI, "white space or \"?>\" after the target");
    }
    for (at = begin;;) {
        const Runs::Run run = Runs::of<'?'>(at, in.end);
        hasReturn |= run.hasReturn;
        if (run.end == in.end || (*run.end == '?' && in.end - run.end < 2)) return doesNotEnd();
        if (*run.end != '?') return failAtCharacter(in, run.end);
        at = run.end + 1;
        if (*at != '>') continue;
        content = viewOf(begin, run.end);
        in.at = at + 1;
        return true;
    }
}

bool readSection(EntityStack& in, std::string_view& text, bool& hasReturn) {
    const char* const from = in.at + 9;
    hasReturn = false;
    for (const char* at = from;;) {
        const Runs::Run run = Runs::of<']'>(at, in.end);
        hasReturn |= run.hasReturn;
        if (run.end == in.end || (*run.end == ']' && in.end - run.end < 3)) {
            return in.endsEarly(in.at, StandardRules::kCDSect, "the section that begins here does not end");
        }
        if (*run.end != ']') return failAtCharacter(in, run.end);
        at = run.end + 1;
        if (at[0] != ']' || at[1] != '>') continue;
        text = viewOf(from, run.end);
        in.at = run.end + 3;
        return true;
    }
}

void appendLines(std::string& to, std::string_view text) {
    for (std::size_t from = 0;;) {
        const std::size_t at = text.find('\r', from);
        to += text.substr(from, at - from);
        if (at == std::string_view::npos) return;
        to += '\n';
        from = at + 1;
        if (from < text.size() && text[from] == '\n') ++from;
    }
}

}  // namespace Xml::Syntax
