#pragma once

#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/internal/ElementTypes.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Xml {

class Element;
class Object;

// Validates a tree in one walk by the states of its models, where all is plain: nodes exactly of the library's classes,
// models and particles too, all of one Dtd, and children that fit their models at the first try.
//
// This is cost control and nothing else: Matcher has the rules, and decides everything without this. The walk says that
// an element is valid, with all its links set, or gives up. It goes the way of the Matcher as long as that tries each
// child once (see ModelStates). So where it gives up, what it has done is some of what the Matcher does on its way
// there: the links of elements that have been found valid, and verdicts overwritten. The Matcher then begins at the
// beginning, does the same again, and goes on; no code of a caller runs before it comes there.
//
// A run of the Matcher by another Dtd may be under way, where a model of a caller's validates something. The verdicts
// of that run are taken out of the elements here, as the Matcher overwrites them. None has to be put there.
//
// An element gets its link with all below it. What is below is not walked through for it: nodes that have no link of
// their own wait for it on a list.
class FastValidation {
public:
    explicit FastValidation(const Dtd& itsDtd) : dtd(itsDtd), types(itsDtd) {}
    FastValidation(const FastValidation&) = delete;
    FastValidation& operator=(const FastValidation&) = delete;

    // True where the element is valid: it has all its links then. False says nothing.
    static bool accepts(const Dtd& dtd, Element& element);

    // Switches it off, or on again, for all validations that begin; returns what it was. For tests.
    static bool setEnabled(bool on);

private:
    // How an element that is found valid gets the link.
    enum class Link : std::uint8_t {
        None,    // not at all
        Waits,   // with an element around it
        Itself,  // by its attribute list, or the mixed model that it is in
    };

    // An element that the walk is in.
    struct Place {
        Element* element;
        Object* const* next;  // child
        Object* const* end;
        std::size_t firstWaiting;
        ModelStates::State state;
        Link link;
        bool isMixed;
    };

    bool run(Element& top);
    bool takeChild(Object& child);
    bool begin(Element& element, const ElementType& type, Link fromAround);
    bool beginContent(Element& element, const ElementType& type, Link link);
    bool attributesFit(AttributeSpan attributes, const DtdAccess::AttributeList& list);
    bool takeTexts(NodeSpan children, Link link);
    bool passOver(Object& child, Link link);
    void end(Element& element, Link link, std::size_t firstWaiting);
    bool letAllWait(const Element& top);
    void link(Object& node);
    static void forgetVerdict(const Element& element);

    const Dtd& dtd;
    ElementTypes types;
    std::vector<Place> open;
    std::vector<Object*> waiting;  // for the link of an element around them

    static bool enabled;
};

}  // namespace Xml
