#pragma once

#include "xml/dom/internal/NodeAccess.h"

// What a node is, asked without a call where it is of one of the library's own classes.
namespace Xml {

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

// Whether it is one of the library's own classes of leaves among children.
inline bool isPlainLeaf(NodeClass exactly) { return exactly >= NodeClass::Comment; }

// Whether the node is a comment or an instruction, which content models and paths pass over.
inline bool isPassedOver(const Object& node) { return NodeAccess::marks(node).isPassedOver(); }

// The kind of a node, without a call for the library's own classes.
inline bool isElement(const Object& node) {
    const NodeClass exactly = exactClassOf(node);
    return exactly == NodeClass::Element || (exactly == NodeClass::Other && node.isElement());
}
inline bool isCharData(const Object& node) {
    const NodeClass exactly = exactClassOf(node);
    return exactly >= NodeClass::CharData || (exactly == NodeClass::Other && node.isCharData());
}
inline bool isAttribute(const Object& node) {
    const NodeClass exactly = exactClassOf(node);
    return exactly == NodeClass::Attribute || (exactly == NodeClass::Other && node.isAttribute());
}

}  // namespace Xml
