// What the axes find. Results keep the order of first discovery, and a node is taken once, without being looked up among those
// found already: what two context nodes both reach is always a whole region (all below a node, all above it, all siblings
// behind it, all before it in the document), so that it is enough to remember which regions are done.
#include "xml/xpath/internal/Axes.h"

#include "xml/xpath/internal/NodeMap.h"
#include "xml/xpath/internal/PreorderWalk.h"
#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace Xml {

namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// Takes the nodes that pass the step's test, until there are enough.
class Taker {
public:
    Taker(const NodeTest& itsTest, std::vector<Object*>& itsFound, std::size_t itsEnough)
        : test(itsTest), found(itsFound), enough(itsEnough) {}

    bool isEnough() const { return found.size() >= enough; }
    bool wantsOne() const { return enough == 1; }
    bool takes(const Object& node) const { return test.accepts(node); }

    void take(Object& node) {
        if (test.accepts(node)) found.push_back(&node);
    }
    void take(Element& element) {
        if (test.accepts(element)) found.push_back(&element);
    }
    void takeOther(Object& node) {
        if (test.acceptsOther(node)) found.push_back(&node);
    }
    void take(NodeRange range) {
        for (; !range.empty() && !isEnough(); ++range.at) take(**range.at);
    }
    void takeAttributes(Object& node) {
        if (!node.isElement()) return;
        auto& element = static_cast<Element&>(node);
        if (const std::string* const name = test.attributeName()) {
            if (Attribute* const attribute = element.getAttribute(*name)) found.push_back(attribute);
            return;
        }
        for (Attribute* const attribute : NodeAccess::attributes(element)) {
            if (isEnough()) return;
            take(*attribute);
        }
    }

private:
    const NodeTest& test;
    std::vector<Object*>& found;
    const std::size_t enough;
};

// --- Downwards ---

// Walks from each context node through all below it; what was walked through already is left out. Calls start(node, children)
// for a context node from which it walks, enter(node, children) for each node on the way, and again(node) for a context node
// that it walked from before and that now turns out to lie below another one. It ends when `taker` has enough.
template <class Start, class Enter, class Again>
void walkBelow(const NodeList& from, const Taker& taker, Start start, Enter enter, Again again) {
    enum : std::uint32_t { Waiting, WalkedFrom, Passed };
    NodeMap contexts;
    if (from.nested) {
        contexts = NodeMap(from.nodes.size());
        for (const Object* node : from.nodes) contexts.insert(node, Waiting);
    }
    PreorderWalk walk;
    for (Object* const context : from.nodes) {
        if (from.nested) {
            std::uint32_t& state = *contexts.find(context);
            if (state == Passed) continue;
            state = WalkedFrom;
        }
        walk.start(*context);
        start(*context, walk.children());
        while (!taker.isEnough()) {
            Object* const node = walk.next();
            if (node == nullptr) break;
            std::uint32_t* const state = from.nested ? contexts.find(node) : nullptr;
            if (state != nullptr && *state == WalkedFrom) {
                again(*node);
                walk.skipBelow();
            } else {
                if (state != nullptr) *state = Passed;
                enter(*node, walk.children());
            }
        }
        if (taker.isEnough()) return;
    }
}

void takeDescendants(const NodeList& from, Taker& taker, bool orSelf) {
    const auto take = [&](Object& node, NodeRange) { taker.take(node); };
    walkBelow(
        from, taker,
        [&](Object& node, NodeRange) {
            if (orSelf) taker.take(node);
        },
        take,
        [&](Object& node) {
            if (!orSelf) taker.take(node);
        });
}

// As the attributes of each node that takeDescendants finds with itself, without listing those.
void takeAttributesFromBelow(const NodeList& from, Taker& taker) {
    const auto take = [&](Object& node, NodeRange) { taker.takeAttributes(node); };
    walkBelow(from, taker, take, take, [](Object&) {});
}

