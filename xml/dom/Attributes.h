#pragma once

#include "xml/dom/NodeArray.h"
#include "xml/dom/NodeSpan.h"
#include <cstddef>
#include <memory>
#include <string>

namespace Xml {
class Attribute;
}  // namespace Xml

namespace Xml::internal {

// The attributes of one element, in the byte order of their names. It owns them, and they never move in memory: only
// the pointers to them do. It sets neither links nor parents: that is the element's affair.
//
// Not for callers.
class Attributes {
public:
    using Node = Attribute;

    Attributes() = default;
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes();

    // Good until the next change.
    AttributeSpan span() const { return sorted.span(); }

    std::size_t size() const { return sorted.size(); }
    bool empty() const { return sorted.empty(); }

    // A place below size().
    Attribute* operator[](std::size_t place) const { return sorted[place]; }

    // The attribute of that name; null without one. O(log n).
    Attribute* find(const std::string& name) const;

    // Puts the attribute where its name belongs. In the tag it is the last, or takes the place of the one of that name,
    // which is deleted. Where memory runs out nothing has changed, but that the attribute is deleted.
    void set(std::unique_ptr<Attribute> attribute);

    // Whether there was one of that name.
    bool remove(const std::string& name);
    void remove(std::size_t place);

    // --- In their order, where there is none yet ---

    void reserve(std::size_t count) { sorted.reserve(count); }

    // Into the room for them. They count when the filling goes.
    using Filling = NodeArray<Attribute>::Filling;
    Filling fill() { return Filling(sorted); }

    // Memory beside the nodes of a tree (see NodeArray); what is dropped with that is forgotten, and not deleted.
    static std::size_t bytesForFull(std::size_t count) { return NodeArray<Attribute>::bytesForFull(count); }
    void lend(void* memory, std::size_t count) { sorted.lend(memory, count); }
    Attribute** lendFull(void* memory, std::size_t count) { return sorted.lendFull(memory, count); }
    Attribute** extend(std::size_t count) { return sorted.extend(count); }
    void dropWithTree() { sorted.dropWithTree(); }

private:
    std::size_t placeOf(const std::string& name) const;
    bool isAt(std::size_t place, const std::string& name) const;
    void putLastInTag(const Attribute& attribute) const;

    NodeArray<Attribute> sorted;
};

}  // namespace Xml::internal
