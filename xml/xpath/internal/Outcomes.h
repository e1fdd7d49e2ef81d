#pragma once

#include "xml/xpath/internal/Absence.h"
#include "xml/xpath/internal/NodeMap.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Xml {

class Object;

// What came of a walk, or of the rest of one.
struct Outcome {
    std::vector<Object*> found;
    Absence absence;
};

// As many nodes as the outcomes of one query may hold, all together. Once they do, walks are made again.
class OutcomeRoom {
public:
    explicit OutcomeRoom(std::size_t itsNodes) : nodes(itsNodes) {}

    bool isLeft() const { return nodes > 0; }
    void take(std::size_t taken) { nodes -= taken < nodes ? taken : nodes; }

private:
    std::size_t nodes;
};

// What came of walks along one path, by the node that each went out from, so that none is made twice. Only cost depends
// on it: tests/xpath/OutcomesTest.cpp compares queries with and without room for outcomes.
class Outcomes {
public:
    // Null where none is kept.
    const Outcome* find(const Object* from) {
        const std::uint32_t* const number = numbers.find(from);
        return number != nullptr ? &outcomes[*number] : nullptr;
    }

    void keep(const Object* from, const std::vector<Object*>& found, const Absence& absence, OutcomeRoom& room) {
        room.take(found.size() + 1);
        numbers.insert(from, static_cast<std::uint32_t>(outcomes.size()));
        outcomes.push_back({found, absence});
    }

private:
    NodeMap numbers;
    std::vector<Outcome> outcomes;
};

}  // namespace Xml
