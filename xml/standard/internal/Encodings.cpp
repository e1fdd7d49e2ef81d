#include "xml/standard/internal/Encodings.h"

#include "xml/text/internal/ByteClasses.h"
#include <algorithm>

namespace Xml {

namespace {

using namespace std::string_view_literals;

struct Alias {
    std::string_view name;  // in capitals
    Encoding encoding;
};

constexpr Alias kAliases[] = {
    {"UTF-8", Encoding::Utf8},
    {"UTF8", Encoding::Utf8},
    {"CSUTF8", Encoding::Utf8},
    {"US-ASCII", Encoding::Ascii},
    {"ASCII", Encoding::Ascii},
    {"US", Encoding::Ascii},
    {"ANSI_X3.4-1968", Encoding::Ascii},
    {"ANSI_X3.4-1986", Encoding::Ascii},
    {"ISO_646.IRV", Encoding::Ascii},
    {"ISO646-US", Encoding::Ascii},
    {"ISO-IR-6", Encoding::Ascii},
    {"IBM367", Encoding::Ascii},
    {"CP367", Encoding::Ascii},
    {"CSASCII", Encoding::Ascii},
    {"ISO-8859-1", Encoding::Latin1},
    {"ISO_8859-1", Encoding::Latin1},
    {"ISO8859-1", Encoding::Latin1},
    {"ISO-IR-100", Encoding::Latin1},
    {"LATIN1", Encoding::Latin1},
    {"LATIN-1", Encoding::Latin1},
    {"L1", Encoding::Latin1},
    {"IBM819", Encoding::Latin1},
    {"CP819", Encoding::Latin1},
    {"CSISOLATIN1", Encoding::Latin1},
    {"UTF-16", Encoding::Utf16},
    {"UTF16", Encoding::Utf16},
    {"CSUTF16", Encoding::Utf16},
    {"ISO-10646-UCS-2", Encoding::Utf16},
    {"UCS-2", Encoding::Utf16},
    {"CSUNICODE", Encoding::Utf16},
    {"UTF-16LE", Encoding::Utf16Le},
    {"UTF16LE", Encoding::Utf16Le},
    {"CSUTF16LE", Encoding::Utf16Le},
    {"UTF-16BE", Encoding::Utf16Be},
    {"UTF16BE", Encoding::Utf16Be},
    {"CSUTF16BE", Encoding::Utf16Be},
    {"UTF-32", Encoding::Utf32},
    {"UTF32", Encoding::Utf32},
    {"CSUTF32", Encoding::Utf32},
    {"ISO-10646-UCS-4", Encoding::Utf32},
    {"UCS-4", Encoding::Utf32},
    {"CSUCS4", Encoding::Utf32},
    {"UTF-32LE", Encoding::Utf32Le},
    {"UTF32LE", Encoding::Utf32Le},
    {"CSUTF32LE", Encoding::Utf32Le},
    {"UTF-32BE", Encoding::Utf32Be},
    {"UTF32BE", Encoding::Utf32Be},
    {"CSUTF32BE", Encoding::Utf32Be},
};

char capital(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool isAlias(std::string_view name, std::string_view alias) {
    return std::equal(name.begin(), name.end(), alias.begin(), alias.end(),
                      [](char c, char wanted) { return capital(c) == wanted; });
}

bool begins(std::string_view bytes, std::string_view with) { return bytes.substr(0, with.size()) == with; }

struct Form {
    std::string_view bytes;
    Opening opening;
};

// Longer forms stand before those that begin them.
constexpr Form kForms[] = {
    {"\x00\x00\xFE\xFF"sv, {Opening::Kind::Marked, Encoding::Utf32Be, 4, ""}},
    {"\xFF\xFE\x00\x00"sv, {Opening::Kind::Marked, Encoding::Utf32Le, 4, ""}},
    {"\x00\x00\xFF\xFE"sv, {Opening::Kind::Unreadable, Encoding::Other, 0, "UCS-4 in an unusual order of bytes"}},
    {"\xFE\xFF\x00\x00"sv, {Opening::Kind::Unreadable, Encoding::Other, 0, "UCS-4 in an unusual order of bytes"}},
    {"\xFE\xFF"sv, {Opening::Kind::Marked, Encoding::Utf16Be, 2, ""}},
    {"\xFF\xFE"sv, {Opening::Kind::Marked, Encoding::Utf16Le, 2, ""}},
    {"\xEF\xBB\xBF"sv, {Opening::Kind::Marked, Encoding::Utf8, 3, ""}},
    {"\x00\x00\x00<"sv, {Opening::Kind::Unmarked, Encoding::Utf32Be, 0, ""}},
    {"<\x00\x00\x00"sv, {Opening::Kind::Unmarked, Encoding::Utf32Le, 0, ""}},
    {"\x00\x00<\x00"sv, {Opening::Kind::Unreadable, Encoding::Other, 0, "UCS-4 in an unusual order of bytes"}},
    {"\x00<\x00\x00"sv, {Opening::Kind::Unreadable, Encoding::Other, 0, "UCS-4 in an unusual order of bytes"}},
    {"\x00<"sv, {Opening::Kind::Unmarked, Encoding::Utf16Be, 0, ""}},
    {"<\x00"sv, {Opening::Kind::Unmarked, Encoding::Utf16Le, 0, ""}},
    {"\x4C\x6F\xA7\x94"sv, {Opening::Kind::Unreadable, Encoding::Other, 0, "EBCDIC"}},
};

}  // namespace

Encoding encodingNamed(std::string_view name) {
    for (const Alias& alias : kAliases) {
        if (isAlias(name, alias.name)) return alias.encoding;
    }
    return Encoding::Other;
}

bool isEncodingName(std::string_view name) {
    const auto is = [](char c, std::uint8_t classes) { return ByteClass::is(c, classes); };
    return !name.empty() && is(name[0], ByteClass::kLetter) && std::all_of(name.begin(), name.end(), [&](char c) {
        return is(c, ByteClass::kLetter | ByteClass::kDigit) || c == '.' || c == '_' || c == '-';
    });
}

bool isSameEncoding(Encoding named, Encoding taken) {
    if (named == Encoding::Utf16) return taken == Encoding::Utf16Le || taken == Encoding::Utf16Be;
    if (named == Encoding::Utf32) return taken == Encoding::Utf32Le || taken == Encoding::Utf32Be;
    return named == taken;
}

const char* nameOf(Encoding encoding) {
    switch (encoding) {
    case Encoding::Utf8: return "UTF-8";
    case Encoding::Ascii: return "US-ASCII";
    case Encoding::Latin1: return "ISO-8859-1";
    case Encoding::Utf16: return "UTF-16";
    case Encoding::Utf16Le: return "UTF-16LE";
    case Encoding::Utf16Be: return "UTF-16BE";
    case Encoding::Utf32: return "UTF-32";
    case Encoding::Utf32Le: return "UTF-32LE";
    case Encoding::Utf32Be: return "UTF-32BE";
    case Encoding::Other: break;
    }
    return "";
}

std::size_t unitOf(Encoding encoding) {
    switch (encoding) {
    case Encoding::Utf16:
    case Encoding::Utf16Le:
    case Encoding::Utf16Be: return 2;
    case Encoding::Utf32:
    case Encoding::Utf32Le:
    case Encoding::Utf32Be: return 4;
    default: return 1;
    }
}

Opening openingOf(std::string_view bytes) {
    if (bytes.size() > 1 && bytes[0] == '<' && bytes[1] != 0) return {};  // most sources
    for (const Form& form : kForms) {
        if (begins(bytes, form.bytes)) return form.opening;
    }
    return {};
}

Opening openingOf(std::string_view bytes, Encoding given) {
    for (const Form& form : kForms) {
        if (begins(bytes, form.bytes) && isSameEncoding(given, form.opening.encoding)) return form.opening;
    }
    Opening opening;
    opening.encoding = given == Encoding::Utf16   ? Encoding::Utf16Be
                       : given == Encoding::Utf32 ? Encoding::Utf32Be
                                                  : given;
    return opening;
}

}  // namespace Xml
