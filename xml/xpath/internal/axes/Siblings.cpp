#include "xml/xpath/internal/axes/Siblings.h"

#include "xml/xpath/internal/NodeMap.h"
#include "xml/xpath/internal/axes/Below.h"
#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace Xml {

namespace {

// The children of one element, and which of them were taken as siblings of a context node.
class Row {
public:
    Row(NodeSpan itsChildren, std::size_t itsHint)
        : children(itsChildren), doneFrom(children.size()), hint(std::min(itsHint, children.size())) {}

    std::size_t size() const { return children.size(); }

    // The children after that place, or before it, that were not taken yet.
    NodeSpan following(std::size_t place) {
        const std::size_t end = std::exchange(doneFrom, std::min(doneFrom, place + 1));
        return {children.begin() + std::min(place + 1, end), children.begin() + end};
    }
    NodeSpan preceding(std::size_t place) {
        const std::size_t from = std::exchange(doneTo, std::max(doneTo, place));
        return {children.begin() + from, children.begin() + std::max(place, from)};
    }

    // The place of a child; the number of children for a node that is none of them. Context nodes mostly come in the
    // order of the children, so the search goes on where the last one ended. Where they turn back more than once, which
    // takes some steps along different axes, all places are noted.
    std::size_t placeOf(const Object* child, Taker& taker) {
        if (places != nullptr) {
            const std::uint32_t* const place = places->find(child);
            return place != nullptr ? *place : children.size();
        }
        if (search(child, hint, children.size(), taker)) return hint;
        if (hint > 0 && ++turns > kTurns) {
            notePlaces();
            return placeOf(child, taker);
        }
        return search(child, 0, hint, taker) ? hint : children.size();
    }

private:
    static constexpr unsigned kTurns = 1;

    // Puts the place of the child into `hint` where it is one of those.
    bool search(const Object* child, std::size_t from, std::size_t to, Taker& taker) {
        Object* const* const found = std::find(children.begin() + from, children.begin() + to, child);
        const auto place = static_cast<std::size_t>(found - children.begin());
        taker.visit(place - from);
        if (place < to) hint = place;
        return place < to;
    }

    void notePlaces() {
        places = std::make_unique<NodeMap>(children.size());
        for (std::size_t i = 0; i < children.size(); ++i) places->insert(children[i], static_cast<std::uint32_t>(i));
    }

    NodeSpan children;
    std::size_t doneTo = 0;           // those before it were taken
    std::size_t doneFrom;             // those from it on were taken
    std::size_t hint = 0;             // where the last search ended
    unsigned turns = 0;               // how often a search began anew from the first child
    std::unique_ptr<NodeMap> places;  // of all children, once there were too many turns
};

// Calls visit(row, place) for each context node that is a child of an element.
template <class Visit>
void forEachSibling(const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker, Visit visit) {
    NodeMap rowOf;
    std::vector<Row> rows;
    const Object* last = nullptr;  // the parent of the one before, most of which are siblings, and its row
    std::size_t lastRow = 0;
    for (Object* const node : from.nodes) {
        Object* const parent = node->getParent();
        if (parent == nullptr || !isElement(*parent) || isAttribute(*node)) continue;
        if (parent != last) {
            const auto [number, isNew] = rowOf.insert(parent, static_cast<std::uint32_t>(rows.size()));
            if (isNew) {
                const std::size_t begin = hint && hint->parent == parent ? hint->place : 0;
                rows.emplace_back(elementChildren(*parent), begin);
            }
            last = parent;
            lastRow = *number;
        }
        Row& row = rows[lastRow];
        const std::size_t place = row.placeOf(node, taker);
        hint = SiblingHint{parent, place};
        if (place < row.size()) visit(row, place);
        if (taker.isDone()) return;
    }
}

}  // namespace

void takeFollowingSiblings(const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker) {
    forEachSibling(from, hint, taker, [&](Row& row, std::size_t place) { taker.take(row.following(place)); });
}

void takePrecedingSiblings(const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker) {
    forEachSibling(from, hint, taker, [&](Row& row, std::size_t place) { taker.take(row.preceding(place)); });
}

void takeFollowing(const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker) {
    NodeList siblings;
    Taker all = taker.forAll(siblings.nodes);
    takeFollowingSiblings(from, hint, all);
    siblings.mayNest = from.nodes.size() > 1;
    takeDescendantsOrSelf(siblings, taker);
}

}  // namespace Xml
