#pragma once

#include "xml/dom/Document.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dom/internal/NodeClasses.h"
#include "xml/xpath/internal/NodeTest.h"
#include "xml/xpath/internal/VisitBudget.h"
#include "xml/xpath/internal/axes/PreorderWalk.h"
#include <cstddef>
#include <limits>
#include <vector>

namespace Xml {

// Nodes in the order in which a walk has first come upon them, each once.
struct NodeList {
    std::vector<Object*> nodes;

    // Whether one of them may lie below another one. Walks downwards need not look out for each other where none can.
    bool mayNest = false;
};

// Where an axis puts the nodes that it reaches: those that pass the test of the step are taken, until there are enough,
// or until the query has looked at as many nodes as it may. tests/xpath/AxesTest.cpp holds it, through the axes.
class Taker {
public:
    static constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

    Taker(const NodeTest& itsTest, std::vector<Object*>& itsFound, std::size_t itsEnough, VisitBudget& itsBudget)
        : test(itsTest), found(itsFound), enough(itsEnough), budget(itsBudget) {}

    // Whether a walk may end here.
    bool isDone() const { return found.size() >= enough; }

    bool wantsOne() const { return enough == 1; }
    bool wantsAll() const { return enough == kAll; }
    bool takes(const Object& node) const { return test.accepts(node); }
    bool takesTexts() const { return test.acceptsTexts(); }

    // Says that as many nodes were looked at.
    void visit(std::size_t nodes = 1) {
        budget.spend(nodes);
        if (budget.isSpent()) enough = 0;
    }

    // How many more nodes may be looked at.
    std::size_t visitsLeft() const { return budget.visitsLeft(); }

    // Another one, of all nodes, for what an axis is to go on from.
    Taker forAll(std::vector<Object*>& nodes) const;

    void take(Object& node) {
        if (test.accepts(node)) found.push_back(&node);
    }
    void take(Element& element) {
        if (test.accepts(element)) found.push_back(&element);
    }

    // Of a node that is no element.
    void takeOther(Object& node) {
        if (test.acceptsOther(node)) found.push_back(&node);
    }

    // Looks at each node of the row.
    void take(NodeSpan row) {
        const bool takesAll = wantsAll();
        Object* const* next = row.begin();
        while (next != row.end() && (takesAll || !isDone())) take(**next++);
        visit(static_cast<std::size_t>(next - row.begin()));
    }

    // Takes attributes of an element that was visited, and none of another node.
    void takeAttributes(Object& node) {
        if (!isElement(node)) return;
        auto& element = static_cast<Element&>(node);
        if (test.wantsOneAttribute()) {
            if (Attribute* const attribute = test.attributeOf(element)) found.push_back(attribute);
        } else {
            takeEachAttribute(element);
        }
    }

private:
    void takeEachAttribute(const Element& element);

    const NodeTest& test;
    std::vector<Object*>& found;
    std::size_t enough;
    VisitBudget& budget;
};

}  // namespace Xml
