#include "xml/xpath/internal/Characters.h"

#include <cstring>

namespace Xml {

namespace {

char narrow(OrvSys::uni16char unit) { return static_cast<char>(unit & 0xFF); }

}  // namespace

bool IsWhiteSpace(char c) { return c == '\t' || c == '\n' || c == '\r' || c == ' '; }

bool IsWhiteSpace(OrvSys::uni16char unit) { return IsWhiteSpace(narrow(unit)); }

bool IsBeginLiteral(OrvSys::uni16char unit) { return narrow(unit) == '\'' || narrow(unit) == '"'; }

bool isFirstNCChar(OrvSys::uni16char unit) {
    const char c = narrow(unit);
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isNCChar(OrvSys::uni16char unit) {
    const char c = narrow(unit);
    return isFirstNCChar(unit) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

bool skipNCName(Unit& at, Unit end) {
    if (at == end || !isFirstNCChar(*at)) return false;
    while (at != end && isNCChar(*at)) ++at;
    return true;
}

bool GetQName(Unit& at, Unit end, OrvSys::Uni16String& name) {
    const Unit begin = at;
    if (!skipNCName(at, end)) return false;
    if (at != end && *at == u':') {
        Unit local = at + 1;
        if (skipNCName(local, end)) at = local;
    }
    name.assign(begin, at);
    return true;
}

bool IsAttributeAxis(Unit& at, Unit end) {
    for (const char* marker : {"@", "attribute::"}) {
        if (!startsWith(at, end, marker)) continue;
        at += std::strlen(marker);
        return true;
    }
    return false;
}

bool startsWith(Unit begin, Unit end, const char* text) {
    for (; *text != '\0'; ++begin, ++text) {
        if (begin == end || *begin != static_cast<unsigned char>(*text)) return false;
    }
    return true;
}

bool equals(Unit begin, Unit end, const char* text) {
    return static_cast<std::size_t>(end - begin) == std::strlen(text) && startsWith(begin, end, text);
}

}  // namespace Xml
