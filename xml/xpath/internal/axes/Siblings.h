#pragma once

#include "xml/xpath/internal/axes/Taker.h"
#include <cstddef>
#include <optional>

namespace Xml {

// The axes that lead sideways. What two context nodes both reach is an end of a row of siblings, so it is enough to
// remember how far each row was taken. tests/xpath/AxesTest.cpp and the model tests hold them.

// Where among its siblings the last context node stood, for the next one: they mostly come one after the other. Only
// cost depends on it.
struct SiblingHint {
    const Object* parent;
    std::size_t place;
};

void takeFollowingSiblings(const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker);
void takePrecedingSiblings(const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker);

// The following siblings and all below them; nothing that follows after the parent.
void takeFollowing(const NodeList& from, std::optional<SiblingHint>& hint, Taker& taker);

}  // namespace Xml
