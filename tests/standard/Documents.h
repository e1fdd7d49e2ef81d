#pragma once

#include "support/Dice.h"
#include <string>

namespace Xml::test {

// A document of XML 1.0, mostly well formed, with every construct.
std::string randomDocument(Dice& dice);

// The document after some changes; valid UTF-8 as before.
std::string mutated(Dice& dice, std::string text);

// A random document, which may be changed, and may end within; between characters.
std::string brokenDocument(Dice& dice);

// How many random documents are compared with what other parsers make of them, and the seed of these documents.
// ORVXML_DOCUMENTS and ORVXML_SEED in the environment say other ones.
int documentCount();
unsigned documentSeed(unsigned otherwise);

}  // namespace Xml::test
