#pragma once

#include "xml/Export.h"
#include <string>

// The character classes of the dialect. Text is bytes: only ASCII has letters, digits, name characters and white space;
// no byte above 127 belongs to any class.
namespace Xml {

// Tab, line feed, carriage return or space; form feed and vertical tab are not white.
ORVXML_API bool isWhite(char c);
ORVXML_API bool isLetter(char c);
ORVXML_API bool isDigit(char c);

// A letter, a digit, '-', '.', ':' or '_'.
ORVXML_API bool isNameChar(char c);

// Whether exactly `length` bytes at `text` are a name: a letter, '_' or ':' followed by name characters. A zero byte
// within them is a byte like any other (and no name character); a length below 1 is no name.
ORVXML_API bool isName(const char* text, int length);
ORVXML_API bool isName(const std::string& text);

}  // namespace Xml
