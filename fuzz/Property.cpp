#include "fuzz/Property.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace Xml::fuzz {

namespace {

constexpr std::size_t kLongest = 4000;

// As much as a reader of the report wants to see, from a bit before `from` on.
std::string part(const std::string& text, std::size_t from) {
    const std::size_t begin = from > kLongest / 2 ? from - kLongest / 2 : 0;
    std::string shown = text.substr(begin, kLongest);
    if (begin > 0) shown.insert(0, "[...]");
    if (begin + kLongest < text.size()) shown += "[...]";
    return shown;
}

[[noreturn]] void broken(const std::string& report) {
    std::cerr << report << std::endl;
    std::abort();
}

}  // namespace

void expectSame(const std::string& property, const std::string& expected, const std::string& actual) {
    if (expected == actual) return;
    const auto ends = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    const auto place = static_cast<std::size_t>(ends.first - expected.begin());
    broken("Broken: " + property + ", from byte " + std::to_string(place) + " on\n--- expected\n" +
           part(expected, place) + "\n--- actual\n" + part(actual, place));
}

void expectTrue(const std::string& property, bool holds, const std::string& detail) {
    if (!holds) broken("Broken: " + property + "\n" + part(detail, 0));
}

}  // namespace Xml::fuzz
