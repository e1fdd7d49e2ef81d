#include "xml/dom/Element.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/Walk.h"
#include "xml/dom/internal/Writer.h"
#include "xml/dtd/Dtd.h"
#include "xml/text/Message.h"
#include "xml/text/Names.h"
#include "xml/text/internal/EmptyData.h"
#include <algorithm>
#include <memory>
#include <utility>

// Everything that goes through a subtree keeps its place on a stack of its own and treats the library's own classes in the
// loop; nodes of other classes get their virtual operations called.

namespace Xml {

namespace {

// The n-th child element that `matches`.
template <class Matches>
const Element* nthChildElement(const std::vector<Object*>& children, int n, Matches matches) {
    if (n < 0) return nullptr;
    for (const Object* child : children) {
        if (!child->isElement()) continue;
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

// Room for one more, so that what follows cannot fail half way.
template <class Node>
void makeRoom(std::vector<Node*>& nodes) {
    if (nodes.size() == nodes.capacity()) nodes.reserve(nodes.empty() ? 1 : 2 * nodes.size());
}

bool inRange(int i, std::size_t count) { return i >= 0 && static_cast<std::size_t>(i) < count; }

const Element* asConst(Element* element) { return element; }

}  // namespace

bool Element::mUseShortNotationForEmptyTags = true;

// --- Construction and identity ---

Element::Element() = default;

Element::Element(const std::string& itsName) : Element() { setName(itsName); }

Element::Element(const std::string& itsName, const DataHolder& itsText) : Element(itsName) {
    adopt(std::make_unique<CharData>(itsText));
}

Element::Element(const Element& other) : Element() {
    struct Place {
        const Element* from;
        Element* to;
        std::size_t child;
    };
    copyOwn(other);
    std::vector<Place> open{{&other, this, 0}};
    while (!open.empty()) {
        Place& here = open.back();
        if (here.child == here.from->children.size()) {
            open.pop_back();
            continue;
        }
        const Object& child = *here.from->children[here.child++];
        Element* const to = here.to;
        if (isExactly<Element>(child)) {
            const auto& from = static_cast<const Element&>(child);
            auto* const copy = new Element();
            to->children.push_back(copy);  // has room
            NodeAccess::setParent(*copy, to);
            copy->copyOwn(from);
            if (!from.children.empty()) open.push_back({&from, copy, 0});
        } else {
            Object* const copy = child.clone();
            to->children.push_back(copy);
            copy->setParent(to);
        }
    }
}

// Name and attributes, and room for the children.
void Element::copyOwn(const Element& other) {
    name = other.name;
    children.reserve(other.children.size());
    attributes.reserve(other.attributes.size());
    for (const Attribute* attribute : other.attributes) {
        attributes.push_back(new Attribute(*attribute));
        if (attributes.back()->isOk()) attributes.back()->setParent(this);
    }
}

Element::~Element() {
    NodeAccess::deleteChildren(*this);
    for (const Attribute* attribute : attributes) delete attribute;
}

// Goes down into the last child as long as that has children itself, and comes back up by the parent links, which it sets on
// the way down: they need not have been right.
void NodeAccess::deleteChildren(Element& top) {
    Element* here = &top;
    for (;;) {
        if (here->children.empty()) {
            if (here == &top) return;
            here = static_cast<Element*>(here->parent);
        }
        Object* const last = here->children.back();
        if (last != nullptr && isExactly<Element>(*last) && !static_cast<Element*>(last)->children.empty()) {
            last->parent = here;
            here = static_cast<Element*>(last);
        } else {
            here->children.pop_back();
            delete last;
        }
    }
}

void NodeAccess::sortAttributes(Element& element) {
    auto& attributes = element.attributes;
    const auto before = [](const Attribute* a, const Attribute* b) { return a->getName() < b->getName(); };
    const auto notBefore = [&before](const Attribute* a, const Attribute* b) { return !before(a, b); };
    if (std::adjacent_find(attributes.begin(), attributes.end(), notBefore) == attributes.end()) return;
    std::stable_sort(attributes.begin(), attributes.end(), before);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        if (kept > 0 && attributes[kept - 1]->getName() == attributes[i]->getName()) {
            delete std::exchange(attributes[kept - 1], attributes[i]);
        } else {
            attributes[kept++] = attributes[i];
        }
    }
    attributes.resize(kept);
}

const std::string& Element::getName() const { return name; }

void Element::setName(const std::string& newName) {
    if (!isName(newName)) {
        Message("<Element::setName> not a valid name " + newName);
        return;
    }
    name = newName;
    touch();
}

bool Element::usingShortNotationForEmptyTags() { return mUseShortNotationForEmptyTags; }

bool Element::setShortNotationForEmptyTags(bool use) {
    const bool before = mUseShortNotationForEmptyTags;
    mUseShortNotationForEmptyTags = use;
    return before;
}

void Element::setDtd(const Dtd* newDtd) {
    NodeAccess::setDtdBelow(*this, newDtd, [newDtd](Element& element) {
        NodeAccess::setOwnDtd(element, newDtd);
        return true;
    });
}

Object* Element::clone() const { return new Element(*this); }

const std::string& Element::toString() const {
    if (!text) text = std::make_unique<std::string>();
    *text = name;
    for (const Attribute* attribute : attributes) {
        if (attribute->isOk()) *text += " " + attribute->toString();
    }
    return *text;
}

bool Element::isElement() const { return true; }

void Element::write(OutStream& out) const { writeElement(*this, out); }

// --- Children ---

int Element::getChildCount() const { return static_cast<int>(children.size()); }

const Object* Element::getChild(int i) const {
    return inRange(i, children.size()) ? children[static_cast<std::size_t>(i)] : nullptr;
}

Object* Element::getChild(int i) { return const_cast<Object*>(static_cast<const Element*>(this)->getChild(i)); }

void Element::insertAt(std::size_t place, Object* child) {
    makeRoom(children);
    NodeAccess::linkNew(*child, NodeAccess::dtd(*this));
    child->setParent(this);
    children.insert(children.begin() + static_cast<std::ptrdiff_t>(place), child);
    touch();
}

void Element::adopt(std::unique_ptr<Object> child) {
    addChild(child.get());
    child.release();
}

void Element::addChild(Object* child) { insertAt(children.size(), child); }

// Looked for from the end, where lists are edited most and where taking out costs least.
std::size_t Element::placeOfChild(const Object* child) const {
    if (child == nullptr) return children.size();
    std::size_t place = children.size();
    while (place > 0 && children[place - 1] != child) --place;
    return place > 0 ? place - 1 : children.size();
}

void Element::insertChild(const Object* before, Object* child) { insertAt(placeOfChild(before), child); }

bool Element::isChild(const Object* node) const { return placeOfChild(node) < children.size(); }

Object* Element::extractChild(int i) {
    if (!inRange(i, children.size())) return nullptr;
    Object* const child = children[static_cast<std::size_t>(i)];
    child->setDtd(nullptr);  // first: it may need memory, and a child taken out would be lost then
    child->setParent(nullptr);
    children.erase(children.begin() + i);
    touch();
    return child;
}

Object* Element::extractChild(Object* child) {
    const std::size_t place = placeOfChild(child);
    return place < children.size() ? extractChild(static_cast<int>(place)) : nullptr;
}

void Element::killChildren() {
    NodeAccess::deleteChildren(*this);
    touch();
}

void Element::addElement(const std::string& itsName, const DataHolder& itsText) {
    adopt(std::make_unique<Element>(itsName, itsText));
}

// --- Attributes ---

int Element::getAttributeCount() const { return static_cast<int>(attributes.size()); }

// The place of the attribute with that name, or the one where it would go.
std::size_t Element::placeOf(const std::string& attribute) const {
    const auto place =
        std::lower_bound(attributes.begin(), attributes.end(), attribute,
                         [](const Attribute* a, const std::string& wanted) { return a->getName() < wanted; });
    return static_cast<std::size_t>(place - attributes.begin());
}

void Element::setAttribute(const std::string& attribute, const DataHolder& value) {
    auto made = std::make_unique<Attribute>(attribute, value);
    made->setParent(this);
    made->setDtd(NodeAccess::dtd(*this));
    const std::size_t place = placeOf(attribute);
    if (place < attributes.size() && attributes[place]->getName() == attribute) {
        delete attributes[place];
        attributes[place] = made.release();
    } else {
        makeRoom(attributes);
        attributes.insert(attributes.begin() + static_cast<std::ptrdiff_t>(place), made.release());
    }
    touch();
}

const Attribute* Element::getAttribute(const std::string& attribute) const {
    const std::size_t place = placeOf(attribute);
    return place < attributes.size() && attributes[place]->getName() == attribute ? attributes[place] : nullptr;
}

Attribute* Element::getAttribute(const std::string& attribute) {
    return const_cast<Attribute*>(asConst(this)->getAttribute(attribute));
}

const Attribute* Element::getAttribute(int i) const {
    return inRange(i, attributes.size()) ? attributes[static_cast<std::size_t>(i)] : nullptr;
}

Attribute* Element::getAttribute(int i) { return const_cast<Attribute*>(asConst(this)->getAttribute(i)); }

const DataHolder& Element::getAttributeValue(const std::string& attribute) const {
    if (const Attribute* own = getAttribute(attribute)) return own->getValue();
    const Dtd* const governing = NodeAccess::dtd(*this);
    if (governing != nullptr && governing->hasDefaultValue(name, attribute))
        return governing->getDefaultValue(name, attribute);
    return emptyData();
}

void Element::removeAttribute(const std::string& attribute) {
    const std::size_t place = placeOf(attribute);
    if (place < attributes.size() && attributes[place]->getName() == attribute)
        removeAttribute(static_cast<int>(place));
}

void Element::removeAttribute(int i) {
    if (!inRange(i, attributes.size())) return;
    const auto place = attributes.begin() + i;
    delete *place;
    attributes.erase(place);
    touch();
}

// --- Searches ---

const Element* Element::getElement(int n) const {
    return nthChildElement(children, n, [](const Element&) { return true; });
}

Element* Element::getElement(int n) { return const_cast<Element*>(asConst(this)->getElement(n)); }

const Element* Element::getElement(const std::string& wanted, int n) const {
    return nthChildElement(children, n, [&wanted](const Element& element) { return element.name == wanted; });
}

Element* Element::getElement(const std::string& wanted, int n) {
    return const_cast<Element*>(asConst(this)->getElement(wanted, n));
}

const Element* Element::getElementByAttribute(const std::string& attribute, const DataHolder& value, int n) const {
    return nthChildElement(children, n, [&](const Element& element) {
        const Attribute* const own = element.getAttribute(attribute);
        return own != nullptr && own->getValue() == value;
    });
}

Element* Element::getElementByAttribute(const std::string& attribute, const DataHolder& value, int n) {
    return const_cast<Element*>(asConst(this)->getElementByAttribute(attribute, value, n));
}

const Element* Element::findElement(const std::string& wanted, int n) const { return findElement(wanted, &n); }

Element* Element::findElement(const std::string& wanted, int n) { return findElement(wanted, &n); }

const Element* Element::findElement(const std::string& wanted, int* n) const {
    return nthBelow(*this, n, [&wanted](const Element& element) { return element.name == wanted; });
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
    for (const Object* child : children) {
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
    makeRoom(children);

    // The scan skips the node behind one that it removes; callers rely on it.
    std::size_t kept = 0;
    for (std::size_t i = 0; i < children.size(); ++i) {
        if (children[i]->isCharData()) {
            delete children[i++];
            if (i == children.size()) break;
        }
        children[kept++] = children[i];
    }
    const bool removed = kept < children.size();
    children.resize(kept);
    if (removed) touch();
    adopt(std::move(made));
}

void Element::setElementCharData(const std::string& wanted, const DataHolder& newText) {
    if (Element* const element = getElement(wanted, 0)) element->setCharData(newText);
}

void Element::findAndSetElementCharData(const std::string& wanted, const DataHolder& newText) {
    if (Element* const element = findElement(wanted, 0)) element->setCharData(newText);
}

}  // namespace Xml
