#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace Xml {

class ChildrenSpec;
class Dtd;
class GroupSpec;

// Children models as states: where matching stands after a child says which names it tries at the next one, in which
// order, and where it stands after each of them.
//
// Matching takes the first that matches and tries something else where a group fails that took a child. The states know
// the way on which no such group fails, and no other. On that way a child decides little: a name that is not the
// child's takes nothing and sets no link. So where a child has none of the names that a particle begins with, the
// particle takes nothing, and whether it matches is the same for all such children: it does if it may match without
// taking anything. What is tried at a child is therefore one list of names, in one order: those that may be next in the
// innermost group, then, where the rest of it may match without taking anything, those that may come in the next pass
// or after the group, and so on outwards. Matching takes the first of them that is the child's, even if another one
// would let the rest match. Where it stands then follows from that name's place in the model alone: how many passes a
// repetition has had makes no difference once one has taken something. And at the end of the children it succeeds where
// all that is left may match without taking anything. So whatever the states accept, matching accepts, having tried
// each child once. Where no name on the list is the child's, a group fails that took a child, or all is over: matching
// may still go another way, and there is no next state.
//
//     (((a, b?) | c)*, d)      at first         [a c] [d]
//                              after a          [b] [a c] [d]
//                              after b or c     [a c] [d]
//                              after d          nothing, and the children may end
//
// Names in brackets lie side by side, once for all states that have them. A state is such a row, or the end of one, and
// the number of the state whose names follow. So a model takes memory and time that are linear in its size.
class ModelStates {
public:
    using State = std::uint32_t;
    static constexpr State kNone = std::numeric_limits<State>::max();

    // The state after which nothing may come.
    static constexpr State kEnd = 0;

    ModelStates();
    ModelStates(const ModelStates&) = delete;
    ModelStates& operator=(const ModelStates&) = delete;
    ~ModelStates();

    // Adds the states of a model, which must stay as it is, and returns that before the first child. Adds nothing and
    // returns kNone where the model takes character data, or has a particle of a caller's class or a name of another
    // Dtd.
    State add(const ChildrenSpec& model, const Dtd& dtd);

    // Adds the one state of a model in which these names may come in any order and number.
    State addAnyOf(const std::vector<std::string>& names);

    // The state after a child of this name; kNone where there is none.
    State next(State from, const std::string& name) const;

    // Whether no more children need come.
    bool mayEnd(State at) const { return states[at].mayEnd; }

private:
    // So many names are tried one by one.
    static constexpr std::uint32_t kFew = 32;

    // A name that is tried, and the state after a child that has it.
    struct Step {
        const std::string* name;
        State next;
    };

    // A state: the names that lie side by side, and the state whose names follow.
    struct Names {
        std::uint32_t first;
        std::uint32_t count;
        std::uint32_t model;
        State otherwise;
        bool mayEnd;
    };

    // A particle with its repetition, as long as its model is added.
    struct Node;

    bool list(const ChildrenSpec& model, const Dtd& dtd);
    bool open(const ChildrenSpec& spec, std::uint32_t group, const Dtd& dtd);
    void sum();
    State layOut();
    void place(Node& node, Node& group);
    std::uint32_t takeSteps(std::uint32_t count);
    State addState(std::uint32_t first, std::uint32_t count, State otherwise);
    void beginModel();
    void endModel(bool hasMany);
    const Step* find(const Names& names, const std::string& name) const;
    const Step* findAmongMany(const Names& names, const std::string& name) const;

    std::vector<Names> states;
    std::vector<Step> steps;
    std::vector<std::uint32_t> models;  // the number of the first step of each
    std::vector<std::uint32_t> sorted;  // the numbers of steps, those of each model in the order of their names
    std::vector<Node> nodes;            // of the model that is being added
};

}  // namespace Xml
