#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Numbers as under the classic locale, whatever locale the program has set: none of these asks for it.
namespace Xml::Classic {

// The number that `text` begins with, as the formatted extraction of a standard stream has it: white space in front is
// skipped, what follows the number is ignored. 0 where there is none, the largest or smallest of the type for one out
// of range.
int extractInt(std::string_view text);
double extractDouble(const std::string& text);

// The same for an unsigned number of base 10 or 16, but 0 for one out of range. A sign is read (-1 is the largest
// number), and "0x" in front of hexadecimal digits.
unsigned extractUnsigned(std::string_view text, unsigned base);

// The value of a digit, decimal or hexadecimal; 16 for every other byte.
inline constexpr std::array<std::uint8_t, 256> kDigitValues = [] {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) table[byte] = 16;
    for (std::uint8_t i = 0; i < 10; ++i) table[std::size_t{'0'} + i] = i;
    for (std::uint8_t i = 10; i < 16; ++i) table[std::size_t{'a'} + i - 10] = table[std::size_t{'A'} + i - 10] = i;
    return table;
}();
inline unsigned digitOf(char c) { return kDigitValues[static_cast<unsigned char>(c)]; }

// As std::atof, of a text up to its first zero: it takes more for a number than a stream does ("inf", "0x10", the 1 of
// "1e").
double atof(std::string_view text);

// Fixed-point text, as printf's "%f" has it while numbers are rounded to the nearest, with `precision` digits after the
// point: a double has no more than 1074 that are not zero, and more are not written.
std::string fixedPoint(double number, int precision);

}  // namespace Xml::Classic
