#include "xml/xpath/internal/axes/Below.h"

#include "xml/xpath/internal/NodeMap.h"
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace Xml {

namespace {

// Walks from each context node through all below it; what was walked through already is left out. Calls start(node) for
// a context node from which it walks, enter(node) for each node on the way, and again(node) for a context node that it
// walked from before and that now turns out to lie below another one. It ends when `taker` is done.
template <class Start, class Enter, class Again>
void walkBelow(const NodeList& from, Taker& taker, Start start, Enter enter, Again again) {
    enum : std::uint32_t { Waiting, WalkedFrom, Passed };
    NodeMap contexts;
    if (from.mayNest) {
        contexts = NodeMap(from.nodes.size());
        for (const Object* node : from.nodes) contexts.insert(node, Waiting);
    }
    PreorderWalk walk;
    for (Object* const context : from.nodes) {
        if (from.mayNest) {
            std::uint32_t& state = *contexts.find(context);
            if (state == Passed) continue;
            state = WalkedFrom;
        }
        walk.start(*context);
        start(*context);
        while (!taker.isDone()) {
            Object* const node = walk.next();
            if (node == nullptr) break;
            taker.visit();
            std::uint32_t* const state = from.mayNest ? contexts.find(node) : nullptr;
            if (state != nullptr && *state == WalkedFrom) {
                again(*node);
                walk.skipBelow();
            } else {
                if (state != nullptr) *state = Passed;
                enter(*node);
            }
        }
        if (taker.isDone()) return;
    }
}

}  // namespace

void takeDescendants(const NodeList& from, Taker& taker) {
    const auto take = [&](Object& node) { taker.take(node); };
    walkBelow(
        from, taker, [](Object&) {}, take, take);
}

void takeDescendantsOrSelf(const NodeList& from, Taker& taker) {
    const auto take = [&](Object& node) { taker.take(node); };
    walkBelow(from, taker, take, take, [](Object&) {});
}

void takeAttributesFromBelow(const NodeList& from, Taker& taker) {
    const auto take = [&](Object& node) { taker.takeAttributes(node); };
    walkBelow(from, taker, take, take, [](Object&) {});
}

// It is a walk of its own, since it is what most queries do: it looks at each node once, and keeps only elements that
// have children on its stack.
void takeChildrenFromBelow(const NodeList& from, Taker& taker) {
    NodeMap walked;  // of the context nodes those whose children were taken
    if (from.mayNest) {
        walked = NodeMap(from.nodes.size());
        for (const Object* const node : from.nodes) walked.insert(node, false);
    }
    std::vector<Element*> open;  // the next one is the last
    const auto takeRow = [&](NodeSpan row) {
        const std::size_t first = open.size();
        Object* const* next = row.begin();
        while (next != row.end() && !taker.isDone()) {
            Object& node = **next++;
            if (!isElement(node)) {
                taker.takeOther(node);
                continue;
            }
            auto& element = static_cast<Element&>(node);
            taker.take(element);
            if (!NodeAccess::children(element).empty()) open.push_back(&element);
        }
        std::reverse(open.begin() + static_cast<std::ptrdiff_t>(first), open.end());
        taker.visit(static_cast<std::size_t>(next - row.begin()));
    };
    const auto isWalked = [&](const Object* node) {
        std::uint32_t* const known = from.mayNest ? walked.find(node) : nullptr;
        return known != nullptr && std::exchange(*known, true) != 0;
    };
    for (Object* const context : from.nodes) {
        if (isWalked(context)) continue;
        Object* root = nullptr;
        takeRow(childrenOf(*context, root));
        while (!open.empty() && !taker.isDone()) {
            Element* const element = open.back();
            open.pop_back();
            if (!isWalked(element)) takeRow(elementChildren(*element));
        }
        if (taker.isDone()) return;
    }
}

}  // namespace Xml
