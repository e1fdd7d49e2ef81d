#include "xml/dom/Element.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Preorder.h"
#include "xml/text/internal/EmptyData.h"
#include <memory>
#include <utility>

// The operations of Element that look for elements and for their text.

namespace Xml {

namespace {

// The n-th child element that `matches`.
template <class Matches>
const Element* nthChildElement(NodeSpan children, int n, Matches matches) {
    if (n < 0) return nullptr;
    for (const Object* child : children) {
        if (!isElement(*child)) continue;
        const auto* const element = static_cast<const Element*>(child);
        if (matches(*element) && n-- == 0) return element;
    }
    return nullptr;
}

// The element below `top` that matches when `*n` has been counted down to nothing.
template <class Matches>
const Element* nthBelow(const Element& top, int* n, Matches matches) {
    for (ElementWalk walk(top); const Element* element = walk.next();) {
        if (!matches(*element)) continue;
        if (*n < 1) return element;
        --*n;
    }
    return nullptr;
}

template <class Found>
void appendAllBelow(const Element& top, const std::string& name, std::vector<Found*>& found) {
    for (ElementWalk walk(top); const Element* element = walk.next();) {
        if (element->getName() == name) found.push_back(const_cast<Found*>(element));
    }
}

const Element* asConst(Element* element) { return element; }

}  // namespace

// --- Searches ---

const Element* Element::getElement(int n) const {
    return nthChildElement(children.span(), n, [](const Element&) { return true; });
}

Element* Element::getElement(int n) { return const_cast<Element*>(asConst(this)->getElement(n)); }

const Element* Element::getElement(const std::string& wanted, int n) const {
    return nthChildElement(children.span(), n,
                           [&wanted](const Element& element) { return element.getName() == wanted; });
}

Element* Element::getElement(const std::string& wanted, int n) {
    return const_cast<Element*>(asConst(this)->getElement(wanted, n));
}

const Element* Element::getElementByAttribute(const std::string& attribute, const DataHolder& value, int n) const {
    return nthChildElement(children.span(), n, [&](const Element& element) {
        const Attribute* const own = element.getAttribute(attribute);
        return own != nullptr && NodeAccess::text(*own) == value;
    });
}

Element* Element::getElementByAttribute(const std::string& attribute, const DataHolder& value, int n) {
    return const_cast<Element*>(asConst(this)->getElementByAttribute(attribute, value, n));
}

const Element* Element::findElement(const std::string& wanted, int n) const { return findElement(wanted, &n); }

Element* Element::findElement(const std::string& wanted, int n) { return findElement(wanted, &n); }

const Element* Element::findElement(const std::string& wanted, int* n) const {
    return nthBelow(*this, n, [&wanted](const Element& element) { return element.getName() == wanted; });
}

Element* Element::findElement(const std::string& wanted, int* n) {
    return const_cast<Element*>(asConst(this)->findElement(wanted, n));
}

const Element* Element::findElementByAttribute(const std::string& attribute, const DataHolder& value, int n) const {
    return findElementByAttribute(attribute, value, &n);
}

Element* Element::findElementByAttribute(const std::string& attribute, const DataHolder& value, int n) {
    return findElementByAttribute(attribute, value, &n);
}

const Element* Element::findElementByAttribute(const std::string& attribute, const DataHolder& value, int* n) const {
    return nthBelow(*this, n, [&](const Element& element) { return element.getAttributeValue(attribute) == value; });
}

Element* Element::findElementByAttribute(const std::string& attribute, const DataHolder& value, int* n) {
    return const_cast<Element*>(asConst(this)->findElementByAttribute(attribute, value, n));
}

void Element::findAllElements(const std::string& wanted, std::vector<Element*>& found) {
    appendAllBelow(*this, wanted, found);
}

void Element::findAllElements(const std::string& wanted, std::vector<const Element*>& found) const {
    appendAllBelow(*this, wanted, found);
}

// --- Character data ---

const DataHolder& Element::getCharData() const {
    for (const Object* child : children.span()) {
        if (child->isCharData()) return static_cast<const CharData*>(child)->getData();
    }
    return emptyData();
}

const DataHolder& Element::getElementCharData(const std::string& wanted) const {
    const Element* const element = getElement(wanted, 0);
    return element != nullptr ? element->getCharData() : emptyData();
}

const DataHolder& Element::findElementCharData(const std::string& wanted) const {
    const Element* const element = findElement(wanted, 0);
    return element != nullptr ? element->getCharData() : emptyData();
}

void Element::setCharData(const DataHolder& newText) {
    auto made = std::make_unique<CharData>(newText);
    NodeAccess::noteEdit(*this);
    children.makeRoom();
    if (children.deleteCharData()) touch();
    adopt(std::move(made));
}

void Element::setElementCharData(const std::string& wanted, const DataHolder& newText) {
    if (Element* const element = getElement(wanted, 0)) element->setCharData(newText);
}

void Element::findAndSetElementCharData(const std::string& wanted, const DataHolder& newText) {
    if (Element* const element = findElement(wanted, 0)) element->setCharData(newText);
}

}  // namespace Xml
