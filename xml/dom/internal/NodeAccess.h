#pragma once

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dom/Object.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Xml {

// Whether the node is of exactly this class. Loops treat only such nodes themselves: a class derived from it may override
// what they would do.
template <class Node>
bool isExactly(const Object& node) {
    return typeid(node) == typeid(Node);
}

// The insides of nodes, for the readers, the writer and validation.
struct NodeAccess {
    static const Dtd* dtd(const Object& node) { return node.dtd; }
    static void setOwnDtd(Object& node, const Dtd* dtd) { node.dtd = dtd; }
    static bool dirty(const Object& node) { return node.dirty; }
    static int writeStart(const Object& node) { return node.writeStart; }
    static int writeEnd(const Object& node) { return node.writeEnd; }
    static void beginWriting(const Object& node, int position) {
        node.writeStart = position;
        node.writeEnd = OutStreamAccess::kUnrecordable;  // not known before it is written, and never if it cannot be
    }
    static void endWriting(const Object& node, int position) {
        node.writeEnd = position;
        node.dirty = false;
    }

    static void setParent(Object& node, Object* parent) { node.parent = parent; }

    // An element without a name, for who gives it one that has been checked.
    static Element* makeElement() { return new Element(); }

    // An attribute of that element, with a name that has been checked.
    static std::unique_ptr<Attribute> makeAttribute(const std::string& name, DataHolder&& value, Element& parent) {
        auto attribute = std::make_unique<Attribute>();
        attribute->name = name;
        attribute->value = std::move(value);
        setParent(*attribute, &parent);
        return attribute;
    }

    static std::string& name(Element& element) { return element.name; }
    static const std::string& name(const Element& element) { return element.name; }
    static const std::string& name(const Attribute& attribute) { return attribute.name; }
    static std::vector<Object*>& children(Element& element) { return element.children; }
    static const std::vector<Object*>& children(const Element& element) { return element.children; }
    static std::vector<Attribute*>& attributes(Element& element) { return element.attributes; }
    static const std::vector<Attribute*>& attributes(const Element& element) { return element.attributes; }
    static std::uint64_t& verdict(const Element& element) { return element.verdict; }

    // Links `top` and what is below it to `dtd`, in the order of a recursion: each element, its children, its attributes.
    // `enter` links the element itself and says whether to go on below it. Nodes of other classes get their setDtd called.
    template <class Enter>
    static void setDtdBelow(Element& top, const Dtd* dtd, Enter enter);

    // Links a node that nobody owns yet, with all below it. Where memory runs out it has no links afterwards: it may outlive the
    // Dtd. Taking them away goes the same way again, with the memory that was just given back.
    static void linkNew(Object& node, const Dtd* dtd) {
        try {
            node.setDtd(dtd);
        } catch (...) {
            try {
                node.setDtd(nullptr);
            } catch (...) {}
            throw;
        }
    }

    static void linkAttributes(Element& element, const Dtd* dtd) {
        for (Attribute* attribute : element.attributes) attribute->Object::dtd = dtd;
    }

    // Deletes the children, whatever their depth, without recursion and without allocating.
    static void deleteChildren(Element& element);
};

template <class Enter>
void NodeAccess::setDtdBelow(Element& top, const Dtd* dtd, Enter enter) {
    struct Place {
        Element* element;
        std::size_t child;
    };
    std::vector<Place> open;
    const auto begin = [&](Element& element) {
        if (!enter(element)) return;
        if (element.children.empty()) {
            linkAttributes(element, dtd);
        } else {
            open.push_back({&element, 0});
        }
    };
    begin(top);
    while (!open.empty()) {
        Element& here = *open.back().element;
        if (open.back().child == here.children.size()) {
            linkAttributes(here, dtd);
            open.pop_back();
            continue;
        }
        Object& child = *here.children[open.back().child++];
        if (isExactly<Element>(child)) {
            begin(static_cast<Element&>(child));
        } else {
            child.setDtd(dtd);
        }
    }
}

}  // namespace Xml
