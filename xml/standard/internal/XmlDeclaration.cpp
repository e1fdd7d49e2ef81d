#include "xml/standard/internal/XmlDeclaration.h"

#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/text/internal/StandardNames.h"
#include <algorithm>
#include <string_view>

namespace Xml {

namespace {

using Syntax::startsWith;

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// The end of the longest value that begins there; `from` without one.
const char* versionEnd(const char* from, const char* to) {
    if (to - from < 3 || from[0] != '1' || from[1] != '.') return from;
    const char* const end = std::find_if_not(from + 2, to, isDigit);
    return end == from + 2 ? from : end;
}

const char* encodingEnd(const char* from, const char* to) {
    const auto isPart = [](char c) { return isLetter(c) || isDigit(c) || c == '.' || c == '_' || c == '-'; };
    return from == to || !isLetter(*from) ? from : std::find_if_not(from, to, isPart);
}

const char* answerEnd(const char* from, const char* to) {
    const std::string_view text = Syntax::viewOf(from, to);
    return text.substr(0, 3) == "yes" ? from + 3 : text.substr(0, 2) == "no" ? from + 2 : from;
}

struct Part {
    const char* name;
    const char* rule;
    const char* valueRule;
    const char* (*endOf)(const char* from, const char* to);
};
constexpr Part kVersion{"version", StandardRules::kVersionInfo, StandardRules::kVersionNum, versionEnd};
constexpr Part kEncoding{"encoding", StandardRules::kEncodingDecl, StandardRules::kEncName, encodingEnd};
constexpr Part kStandalone{"standalone", StandardRules::kSDDecl, StandardRules::kSDDecl, answerEnd};

// From after the name on.
bool readValue(EntityStack& in, const Part& part, std::string& value) {
    Syntax::skipWhite(in);
    if (!Syntax::readByte(in, '=', StandardRules::kEq, "\"=\"")) return false;
    Syntax::skipWhite(in);
    if (in.at == in.end || (*in.at != '"' && *in.at != '\'')) return in.expected(in.at, part.rule, "a value in quotes");
    const char* const opening = in.at;
    const char* const from = opening + 1;
    const char* const to = part.endOf(from, in.end);
    if (to == in.end) return in.endsEarly(opening, part.rule, "the value that begins here does not end");
    if (to == from) {
        in.at = from;
        for (const char* const example : {"1.0", "yes", "no"}) {
            if (Syntax::mayBecome(in, example)) return in.endsEarly(opening, part.rule, {});
        }
        return in.fail(from, part.valueRule, std::string("this cannot be the ") + part.name + " of a document");
    }
    if (*to != *opening) return in.expected(to, part.rule, "the closing quote");
    value.assign(from, to);
    in.at = to + 1;
    return true;
}

// A part that may be missing, after white space.
bool readPart(EntityStack& in, const Part& part, bool& isPresent, std::string& value) {
    const char* const before = in.at;
    const bool hasWhite = Syntax::skipWhite(in);
    if (Syntax::mayBecome(in, part.name)) return in.endsEarly(in.at, part.rule, {});
    isPresent = startsWith(in, part.name);
    if (!isPresent) {
        in.at = before;
        return true;
    }
    if (!hasWhite) return in.expected(before, StandardRules::kXMLDecl, "white space");
    in.at += std::string_view(part.name).size();
    return readValue(in, part, value);
}

}  // namespace

bool readXmlDeclaration(EntityStack& in, XmlDeclaration& declaration) {
    constexpr std::string_view kOpening = "<?xml";
    if (Syntax::mayBecome(in, "<?xml ")) return in.endsEarly(in.at, StandardRules::kXMLDecl, {});
    const auto left = static_cast<std::size_t>(in.end - in.at);
    if (!startsWith(in, kOpening) || left == kOpening.size()) return true;
    const char* const opened = in.at + kOpening.size();
    if (StandardNames::nameEnd(in.at + 2, in.end) != opened) return true;  // an instruction
    if (!Syntax::isWhite(*opened) && *opened != '?')
        return in.expected(opened, StandardRules::kVersionInfo, "white space after \"<?xml\"");
    declaration = {};
    declaration.isPresent = true;
    in.at = opened;
    bool isPresent = false;
    if (!readPart(in, kVersion, isPresent, declaration.version)) return false;
    if (!isPresent) {
        Syntax::skipWhite(in);
        return in.expected(in.at, StandardRules::kVersionInfo, "version");
    }
    std::string standalone;
    if (!readPart(in, kEncoding, isPresent, declaration.encoding)) return false;
    const char* expected = isPresent ? "standalone or \"?>\"" : "encoding, standalone or \"?>\"";
    if (!readPart(in, kStandalone, isPresent, standalone)) return false;
    if (isPresent) {
        declaration.standalone = standalone == "yes";
        expected = "\"?>\"";
    }
    Syntax::skipWhite(in);
    if (!startsWith(in, "?>")) return in.expected(in.at, StandardRules::kXMLDecl, expected);
    in.at += 2;
    return true;
}

}  // namespace Xml
