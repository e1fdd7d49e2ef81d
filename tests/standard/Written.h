#pragma once

#include "xml/dom/Document.h"
#include <optional>
#include <string>
#include <string_view>

// What is compared of a document before it was written and after.
namespace Xml::test {

// What stands around the root, and everything below it, but for the form of line ends in the document type.
std::string everythingOf(const Document& document);

// The canonical form that libxml2 makes of a text, with comments. Empty where it makes none.
std::optional<std::string> canonicalForm(std::string_view text);

// Whether libxml2 makes the same tree of the text that this library has made. Where it does not, a rule of
// WholeTreeTest.cpp says why, and its canonical form is not that of the document.
bool isSameByLibxml2(std::string_view text, const Document& document);

// Whether Expat takes the text as a document, without namespaces, with each event; where it does not, why.
std::string expatRefusal(std::string_view text);

}  // namespace Xml::test
