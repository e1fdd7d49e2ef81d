#pragma once

namespace Xml {

class Element;
class OutStream;

// Writes the text of an element with its subtree: what Element::write does.
void writeElement(const Element& element, OutStream& out);

}  // namespace Xml
