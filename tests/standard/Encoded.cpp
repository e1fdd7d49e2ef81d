#include "Encoded.h"
#include "xml/text/internal/Utf8.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <iconv.h>
#include <string_view>

namespace Xml::test {

namespace {

// One character after the other by the platform, which keeps its state.
class Platform {
public:
    explicit Platform(const char* encoding) : conversion(iconv_open(encoding, "UTF-8")) {}
    ~Platform() {
        if (isKnown()) iconv_close(conversion);
    }
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    bool isKnown() const { return conversion != reinterpret_cast<iconv_t>(-1); }

    std::string next(std::string character) {
        char* in = character.data();
        std::size_t left = character.size();
        char out[64];
        char* end = out;
        std::size_t room = sizeof out;
        if (iconv(conversion, &in, &left, &end, &room) != 0) ADD_FAILURE() << "not in the encoding: " << character;
        return std::string(out, end);
    }

private:
    iconv_t conversion;
};

std::string unitOf(char32_t unit, std::size_t size, bool lowFirst) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t shift = 8 * (lowFirst ? i : size - 1 - i);
        bytes += static_cast<char>(unit >> shift & 0xFF);
    }
    return bytes;
}

std::string inUtf16(char32_t c, bool lowFirst) {
    if (c < 0x10000) return unitOf(c, 2, lowFirst);
    const char32_t rest = c - 0x10000;
    return unitOf(0xD800 + rest / 0x400, 2, lowFirst) + unitOf(0xDC00 + rest % 0x400, 2, lowFirst);
}

}  // namespace

std::vector<EncodingUnderTest> encodingsUnderTest() {
    std::vector<EncodingUnderTest> all = {
        {"UTF-8", "\xEF\xBB\xBF", 3, "ä€語😀", true},
        {"UTF-16LE", "\xFF\xFE", 2, "ä€語😀", true},
        {"UTF-16BE", "\xFE\xFF", 2, "ä€語😀", true},
        {"UTF-32LE", "\xFF\xFE\0\0", 4, "ä€語😀", true},
        {"UTF-32BE", "\0\0\xFE\xFF", 4, "ä€語😀", true},
        {"ISO-8859-1", "", 0, "äöüÿ", false},
        {"US-ASCII", "", 0, "~", false},
    };
    const EncodingUnderTest kForeign[] = {
        {"windows-1252", "", 0, "ä€“”", false}, {"KOI8-R", "", 0, "Приветё", false},
        {"Shift_JIS", "", 0, "日本語ｱ", false}, {"EUC-JP", "", 0, "日本語", false},
        {"GB18030", "", 0, "汉字ä😀", false},    {"ISO-2022-JP", "", 0, "日本語", false},
    };
    for (const auto& encoding : kForeign) {
        if (Platform(encoding.name).isKnown()) all.push_back(encoding);
    }
    return all;
}

Encoded encode(const std::string& text, const EncodingUnderTest& encoding, bool mark) {
    const std::string_view name = encoding.name;
    Encoded encoded;
    if (mark) encoded.bytes.assign(encoding.mark, encoding.markSize);
    Platform platform(encoding.name);
    for (const std::string& character : charactersOf(text)) {
        encoded.starts.push_back(static_cast<std::int64_t>(encoded.bytes.size()));
        const char32_t c = Utf8::at(character.data()).value;
        if (name == "UTF-8") {
            encoded.bytes += character;
        } else if (name == "UTF-16LE" || name == "UTF-16BE") {
            encoded.bytes += inUtf16(c, name == "UTF-16LE");
        } else if (name == "UTF-32LE" || name == "UTF-32BE") {
            encoded.bytes += unitOf(c, 4, name == "UTF-32LE");
        } else if (name == "ISO-8859-1" || name == "US-ASCII") {
            encoded.bytes += static_cast<char>(c);
        } else {
            encoded.bytes += platform.next(character);
        }
    }
    encoded.starts.push_back(static_cast<std::int64_t>(encoded.bytes.size()));
    return encoded;
}

std::vector<std::string> charactersOf(const std::string& text) {
    std::vector<std::string> characters;
    for (std::size_t at = 0; at < text.size();) {
        const auto size = static_cast<std::size_t>(Utf8::at(text.data() + at).size);
        characters.push_back(text.substr(at, size));
        at += size;
    }
    return characters;
}

}  // namespace Xml::test
