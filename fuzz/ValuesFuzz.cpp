// Values and texts: a text is read as a number or not as a naive reading by the rules says, what is written reads back,
// and the text that a node holds means what a reference by reference reading says.
//
// Input: the text.
#include "fuzz/Property.h"
#include "fuzz/Target.h"
#include "support/Messages.h"
#include "support/Pattern.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/easy/Compare.h"
#include "xml/easy/Texts.h"
#include "xml/easy/Trees.h"
#include "xml/easy/Values.h"
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>

namespace Xml::fuzz {
namespace {

std::string trimmed(const std::string& text) {
    const char* const white = " \t\r\n";
    const std::size_t first = text.find_first_not_of(white);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(white) + 1 - first);
}

// The text of a number without its plus; nothing where it is none.
std::optional<std::string> numberIn(const std::string& text, const test::Pattern& form) {
    const test::Pattern::Groups parts = form.match(trimmed(text));
    if (parts.empty()) return {};
    return parts[1];
}

template <class Integer>
std::optional<Integer> naiveInteger(const std::string& text) {
    static const test::Pattern form("\\+?(-?[0-9]+)");
    const auto number = numberIn(text, form);
    if (!number || (trimmed(text)[0] == '+' && number->at(0) == '-')) return {};
    const bool isNegative = number->at(0) == '-';
    if (isNegative && std::is_unsigned_v<Integer>) return {};
    // Digit by digit, below 0 where the number is.
    Integer value = 0;
    for (const char c : number->substr(isNegative ? 1 : 0)) {
        const auto digit = static_cast<Integer>(c - '0');
        constexpr Integer kMost = std::numeric_limits<Integer>::max();
        constexpr Integer kLeast = std::numeric_limits<Integer>::min();
        if (!isNegative && value > (kMost - digit) / 10) return {};
        if (isNegative && value < (kLeast + digit) / 10) return {};
        value = static_cast<Integer>(value * 10 + (isNegative ? -digit : digit));
    }
    return value;
}

std::optional<double> naiveReal(const std::string& text) {
    static const test::Pattern form("\\+?(-?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][+-]?[0-9]+)?)");
    const auto number = numberIn(text, form);
    if (!number || (trimmed(text)[0] == '+' && number->at(0) == '-')) return {};
    errno = 0;
    const double value = std::strtod(number->c_str(), nullptr);
    if (std::isinf(value) || (value == 0 && errno == ERANGE)) return {};
    return value;
}

std::optional<bool> naiveBool(const std::string& text) {
    const std::string inner = trimmed(text);
    if (inner == "true" || inner == "1") return true;
    return inner == "false" || inner == "0" ? std::optional<bool>(false) : std::nullopt;
}

template <class T>
std::string shown(const std::optional<T>& value) {
    return value ? std::to_string(*value) : "none";
}

template <class T>
void checkWritten(const Element& element) {
    const std::optional<T> read = value<T>(element, "v");
    if (!read) return;
    Element other("e");
    setValue(other, "w", *read);
    const std::optional<T> again = value<T>(other, "w");
    expectTrue("what is written reads back", again && (*again == *read || *read != *read), valueOr(element, "v", ""));
}

}  // namespace

const std::size_t kLongestInput = 1024;

void check(const std::string& input) {
    const test::MessageCollector messages;
    Element element("e");
    setValue(element, "v", input);
    expectSame("a value is what was set", input, valueOr(element, "v", "other"));
    expectSame("an integer", shown(naiveInteger<std::int64_t>(input)), shown(value<std::int64_t>(element, "v")));
    expectSame("a short integer", shown(naiveInteger<std::int16_t>(input)), shown(value<std::int16_t>(element, "v")));
    expectSame("without a sign", shown(naiveInteger<std::uint64_t>(input)), shown(value<std::uint64_t>(element, "v")));
    expectSame("a bool", shown(naiveBool(input)), shown(value<bool>(element, "v")));
    const std::optional<double> real = value<double>(element, "v");
    if (!real || std::isfinite(*real)) expectSame("a real number", shown(naiveReal(input)), shown(real));
    checkWritten<double>(element);
    checkWritten<float>(element);
    checkWritten<long double>(element);

    setText(element, input);
    expectSame("a text is what was set", input, textOf(element));
    expectSame("... and read as values are", shown(real), shown(content<double>(element)));
    expectTrue("a copy is the same", sameTree(element, *copyOf(element)), input);
    // Held as it is, cut in two anywhere between references: the same text.
    Element held("e"), halves("e");
    append(held, std::make_unique<CharData>()).data() = input;
    const std::size_t cut = input.find(';') == std::string::npos ? 0 : input.find(';') + 1;
    append(halves, std::make_unique<CharData>()).data() = input.substr(0, cut);
    append(halves, std::make_unique<CharData>()).data() = input.substr(cut);
    expectSame("a text in two halves", textOf(held), textOf(halves));
    expectTrue("halves are the same as the whole", sameTree(held, halves) && firstDifference(held, halves).empty(),
               input);
    expectTrue("a text and another one differ", !sameTree(held, Element("e")) || textOf(held).empty(), input);
    expectTrue("no diagnostics", messages.texts().empty(), input);
}

}  // namespace Xml::fuzz
