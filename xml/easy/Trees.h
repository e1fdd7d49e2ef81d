#pragma once

#include "xml/Export.h"
#include "xml/dom/Attribute.h"
#include "xml/dom/Document.h"
#include "xml/dom/Element.h"
#include "xml/dom/Object.h"
#include "xml/dtd/Dtd.h"
#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

// Changes of a tree, with what owns a node in the types. A node that goes into a tree comes as a unique_ptr, which must
// not be null and must be its only owner; one that leaves it goes as one. Every change marks the element and its
// ancestors, and takes their links to the Dtd away, as those of Element do.
//
// Where memory runs out the tree is as it was, and the node that was to go into it is deleted.
namespace Xml {

namespace internal {

// Not for callers: what may be a child of an element. Attributes, documents and document types are none, and a const
// node does not change hands.
template <class Node>
inline constexpr bool mayBeChild =
    std::is_base_of_v<Object, Node> && !std::is_const_v<Node> && !std::is_base_of_v<Attribute, Node> &&
    !std::is_base_of_v<Document, Node> && !std::is_base_of_v<Dtd, Node>;
template <class Node>
using IfChild = std::enable_if_t<mayBeChild<Node>, int>;
template <class Node>
using IfNoChild = std::enable_if_t<!mayBeChild<Node>, int>;

ORVXML_API void appendNode(Element& to, std::unique_ptr<Object> child);
ORVXML_API void insertNode(Object& place, std::unique_ptr<Object> node);
ORVXML_API std::unique_ptr<Object> detachNode(Object& node);
ORVXML_API std::unique_ptr<Object> copyNode(const Object& node);

}  // namespace internal

// Appends a new element, with the text in it unless that is empty. Any name is kept; one that XML does not have is
// found when the tree is written.
ORVXML_API Element& append(Element& to, std::string_view name, std::string_view text = {});

template <class Node, internal::IfChild<Node> = 0>
Node& append(Element& to, std::unique_ptr<Node> child) {
    Node& added = *child;
    internal::appendNode(to, std::move(child));
    return added;
}
template <class Node, internal::IfNoChild<Node> = 0>
Node& append(Element& to, std::unique_ptr<Node> notAChild) = delete;

// Puts a node before another one, which has an element as parent.
template <class Node, internal::IfChild<Node> = 0>
Node& insertBefore(Object& place, std::unique_ptr<Node> node) {
    Node& added = *node;
    internal::insertNode(place, std::move(node));
    return added;
}
template <class Node, internal::IfNoChild<Node> = 0>
Node& insertBefore(Object& place, std::unique_ptr<Node> notAChild) = delete;
template <class Node>
Node& insertBefore(Attribute& notAPlace, std::unique_ptr<Node> node) = delete;

// Takes a node out of its tree, also the root of a document. Null when nobody owns it; it stays where it is then.
template <class Node, internal::IfChild<Node> = 0>
std::unique_ptr<Node> detach(Node& node) {
    return std::unique_ptr<Node>(static_cast<Node*>(internal::detachNode(node).release()));
}
template <class Node, internal::IfNoChild<Node> = 0>
std::unique_ptr<Node> detach(Node& notAChild) = delete;

// Puts a node in the place of another one, which it gives back. An attribute, a document or a document type takes no
// place, and the root of a document gives way to an element only. Where nothing was replaced it gives null, and the
// node that was to come in is deleted.
ORVXML_API std::unique_ptr<Object> replace(Object& old, std::unique_ptr<Object> with);

// A copy of a node with all that is below it. That of a document links to its own Dtd, any other to none. Null where
// the clone of a caller's class is no Node.
template <class Node>
std::unique_ptr<std::remove_const_t<Node>> copyOf(const Node& node) {
    static_assert(std::is_base_of_v<Object, Node>, "copies are made of nodes");
    std::unique_ptr<Object> copy = internal::copyNode(node);
    std::unique_ptr<std::remove_const_t<Node>> made(dynamic_cast<std::remove_const_t<Node>*>(copy.get()));
    if (made != nullptr) copy.release();
    return made;
}

// A document with an empty element of that name.
ORVXML_API std::unique_ptr<Document> makeDocument(std::string_view root);

// Gives the document another root, or none with null, linked to its Dtd. The one before is deleted.
ORVXML_API void setRoot(Document& document, std::unique_ptr<Element> root);

// Sorts the children. Those of which neither is before the other stay in their order. Where all do, nothing changes.
ORVXML_API void sortChildren(Element& of, const std::function<bool(const Object&, const Object&)>& before);

}  // namespace Xml
