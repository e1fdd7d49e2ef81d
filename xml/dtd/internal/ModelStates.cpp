#include "xml/dtd/internal/ModelStates.h"

#include "xml/dtd/internal/SpecAccess.h"
#include <algorithm>
#include <numeric>
#include <tuple>

// A model is listed in the order of its text. So loops go through it, however deep its groups are nested: one backwards
// sums up what a group begins with and what follows a member, and one forwards gives every name its step and every
// particle its states.

namespace Xml {

struct ModelStates::Node {
    enum class Kind : std::uint8_t { Name, Sequence, Choice };

    const ChildrenSpec* spec;
    Kind kind;
    std::uint32_t group;  // the node that it is a member of

    std::uint32_t listed = 0;  // how many of its members are
    std::uint32_t end = 0;     // the node after it and all in it

    // Sums. Those of a group are about its members from one on, as long as they are not complete; those of the rest are
    // about what follows in the sequence.
    bool mayBeNothing = false;  // whether it may match without taking anything
    std::uint32_t count = 0;    // the names that are tried as long as it has taken nothing
    bool restMayBeNothing = false;
    std::uint32_t restCount = 0;

    // Places.
    std::uint32_t first = 0;      // the step of the first of those names
    std::uint32_t nextFirst = 0;  // the same of the next member
    bool isDecided = false;       // no more alternatives are tried, as the last one may match without taking anything
    State afterAll = kEnd;        // after it has taken something, and is over
    State afterPass = kEnd;       // after a pass of it has

