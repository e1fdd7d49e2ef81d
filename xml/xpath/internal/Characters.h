#pragma once

#include "orvsys/Uni16.h"

namespace Xml {

// The classes of characters that paths are made of. A unit is judged by its low byte alone, so that U+0120 counts as a
// blank and U+0141 as a letter.
bool IsWhiteSpace(OrvSys::uni16char unit);
bool IsBeginLiteral(OrvSys::uni16char unit);
bool isFirstNCChar(OrvSys::uni16char unit);
bool isNCChar(OrvSys::uni16char unit);

// The same for 8-bit text.
bool IsWhiteSpace(char c);

using Unit = const OrvSys::uni16char*;

// Moves `at` after the name that begins there; false, and `at` unmoved, where none does.
bool skipNCName(Unit& at, Unit end);

// Reads a name with an optional prefix: "item", "xs:item". False, and nothing changed, where none begins. A colon
// without a name after it is left where it is.
bool GetQName(Unit& at, Unit end, OrvSys::Uni16String& name);

// Moves `at` after "@" or "attribute::"; false, and `at` unmoved, where neither stands there.
bool IsAttributeAxis(Unit& at, Unit end);

// Whether 16-bit text begins with, or is, that ASCII text.
bool startsWith(Unit begin, Unit end, const char* text);
bool equals(Unit begin, Unit end, const char* text);

}  // namespace Xml
