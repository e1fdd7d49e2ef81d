#include "xml/xpath/internal/Axes.h"

#include "xml/xpath/internal/axes/Above.h"
#include "xml/xpath/internal/axes/Below.h"
#include "xml/xpath/internal/axes/Preceding.h"

namespace Xml {

namespace {

// Room for so many nodes is made at once.
constexpr std::size_t kSome = 16;

}  // namespace

inline void Axes::along(const Step& step, const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker,
                        NodeList& found) const {
    found.mayNest = from.mayNest || from.nodes.size() > 1;  // they may reach each other's regions
    switch (step.axis) {
    case Axis::Attribute:
        takeAttributes(from, taker);
        found.mayNest = false;
        break;
    case Axis::Child:
        takeChildren(from, taker);
        found.mayNest = from.mayNest;
        break;
    case Axis::Self:
        for (Object* const node : from.nodes) taker.take(*node);
        found.mayNest = from.mayNest;
        break;
    case Axis::Descendant:
        takeDescendants(from, taker);
        found.mayNest = true;
        break;
    case Axis::DescendantOrSelf:
        takeDescendantsOrSelf(from, taker);
        found.mayNest = true;
        break;
    case Axis::Parent: takeParents(from, taker); break;
    case Axis::Ancestor:
        takeAncestors(from, taker);
        found.mayNest = true;
        break;
    case Axis::AncestorOrSelf:
        takeAncestorsOrSelf(from, taker);
        found.mayNest = true;
        break;
    case Axis::FollowingSibling: takeFollowingSiblings(from, hint, taker); break;
    case Axis::PrecedingSibling: takePrecedingSiblings(from, hint, taker); break;
    case Axis::Following:
        if (document_ != nullptr) takeFollowing(from, hint, taker);
        found.mayNest = true;
        break;
    case Axis::Preceding:
        takePreceding(from, document_, taker);
        found.mayNest = true;
        break;
    }
}

void Axes::collect(const Step& step, const NodeList& from, std::size_t enough, std::optional<SiblingHint>& hint,
                   NodeList& found) {
    found.nodes.clear();
    if (found.nodes.capacity() == 0) found.nodes.reserve(kSome);
    Taker taker(step.test, found.nodes, enough, budget_);
    taker.visit(from.nodes.size());
    if (step.slashes == 0) {
        along(step, from, hint, taker, found);
    } else if (step.axis == Axis::Child) {
        takeChildrenFromBelow(from, taker);
        found.mayNest = true;
    } else if (step.axis == Axis::Attribute) {
        takeAttributesFromBelow(from, taker);
        found.mayNest = false;
    } else {
        NodeList below;
        Taker all = taker.forAll(below.nodes);
        takeDescendantsOrSelf(from, all);
        below.mayNest = true;
        taker.visit(below.nodes.size());
        along(step, below, hint, taker, found);
    }
}

}  // namespace Xml
