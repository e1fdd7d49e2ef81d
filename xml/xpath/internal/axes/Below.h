#pragma once

#include "xml/xpath/internal/axes/Taker.h"

namespace Xml {

// The axes that lead downwards. What two context nodes both reach is all that is below one of them, so it is enough to
// remember which context nodes were walked from. tests/xpath/AxesTest.cpp and the model tests hold them.

inline void takeChildren(const NodeList& from, Taker& taker) {
    for (Object* const node : from.nodes) {
        Object* root = nullptr;
        taker.take(childrenOf(*node, root));
        if (taker.isDone()) return;
    }
}

inline void takeAttributes(const NodeList& from, Taker& taker) {
    for (Object* const node : from.nodes) {
        taker.takeAttributes(*node);
        if (taker.isDone()) return;
    }
}

void takeDescendants(const NodeList& from, Taker& taker);
void takeDescendantsOrSelf(const NodeList& from, Taker& taker);

// As the children, and the attributes, of all that takeDescendantsOrSelf finds, without a list of that.
void takeChildrenFromBelow(const NodeList& from, Taker& taker);
void takeAttributesFromBelow(const NodeList& from, Taker& taker);

}  // namespace Xml
