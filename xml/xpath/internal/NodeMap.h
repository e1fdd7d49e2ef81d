#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Xml {

class Object;

// A number for each of some nodes, found by the node's address in constant time: open addressing, at most half full.
class NodeMap {
public:
    NodeMap() = default;

    // With room for that many.
    explicit NodeMap(std::size_t nodes) { makeRoom(nodes); }

    // The number of the node; null where it has none. Good until the next insertion.
    std::uint32_t* find(const Object* node) {
        if (places.empty()) return nullptr;
        Place& place = placeOf(node);
        return place.node == node ? &place.number : nullptr;
    }

    // The number of the node, which is `number` where it had none, and whether it had none.
    std::pair<std::uint32_t*, bool> insert(const Object* node, std::uint32_t number = 0) {
        if (2 * (count + 1) > places.size()) makeRoom(2 * count + 4);
        Place& place = placeOf(node);
        const bool isNew = place.node == nullptr;
        if (isNew) {
            place = {node, number};
            ++count;
        }
        return {&place.number, isNew};
    }

private:
    struct Place {
        const Object* node = nullptr;
        std::uint32_t number = 0;
    };

    void makeRoom(std::size_t nodes) {
        std::size_t size = 8;
        unsigned bits = 3;
        for (; size < 2 * nodes; size *= 2) ++bits;
        std::vector<Place> before(size);
        before.swap(places);
        shift = 64 - bits;
        for (const Place& place : before) {
            if (place.node != nullptr) placeOf(place.node) = place;
        }
    }

    // The place of the node, or the empty one where it would go.
    Place& placeOf(const Object* node) {
        // The high bits of the product depend on all bits of the address.
        const std::uint64_t hash = reinterpret_cast<std::uintptr_t>(node) * std::uint64_t{0x9E3779B97F4A7C15};
        std::size_t at = static_cast<std::size_t>(hash >> shift);
        while (places[at].node != nullptr && places[at].node != node) at = (at + 1) & (places.size() - 1);
        return places[at];
    }

    std::vector<Place> places;
    std::size_t count = 0;
    unsigned shift = 64;
};

}  // namespace Xml
