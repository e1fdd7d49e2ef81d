#include "xml/easy/Compare.h"

#include "xml/dom/Document.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/easy/Ranges.h"
#include "xml/easy/Texts.h"
#include "xml/easy/internal/Items.h"
#include "xml/easy/internal/NodeWords.h"
#include "xml/standard/internal/Excerpt.h"
#include <algorithm>
#include <optional>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace Xml {

namespace {

using AttributePair = std::pair<const Attribute*, const Attribute*>;

// The first attributes that differ, null where one side has none of the name.
std::optional<AttributePair> differentAttributes(const Element& a, const Element& b) {
    const AttributeSpan first = NodeAccess::attributes(a);
    const AttributeSpan second = NodeAccess::attributes(b);
    for (std::size_t i = 0; i < std::max(first.size(), second.size()); ++i) {
        const Attribute* const one = i < first.size() ? first[i] : nullptr;
        const Attribute* const other = i < second.size() ? second[i] : nullptr;
        if (one == nullptr || other == nullptr) return AttributePair(one, other);
        const int order = NodeAccess::name(*one).compare(NodeAccess::name(*other));
        if (order != 0) return AttributePair(order < 0 ? one : nullptr, order < 0 ? nullptr : other);
        if (NodeAccess::text(*one) != NodeAccess::text(*other)) return AttributePair(one, other);
    }
    return {};
}

// What stands around the root, and the root, in their order.
std::vector<Object*> topLevelOf(const Document& document) {
    std::vector<Object*> all;
    const Prolog& prolog = prologOf(document);
    const auto add = [&all](const auto& nodes) {
        for (const auto& node : nodes) all.push_back(node.get());
    };
    add(prolog.beforeDoctype);
    add(prolog.beforeRoot);
    if (document.getRoot() != nullptr) all.push_back(const_cast<Element*>(document.getRoot()));
    add(prolog.afterRoot);
    return all;
}

NodeSpan spanOf(const std::vector<Object*>& nodes) { return {nodes.data(), nodes.data() + nodes.size()}; }

// Goes through two trees side by side, and stops where they differ. The elements that it is in stand on a stack.
class Comparison {
public:
    Comparison(const Object& first, const Object& second) : topA(first), topB(second) {}

    // Whether there is a difference.
    bool run() { return compareTops() || compareBelow(); }

    // After a difference.
    std::string difference() const;

private:
    struct Level {
        const Element* element;  // of the first tree; null for a document
        Items first, second;
    };

    bool compareTops();
    bool compareBelow();
    bool compare(const Object* first, const Object* second);
    bool isHeldTheSame(const Object& first, const Object& second) const;
    bool enter(const Element& first, const Element& second);
    std::string path() const;

    const Object& topA;
    const Object& topB;
    std::vector<Object*> aroundA, aroundB;
    std::vector<Level> levels;

    // What is compared, null for nothing, and what both say; after a difference that is it.
    const Object* nodeA = nullptr;
    const Object* nodeB = nullptr;
    std::string sayingA, sayingB;
};

bool Comparison::compareTops() {
    if (topA.isDocument() && topB.isDocument()) {
        aroundA = topLevelOf(static_cast<const Document&>(topA));
        aroundB = topLevelOf(static_cast<const Document&>(topB));
        levels.push_back({nullptr, Items(spanOf(aroundA)), Items(spanOf(aroundB))});
        return false;
    }
    if (isCharData(topA)) sayingA = textOf(topA);
    if (isCharData(topB)) sayingB = textOf(topB);
    return compare(&topA, &topB);
}

bool Comparison::compareBelow() {
    while (!levels.empty()) {
        const Object* const first = levels.back().first.next(sayingA);
        const Object* const second = levels.back().second.next(sayingB);
        if (compare(first, second)) return true;
        if (first == nullptr) levels.pop_back();
    }
    return false;
}

// Whether two items, or tops, differ. Texts say already what they say. Elements are entered.
bool Comparison::compare(const Object* first, const Object* second) {
    nodeA = first;
    nodeB = second;
    if (first != nullptr && !isCharData(*first)) sayingA = sayingOf(*first);
    if (second != nullptr && !isCharData(*second)) sayingB = sayingOf(*second);
    if (first == nullptr || second == nullptr) return first != second;
    if (kindOf(*first) != kindOf(*second) || nameOf(*first) != nameOf(*second)) return true;
    if (isElement(*first)) return enter(static_cast<const Element&>(*first), static_cast<const Element&>(*second));
    if (isCharData(*first)) return sayingA != sayingB && !isHeldTheSame(*first, *second);
    return sayingA != sayingB || (kindOf(*first) == NodeKind::Other && typeid(*first) != typeid(*second));
}

// Texts with references to entities mean what their Dtd says. A copy links to none, and is the same.
bool Comparison::isHeldTheSame(const Object& first, const Object& second) const {
    if (!levels.empty()) return levels.back().first.held() == levels.back().second.held();
    return NodeAccess::text(static_cast<const CharData&>(first)) ==
           NodeAccess::text(static_cast<const CharData&>(second));
}

bool Comparison::enter(const Element& first, const Element& second) {
    levels.push_back({&first, Items(NodeAccess::children(first)), Items(NodeAccess::children(second))});
    const auto different = differentAttributes(first, second);
    if (!different) return false;
    nodeA = different->first;
    nodeB = different->second;
    if (nodeA != nullptr) sayingA = sayingOf(*nodeA);
    if (nodeB != nullptr) sayingB = sayingOf(*nodeB);
    return true;
}

std::string Comparison::difference() const {
    const auto atA = std::mismatch(sayingA.begin(), sayingA.end(), sayingB.begin(), sayingB.end()).first;
    const auto from = static_cast<std::size_t>(atA - sayingA.begin());
    const auto words = [from](const Object* node, const Object* other, std::string_view saying) {
        const bool isAttributeMissing = node == nullptr && isAttribute(*other);
        return isAttributeMissing ? "no attribute " + messageLine(nameOf(*other)) : wordsFor(node, saying, from);
    };
    return path() + ": " + words(nodeA, nodeB, sayingA) + " and " + words(nodeB, nodeA, sayingB);
}

std::string Comparison::path() const {
    std::string path;
    for (const Level& level : levels) {
        if (level.element == nullptr) continue;
        const std::string_view name = nameOf(*level.element);
        std::size_t number = 1;
        // The top one is where the path begins, whatever is around it.
        const Element* const parent = level.element != &topA ? parentOf(*level.element) : nullptr;
        if (parent != nullptr) {
            for (const Object* const node : NodeAccess::children(*parent)) {
                if (node == level.element) break;
                if (isElement(*node) && nameOf(*node) == name) ++number;
            }
        }
        path.append(1, '/').append(messageLine(name)).append("[" + std::to_string(number) + "]");
    }
    return path.empty() ? "/" : path;
}

}  // namespace

bool sameTree(const Object& a, const Object& b) { return !Comparison(a, b).run(); }

std::string firstDifference(const Object& a, const Object& b) {
    Comparison comparison(a, b);
    return comparison.run() ? comparison.difference() : std::string();
}

}  // namespace Xml
