#pragma once

#include "xml/Export.h"
#include "xml/dom/Attributes.h"
#include "xml/dom/Children.h"
#include "xml/dom/Name.h"
#include "xml/dom/Object.h"
#include "xml/text/DataHolder.h"
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Xml {

class Attribute;

// An element: a name, attributes in the byte order of their names, and children (elements and character data) in
// document order. It owns both.
//
// Children and attributes carry this element as parent and the link to the Dtd that it had when they came. Every change
// marks the element and its ancestors and clears their links to the Dtd (see Object::touch). Operations whose result is
// null or an empty value say so where nothing fits; indices count from 0, and one out of range finds nothing and
// changes nothing.
class ORVXML_API Element : public Object {
public:
    // A name that is no name is reported as by setName and leaves the name empty.
    explicit Element(const std::string& name);

    // The same with one child: the text.
    Element(const std::string& name, const DataHolder& text);

    // Copies the whole subtree. The copies of elements link to no Dtd; those of attributes and character data keep
    // theirs.
    Element(const Element& other);

    ~Element() override;

    const std::string& getName() const;

    // A name that is no name is reported ("<Element::setName> not a valid name ", the name) and changes nothing.
    void setName(const std::string& name);

    // Whether elements without children are written as <a/> (true at first) or as <a></a>; for the whole process.
    static bool usingShortNotationForEmptyTags();

    // Returns what was set before.
    static bool setShortNotationForEmptyTags(bool use);

    void setDtd(const Dtd* dtd) override;
    Object* clone() const override;

    // The name and the attributes as they stand in the start tag, without brackets.
    const std::string& toString() const override;
    bool isElement() const override;
    void write(OutStream& out) const override;

    // --- Children ---

    int getChildCount() const;
    Object* getChild(int i);
    const Object* getChild(int i) const;

    // Appends a node and takes ownership. It must not be null and must have no owner. It is in its place and has its
    // parent when its setDtd is called with this element's link. Where memory runs out, list and parent are as before,
    // and the node, which stays the caller's, links to no Dtd.
    void addChild(Object* child);

    // Inserts in front of `before`, or at the end when that is no child of this element; otherwise as addChild.
    void insertChild(const Object* before, Object* child);
    bool isChild(const Object* node) const;

    // Takes a child out: it has no parent and no link to a Dtd any more, and the caller owns it. Null when there is no
    // such child. It is out and without a parent when its setDtd is called with null. Where memory runs out it is back
    // in its place.
    Object* extractChild(int i);
    Object* extractChild(Object* child);

    // Deletes all children.
    void killChildren();

    // Appends a new element that holds the text.
    void addElement(const std::string& name, const DataHolder& text);

    // --- Attributes ---

    int getAttributeCount() const;

    // Adds the attribute or replaces the one of that name. A name that is no name is reported and kept.
    void setAttribute(const std::string& name, const DataHolder& value);

    // By name, or the i-th in name order. The pointer is good until that attribute is replaced or removed, whatever
    // happens to others.
    Attribute* getAttribute(const std::string& name);
    const Attribute* getAttribute(const std::string& name) const;
    Attribute* getAttribute(int i);
    const Attribute* getAttribute(int i) const;

    // The value of the attribute; without one the default value from the Dtd, where the element links to one; else
    // empty. Good as long as the attribute, or the Dtd, is there and unchanged.
    const DataHolder& getAttributeValue(const std::string& name) const;

    // Absent names and indices change nothing.
    void removeAttribute(const std::string& name);
    void removeAttribute(int i);

    // --- Searches ---
    // `n` selects the match with that 0-based index; null when there is none. getElement... look at the direct
    // children; find... look at the whole subtree below this element in document order, itself left out.

    // The n-th child element, of any name or of that name.
    Element* getElement(int n);
    const Element* getElement(int n) const;
    Element* getElement(const std::string& name, int n = 0);
    const Element* getElement(const std::string& name, int n = 0) const;

    // The n-th child element that has the attribute with that value itself; defaults of the Dtd do not count.
    Element* getElementByAttribute(const std::string& attribute, const DataHolder& value, int n = 0);
    const Element* getElementByAttribute(const std::string& attribute, const DataHolder& value, int n = 0) const;

    // An n below 0 counts as 0. The forms with a pointer count `*n` down by one for each match that they pass.
    Element* findElement(const std::string& name, int n = 0);
    const Element* findElement(const std::string& name, int n = 0) const;
    Element* findElement(const std::string& name, int* n);
    const Element* findElement(const std::string& name, int* n) const;

    // The n-th element below for which getAttributeValue gives that value: defaults count, and the empty value matches
    // elements without the attribute.
    Element* findElementByAttribute(const std::string& attribute, const DataHolder& value, int n = 0);
    const Element* findElementByAttribute(const std::string& attribute, const DataHolder& value, int n = 0) const;
    Element* findElementByAttribute(const std::string& attribute, const DataHolder& value, int* n);
    const Element* findElementByAttribute(const std::string& attribute, const DataHolder& value, int* n) const;

    // Appends every element of that name below this one to `found`.
    void findAllElements(const std::string& name, std::vector<Element*>& found);
    void findAllElements(const std::string& name, std::vector<const Element*>& found) const;

    // --- Character data ---

    // The decoded text of the first child that is character data, of this element, of its first child element of that
    // name, of the first element of that name below it; else empty. Good until the text of that node is asked for
    // again.
    const DataHolder& getCharData() const;
    const DataHolder& getElementCharData(const std::string& name) const;
    const DataHolder& findElementCharData(const std::string& name) const;

    // Removes children that are character data and appends the text. The scan skips the node after one that it removed:
    // of two in a row the second stays.
    void setCharData(const DataHolder& text);

    // The same on the first child element of that name, on the first element of that name below; nothing without one.
    void setElementCharData(const std::string& name, const DataHolder& text);
    void findAndSetElementCharData(const std::string& name, const DataHolder& text);

    static bool mUseShortNotationForEmptyTags;

private:
    friend struct NodeAccess;
    friend struct EditingAccess;

    ORVXML_LOCAL Element();
    explicit Element(internal::NodeClass made) : Object(made) {}
    Element(const std::string* sharedName, Object* itsParent)
        : Object(internal::NodeClass::Element, internal::TextPlace::Own, itsParent), name(sharedName) {}

    ORVXML_LOCAL void insertAt(std::size_t place, Object* child);
    ORVXML_LOCAL void adopt(std::unique_ptr<Object> child);

    internal::Children children;
    internal::Attributes attributes;
    internal::Name name;
};

}  // namespace Xml
