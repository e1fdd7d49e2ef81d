#include "xml/text/internal/StandardNames.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <system_error>

namespace Xml::StandardNames {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// What NameStartChar has above ASCII.
constexpr Range kNameStarts[] = {
    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D},
    {0x2070, 0x218F}, {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};

// What NameChar has besides.
constexpr Range kMoreNameChars[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

// Ranges rise.
template <std::size_t N>
bool isIn(const Range (&ranges)[N], char32_t c) {
    const auto* const range = std::lower_bound(std::begin(ranges), std::end(ranges), c,
                                               [](const Range& r, char32_t value) { return r.last < value; });
    return range != std::end(ranges) && c >= range->first;
}

bool isAscii(char32_t c) { return c < 0x80; }

bool isClass(char32_t c, std::uint8_t classes) { return ByteClass::is(static_cast<char>(c), classes); }

bool startsName(std::string_view text) { return !text.empty() && isNameStart(Utf8::at(text.data()).value); }

bool isWhole(const char* (*endOf)(const char*, const char*), std::string_view text) {
    const char* const end = text.data() + text.size();
    return !text.empty() && endOf(text.data(), end) == end;
}

}  // namespace

bool isChar(char32_t c) {
    if (c < 0x20) return c == '\t' || c == '\n' || c == '\r';
    return c <= 0xD7FF || (c >= 0xE000 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0x10FFFF);
}

bool isNameStart(char32_t c) { return isAscii(c) ? isClass(c, ByteClass::kNameStart) : isIn(kNameStarts, c); }

bool isNameChar(char32_t c) {
    return isAscii(c) ? isClass(c, ByteClass::kNameChar) : isIn(kNameStarts, c) || isIn(kMoreNameChars, c);
}

const char* nmtokenEndBeyondAscii(const char* from, const char* to) {
    while (from != to && !Utf8::isAscii(*from)) {
        const Utf8::Character c = Utf8::at(from);
        if (!isNameChar(c.value)) return from;
        from = ByteClass::endOf<ByteClass::kNameChar>(from + c.size, to);
    }
    return from;
}

const char* charsEnd(const char* from, const char* to) {
    if (Utf8::check(from, to).onlyChars) return to;
    while (from != to) {
        const Utf8::Character c = Utf8::at(from);
        if (!isChar(c.value)) break;
        from += c.size;
    }
    return from;
}

char32_t referencedChar(std::string_view name) {
    name.remove_prefix(1);
    const bool isHexadecimal = !name.empty() && name[0] == 'x';
    if (isHexadecimal) name.remove_prefix(1);
    std::uint32_t number = 0;
    const char* const end = name.data() + name.size();
    const auto [at, error] = std::from_chars(name.data(), end, number, isHexadecimal ? 16 : 10);
    return at == end && error == std::errc() && isChar(number) ? number : 0;
}

bool isName(std::string_view text) { return isWhole(nameEnd, text); }
bool isNmtoken(std::string_view text) { return isWhole(nmtokenEnd, text); }
bool isNCName(std::string_view text) { return isName(text) && text.find(':') == std::string_view::npos; }

std::optional<QName> qNameOf(std::string_view text) { return isName(text) ? qNameOfName(text) : std::nullopt; }

std::optional<QName> qNameOfName(std::string_view name) {
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos) return QName{{}, name};
    const std::string_view local = name.substr(colon + 1);
    if (colon == 0 || !startsName(local) || local.find(':') != std::string_view::npos) return std::nullopt;
    return QName{name.substr(0, colon), local};
}

}  // namespace Xml::StandardNames
