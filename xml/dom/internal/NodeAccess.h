#pragma once

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeSpan.h"
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

// The insides of nodes, for the readers, the writer, validation and paths: spans, links, marks and factories. What stores
// children and attributes stays within this folder.
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

    // --- What an element holds: spans, which are good until it changes ---

    static const std::string& name(const Element& element) { return element.name; }
    static const std::string& name(const Attribute& attribute) { return attribute.name; }
    static NodeSpan children(const Element& element) { return spanOf(element.children); }
    static AttributeSpan attributes(const Element& element) { return spanOf(element.attributes); }

    // The children as the list that a content model of a caller's own is asked with; good until they change.
    static const std::vector<Object*>& childList(const Element& element) { return element.children; }

    // --- Nodes for readers: names have been checked, nothing links to a Dtd yet, all is marked as changed already ---

    // An element, and character data that is still empty.
    static std::unique_ptr<Element> makeElement(const std::string& name) {
        std::unique_ptr<Element> element(new Element());
        element->name = name;
        return element;
    }
    static std::unique_ptr<CharData> makeCharData() { return std::make_unique<CharData>(); }

    // Appends a child. Neither what is below it nor what is above it is walked: links and marks are what addChild would leave.
    static void appendChild(Element& element, std::unique_ptr<Object> child) {
        setParent(*child, &element);
        element.children.push_back(child.get());
        child.release();
    }

    // Appends an attribute, in no order. sortAttributes has to follow before anything else asks for attributes.
    static void appendAttribute(Element& element, const std::string& name, DataHolder&& value) {
        auto attribute = std::make_unique<Attribute>();
        attribute->name = name;
        attribute->value = std::move(value);
        setParent(*attribute, &element);
        element.attributes.push_back(attribute.get());
        attribute.release();
    }

    // Puts the attributes in the order of their names; of several with one name the last one stays.
    static void sortAttributes(Element& element);

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

private:
    template <class Node>
    static SpanOf<Node> spanOf(const std::vector<Node*>& nodes) {
        return {nodes.data(), nodes.data() + nodes.size()};
    }
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
