#include "xml/text/Numbers.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace Xml {

namespace {

int fpPrecision = 2;

// No double has more digits after its point; all further ones are zeros, which are dropped again.
constexpr int kMostFractionDigits = 1074;

template <class Number>
Number extract(const std::string& text) {
    Number number = 0;
    std::istringstream stream(text);
    stream.exceptions(
        std::ios_base::badbit);  // memory that runs out within an extraction would be no more than a state
    stream >> number;
    return number;
}

}  // namespace

int toInt(const std::string& text) { return extract<int>(text); }

double toDouble(const std::string& text) { return extract<double>(text); }

std::string toString(int number) { return std::to_string(number); }

std::string toString(double number) {
    const int precision = std::min(fpPrecision, kMostFractionDigits);
    const int length = std::snprintf(nullptr, 0, "%1.*f", precision, number);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');  // one more for the zero that snprintf writes
    std::snprintf(text.data(), text.size(), "%1.*f", precision, number);
    text.pop_back();

    // Not limited to digits behind the point: "100" becomes "1", and callers rely on it.
    while (text.size() >= 2 && text.back() == '0') text.pop_back();
    if (!text.empty() && text.back() == '.') text.pop_back();
    return text.empty() ? "0" : text;
}

int getFloatPrecision() { return fpPrecision; }

int setFloatPrecision(int precision) {
    const int before = fpPrecision;
    if (precision >= 0) fpPrecision = precision;
    return before;
}

}  // namespace Xml
