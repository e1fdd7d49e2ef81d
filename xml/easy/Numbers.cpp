#include "xml/easy/Numbers.h"

#include "xml/text/internal/ByteClasses.h"
#include <charconv>
#include <system_error>

namespace Xml::internal {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && ByteClass::is(text.front(), ByteClass::kWhite)) text.remove_prefix(1);
    while (!text.empty() && ByteClass::is(text.back(), ByteClass::kWhite)) text.remove_suffix(1);
    return text;
}

template <class Number>
bool readNumber(std::string_view text, Number& value) {
    text = trimmed(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    Number read{};
    const char* const end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, read);
    if (at != end || error != std::errc()) return false;
    value = read;
    return true;
}

template <class Number>
std::string textOfNumber(Number value) {
    char text[128];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

}  // namespace

bool readValue(std::string_view text, bool& value) {
    text = trimmed(text);
    const bool isTrue = text == "true" || text == "1";
    if (!isTrue && text != "false" && text != "0") return false;
    value = isTrue;
    return true;
}

bool readValue(std::string_view text, long long& value) { return readNumber(text, value); }
bool readValue(std::string_view text, unsigned long long& value) { return readNumber(text, value); }
bool readValue(std::string_view text, float& value) { return readNumber(text, value); }
bool readValue(std::string_view text, double& value) { return readNumber(text, value); }
bool readValue(std::string_view text, long double& value) { return readNumber(text, value); }

std::string textOfValue(bool value) { return value ? "true" : "false"; }
std::string textOfValue(long long value) { return textOfNumber(value); }
std::string textOfValue(unsigned long long value) { return textOfNumber(value); }
std::string textOfValue(float value) { return textOfNumber(value); }
std::string textOfValue(double value) { return textOfNumber(value); }
std::string textOfValue(long double value) { return textOfNumber(value); }

}  // namespace Xml::internal
