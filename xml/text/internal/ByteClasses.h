#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// One table look-up a byte for every class that the tokenizer and the name rule ask about.
namespace Xml::ByteClass {

constexpr std::uint8_t kWhite = 1;         // tab, line feed, carriage return, space
constexpr std::uint8_t kLetter = 2;        // ASCII letters
constexpr std::uint8_t kDigit = 4;         // ASCII digits
constexpr std::uint8_t kNameMark = 8;      // - . : _
constexpr std::uint8_t kPunctuation = 16;  // a token by itself, and the end of a word
constexpr std::uint8_t kNameStart = 32;    // letters, _ and :
constexpr std::uint8_t kBeyondAscii = 64;

constexpr std::uint8_t kNameChar = kLetter | kDigit | kNameMark;
constexpr std::uint8_t kWordEnd = kPunctuation | kWhite;

constexpr std::array<std::uint8_t, 256> makeTable() {
    std::array<std::uint8_t, 256> table{};
    const auto add = [&table](const char* bytes, std::uint8_t bits) {
        for (; *bytes != 0; ++bytes) {
            auto& entry = table[static_cast<unsigned char>(*bytes)];
            entry = static_cast<std::uint8_t>(entry | bits);
        }
    };
    add("\t\n\r ", kWhite);
    add("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", kLetter | kNameStart);
    add("0123456789", kDigit);
    add("-.:_", kNameMark);
    add("_:", kNameStart);
    add("!\"'()*+,/<=>?[\\]|", kPunctuation);
    for (std::size_t i = 0x80; i < table.size(); ++i) table[i] = kBeyondAscii;
    return table;
}

inline constexpr std::array<std::uint8_t, 256> kTable = makeTable();

inline bool is(char c, std::uint8_t classes) { return (kTable[static_cast<unsigned char>(c)] & classes) != 0; }

// The first byte of [from, to) that is of none of the classes, `to` where all are.
template <std::uint8_t Classes>
inline const char* endOf(const char* from, const char* to) {
    for (; to - from >= 8; from += 8) {
        if (!is(from[0], Classes)) return from;
        if (!is(from[1], Classes)) return from + 1;
        if (!is(from[2], Classes)) return from + 2;
        if (!is(from[3], Classes)) return from + 3;
        if (!is(from[4], Classes)) return from + 4;
        if (!is(from[5], Classes)) return from + 5;
        if (!is(from[6], Classes)) return from + 6;
        if (!is(from[7], Classes)) return from + 7;
    }
    while (from != to && is(*from, Classes)) ++from;
    return from;
}

}  // namespace Xml::ByteClass
