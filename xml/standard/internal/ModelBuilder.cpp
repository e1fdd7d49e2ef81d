#include "xml/standard/internal/ModelBuilder.h"

#include "xml/dtd/AnySpec.h"
#include "xml/dtd/EmptySpec.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace Xml {

namespace {

// What ends a name.
constexpr std::string_view kMarks = "(),|?*+";

std::unique_ptr<ContentSpec> makeMixed(std::string_view text, Dtd& dtd) {
    auto model = std::make_unique<MixedSpec>(&dtd);
    for (std::size_t bar = text.find('|'); bar != std::string_view::npos; bar = text.find('|')) {
        text.remove_prefix(bar + 1);
        const std::string name(text.substr(0, text.find_first_of(kMarks)));
        if (!SpecAccess::hasName(*model, name)) model->addName(name);
    }
    return model;
}

// A repetition of what is repeated.
RepType combined(RepType inner, RepType outer) {
    if (inner == outer || outer == REP_ONCE) return inner;
    return inner == REP_ONCE ? outer : REP_ZERO_OR_MORE;
}

// Reads a children model, with a stack of its own: groups may be nested as deep as a text is long.
class ChildrenModel {
public:
    ChildrenModel(std::string_view text, Dtd& itsDtd) : rest(text), dtd(itsDtd) {}

    std::unique_ptr<ContentSpec> make() {
        for (;;) {
            const char mark = rest.front();
            if (mark == '(') {
                rest.remove_prefix(1);
                open.emplace_back();
            } else if (mark == ',' || mark == '|') {
                rest.remove_prefix(1);
                beginGroup(mark);
            } else if (mark == ')') {
                rest.remove_prefix(1);
                Item item = endGroup();
                if (open.empty()) return wrapped(std::move(item));
                put(std::move(item));
            } else {
                put(readName());
            }
        }
    }

private:
    struct Item {
        std::unique_ptr<CpSpec> particle;
        RepType repetition = REP_ONCE;
    };

    // A group that has begun. Which one it is shows after its first item; without another it is that item.
    struct Group {
        Item first;
        std::unique_ptr<SeqSpec> sequence;
        std::unique_ptr<ChoiceSpec> choice;
    };

    Item readName() {
        const std::string_view name = rest.substr(0, rest.find_first_of(kMarks));
        rest.remove_prefix(name.size());
        Item item{SpecAccess::makeName(&dtd, name), REP_ONCE};
        item.repetition = readRepetition();
        return item;
    }

    RepType readRepetition() {
        RepType repetition = REP_ONCE;
        if (rest.empty()) return repetition;
        if (rest.front() == '?') repetition = REP_OPTIONAL;
        if (rest.front() == '*') repetition = REP_ZERO_OR_MORE;
        if (rest.front() == '+') repetition = REP_ONE_OR_MORE;
        if (repetition != REP_ONCE) rest.remove_prefix(1);
        return repetition;
    }

    void beginGroup(char mark) {
        Group& group = open.back();
        if (group.first.particle == nullptr) return;  // it began with an earlier mark
        if (mark == ',') {
            group.sequence = std::make_unique<SeqSpec>(&dtd);
        } else {
            group.choice = std::make_unique<ChoiceSpec>(&dtd);
        }
        put(std::move(group.first));
    }

    // The innermost group as an item of the one around it.
    Item endGroup() {
        Group group = std::move(open.back());
        open.pop_back();
        Item item;
        if (group.sequence != nullptr) {
            item.particle = std::move(group.sequence);
        } else if (group.choice != nullptr) {
            item.particle = std::move(group.choice);
        } else {
            item = std::move(group.first);
        }
        item.repetition = combined(item.repetition, readRepetition());
        return item;
    }

    void put(Item item) {
        Group& group = open.back();
        if (group.sequence != nullptr) {
            group.sequence->add(item.particle.get(), item.repetition);
            item.particle.release();
        } else if (group.choice != nullptr) {
            group.choice->addChoice(item.particle.get(), item.repetition);
            item.particle.release();
        } else {
            group.first = std::move(item);
        }
    }

    std::unique_ptr<ContentSpec> wrapped(Item item) {
        auto model = std::make_unique<ChildrenSpec>(&dtd, item.particle.get(), item.repetition);
        item.particle.release();
        return model;
    }

    std::string_view rest;
    Dtd& dtd;
    std::vector<Group> open;
};

}  // namespace

std::unique_ptr<ContentSpec> makeModel(std::string_view text, Dtd& dtd) {
    if (text == "EMPTY") return std::make_unique<EmptySpec>(&dtd);
    if (text == "ANY") return std::make_unique<AnySpec>(&dtd);
    if (text.substr(0, 2) == "(#") return makeMixed(text, dtd);
    return ChildrenModel(text, dtd).make();
}

}  // namespace Xml
