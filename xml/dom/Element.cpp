#include "xml/dom/Element.h"

#include "xml/dom/internal/AsideTexts.h"
#include "xml/dom/internal/Copying.h"
#include "xml/dom/internal/Linking.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Preorder.h"
#include "xml/dom/internal/Writer.h"
#include "xml/dtd/Dtd.h"
#include "xml/text/Message.h"
#include "xml/text/Names.h"
#include "xml/text/internal/EmptyData.h"
#include <algorithm>
#include <memory>
#include <utility>

// Everything that goes through a subtree keeps its place on a stack of its own and treats the library's own classes in
// the loop; nodes of other classes get their virtual operations called.

namespace Xml {

namespace {

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
    copyInto(*this, other);
    // Code of callers in a clone may have asked for the class of this element, which may become one of a derived class.
    NodeAccess::forgetClass(*this);
}

Element::~Element() { NodeAccess::deleteChildren(*this); }

// What is aside has to be taken away when the node goes.
void NodeAccess::putPlaceAside(const Object& node) {
    Arena::noteChange(node);
    keepPlace(node, place(node));
}

void NodeAccess::dropWhole(Element& top) {
    Arena* const arena = Arena::wholeBelow(top);
    if (arena == nullptr) return;
    dropNodes(top);
    arena->drop();
}

// Goes down into the last child as long as that has children itself, and comes back up by the parent links, which it
// sets on the way down: they need not have been right.
//
// What a tree was read or copied into goes at once.
void NodeAccess::deleteChildren(Element& top) {
    dropWhole(top);
    Element* here = &top;
    for (;;) {
        if (here->children.empty()) {
            if (here == &top) return;
            here = static_cast<Element*>(here->parent);
        }
        Object* const last = here->children.last();
        if (last != nullptr && isExactly<Element>(*last) && !static_cast<Element*>(last)->children.empty()) {
            last->parent = here;
            here = static_cast<Element*>(last);
            dropWhole(*here);
        } else {
            here->children.extractLast();  // and deletes it
        }
    }
}

const std::string& Element::getName() const { return name.text(); }

void Element::setName(const std::string& newName) {
    if (!isName(newName)) {
        Message("<Element::setName> not a valid name " + newName);
        return;
    }
    name.set(newName);
    Arena::noteChange(*this);
    touch();
}

bool Element::usingShortNotationForEmptyTags() { return mUseShortNotationForEmptyTags; }

bool Element::setShortNotationForEmptyTags(bool use) {
    const bool before = mUseShortNotationForEmptyTags;
    mUseShortNotationForEmptyTags = use;
    return before;
}

void Element::setDtd(const Dtd* newDtd) { linkAll(*this, newDtd); }

Object* Element::clone() const { return NodeAccess::exactly(NodeClass::Element, new Element(*this)).release(); }

const std::string& Element::toString() const {
    std::string made = getName();
    for (const Attribute* attribute : attributes.span()) {
        if (attribute->isOk()) made += " " + attribute->toString();
    }
    return AsideTexts::of(*this) = std::move(made);
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
    NodeAccess::noteEdit(*this);
    children.makeRoom();
    Object* const parentBefore = child->getParent();
    child->setParent(this);
    children.insert(place, std::unique_ptr<Object>(child));
    try {
        child->setDtd(NodeAccess::dtd(*this));
    } catch (...) {
        // Its own setDtd may have moved it.
        if (const std::size_t now = children.placeOf(child); now < children.size()) {
            children.extract(now).release();
            child->setParent(parentBefore);
        }
        unlink(*child);
        throw;
    }
    touch();
}

void Element::adopt(std::unique_ptr<Object> child) {
    addChild(child.get());
    child.release();
}

void Element::addChild(Object* child) { insertAt(children.size(), child); }

void Element::insertChild(const Object* before, Object* child) { insertAt(children.placeOf(before), child); }

bool Element::isChild(const Object* node) const { return children.placeOf(node) < children.size(); }

Object* Element::extractChild(int i) {
    if (!inRange(i, children.size())) return nullptr;
    const auto place = static_cast<std::size_t>(i);
    NodeAccess::noteEdit(*this);
    Arena::noteChange(*children[place]);
    std::unique_ptr<Object> child = children.extract(place);
    touch();
    child->setParent(nullptr);
    try {
        child->setDtd(nullptr);
    } catch (...) {
        child->setParent(this);
        children.insert(std::min(place, children.size()), std::move(child));  // has room
        throw;
    }
    return child.release();
}

Object* Element::extractChild(Object* child) {
    const std::size_t place = children.placeOf(child);
    return place < children.size() ? extractChild(static_cast<int>(place)) : nullptr;
}

void Element::killChildren() {
    NodeAccess::noteEdit(*this);
    NodeAccess::deleteChildren(*this);
    touch();
}

void Element::addElement(const std::string& itsName, const DataHolder& itsText) {
    adopt(std::make_unique<Element>(itsName, itsText));
}

// --- Attributes ---

int Element::getAttributeCount() const { return static_cast<int>(attributes.size()); }

void Element::setAttribute(const std::string& attribute, const DataHolder& value) {
    auto made = std::make_unique<Attribute>(attribute, value);
    made->setParent(this);
    made->setDtd(NodeAccess::dtd(*this));
    NodeAccess::noteEdit(*this);
    attributes.set(std::move(made));
    touch();
}

const Attribute* Element::getAttribute(const std::string& attribute) const { return attributes.find(attribute); }

Attribute* Element::getAttribute(const std::string& attribute) { return attributes.find(attribute); }

const Attribute* Element::getAttribute(int i) const {
    return inRange(i, attributes.size()) ? attributes[static_cast<std::size_t>(i)] : nullptr;
}

Attribute* Element::getAttribute(int i) { return const_cast<Attribute*>(asConst(this)->getAttribute(i)); }

const DataHolder& Element::getAttributeValue(const std::string& attribute) const {
    if (const Attribute* own = getAttribute(attribute)) return own->getValue();
    const Dtd* const governing = NodeAccess::dtd(*this);
    if (governing != nullptr && governing->hasDefaultValue(getName(), attribute))
        return governing->getDefaultValue(getName(), attribute);
    return emptyData();
}

void Element::removeAttribute(const std::string& attribute) {
    if (!attributes.remove(attribute)) return;
    NodeAccess::noteEdit(*this);
    touch();
}

void Element::removeAttribute(int i) {
    if (!inRange(i, attributes.size())) return;
    NodeAccess::noteEdit(*this);
    attributes.remove(static_cast<std::size_t>(i));
    touch();
}

}  // namespace Xml
