#pragma once
#include "orvsys/Export.h"
#include <cstddef>
#include <string>

namespace OrvSys {

// One unit of 16-bit text. A character above U+FFFF takes two units, a surrogate pair.
using uni16char = char16_t;

namespace Core {

// What the platform's 16-bit string knows about its units: order and equality go by unit value, with no locale.
struct ORVSYS_API uni16char_traits : std::char_traits<uni16char> {};

}  // namespace Core

// The platform's 16-bit text. A literal such as u"//item" converts to it; it may hold zeros and lone surrogates.
using Uni16String = std::basic_string<uni16char, Core::uni16char_traits>;

// Widens UTF-8 to 16-bit text, a surrogate pair for each character above U+FFFF. Decoding is strict: overlong forms,
// encoded surrogates, values above U+10FFFF and sequences cut short are malformed, and every byte that belongs to no
// well formed sequence becomes one U+FFFD. A zero byte is a character like any other.
ORVSYS_API Uni16String UTF8ToUni16Char(const std::string& text);

// Narrows 16-bit text to the platform's 8-bit text, which is UTF-8. A lone surrogate becomes U+FFFD (three bytes).
ORVSYS_API std::string Uni16CharToPlatformCString(const Uni16String& text);

// As UTF8ToUni16Char, for text that ends at its first zero byte. Null gives an empty string.
ORVSYS_API Uni16String PlatformCStringToUni16Char(const char* text);

// The number of units before the first zero. Null has length 0.
ORVSYS_API std::size_t Uni16CharGetLength(const uni16char* text);

// Compares by unit value, a prefix before what it begins: -1 when a comes first, 1 when b does, 0 when they are equal.
ORVSYS_API int Uni16CharCompare(const Uni16String& a, const Uni16String& b);

// Compares the first `units` units in the same way; both texts must hold that many. A zero is a unit like any other.
// Nothing after the first difference is read, and nothing at all when `units` is 0.
ORVSYS_API int Uni16CharPartialCompare(const uni16char* a, const uni16char* b, std::size_t units);

// The first place among the first `units` units where `wanted` stands, null when it is absent. The text must hold that
// many units; a zero is a unit like any other, so it can be looked for and does not end the search.
ORVSYS_API const uni16char* Uni16CharPartialFindCharacter(const uni16char* text, std::size_t units, uni16char wanted);

}  // namespace OrvSys
