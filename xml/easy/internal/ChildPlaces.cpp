#include "xml/easy/internal/ChildPlaces.h"

#include "xml/dom/internal/NodeAccess.h"
#include <algorithm>
#include <array>
#include <cstdint>

namespace Xml {

namespace {

struct Remembered {
    const Element* parent = nullptr;
    std::size_t place = 0;
};

// A walk through a tree stands in one element a level, so that there are some of them.
constexpr std::size_t kRemembered = 64;

Remembered& rememberedOf(const Element& parent) {
    thread_local std::array<Remembered, kRemembered> all;
    const auto address = reinterpret_cast<std::uintptr_t>(&parent);
    return all[(address / alignof(Element) * 0x9E3779B9u >> 7) % kRemembered];
}

std::size_t search(const NodeSpan& children, const Object& child) {
    return static_cast<std::size_t>(std::find(children.begin(), children.end(), &child) - children.begin());
}

}  // namespace

std::size_t placeAmongChildren(const Element& parent, const Object& child) {
    const NodeSpan children = NodeAccess::children(parent);
    Remembered& remembered = rememberedOf(parent);
    const std::size_t from = remembered.parent == &parent && remembered.place > 0 ? remembered.place - 1 : 0;
    const std::size_t to = std::min(from + 3, children.size());
    std::size_t place = from;
    while (place < to && children[place] != &child) ++place;
    if (place >= to) place = search(children, child);
    if (place < children.size()) remembered = {&parent, place};
    return place;
}

}  // namespace Xml
