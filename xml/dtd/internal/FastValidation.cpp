#include "xml/dtd/internal/FastValidation.h"

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/dom/internal/Preorder.h"
#include <utility>

namespace Xml {

using Content = ElementType::Content;

bool FastValidation::enabled = true;

bool FastValidation::setEnabled(bool on) { return std::exchange(enabled, on); }

// What validates within a run of the same Dtd takes part in it: there are verdicts to go by.
bool FastValidation::accepts(const Dtd& dtd, Element& element) {
    if (!enabled || DtdAccess::validationRun(dtd) != 0 || !isExactly<Element>(element)) return false;
    return FastValidation(dtd).run(element);
}

bool FastValidation::run(Element& top) {
    const ElementType* const type = types.find(NodeAccess::name(top));
    if (type == nullptr || !begin(top, *type, Link::None)) return false;
    while (!open.empty()) {
        Place& place = open.back();
        if (place.next != place.end) {
            if (!takeChild(**place.next++)) return false;
        } else {
            if (!types.mayEnd(place.state)) return false;
            end(*place.element, place.link, place.firstWaiting);
            open.pop_back();
        }
    }
    return true;
}

// --- Elements ---

// Takes a child of the innermost element that the walk is in.
inline bool FastValidation::takeChild(Object& child) {
    Place& place = open.back();
    const NodeClass exactly = exactClassOf(child);
    if (exactly != NodeClass::Element) {
        if (exactly < NodeClass::CharData) return passOver(child, place.link);
        if (!place.isMixed) return false;
        NodeAccess::setOwnDtd(child, &dtd);
        return true;
    }
    auto& element = static_cast<Element&>(child);
    const std::string& name = NodeAccess::name(element);
    const ElementTypes::Child found =
        NodeAccess::sharesName(element) ? types.findSharedChild(place.state, name) : types.findChild(place.state, name);
    if (found.type == nullptr) return false;
    place.state = found.next;
    if (place.isMixed) return begin(element, *found.type, Link::Itself);
    return begin(element, *found.type, place.link == Link::None ? Link::None : Link::Waits);
}

// A comment or an instruction has no link but that of the element around it. False for a node of a caller's class.
bool FastValidation::passOver(Object& child, Link link) {
    if (!isPlainLeaf(exactClassOf(child))) return false;
    if (link != Link::None) waiting.push_back(&child);
    return true;
}

// The attributes are looked at first, while they are near. The Matcher looks at them after the content, but where they
// do not fit it does all that anyway.
inline bool FastValidation::begin(Element& element, const ElementType& type, Link fromAround) {
    const AttributeSpan attributes = NodeAccess::attributes(element);
    Link link = fromAround;
    if (type.attributes != nullptr) {
        if (!attributesFit(attributes, *type.attributes)) return false;
        link = Link::Itself;
    } else if (!attributes.empty()) {
        return false;
    }
    if (!NodeAccess::children(element).empty()) return beginContent(element, type, link);
    if (!type.mayBeEmpty) return false;
    end(element, link, waiting.size());
    return true;
}

bool FastValidation::beginContent(Element& element, const ElementType& type, Link link) {
    const NodeSpan children = NodeAccess::children(element);
    const std::size_t firstWaiting = waiting.size();
    switch (type.content) {
    case Content::Anything:
        if (link != Link::None && !letAllWait(element)) return false;
        break;
    case Content::Text:
        if (!takeTexts(children, link)) return false;
        break;
    case Content::Elements:
    case Content::Mixed:
        const bool isMixed = type.content == Content::Mixed;
        open.push_back({&element, children.begin(), children.end(), firstWaiting, type.start, link, isMixed});
        return true;
    }
    end(element, link, firstWaiting);
    return true;
}

bool FastValidation::takeTexts(NodeSpan children, Link link) {
    for (Object* const child : children) {
        if (exactClassOf(*child) >= NodeClass::CharData) {
            NodeAccess::setOwnDtd(*child, &dtd);
        } else if (!passOver(*child, link)) {
            return false;
        }
    }
    return true;
}

// As Verdicts has it.
bool FastValidation::attributesFit(AttributeSpan attributes, const DtdAccess::AttributeList& list) {
    std::size_t required = 0;
    for (const Attribute* const attribute : attributes) {
        const std::string& name = NodeAccess::name(*attribute);
        const AttDef* const definition = NodeAccess::sharesName(*attribute) ? types.findSharedAttribute(list, name)
                                                                            : ElementTypes::findAttribute(list, name);
        if (definition == nullptr) return false;
        if (definition->isRequired()) ++required;
    }
    return required == list.required;
}

// The element is valid.
inline void FastValidation::end(Element& element, Link link, std::size_t firstWaiting) {
    if (link != Link::Itself) {
        forgetVerdict(element);
        if (link == Link::Waits) waiting.push_back(&element);
        return;
    }
    this->link(element);
    for (std::size_t i = firstWaiting; i < waiting.size(); ++i) this->link(*waiting[i]);
    waiting.resize(firstWaiting);
}

// --- Links ---

// All that is below the element waits, which no model looks at. False where there is a node of a caller's class.
bool FastValidation::letAllWait(const Element& top) {
    Preorder<const Element> walk;
    for (walk.enter(top); !walk.atEnd();) {
        Object* const node = walk.next();
        if (node == nullptr) {
            walk.leave();
            continue;
        }
        const NodeClass exactly = exactClassOf(*node);
        if (exactly == NodeClass::Element) {
            walk.enter(static_cast<const Element&>(*node));
        } else if (!isPlainLeaf(exactly)) {
            return false;
        }
        waiting.push_back(node);
    }
    return true;
}

void FastValidation::link(Object& node) {
    NodeAccess::setOwnDtd(node, &dtd);
    if (!isExactly<Element>(node)) return;
    auto& element = static_cast<Element&>(node);
    NodeAccess::linkAttributes(element, &dtd);
    forgetVerdict(element);
}

void FastValidation::forgetVerdict(const Element& element) {
    const Marks& marks = NodeAccess::marks(element);
    if (marks.number() != 0) marks.setNumber(0);
}

}  // namespace Xml
