#pragma once

#include "xml/Export.h"
#include <string>

namespace Xml {

// Numbers are read and written as under the classic locale, whatever locale the program has set.

// The number that `text` begins with, by the formatted extraction of a standard stream: leading white space is skipped,
// what follows the number is ignored. Text without a leading number gives 0; a number out of range gives the largest or
// smallest value of the type.
ORVXML_API int toInt(const std::string& text);
ORVXML_API double toDouble(const std::string& text);

ORVXML_API std::string toString(int number);

// Fixed-point text with getFloatPrecision() digits after the point, without trailing zeros. The zeros are dropped
// wherever they stand: with precision 0 the number 100 gives "1".
ORVXML_API std::string toString(double number);

// The number of digits after the decimal point, 2 at first; one setting for the whole process.
ORVXML_API int getFloatPrecision();

// Sets the precision unless it is negative; returns what was in force before.
ORVXML_API int setFloatPrecision(int precision);

}  // namespace Xml
