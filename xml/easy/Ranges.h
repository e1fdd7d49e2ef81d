#pragma once

#include "xml/Export.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Element.h"
#include "xml/dom/Object.h"
#include "xml/easy/Range.h"
#include <string_view>

// Ways through a tree. They only look: several threads may do so at the same time, and no way gives a diagnostic.
namespace Xml {

// All children: elements, texts, comments, instructions.
ORVXML_API Range<Object> children(Element& of);
ORVXML_API Range<const Object> children(const Element& of);

// The child elements of that name, or of any.
ORVXML_API Range<Element> elements(Element& of, std::string_view name = {});
ORVXML_API Range<const Element> elements(const Element& of, std::string_view name = {});

// The same of all elements below, in document order; the element itself is not among them.
ORVXML_API Range<Element> descendants(Element& of, std::string_view name = {});
ORVXML_API Range<const Element> descendants(const Element& of, std::string_view name = {});

// In the order of the tag.
ORVXML_API Range<Attribute> attributes(Element& of);
ORVXML_API Range<const Attribute> attributes(const Element& of);

// The element that the node is a child of, or an attribute of; null without one, and for the root of a document.
ORVXML_API Element* parentOf(Object& node);
ORVXML_API const Element* parentOf(const Object& node);

// The child of the same element that comes right after the node, or right before it; null where there is none, and for
// what is no child of an element. From one child to the next takes the same time, however many there are.
ORVXML_API Object* nextOf(Object& node);
ORVXML_API const Object* nextOf(const Object& node);
ORVXML_API Object* previousOf(Object& node);
ORVXML_API const Object* previousOf(const Object& node);

// The place among the children of its element, from 0; -1 for what is no child of an element.
ORVXML_API int indexOf(const Object& node);

// The node as an element; null for anything else.
ORVXML_API Element* asElement(Object& node);
ORVXML_API const Element* asElement(const Object& node);

// The name of an element or of an attribute, the target of an instruction; else empty. Good until the node is renamed.
ORVXML_API std::string_view nameOf(const Object& node);

}  // namespace Xml