// As the children of each such node. It is a walk of its own, since it is what most queries do: it looks at each node once, and
// keeps only elements that have children on its stack.
void takeChildrenFromBelow(const NodeList& from, Taker& taker) {
    NodeMap walked;  // of the context nodes those whose children were taken
    if (from.nested) {
        walked = NodeMap(from.nodes.size());
        for (const Object* const node : from.nodes) walked.insert(node, false);
    }
    std::vector<Element*> open;  // the next one is the last
    const auto takeChildren = [&](NodeRange range) {
        const std::size_t first = open.size();
        for (; !range.empty() && !taker.isEnough(); ++range.at) {
            Object& node = **range.at;
            if (!node.isElement()) {
                taker.takeOther(node);
                continue;
            }
            auto& element = static_cast<Element&>(node);
            taker.take(element);
            if (!NodeAccess::children(element).empty()) open.push_back(&element);
        }
        std::reverse(open.begin() + static_cast<std::ptrdiff_t>(first), open.end());
    };
    const auto isWalked = [&](const Object* node) {
        std::uint32_t* const known = from.nested ? walked.find(node) : nullptr;
        return known != nullptr && std::exchange(*known, true) != 0;
    };
    for (Object* const context : from.nodes) {
        if (isWalked(context)) continue;
        Object* root = nullptr;
        takeChildren(childrenOf(*context, root));
        while (!open.empty() && !taker.isEnough()) {
            Element* const element = open.back();
            open.pop_back();
            if (!isWalked(element)) takeChildren(elementChildren(*element));
        }
        if (taker.isEnough()) return;
    }
}

// --- Upwards ---

void takeParents(const NodeList& from, Taker& taker) {
    NodeMap taken;
    Object* last = nullptr;
    for (Object* const node : from.nodes) {
        if (!node->isElement() && !node->isAttribute() && !node->isCharData()) continue;
        Object* const parent = node->getParent();
        if (parent == nullptr || parent == last) continue;
        last = parent;
        if (from.nodes.size() == 1 || taken.insert(parent).second) taker.take(*parent);
    }
}

// Outermost first. A climb ends where another one went on from.
void takeAncestors(const NodeList& from, Taker& taker, bool orSelf) {
    NodeMap taken;
    std::vector<Object*> climb;
    for (Object* const context : from.nodes) {
        climb.clear();
        for (Object* node = orSelf ? context : context->getParent(); node != nullptr; node = node->getParent()) {
            if (from.nodes.size() > 1 && !taken.insert(node).second) break;
            climb.push_back(node);
        }
        for (auto node = climb.rbegin(); node != climb.rend(); ++node) taker.take(**node);
    }
}

// --- Sideways ---

// The children of one element, and which of them were taken as siblings of a context node.
class Row {
public:
    Row(NodeSpan itsChildren, std::size_t itsHint)
        : children(itsChildren), doneFrom(children.size()), hint(std::min(itsHint, children.size())) {}

    std::size_t size() const { return children.size(); }

    // The children behind that place, or before it, that were not taken yet.
    NodeRange following(std::size_t place) {
        const std::size_t end = std::exchange(doneFrom, std::min(doneFrom, place + 1));
        return {children.begin() + std::min(place + 1, end), children.begin() + end};
    }
    NodeRange preceding(std::size_t place) {
        const std::size_t begin = std::exchange(doneTo, std::max(doneTo, place));
        return {children.begin() + begin, children.begin() + std::max(place, begin)};
    }

    // The number of children for a node that is none of them. Context nodes mostly come in the order of the children, so the
    // search goes on where the last one ended. Where they turn back more than once, which takes some steps along different
    // axes, all places are noted.
    std::size_t placeOf(const Object* child) {
        if (turns > kTurns) {
            const std::uint32_t* const place = places.find(child);
            return place != nullptr ? *place : children.size();
        }
        const auto begin = children.begin();
        auto found = std::find(begin + static_cast<std::ptrdiff_t>(hint), children.end(), child);
        if (found == children.end() && hint > 0) {
            if (++turns > kTurns) {
                places = NodeMap(children.size());
                for (std::size_t i = 0; i < children.size(); ++i)
                    places.insert(children[i], static_cast<std::uint32_t>(i));
                return placeOf(child);
            }
            found = std::find(begin, begin + static_cast<std::ptrdiff_t>(hint), child);
        }
        hint = static_cast<std::size_t>(found - begin);
        return hint;
    }

private:
    static constexpr unsigned kTurns = 1;

    NodeSpan children;
    std::size_t doneTo = 0;  // those before it were taken
    std::size_t doneFrom;    // those from it on were taken
    std::size_t hint = 0;    // where the last search ended
    unsigned turns = 0;      // how often a search began anew from the first child
    NodeMap places;          // of all children, once there were too many turns
};

