#pragma once

#include "support/Dice.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include <memory>
#include <string>
#include <vector>

namespace Xml::test {

// A random document that both faces read: elements, attributes, texts with references, comments.
std::string randomText(Dice& dice);

// One with comments, instructions and sections, too.
std::string randomStandardText(Dice& dice);

// Trees of all origins: read by the dialect, read as XML 1.0, put together by hand with texts side by side.
std::vector<std::unique_ptr<Document>> randomTrees(Dice& dice);

// The element and all elements below it, in document order, by recursion.
std::vector<Element*> elementsOf(Element& top);

// Any element of the document.
Element& anyElement(Dice& dice, Document& document);

}  // namespace Xml::test
