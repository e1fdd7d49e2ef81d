#include "xml/standard/internal/OrdinaryText.h"

#include "xml/standard/internal/Runs.h"
#include "xml/stream/internal/Scan.h"
#include "xml/text/internal/Escape.h"
#include "xml/text/internal/StandardNames.h"
#include "xml/text/internal/Utf8.h"
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Xml::OrdinaryText {

namespace {

struct Reference {
    const char* end = nullptr;  // null where it is none, or another one
    char32_t character = 0;
};

int digitOf(char c, int base) {
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return base == 16 && lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// From after "&#" on. Numbers of more digits than characters need are not ordinary.
Reference numberAt(const char* at, const char* to) {
    constexpr int kMostDigits = 7;
    const int base = at != to && *at == 'x' ? 16 : 10;
    if (base == 16) ++at;
    char32_t value = 0;
    int digits = 0;
    for (; at != to && digits < kMostDigits; ++at, ++digits) {
        const int digit = digitOf(*at, base);
        if (digit < 0) break;
        value = value * static_cast<char32_t>(base) + static_cast<char32_t>(digit);
    }
    if (at == to || *at != ';' || !StandardNames::isChar(value)) return {};
    return {at + 1, value};
}

// From '&' on.
Reference referenceAt(const char* from, const char* to) {
    const char* const name = from + 1;
    if (name == to) return {};
    const auto known = [&](std::string_view rest, char c) -> Reference {
        if (!Scan::startsWith(name, to, rest)) return {};
        return {name + rest.size(), static_cast<char32_t>(c)};
    };
    switch (*name) {
    case '#': return numberAt(name + 1, to);
    case 'l': return known("lt;", '<');
    case 'g': return known("gt;", '>');
    case 'q': return known("quot;", '"');
    case 'a': return to - name > 1 && name[1] == 'm' ? known("amp;", '&') : known("apos;", '\'');
    default: return {};
    }
}

// After a CR: what is left of its line end is passed. Null where that is not known.
const char* afterReturn(const char* at, const char* to) {
    if (at == to) return nullptr;
    return *at == '\n' ? at + 1 : at;
}

// A character that begins with kRare; null where it is none of XML's.
const char* afterRare(std::string& result, const char* at) {
    if (Runs::isNoncharacter(at)) return nullptr;
    constexpr std::size_t kSize = 3;
    result.append(at, kSize);
    return at + kSize;
}

}  // namespace

const char* appendText(std::string& result, const char* from, const char* to) {
    for (;;) {
        const char* at = Runs::find<'<', '>', '&', ']'>(from, to);
        result.append(from, at);
        if (at == to) return nullptr;
        switch (*at) {
        case '<': return at;
        case '>':
            result += referenceFor('>');
            from = at + 1;
            break;
        case ']':
            if (to - at < 3 || (at[1] == ']' && at[2] == '>')) return nullptr;
            result += ']';
            from = at + 1;
            break;
        case '&': {
            const Reference reference = referenceAt(at, to);
            if (reference.end == nullptr) return nullptr;
            const char32_t c = reference.character;
            if (c == '&' || c == '<' || c == '>') {
                result += referenceFor(static_cast<char>(c));
            } else {
                Utf8::append(result, c);
            }
            from = reference.end;
            break;
        }
        case '\r':
            result += '\n';
            from = afterReturn(at + 1, to);
            break;
        case Runs::kRare: from = afterRare(result, at); break;
        default: return nullptr;
        }
        if (from == nullptr) return nullptr;
    }
}

const char* appendValue(std::string& result, const char* from, const char* to, char quote) {
    for (;;) {
        const char* at = quote == '"' ? Runs::findInLine<'"', '<', '&', Runs::kRare>(from, to)
                                      : Runs::findInLine<'\'', '<', '&', Runs::kRare>(from, to);
        result.append(from, at);
        if (at == to) return nullptr;
        if (*at == quote) return at;
        switch (*at) {
        case '&': {
            const Reference reference = referenceAt(at, to);
            if (reference.end == nullptr) return nullptr;
            Utf8::append(result, reference.character);
            from = reference.end;
            break;
        }
        case '\t':
        case '\n':
            result += ' ';
            from = at + 1;
            break;
        case '\r':
            result += ' ';
            from = afterReturn(at + 1, to);
            break;
        case Runs::kRare: from = afterRare(result, at); break;
        default: return nullptr;
        }
        if (from == nullptr) return nullptr;
    }
}

}  // namespace Xml::OrdinaryText
