#include "fuzz/NaiveXml.h"

#include <algorithm>
#include <iterator>

namespace Xml::fuzz {

namespace {

struct Range {
    char32_t first, last;
};

// Productions 2 and 4, and what 4a has beside 4.
constexpr Range kChars[] = {{9, 10}, {13, 13}, {0x20, 0xD7FF}, {0xE000, 0xFFFD}, {0x10000, 0x10FFFF}};
constexpr Range kNameStarts[] = {{':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
                                 {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                 {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                 {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
constexpr Range kNameChars[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t Count>
bool isIn(const Range (&ranges)[Count], char32_t c) {
    return std::any_of(std::begin(ranges), std::end(ranges),
                       [c](const Range& range) { return c >= range.first && c <= range.last; });
}

bool has(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

const char* const kNames[] = {"a", "b", "c:d", "\u00F6", "long-er.name", "xml:space", "_",   "\U00010000", "\u0100",
                              "",  "1", "a b", "-",      "\u00D7",       "a\u037E",   "xml", "a\xFF",      "\u20AC"};
const char* const kTexts[] = {"",
                              "text",
                              "a&b<c>\"'",
                              "]]>",
                              "\n",
                              "\u20AC\U0001F600",
                              " x ",
                              "->",
                              "a?",
                              "\r\n",
                              "\t",
                              "]]",
                              "&#65;&lt;&e;",
                              "preserve",
                              "\u00E4",
                              "\u0085",
                              "\u2028",
                              "\uFEFF",
                              "\x7F",
                              "--",
                              "-",
                              "?>",
                              "\r",
                              "\x01",
                              "\xEF\xBF\xBF",
                              "a\xC3",
                              "\xED\xA0\x80",
                              "\xFF",
                              "a longer text, of which the end\x02"};

// One of them, or bytes.
template <std::size_t Count>
std::string oneOf(const char* const (&texts)[Count], Decisions& program) {
    const std::size_t choice = program.byte() % (Count + 6);
    if (choice < Count) return texts[choice];
    std::string bytes;
    for (std::size_t i = Count; i <= choice; ++i) bytes += static_cast<char>(program.byte());
    return bytes;
}

}  // namespace

std::optional<std::u32string> charactersOf(const std::string& bytes) {
    std::u32string characters;
    for (std::size_t i = 0; i < bytes.size();) {
        const auto byteAt = [&](std::size_t place) {
            return place < bytes.size() ? static_cast<unsigned char>(bytes[place]) : 0U;
        };
        const unsigned first = byteAt(i);
        const bool beginsNone = (first >= 0x80 && first < 0xC0) || first >= 0xF8;
        if (beginsNone) return std::nullopt;
        const std::size_t size = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
        char32_t value = size == 1 ? first : first & (0xFFU >> (size + 1));
        for (std::size_t j = 1; j < size; ++j) {
            if ((byteAt(i + j) & 0xC0) != 0x80) return std::nullopt;
            value = value << 6 | (byteAt(i + j) & 0x3F);
        }
        constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
        if (value < kLeast[size] || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) return std::nullopt;
        characters += value;
        i += size;
    }
    return characters;
}

bool isName(const std::string& bytes) {
    const auto characters = charactersOf(bytes);
    if (!characters || characters->empty() || !isIn(kNameStarts, characters->front())) return false;
    return std::all_of(characters->begin(), characters->end(),
                       [](char32_t c) { return isIn(kNameStarts, c) || isIn(kNameChars, c); });
}

bool isText(const std::string& bytes) {
    const auto characters = charactersOf(bytes);
    return characters &&
           std::all_of(characters->begin(), characters->end(), [](char32_t c) { return isIn(kChars, c); });
}

// A CR would be read as a line end.
bool isComment(const std::string& bytes) { return isText(bytes) && !has(bytes + "-", "--") && !has(bytes, "\r"); }

bool isInstruction(const std::string& target, const std::string& content) {
    std::string small = target;
    std::transform(small.begin(), small.end(), small.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? c | 0x20 : c; });
    const bool beginsWhite = !content.empty() && std::string(" \t\n").find(content[0]) != std::string::npos;
    return isName(target) && small != "xml" && isText(content) && !beginsWhite && !has(content, "?>") &&
           !has(content, "\r");
}

// Production 13, without the CR that would be read as a line end.
bool isPublicId(const std::string& bytes) {
    return bytes.find_first_not_of(
               " \nabcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-'()+,./:=?;!*#@$_%") ==
           std::string::npos;
}

bool isUpTo(char32_t most, const std::string& bytes) {
    const auto characters = charactersOf(bytes);
    return characters && std::all_of(characters->begin(), characters->end(), [most](char32_t c) { return c <= most; });
}

std::string nameFrom(Decisions& program) { return oneOf(kNames, program); }
std::string textFrom(Decisions& program) { return oneOf(kTexts, program); }

}  // namespace Xml::fuzz
