#include "xml/text/internal/ClassicNumbers.h"

#include "xml/text/internal/ByteClasses.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <locale.h>
#include <optional>

namespace Xml::Classic {

namespace {

// No double has more digits before its point, or after it: all further ones are zeros.
constexpr int kMostDigits = std::numeric_limits<double>::max_exponent10 + 1;
constexpr int kMostFractionDigits = 1074;

bool isBlank(char c) { return ByteClass::is(c, ByteClass::kWhite) || c == '\v' || c == '\f'; }

bool isDigit(char c) { return ByteClass::is(c, ByteClass::kDigit); }

// Moves to what follows white space.
void skipBlanks(std::string_view& text) {
    const auto* const begin = std::find_if_not(text.begin(), text.end(), isBlank);
    text.remove_prefix(static_cast<std::size_t>(begin - text.begin()));
}

// Moves to what follows a sign, where there is one; whether it is a minus.
bool skipSign(std::string_view& text) {
    if (text.empty() || (text[0] != '-' && text[0] != '+')) return false;
    const bool negative = text[0] == '-';
    text.remove_prefix(1);
    return negative;
}

// Moves to what follows digits; whether there were any.
bool skipDigits(std::string_view& text) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), isDigit);
    const auto count = static_cast<std::size_t>(end - text.begin());
    text.remove_prefix(count);
    return count > 0;
}

// The number that the digits in front make, 0 for none, and anything larger than `most` for one that is.
std::int64_t digitsInFront(std::string_view text, unsigned base, std::int64_t most) {
    std::int64_t number = 0;
    for (const char c : text) {
        const unsigned digit = digitOf(c);
        if (digit >= base) break;
        number = number * base + digit;
        if (number > most) break;
    }
    return number;
}

// Moves to what follows a number such as a stream takes for one. False where it takes none: an exponent without digits
// makes all of it none.
bool skipNumber(std::string_view& text) {
    bool digits = skipDigits(text);
    if (!text.empty() && text[0] == '.') {
        text.remove_prefix(1);
        digits = skipDigits(text) || digits;
    }
    if (!digits) return false;
    if (text.empty() || (text[0] != 'e' && text[0] != 'E')) return true;
    text.remove_prefix(1);
    skipSign(text);
    return skipDigits(text);
}

// The decimal number that the text begins with, where it has few digits and no exponent; nothing for any other. So few
// digits are a whole number that a double holds, and so is the power of ten that their point divides it by: the one
// division rounds as reading the number does.
std::optional<double> shortDecimal(std::string_view text) {
    constexpr double kPowers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr std::size_t kMost = std::size(kPowers) - 1;
    std::int64_t number = 0;
    std::size_t digits = 0;
    std::size_t fraction = 0;
    bool hasPoint = false;
    for (const char c : text) {
        if (c == '.' && !hasPoint) {
            hasPoint = true;
        } else if (isDigit(c)) {
            if (++digits > kMost) return std::nullopt;
            number = number * 10 + (c - '0');
            if (hasPoint) ++fraction;
        } else if (c == 'e' || c == 'E' || c == 'x' || c == 'X') {
            return std::nullopt;
        } else {
            break;
        }
    }
    if (digits == 0) return std::nullopt;
    return static_cast<double>(number) / kPowers[fraction];
}

// Never freed; made without allocating.
locale_t classicLocale() {
    static const locale_t made = newlocale(LC_ALL_MASK, "C", nullptr);
    return made;
}

}  // namespace

int extractInt(std::string_view text) {
    using Limits = std::numeric_limits<int>;
    skipBlanks(text);
    const bool negative = skipSign(text);
    const std::int64_t number = digitsInFront(text, 10, -std::int64_t{Limits::min()});
    return static_cast<int>(std::clamp<std::int64_t>(negative ? -number : number, Limits::min(), Limits::max()));
}

unsigned extractUnsigned(std::string_view text, unsigned base) {
    constexpr std::int64_t kMost = std::numeric_limits<unsigned>::max();
    skipBlanks(text);
    const bool negative = skipSign(text);
    if (base == 16 && text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text.remove_prefix(2);
    const std::int64_t number = digitsInFront(text, base, kMost);
    if (number > kMost) return 0;
    return static_cast<unsigned>(negative ? -number : number);
}

double extractDouble(const std::string& text) {
    std::string_view rest = text;
    skipBlanks(rest);
    const char* const begin = rest.data();
    const bool negative = skipSign(rest);
    const char* const digits = rest.data();
    if (!skipNumber(rest)) return 0.0;

    // A stream ends at the x of "0x10", where the function would go on.
    if (!rest.empty() && (rest[0] == 'x' || rest[0] == 'X') && rest.data() == digits + 1 && *digits == '0') {
        return negative ? -0.0 : 0.0;
    }
    const double number = strtod_l(begin, nullptr, classicLocale());
    return std::clamp(number, std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max());
}

double atof(std::string_view text) {
    std::string_view rest = text;
    skipBlanks(rest);
    const bool negative = skipSign(rest);
    if (const std::optional<double> number = shortDecimal(rest)) return negative ? -*number : *number;
    return strtod_l(std::string(text).c_str(), nullptr, classicLocale());
}

std::string fixedPoint(double number, int precision) {
    std::array<char, 1 + kMostDigits + 1 + kMostFractionDigits> buffer;
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::fixed,
                                       std::min(precision, kMostFractionDigits));
    return std::string(buffer.data(), written.ptr);
}

}  // namespace Xml::Classic
