#include "xml/xpath/internal/axes/Below.h"

#include "xml/xpath/internal/NodeMap.h"
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace Xml {

namespace {

// Room for so many nodes is made at once.
constexpr std::size_t kMany = 32;

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

// From which context nodes a walk has gone through all that is below, so that it does so once. Context nodes mostly
// have one name and lie side by side: none of them is looked up before the walk comes upon an element of that name.
class WalkedFrom {
public:
    explicit WalkedFrom(const NodeList& from) : contexts(from.nodes), mayNest_(from.mayNest && contexts.size() > 1) {
        if (!mayNest_) return;
        name = nameOf(*contexts.front());
        const auto isNamedSo = [this](const Object* node) { return nameOf(*node) == name; };
        if (name == nullptr || !std::all_of(contexts.begin(), contexts.end(), isNamedSo)) noteContexts(0);
    }

    // Whether the element may be a context node.
    bool mayHave(const Element& element) const { return mayNest_ && (areNoted || &NodeAccess::name(element) == name); }

    // Whether to walk from the context node with that number. They come in their order.
    bool start(std::size_t number) {
        if (areNoted) return isNew(*contexts[number]);
        started = number + 1;
        return true;
    }

    // Whether to go through what is below the element, which the walk has come upon.
    bool enter(const Element& element) {
        if (!mayHave(element)) return true;
        if (!areNoted) noteContexts(started);
        return isNew(element);
    }

private:
    static const std::string* nameOf(const Object& node) {
        return isElement(node) ? &NodeAccess::name(static_cast<const Element&>(node)) : nullptr;
    }

    // Of the first ones the walk has begun.
    void noteContexts(std::size_t begun) {
        walked = NodeMap(contexts.size());
        for (std::size_t i = 0; i < contexts.size(); ++i) walked.insert(contexts[i], i < begun);
        areNoted = true;
    }

    // Whether it is no context node, or one that nothing was walked from yet, which is noted then.
    bool isNew(const Object& node) {
        std::uint32_t* const known = walked.find(&node);
        return known == nullptr || std::exchange(*known, true) == 0;
    }

    const std::vector<Object*>& contexts;
    const bool mayNest_;
    const std::string* name = nullptr;  // the one that all of them share
    std::size_t started = 0;            // as many were walked from
    bool areNoted = false;
    NodeMap walked;  // whether each was walked from, once they are noted
};

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
    WalkedFrom walked(from);
    const bool takesAll = taker.wantsAll();
    // The only child of most elements is a text. Where texts are not taken it is looked at with its element; it counts
    // where the walk does not end between the two.
    const bool passesTexts = !taker.takesTexts();
    std::vector<const Element*> open;  // the next one is the last
    open.reserve(kMany);
    for (std::size_t i = 0; i < from.nodes.size(); ++i) {
        if (!walked.start(i)) continue;
        Object* root = nullptr;
        NodeSpan row = childrenOf(*from.nodes[i], root);
        for (;;) {
            const std::size_t first = open.size();
            std::size_t passed = 0;  // texts that were looked at with their elements
            Object* const* next = row.begin();
            for (; next != row.end() && (takesAll || !taker.isDone()); ++next) {
                Object& node = **next;
                if (!isElement(node)) {
                    taker.takeOther(node);
                    continue;
                }
                auto& element = static_cast<Element&>(node);
                taker.take(element);
                const NodeSpan below = NodeAccess::children(element);
                if (below.empty()) continue;
                if (passesTexts && below.size() == 1 && isExactly<CharData>(*below[0]) && !walked.mayHave(element)) {
                    ++passed;
                } else {
                    open.push_back(&element);
                }
            }
            std::reverse(open.begin() + static_cast<std::ptrdiff_t>(first), open.end());
            taker.visit(static_cast<std::size_t>(next - row.begin()) + (takesAll ? passed : 0));
            if (taker.isDone()) return;

            while (!open.empty() && !walked.enter(*open.back())) open.pop_back();
            if (open.empty()) break;
            row = NodeAccess::children(*open.back());
            open.pop_back();
        }
    }
}

}  // namespace Xml
