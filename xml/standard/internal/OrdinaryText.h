#pragma once

#include <string>

// Texts and values of a document in which something stands for something else: references, line ends, white space in
// values. Ordinary are references to characters and to the five predefined entities.
//
// Each goes on from `from` to its end and appends what is meant. Null where that is not in [from, to), or where it is
// not ordinary.
namespace Xml::OrdinaryText {

// A text up to '<', as the tree holds it: '&', '<' and '>' are references.
const char* appendText(std::string& result, const char* from, const char* to);

// The value of an attribute, up to the quote.
const char* appendValue(std::string& result, const char* from, const char* to, char quote);

}  // namespace Xml::OrdinaryText
