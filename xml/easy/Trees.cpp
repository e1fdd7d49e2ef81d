#include "xml/easy/Trees.h"

#include "xml/dom/internal/Editing.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/internal/MakeText.h"
#include <algorithm>
#include <cstddef>
#include <vector>

namespace Xml {

namespace {

// The document that the node is the root of; else null.
Document* documentOfRoot(Object& node) {
    Object* const parent = node.getParent();
    if (parent == nullptr || !parent->isDocument()) return nullptr;
    Document& document = static_cast<Document&>(*parent);
    return document.getRoot() == &node ? &document : nullptr;
}

}  // namespace

void internal::appendNode(Element& to, std::unique_ptr<Object> child) {
    to.addChild(child.get());
    child.release();
}

void internal::insertNode(Object& place, std::unique_ptr<Object> node) {
    parentOf(place)->insertChild(&place, node.get());
    node.release();
}

std::unique_ptr<Object> internal::detachNode(Object& node) {
    if (Document* const document = documentOfRoot(node)) return exchangeRoot(*document, nullptr);
    const int place = indexOf(node);
    return std::unique_ptr<Object>(place >= 0 ? parentOf(node)->extractChild(place) : nullptr);
}

std::unique_ptr<Object> internal::copyNode(const Object& node) {
    std::unique_ptr<Object> copy(node.clone());
    if (!node.isDocument()) copy->setDtd(nullptr);
    return copy;
}

Element& append(Element& to, std::string_view name, std::string_view text) {
    std::unique_ptr<Element> child = NodeAccess::makeElement(name);
    if (!text.empty()) NodeAccess::appendChild(*child, makeText(text));
    return append(to, std::move(child));
}

std::unique_ptr<Object> replace(Object& old, std::unique_ptr<Object> with) {
    if (with->isAttribute() || with->isDocument() || with->isDtd()) return nullptr;
    std::unique_ptr<Object> taken;
    if (Document* const document = documentOfRoot(old)) {
        Element* const root = asElement(*with);
        if (root == nullptr) return nullptr;
        taken = exchangeRoot(*document, root);
    } else {
        const int place = indexOf(old);
        if (place < 0) return nullptr;
        taken = exchangeChild(*parentOf(old), static_cast<std::size_t>(place), with.get());
    }
    with.release();
    return taken;
}

std::unique_ptr<Document> makeDocument(std::string_view root) {
    return NodeAccess::makeDocument(NodeAccess::makeElement(root));
}

void setRoot(Document& document, std::unique_ptr<Element> root) {
    const std::unique_ptr<Element> before = exchangeRoot(document, root.get());
    root.release();
}

void sortChildren(Element& of, const std::function<bool(const Object&, const Object&)>& before) {
    const auto isBefore = [&before](const Object* one, const Object* other) { return before(*one, *other); };
    const NodeSpan children = NodeAccess::children(of);
    if (std::is_sorted(children.begin(), children.end(), isBefore)) return;
    std::vector<Object*> inOrder(children.begin(), children.end());
    std::stable_sort(inOrder.begin(), inOrder.end(), isBefore);
    reorderChildren(of, inOrder.data());
}

}  // namespace Xml
