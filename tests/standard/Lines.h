#pragma once

#include "support/Dice.h"
#include <cstddef>
#include <iterator>
#include <string>

namespace Xml::test {

// A text whose lines end in every way, with characters of every length: less than so many pieces, of a few kinds or of
// all.
inline std::string randomLines(Dice& dice, std::size_t pieces) {
    const char* const kPieces[] = {"a",
                                   "bcdefghijklmnopq",
                                   "\n",
                                   "\r",
                                   "\r\n",
                                   "\n\r",
                                   "\t",
                                   "\xC3\xA4",
                                   "\xE2\x82\xAC",
                                   "\xF0\x9F\x98\x80",
                                   "0123456789012345678901234567890123456789012345678901234567890123456789"};
    std::string text;
    const auto kinds = 1 + dice.below(std::size(kPieces));
    for (auto left = dice.below(pieces); left > 0; --left) text += kPieces[dice.below(kinds)];
    return text;
}

}  // namespace Xml::test
