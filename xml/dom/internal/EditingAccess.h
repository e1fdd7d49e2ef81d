#pragma once

#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include <memory>

namespace Xml {

// What changes that are not the nodes' own operations work on (see Editing.h). Nothing here marks or links.
struct EditingAccess {
    static internal::Children& children(Element& element) { return element.children; }
    static internal::Attributes& attributes(Element& element) { return element.attributes; }
    static internal::Name& name(Attribute& attribute) { return attribute.name; }
    static std::unique_ptr<Element>& root(Document& document) { return document.root; }
};

}  // namespace Xml
