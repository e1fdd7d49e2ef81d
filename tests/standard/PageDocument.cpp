#include "standard/PageDocument.h"

#include "support/Pattern.h"
#include <cstdint>
#include <stdexcept>

namespace Xml::test {

namespace {

enum class Encoding { Utf8, Utf16LittleEndian, Utf16BigEndian };

void appendUnit(std::string& bytes, std::uint32_t unit, Encoding encoding) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes += encoding == Encoding::Utf16BigEndian ? high : low;
    bytes += encoding == Encoding::Utf16BigEndian ? low : high;
}

void appendUtf8(std::string& bytes, std::uint32_t character) {
    const auto continuation = [&](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        bytes += static_cast<char>(character);
        return;
    }
    if (character < 0x800) {
        bytes += static_cast<char>(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            bytes += static_cast<char>(0xE0 | character >> 12);
        } else {
            bytes += static_cast<char>(0xF0 | character >> 18);
            bytes += continuation(12);
        }
        bytes += continuation(6);
    }
    bytes += continuation(0);
}

void append(std::string& bytes, std::uint32_t character, Encoding encoding) {
    if (encoding == Encoding::Utf8) {
        appendUtf8(bytes, character);
    } else if (character < 0x10000) {
        appendUnit(bytes, character, encoding);
    } else {
        appendUnit(bytes, 0xD800 + ((character - 0x10000) >> 10), encoding);
        appendUnit(bytes, 0xDC00 + ((character - 0x10000) & 0x3FF), encoding);
    }
}

// The bytes that the text means. Outside of escapes it is ASCII.
std::string bytesOf(const std::string& text, Encoding encoding) {
    static const Pattern escape(R"(\\(?:([nrt\\])|x([0-9A-F]{2})|u\{([0-9A-F]{1,6})\}))");
    std::string bytes;
    for (auto at = text.cbegin(); at != text.cend();) {
        if (*at != '\\') {
            if (*at < 0x20 || *at > 0x7E) throw std::runtime_error("a character that wants an escape in: " + text);
            append(bytes, static_cast<unsigned char>(*at++), encoding);
            continue;
        }
        const Pattern::Groups parts = escape.matchBeginOf({at, text.cend()});
        if (parts.empty()) throw std::runtime_error("an escape of no known kind in: " + text);
        if (!parts[1].empty()) {
            const char named = parts[1][0];
            append(bytes, named == 'n' ? '\n' : named == 'r' ? '\r' : named == 't' ? '\t' : '\\', encoding);
        } else if (!parts[2].empty()) {
            bytes += static_cast<char>(std::stoi(parts[2], nullptr, 16));
        } else {
            append(bytes, static_cast<std::uint32_t>(std::stoul(parts[3], nullptr, 16)), encoding);
        }
        at += static_cast<std::ptrdiff_t>(parts[0].size());
    }
    return bytes;
}

}  // namespace

PageDocument pageDocumentOf(const std::string& cell) {
    static const Pattern form("`([^`]*)`(?: as (UTF-16LE|UTF-16BE))?");
    const Pattern::Groups parts = form.match(cell);
    if (parts.empty()) throw std::runtime_error("not a document: " + cell);
    const Encoding encoding = parts[2].empty()         ? Encoding::Utf8
                              : parts[2] == "UTF-16LE" ? Encoding::Utf16LittleEndian
                                                       : Encoding::Utf16BigEndian;
    return {cell, bytesOf(parts[1], encoding)};
}

}  // namespace Xml::test
