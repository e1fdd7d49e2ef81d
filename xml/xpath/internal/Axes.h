#pragma once

#include "xml/xpath/internal/Step.h"
#include <cstddef>
#include <vector>

namespace Xml {

class Document;
class Object;

// Nodes in the order in which a walk has first come upon them, each once.
struct NodeList {
    std::vector<Object*> nodes;

    // False where surely no node lies below another one. Walks downwards need not look out for each other then.
    bool nested = false;
};

// Where among its siblings the last context node stood, for the next one: they mostly come one behind the other.
struct SiblingHint {
    const Object* parent = nullptr;
    std::size_t place = 0;
};

// Replaces `found` by what the step's axis finds from the nodes of `from`, taken in their order, that passes its node test;
// predicates are not looked at. It may stop when `enough` nodes were found. Without a document the axes following and preceding find
// nothing. `hint` is that of the step.
//
// All axes from all nodes of a document cost O(nodes visited + nodes found), also where what they reach overlaps: a walk stops
// where another one has collected all that follows.
void collect(const Step& step, const NodeList& from, Document* document, NodeList& found, std::size_t enough,
             SiblingHint& hint);

}  // namespace Xml
