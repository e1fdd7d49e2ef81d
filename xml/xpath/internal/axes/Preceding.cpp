#include "xml/xpath/internal/axes/Preceding.h"

#include "xml/xpath/internal/NodeMap.h"
#include <algorithm>
#include <cstdint>
#include <vector>

namespace Xml {

namespace {

// Numbers the nodes of a document in document order, up to the last context node, and says for each where what is below
// it ends. What lies before a context node is then a run of numbers, without its ancestors: the nodes of that run that
// end after it.
class DocumentOrder {
public:
    DocumentOrder(Element& root, const NodeList& contexts, Taker& taker) : numberOf(contexts.nodes.size()) {
        std::size_t missing = 0;
        for (const Object* const context : contexts.nodes) {
            // An attribute has no place of its own. Neither it nor a document is ever met, so all nodes lie before it.
            const bool met = context->isElement() || context->isCharData();
            if (!met) toEnd = true;
            const Object* const anchor = context->isAttribute() ? context->getParent() : context;
            if (anchor != nullptr && numberOf.insert(anchor, kNone).second) ++missing;
        }
        number(root, missing, taker);
    }

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    // The number of a context node, or of the element that an attribute belongs to; kNone for one that is not in the
    // document.
    std::uint32_t operator[](const Object* node) { return *numberOf.find(node); }

    std::vector<Object*> nodes;       // the root is 0
    std::vector<std::uint32_t> ends;  // the number after the last node below

private:
    void number(Element& root, std::size_t missing, Taker& taker) {
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
        while ((missing > 0 || toEnd) && !taker.isDone()) {
            Object* const node = walk.next();
            if (node == nullptr) break;
            taker.visit();
            leave(walk.depth());
            enter(*node);
        }
        leave(0);
    }

    NodeMap numberOf;
    bool toEnd = false;
};

// Nodes before a context node are taken in document order, but for its ancestors. Those wait until a context node comes
// that they are no ancestors of. They form a chain, each below the one before it, from whose end they go.
void takeAllPreceding(const NodeList& from, Element& root, Taker& taker) {
    DocumentOrder order(root, from, taker);
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

// Whether anything that the taker takes lies before the context node: then it takes one such node, not far from the
// document's beginning, without going through all that lies before. What contains the context node does not count; a
// node is known not to once the walk has left it.
void takeAnyPreceding(Object& context, Element& root, Taker& taker) {
    if (&context == &root) return;
    const Object* const anchor = context.isAttribute() ? context.getParent() : &context;
    struct Candidate {
        Object* node;
        std::size_t depth;
    };
    std::vector<Candidate> open;  // each below the one before it
    bool mayContain = !context.isDocument();
    PreorderWalk walk;
    walk.start(root);
    if (anchor == &root) mayContain = false;
    for (Object* node = walk.next(); node != nullptr && !taker.isDone(); node = walk.next()) {
        taker.visit();
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

void takePreceding(const NodeList& from, Document* document, Taker& taker) {
    Element* const root = document != nullptr ? document->getRoot() : nullptr;
    if (root == nullptr) return;
    if (taker.wantsOne() && from.nodes.size() == 1) {
        takeAnyPreceding(*from.nodes.front(), *root, taker);
    } else {
        takeAllPreceding(from, *root, taker);
    }
}

}  // namespace Xml
