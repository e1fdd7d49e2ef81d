#include "xml/text/Numbers.h"

#include "xml/text/internal/ClassicNumbers.h"

namespace Xml {

namespace {

int fpPrecision = 2;

}  // namespace

int toInt(const std::string& text) { return Classic::extractInt(text); }

double toDouble(const std::string& text) { return Classic::extractDouble(text); }

std::string toString(int number) { return std::to_string(number); }

std::string toString(double number) {
    std::string text = Classic::fixedPoint(number, fpPrecision);
    // Zeros go wherever they stand: with no digits after the point "100" becomes "1".
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
