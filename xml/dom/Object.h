#pragma once

#include "xml/Export.h"
#include "xml/dom/Marks.h"
#include <cstddef>
#include <new>
#include <string>

namespace Xml {

class Attribute;
class CharData;
class Document;
class Dtd;
class Element;
class OutStream;

// The base of all nodes: the link to the parent, the link to the governing Dtd, type queries with checked casts, the
// mark of change, and the record of where the node was last written.
//
// Ownership is a tree: a node is owned by exactly one container or by the caller; cycles and nodes with two owners are
// the caller's error. Links do not own: a Dtd must outlive the nodes that link to it, or be taken from them with
// setDtd(nullptr).
class ORVXML_API Object {
public:
    Object();

    // The copy keeps the link to the Dtd only: it has no parent, is marked as changed and was never written.
    Object(const Object& other);
    Object& operator=(const Object&) = delete;

    virtual ~Object();

    // Sets the link to the governing Dtd; an element passes it on to its whole subtree.
    virtual void setDtd(const Dtd* dtd);

    // A new copy of the node with all that it owns; the caller owns it.
    virtual Object* clone() const = 0;

    // A short text of the node, kept in the node until the next call.
    virtual const std::string& toString() const = 0;

    virtual bool isElement() const;
    virtual bool isAttribute() const;
    virtual bool isCharData() const;
    virtual bool isDtd() const;
    virtual bool isDocument() const;

    // Writes the node's XML text. Containers write what they hold through toStream.
    virtual void write(OutStream& out) const = 0;

    // The node as what it is; for any other class null, and a diagnostic such as "<Object::toElement> Not a Element".
    Element* toElement();
    const Element* toElement() const;
    Attribute* toAttribute();
    const Attribute* toAttribute() const;
    CharData* toCharData();
    const CharData* toCharData() const;
    Dtd* toDtd();
    const Dtd* toDtd() const;
    Document* toDocument();
    const Document* toDocument() const;

    // Containers set the parent of what they take; users normally do not.
    void setParent(Object* parent);
    Object* getParent();
    const Object* getParent() const;

    // Marks this node and all its ancestors as changed and clears their links to the Dtd: a changed subtree is no
    // longer known to conform to it.
    void touch();

    // Writes the node and records where. With the RW optimisation on, a node that has not changed since it was written
    // and whose record begins where the stream stands is not written: the stream moves past it. The record holds a
    // position, not a sink, and is made also where the sink failed: with the optimisation on, write to nothing but the
    // one stream that is rewritten, and not again to one that failed.
    void toStream(OutStream& out) const;

    // Switches the RW optimisation; returns what was set before.
    static bool setRWOptimization(bool use);

    static bool useRWOptimization;  // false at first

    // `new` takes the memory of a node from the global operator new. `delete` finds out where it came from: the nodes
    // of a tree that was read or copied lie side by side in memory of the tree.
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t size, std::align_val_t alignment);
    static void* operator new(std::size_t size, const std::nothrow_t& tag) noexcept;
    static void* operator new(std::size_t size, void* place) noexcept;
    static void operator delete(void* node, std::size_t size) noexcept;
    static void operator delete(void* node, std::size_t size, std::align_val_t alignment) noexcept;
    static void operator delete(void* node, const std::nothrow_t& tag) noexcept;
    static void operator delete(void* node, void* place) noexcept;

protected:
    // Of a node that the library makes as an object of exactly that class.
    explicit Object(internal::NodeClass made) : marks(made) {}

    // Of one in the memory of a tree.
    Object(internal::NodeClass made, internal::TextPlace place, Object* itsParent)
        : marks(made, place), parent(itsParent) {}

private:
    friend struct NodeAccess;

    internal::Marks marks;
    Object* parent = nullptr;
};

}  // namespace Xml