    RepType repetition() const { return SpecAccess::repetition(*spec); }
    const SpecAccess::Members& members() const {
        return SpecAccess::members(static_cast<const GroupSpec&>(SpecAccess::particle(*spec)));
    }
};

ModelStates::ModelStates() {
    // For documents with few types.
    constexpr std::size_t kMostly = 16;
    states.reserve(kMostly);
    steps.reserve(kMostly);
    nodes.reserve(kMostly);
    models.reserve(kMostly);
    states.push_back({0, 0, 0, kNone, true});
}

ModelStates::~ModelStates() = default;

ModelStates::State ModelStates::add(const ChildrenSpec& model, const Dtd& dtd) {
    nodes.clear();
    if (!list(model, dtd)) return kNone;
    sum();
    beginModel();
    const auto firstState = static_cast<std::ptrdiff_t>(states.size());
    const State start = layOut();
    const auto isWide = [](const Names& names) { return names.count > kFew; };
    endModel(std::any_of(states.begin() + firstState, states.end(), isWide));
    return start;
}

ModelStates::State ModelStates::addAnyOf(const std::vector<std::string>& names) {
    beginModel();
    const auto count = static_cast<std::uint32_t>(names.size());
    const State any = addState(takeSteps(count), count, kEnd);
    for (std::size_t i = 0; i < names.size(); ++i) {
        steps[states[any].first + i] = {&names[i], any};
    }
    endModel(count > kFew);
    return any;
}

ModelStates::State ModelStates::next(State from, const std::string& name) const {
    for (State at = from; at != kNone; at = states[at].otherwise) {
        if (const Step* const step = find(states[at], name)) return step->next;
    }
    return kNone;
}

const ModelStates::Step* ModelStates::find(const Names& names, const std::string& name) const {
    if (names.count > kFew) return findAmongMany(names, name);
    const Step* const begin = steps.data() + names.first;
    const Step* const end = begin + names.count;
    const Step* const found = std::find_if(begin, end, [&](const Step& step) { return *step.name == name; });
    return found != end ? found : nullptr;
}

// --- The list of nodes ---

bool ModelStates::list(const ChildrenSpec& model, const Dtd& dtd) {
    std::uint32_t here = 0;
    if (!open(model, here, dtd)) return false;
    for (;;) {
        Node& node = nodes[here];
        if (node.kind != Node::Kind::Name && node.listed < node.members().size()) {
            const ChildrenSpec& member = *node.members()[node.listed++];
            const std::uint32_t group = here;
            here = static_cast<std::uint32_t>(nodes.size());
            if (!open(member, group, dtd)) return false;
        } else {
            node.end = static_cast<std::uint32_t>(nodes.size());
            if (here == 0) return true;
            here = node.group;
        }
    }
}

bool ModelStates::open(const ChildrenSpec& spec, std::uint32_t group, const Dtd& dtd) {
    const CpSpec& particle = SpecAccess::particle(spec);
    Node node{&spec, Node::Kind::Name, group};
    if (isExactlySpec<NameSpec>(particle)) {
        if (SpecAccess::dtd(particle) != &dtd) return false;
        node.count = SpecAccess::name(static_cast<const NameSpec&>(particle)).empty() ? 0 : 1;
    } else if (isExactlySpec<SeqSpec>(particle)) {
        node.kind = Node::Kind::Sequence;
        node.mayBeNothing = true;
    } else if (isExactlySpec<ChoiceSpec>(particle)) {
        if (SpecAccess::charData(static_cast<const ChoiceSpec&>(particle))) return false;
        node.kind = Node::Kind::Choice;
    } else {
        return false;
    }
    nodes.push_back(node);
    return true;
}

// --- Sums ---

// The members of a group come before it, the last one first.
void ModelStates::sum() {
    for (std::size_t i = nodes.size(); i-- > 0;) {
        Node& node = nodes[i];
        if (node.repetition() == REP_OPTIONAL || node.repetition() == REP_ZERO_OR_MORE) node.mayBeNothing = true;
        if (i == 0) return;
        Node& group = nodes[node.group];
        if (group.kind == Node::Kind::Sequence) {
            node.restMayBeNothing = group.mayBeNothing;
            node.restCount = group.count;
            group.mayBeNothing = group.mayBeNothing && node.mayBeNothing;
            group.count = node.count + (node.mayBeNothing ? group.count : 0);
        } else if (node.mayBeNothing) {
            group.mayBeNothing = true;
            group.count = node.count;
        } else {
            group.count += node.count;
        }
    }
}

// --- Steps and states ---

ModelStates::State ModelStates::layOut() {
    Node& all = nodes.front();
    all.first = takeSteps(all.count);
    const State start = addState(all.first, all.count, all.mayBeNothing ? kEnd : kNone);
    for (std::size_t i = 0; i < nodes.size();) {
        Node& node = nodes[i];
        Node& group = nodes[node.group];
        if (i > 0 && group.isDecided) {
            i = node.end;
            continue;
        }
        if (i > 0) place(node, group);
        const bool repeats = node.repetition() == REP_ZERO_OR_MORE || node.repetition() == REP_ONE_OR_MORE;
        node.afterPass = repeats ? addState(node.first, node.count, node.afterAll) : node.afterAll;
        node.nextFirst = node.first;
        if (node.kind == Node::Kind::Name && node.count > 0) {
            const std::string& name = SpecAccess::name(static_cast<const NameSpec&>(SpecAccess::particle(*node.spec)));
            steps[node.first] = {&name, node.afterPass};
        }
        ++i;
    }
    return start;
}

// Gives the member of a group its place, and the group the place of the next one.
void ModelStates::place(Node& node, Node& group) {
    node.first = group.nextFirst;
    node.afterAll = group.afterPass;
    group.nextFirst = node.first + node.count;
    if (group.kind == Node::Kind::Choice) {
        group.isDecided = node.mayBeNothing;
        return;
    }
    if (!node.mayBeNothing) group.nextFirst = takeSteps(node.restCount);
    if (node.restCount == 0 && node.restMayBeNothing) return;
    node.afterAll = addState(group.nextFirst, node.restCount, node.restMayBeNothing ? group.afterPass : kNone);
}

std::uint32_t ModelStates::takeSteps(std::uint32_t count) {
    const std::size_t first = steps.size();
    steps.resize(first + count);
    return static_cast<std::uint32_t>(first);
}

// Where none of these names has to come, those of the state `otherwise` follow; else that is kNone.
ModelStates::State ModelStates::addState(std::uint32_t first, std::uint32_t count, State otherwise) {
    const auto model = static_cast<std::uint32_t>(models.size() - 1);
    states.push_back({first, count, model, otherwise, otherwise != kNone && states[otherwise].mayEnd});
    return static_cast<State>(states.size() - 1);
}

// --- Many names at a state ---

void ModelStates::beginModel() { models.push_back(static_cast<std::uint32_t>(steps.size())); }

// Sorts the steps of the model by their names, and where a name is there several times, in the order of trying.
void ModelStates::endModel(bool hasMany) {
    if (!hasMany) return;
    sorted.resize(steps.size());
    const auto begin = sorted.begin() + models.back();
    std::iota(begin, sorted.end(), models.back());
    std::sort(begin, sorted.end(), [this](std::uint32_t a, std::uint32_t b) {
        return std::tie(*steps[a].name, a) < std::tie(*steps[b].name, b);
    });
}

const ModelStates::Step* ModelStates::findAmongMany(const Names& names, const std::string& name) const {
    const std::size_t model = names.model;
    const auto begin = sorted.begin() + models[model];
    const auto end =
        sorted.begin() + (model + 1 < models.size() ? models[model + 1] : static_cast<std::uint32_t>(steps.size()));
    const auto found = std::lower_bound(begin, end, names.first, [&](std::uint32_t step, std::uint32_t first) {
        return std::tie(*steps[step].name, step) < std::tie(name, first);
    });
    const bool isHere = found != end && *found < names.first + names.count && *steps[*found].name == name;
    return isHere ? &steps[*found] : nullptr;
}

}  // namespace Xml