// Calls visit(row, place) for each context node that is a child of an element.
template <class Visit>
void forEachSibling(const NodeList& from, SiblingHint& hint, Visit visit) {
    NodeMap rowOf;
    std::vector<Row> rows;
    for (Object* const node : from.nodes) {
        Object* const parent = node->getParent();
        if (parent == nullptr || !parent->isElement() || node->isAttribute()) continue;
        const auto [number, isNew] = rowOf.insert(parent, static_cast<std::uint32_t>(rows.size()));
        if (isNew) {
            const std::size_t begin = hint.parent == parent ? hint.place : 0;
            rows.emplace_back(NodeAccess::children(static_cast<const Element&>(*parent)), begin);
        }
        Row& row = rows[*number];
        const std::size_t place = row.placeOf(node);
        hint = {parent, place};
        if (place < row.size()) visit(row, place);
    }
}

void takeFollowingSiblings(const NodeList& from, SiblingHint& hint, Taker& taker) {
    forEachSibling(from, hint, [&](Row& row, std::size_t place) { taker.take(row.following(place)); });
}

void takePrecedingSiblings(const NodeList& from, SiblingHint& hint, Taker& taker) {
    forEachSibling(from, hint, [&](Row& row, std::size_t place) { taker.take(row.preceding(place)); });
}

// --- Before in the document ---

// Numbers the nodes of a document in document order, up to the last context node, and says for each where what is below it ends.
// What lies before a context node is then a run of numbers, without its ancestors: the nodes of that run that end behind it.
class DocumentOrder {
public:
    DocumentOrder(Element& root, const NodeList& contexts) : numberOf(contexts.nodes.size()) {
        std::size_t missing = 0;
        for (const Object* const context : contexts.nodes) {
            // An attribute has no place of its own. Neither it nor a document is ever met, so all nodes lie before it.
            const bool met = context->isElement() || context->isCharData();
            if (!met) toEnd = true;
            const Object* const anchor = context->isAttribute() ? context->getParent() : context;
            if (anchor != nullptr && numberOf.insert(anchor, kNone).second) ++missing;
        }
        number(root, missing);
    }

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    // The number of a context node, or of the element that an attribute belongs to; kNone for one that is not in the document.
    std::uint32_t operator[](const Object* node) { return *numberOf.find(node); }

    std::vector<Object*> nodes;       // the root is 0
    std::vector<std::uint32_t> ends;  // the number behind the last node below

private:
    void number(Element& root, std::size_t missing) {
        std::vector<std::uint32_t> open;
        const auto enter = [&](Object& node) {
            const auto number = static_cast<std::uint32_t>(nodes.size());
            nodes.push_back(&node);
            ends.push_back(kNone);
            if (std::uint32_t* const known = numberOf.find(&node)) {
                *known = number;
                --missing;
            }
            open.push_back(number);
        };
        const auto leave = [&](std::size_t depth) {
            for (; open.size() > depth; open.pop_back()) ends[open.back()] = static_cast<std::uint32_t>(nodes.size());
        };
        enter(root);
        PreorderWalk walk;
        walk.start(root);
        while (missing > 0 || toEnd) {
            Object* const node = walk.next();
            if (node == nullptr) break;
            leave(walk.depth());
            enter(*node);
        }
        leave(0);
    }

    NodeMap numberOf;
    bool toEnd = false;
};

// Nodes before a context node are taken in document order, but for its ancestors. Those wait until a context node comes that they are
// no ancestors of. They form a chain, each below the one before it, from whose end they go.
void takePreceding(const NodeList& from, Document* document, Taker& taker) {
    Element* const root = document != nullptr ? document->getRoot() : nullptr;
    if (root == nullptr) return;
    DocumentOrder order(*root, from);
    const auto count = static_cast<std::uint32_t>(order.nodes.size());
    std::vector<std::uint32_t> waiting;
    std::uint32_t next = 1;  // all before it were looked at; the root is never taken
    for (Object* const context : from.nodes) {
        const bool isAttribute = context->isAttribute();
        Object* const anchor = isAttribute ? context->getParent() : context;
        const std::uint32_t own = anchor != nullptr ? order[anchor] : DocumentOrder::kNone;
        const bool met = !isAttribute && own != DocumentOrder::kNone;
        const std::uint32_t end = met ? own : count;
        const auto isAbove = [&](std::uint32_t node) {
            return own != DocumentOrder::kNone && (met || node <= own) && order.ends[node] > own;
        };

        const auto stay = std::find_if(waiting.rbegin(), waiting.rend(), isAbove).base();
        for (auto node = stay; node != waiting.end(); ++node) taker.take(*order.nodes[*node]);
        waiting.erase(stay, waiting.end());
        for (; next < end; ++next) {
            if (isAbove(next)) {
                waiting.push_back(next);
            } else {
                taker.take(*order.nodes[next]);
            }
        }
    }
}

