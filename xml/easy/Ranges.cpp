#include "xml/easy/Ranges.h"

#include "xml/dom/Instruction.h"
#include "xml/dom/NodeKind.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Preorder.h"
#include "xml/easy/internal/ChildPlaces.h"
#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace Xml {

namespace {

bool hasName(const Element& element, std::string_view name) {
    return name.empty() || NodeAccess::name(element) == name;
}

template <class Node>
Node& asGiven(const Object& node) {
    return static_cast<Node&>(const_cast<Object&>(node));
}

// --- Each for nodes that are const and for others ---

template <class Node>
Range<Node> allChildren(const Element& of) {
    const NodeSpan span = NodeAccess::children(of);
    return Range<Node>(std::vector<Node*>(span.begin(), span.end()));
}

template <class Node>
Range<Node> childElements(const Element& of, std::string_view name) {
    std::vector<Node*> found;
    for (Object* const child : NodeAccess::children(of)) {
        if (isElement(*child) && hasName(static_cast<const Element&>(*child), name))
            found.push_back(&asGiven<Node>(*child));
    }
    return Range<Node>(std::move(found));
}

template <class Node>
Range<Node> elementsBelow(const Element& of, std::string_view name) {
    std::vector<Node*> found;
    ElementWalk walk(of);
    while (const Element* const element = walk.next()) {
        if (hasName(*element, name)) found.push_back(&asGiven<Node>(*element));
    }
    return Range<Node>(std::move(found));
}

template <class Node>
Range<Node> attributesInTag(const Element& of) {
    const AttributeSpan span = NodeAccess::attributes(of);
    std::vector<Node*> all(span.begin(), span.end());
    std::sort(all.begin(), all.end(), [](const Attribute* one, const Attribute* other) {
        const std::uint64_t first = NodeAccess::order(*one);
        const std::uint64_t second = NodeAccess::order(*other);
        return first != second ? first < second : NodeAccess::name(*one) < NodeAccess::name(*other);
    });
    return Range<Node>(std::move(all));
}

const Object* siblingOf(const Object& node, int step) {
    const int place = indexOf(node);
    return place < 0 ? nullptr : parentOf(node)->getChild(place + step);
}

}  // namespace

Range<Object> children(Element& of) { return allChildren<Object>(of); }
Range<const Object> children(const Element& of) { return allChildren<const Object>(of); }

Range<Element> elements(Element& of, std::string_view name) { return childElements<Element>(of, name); }
Range<const Element> elements(const Element& of, std::string_view name) {
    return childElements<const Element>(of, name);
}

Range<Element> descendants(Element& of, std::string_view name) { return elementsBelow<Element>(of, name); }
Range<const Element> descendants(const Element& of, std::string_view name) {
    return elementsBelow<const Element>(of, name);
}

Range<Attribute> attributes(Element& of) { return attributesInTag<Attribute>(of); }
Range<const Attribute> attributes(const Element& of) { return attributesInTag<const Attribute>(of); }

const Element* parentOf(const Object& node) {
    const Object* const parent = node.getParent();
    return parent != nullptr ? asElement(*parent) : nullptr;
}

Element* parentOf(Object& node) { return const_cast<Element*>(parentOf(static_cast<const Object&>(node))); }

const Object* nextOf(const Object& node) { return siblingOf(node, 1); }
Object* nextOf(Object& node) { return const_cast<Object*>(siblingOf(node, 1)); }

const Object* previousOf(const Object& node) { return siblingOf(node, -1); }
Object* previousOf(Object& node) { return const_cast<Object*>(siblingOf(node, -1)); }

int indexOf(const Object& node) {
    const Element* const parent = isAttribute(node) ? nullptr : parentOf(node);
    if (parent == nullptr) return -1;
    const std::size_t place = placeAmongChildren(*parent, node);
    return place < NodeAccess::children(*parent).size() ? static_cast<int>(place) : -1;
}

const Element* asElement(const Object& node) { return isElement(node) ? static_cast<const Element*>(&node) : nullptr; }

Element* asElement(Object& node) { return const_cast<Element*>(asElement(static_cast<const Object&>(node))); }

std::string_view nameOf(const Object& node) {
    switch (kindOf(node)) {
    case NodeKind::Element: return NodeAccess::name(static_cast<const Element&>(node));
    case NodeKind::Attribute: return NodeAccess::name(static_cast<const Attribute&>(node));
    case NodeKind::Instruction: return static_cast<const Instruction&>(node).getTarget();
    default: return {};
    }
}

}  // namespace Xml
