#pragma once

#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include <cstddef>
#include <memory>
#include <string_view>

// Changes of a tree beside the operations of its nodes: with names that the rules of the dialect do not allow, and such
// as put one node in the place of another. They mark and link as those operations do.
namespace Xml {

// Gives the element the attribute, whatever its name. One of that name stays the node that it is.
void giveAttribute(Element& element, std::string_view name, std::string_view value);

// Puts a node that has no owner in the place of a child, which comes out without parent and links. Where memory runs
// out the child is back in its place, and the node has no parent; it may have links, and is for the caller to delete.
std::unique_ptr<Object> exchangeChild(Element& parent, std::size_t place, Object* node);

// Puts the children, all of them and no others, in this order.
void reorderChildren(Element& parent, Object* const* inOrder);

// The same with the root of a document: another one, or none with null, linked to the document's Dtd. Null comes out
// where there was none.
std::unique_ptr<Element> exchangeRoot(Document& document, Element* root);

}  // namespace Xml
