#pragma once

#include "xml/dom/Attribute.h"
#include "xml/dom/CharData.h"
#include "xml/dom/Element.h"
#include "xml/dom/NodeSpan.h"
#include "xml/dom/Object.h"
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Xml {

using internal::AttributeSpan;
using internal::ExactClass;
using internal::Marks;
using internal::NodeClass;
using internal::NodeSpan;

// The insides of nodes, for the readers, the writer, validation and paths: spans, links, marks and factories. What
// stores children and attributes stays within this folder.
struct NodeAccess {
    static const Marks& marks(const Object& node) { return node.marks; }
    static const Dtd* dtd(const Object& node) { return node.marks.dtd(); }
    static void setOwnDtd(Object& node, const Dtd* dtd) { node.marks.setDtd(dtd); }

    // --- What an element holds: spans, which are good until it changes ---

    static const std::string& name(const Element& element) { return element.name; }
    static const std::string& name(const Attribute& attribute) { return attribute.name; }
    static NodeSpan children(const Element& element) { return element.children.span(); }
    static AttributeSpan attributes(const Element& element) { return element.attributes.span(); }

    // The children as the list that a content model of a caller's own is asked with; good until they change.
    static const std::vector<Object*>& childList(const Element& element) { return element.children.list(); }

    // What validation keeps at the element.
    static std::uint64_t& verdict(const Element& element) { return element.verdict; }

    // --- Nodes for readers: names have been checked, nothing links to a Dtd yet, all is marked as changed already ---

    // An element, and character data that is still empty.
    static std::unique_ptr<Element> makeElement(std::string_view name) {
        std::unique_ptr<Element> element = makeElement();
        element->name = name;
        return element;
    }
    static std::unique_ptr<CharData> makeCharData() { return exactly(NodeClass::CharData, new CharData()); }

    // Appends a child. Neither what is below it nor what is above it is walked: links and marks are what addChild would
    // leave.
    static void appendChild(Element& element, std::unique_ptr<Object> child) {
        child->parent = &element;
        element.children.append(std::move(child));
    }

    // Appends an attribute, in no order. sortAttributes has to follow before anything else asks for attributes.
    static void appendAttribute(Element& element, std::string_view name, DataHolder&& value) {
        std::unique_ptr<Attribute> attribute = exactly(NodeClass::Attribute, new Attribute());
        attribute->name = name;
        attribute->value = std::move(value);
        attribute->parent = &element;
        element.attributes.append(std::move(attribute));
    }

    // Puts the attributes in the order of their names; of several with one name the last one stays.
    static void sortAttributes(Element& element) { element.attributes.sort(); }

    // --- For this folder ---

    // A node that was just made as an object of exactly that class.
    template <class Node>
    static std::unique_ptr<Node> exactly(NodeClass made, Node* node) {
        node->marks.exactClass.set(made);
        return std::unique_ptr<Node>(node);
    }

    // A node that is not whole yet: what was found out about its class may be wrong.
    static void forgetClass(Object& node) { node.marks.exactClass.set(NodeClass::Unknown); }

    // An element without a name.
    static std::unique_ptr<Element> makeElement() { return exactly(NodeClass::Element, new Element()); }

    // Gives the attributes of the element the link; they are never objects of a caller's class.
    static void linkAttributes(Element& element, const Dtd* dtd) {
        for (Attribute* attribute : element.attributes.span()) attribute->marks.setDtd(dtd);
    }

    // Deletes the children, whatever their depth, without recursion and without allocating.
    static void deleteChildren(Element& element);
};

// The class that the node is exactly an object of, if it is one that loops treat themselves.
inline NodeClass exactClassOf(const Object& node) { return NodeAccess::marks(node).exactClass.of(node); }

template <class Node>
bool isExactly(const Object& node);
template <>
inline bool isExactly<Element>(const Object& node) {
    return exactClassOf(node) == NodeClass::Element;
}
template <>
inline bool isExactly<CharData>(const Object& node) {
    return exactClassOf(node) == NodeClass::CharData;
}

}  // namespace Xml