// Whether anything that the taker takes lies before the context node: then it takes one such node, not far from the document's
// beginning, without going through all that lies before. What contains the context node does not count; a node is known not
// to once the walk has left it.
void takeAnyPreceding(Object& context, Document* document, Taker& taker) {
    Element* const root = document != nullptr ? document->getRoot() : nullptr;
    if (root == nullptr || &context == root) return;
    const Object* const anchor = context.isAttribute() ? context.getParent() : &context;
    struct Candidate {
        Object* node;
        std::size_t depth;
    };
    std::vector<Candidate> open;  // each below the one before it
    bool mayContain = !context.isDocument();
    PreorderWalk walk;
    walk.start(*root);
    if (anchor == root) mayContain = false;
    while (Object* const node = walk.next()) {
        if (!open.empty() && walk.depth() <= open.back().depth) return taker.take(*open.back().node);
        if (node == anchor) {
            if (anchor == &context) return;
            open.clear();
            mayContain = false;
        } else if (taker.takes(*node)) {
            if (!mayContain || walk.children().empty()) return taker.take(*node);
            open.push_back({node, walk.depth()});
        }
    }
    if (!open.empty()) taker.take(*open.back().node);
}

}  // namespace

void collect(const Step& step, const NodeList& from, Document* document, NodeList& found, std::size_t enough,
             SiblingHint& hint) {
    found.nodes.clear();
    Taker taker(step.test, found.nodes, enough);
    const bool fromBelow = step.slashes > 0;
    if (fromBelow && step.axis == Axis::Child) {
        takeChildrenFromBelow(from, taker);
        found.nested = true;
        return;
    }
    if (fromBelow && step.axis == Axis::Attribute) {
        takeAttributesFromBelow(from, taker);
        found.nested = false;
        return;
    }
    NodeList below;
    if (fromBelow) {
        const NodeTest any;
        Taker all(any, below.nodes, kAll);
        takeDescendants(from, all, true);
        below.nested = true;
    }
    const NodeList& contexts = fromBelow ? below : from;
    found.nested = contexts.nested || contexts.nodes.size() > 1;  // they may reach each other's regions

    switch (step.axis) {
    case Axis::Attribute:
        for (Object* const node : contexts.nodes) taker.takeAttributes(*node);
        found.nested = false;
        break;
    case Axis::Child:
        for (Object* const node : contexts.nodes) {
            Object* root = nullptr;
            taker.take(childrenOf(*node, root));
        }
        found.nested = contexts.nested;
        break;
    case Axis::Self:
        for (Object* const node : contexts.nodes) taker.take(*node);
        found.nested = contexts.nested;
        break;
    case Axis::Descendant:
    case Axis::DescendantOrSelf:
        takeDescendants(contexts, taker, step.axis == Axis::DescendantOrSelf);
        found.nested = true;
        break;
    case Axis::Parent: takeParents(contexts, taker); break;
    case Axis::Ancestor:
    case Axis::AncestorOrSelf:
        takeAncestors(contexts, taker, step.axis == Axis::AncestorOrSelf);
        found.nested = true;
        break;
    case Axis::FollowingSibling: takeFollowingSiblings(contexts, hint, taker); break;
    case Axis::PrecedingSibling: takePrecedingSiblings(contexts, hint, taker); break;
    case Axis::Following:
        if (document != nullptr) {
            NodeList siblings;
            const NodeTest any;
            Taker all(any, siblings.nodes, kAll);
            takeFollowingSiblings(contexts, hint, all);
            siblings.nested = contexts.nodes.size() > 1;
            takeDescendants(siblings, taker, true);
            found.nested = true;
        }
        break;
    case Axis::Preceding:
        if (taker.wantsOne() && contexts.nodes.size() == 1) {
            takeAnyPreceding(*contexts.nodes.front(), document, taker);
        } else {
            takePreceding(contexts, document, taker);
        }
        found.nested = true;
        break;
    }
}

}  // namespace Xml
