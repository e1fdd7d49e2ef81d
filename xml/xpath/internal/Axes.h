#pragma once

#include "xml/xpath/internal/Step.h"
#include "xml/xpath/internal/VisitBudget.h"
#include "xml/xpath/internal/axes/Siblings.h"
#include "xml/xpath/internal/axes/Taker.h"
#include <cstddef>
#include <optional>

namespace Xml {

class Document;

// What a query walks along: the axes of its document, and how many nodes it may still look at.
//
// Results keep the order of first discovery, and a node is taken once, without being looked up among those found
// already: what two context nodes both reach is always a whole region (all below a node, all above it, all siblings
// after it, all before it in the document), so that it is enough to remember which regions are done. So all axes from
// all nodes of a document cost O(nodes visited + nodes found), also where what they reach overlaps.
// tests/xpath/AxesTest.cpp and the model tests hold it.
class Axes {
public:
    // Without a document the axes following and preceding find nothing.
    Axes(Document* itsDocument, VisitBudget itsBudget) : document_(itsDocument), budget_(itsBudget) {}

    Document* document() const { return document_; }

    // Replaces `found` by what the step's axis finds from the nodes of `from`, taken in their order, that passes its
    // node test; predicates are not looked at. It may stop when `enough` nodes were found, and soon stops when the
    // budget is spent. `hint` is that of the step.
    void collect(const Step& step, const NodeList& from, std::size_t enough, std::optional<SiblingHint>& hint,
                 NodeList& found);

    // What is left to be looked at. Once it is spent, what was found last may be incomplete.
    VisitBudget& budget() { return budget_; }

private:
    void along(const Step& step, const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker,
               NodeList& found) const;

    Document* document_;
    VisitBudget budget_;
};

}  // namespace Xml
