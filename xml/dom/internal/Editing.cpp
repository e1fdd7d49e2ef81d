#include "xml/dom/internal/Editing.h"

#include "xml/dom/Attribute.h"
#include "xml/dom/internal/EditingAccess.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/Dtd.h"
#include <string>
#include <utility>

namespace Xml {

namespace {

// Links a node that comes into a tree, then takes the one that it takes the place of out of it: what may fail of an
// exchange. `before` may be null.
void relink(Object& node, Object& parent, const Dtd* dtd, Object* before) {
    node.setParent(&parent);
    try {
        node.setDtd(dtd);
        if (before == nullptr) return;
        before->setParent(nullptr);
        before->setDtd(nullptr);
    } catch (...) {
        if (before != nullptr) before->setParent(&parent);
        node.setParent(nullptr);
        throw;
    }
}

}  // namespace

void giveAttribute(Element& element, std::string_view name, std::string_view value) {
    const std::string itsName(name);
    internal::Attributes& attributes = EditingAccess::attributes(element);
    if (Attribute* const present = attributes.find(itsName)) {
        present->setValue(DataHolder(std::string(value)));
    } else {
        auto made = std::make_unique<Attribute>();
        EditingAccess::name(*made).set(itsName);
        NodeAccess::ownText(*made).assign(value);
        made->setParent(&element);
        made->setDtd(NodeAccess::dtd(element));
        NodeAccess::noteEdit(element);
        attributes.set(std::move(made));
    }
    element.touch();
}

std::unique_ptr<Object> exchangeChild(Element& parent, std::size_t place, Object* node) {
    internal::Children& children = EditingAccess::children(parent);
    Object* const before = children[place];
    NodeAccess::noteEdit(parent);
    Arena::noteChange(*before);
    relink(*node, parent, NodeAccess::dtd(parent), before);
    std::unique_ptr<Object> taken = children.exchange(place, std::unique_ptr<Object>(node));
    parent.touch();
    return taken;
}

void reorderChildren(Element& parent, Object* const* inOrder) {
    NodeAccess::noteEdit(parent);
    EditingAccess::children(parent).reorder(inOrder);
    parent.touch();
}

std::unique_ptr<Element> exchangeRoot(Document& document, Element* root) {
    std::unique_ptr<Element> before;
    if (root == nullptr) {
        before.reset(document.extractRoot());
    } else {
        relink(*root, document, document.getDtd(), document.getRoot());
        before = std::exchange(EditingAccess::root(document), std::unique_ptr<Element>(root));
    }
    document.touch();
    return before;
}

}  // namespace Xml
