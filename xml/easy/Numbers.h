#pragma once

#include "xml/Export.h"
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

// Not for callers: values as text, and text as values, whatever the locale.
//
// Read is all of the text, with white space around it, or nothing. Numbers are those of std::from_chars, and may have a
// plus in front; bool is true, false, 1 and 0. Written is the shortest text that reads back as the same value.
namespace Xml::internal {

// Whether the text is one; only then it is put there.
ORVXML_API bool readValue(std::string_view text, bool& value);
ORVXML_API bool readValue(std::string_view text, long long& value);
ORVXML_API bool readValue(std::string_view text, unsigned long long& value);
ORVXML_API bool readValue(std::string_view text, float& value);
ORVXML_API bool readValue(std::string_view text, double& value);
ORVXML_API bool readValue(std::string_view text, long double& value);

ORVXML_API std::string textOfValue(bool value);
ORVXML_API std::string textOfValue(long long value);
ORVXML_API std::string textOfValue(unsigned long long value);
ORVXML_API std::string textOfValue(float value);
ORVXML_API std::string textOfValue(double value);
ORVXML_API std::string textOfValue(long double value);

// The types of values: bool, integers, floating point; a character is no number.
template <class T>
inline constexpr bool isCharacter =
    std::is_same_v<T, char> || std::is_same_v<T, wchar_t> || std::is_same_v<T, char16_t> || std::is_same_v<T, char32_t>;
template <class T>
inline constexpr bool isNumber = std::is_arithmetic_v<T> && !isCharacter<T> && std::is_same_v<T, std::remove_cv_t<T>>;
template <class T>
inline constexpr bool isString = std::is_same_v<T, std::string> || std::is_same_v<T, std::string_view>;

// The widest integer of the same sign; other types are what they are.
template <class T, bool IsInteger = std::is_integral_v<T> && !std::is_same_v<T, bool>>
struct WidestOf {
    using Type = T;
};
template <class T>
struct WidestOf<T, true> {
    using Type = std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>;
};
template <class T>
using Widest = typename WidestOf<T>::Type;

// The same for any of these types, and for strings, which every text is.
template <class T>
bool readAny(std::string_view text, T& value) {
    static_assert(isNumber<T> || isString<T>, "a value is a bool, an integer, a floating point number or a string");
    if constexpr (isString<T>) {
        value = T(text);
        return true;
    } else {
        Widest<T> read{};
        if (!readValue(text, read)) return false;
        if constexpr (std::is_integral_v<T>) {
            if (read < std::numeric_limits<T>::min() || read > std::numeric_limits<T>::max()) return false;
        }
        value = static_cast<T>(read);
        return true;
    }
}

}  // namespace Xml::internal
