#include "xml/standard/internal/ModelText.h"

#include "xml/dtd/ContentSpec.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <cstddef>
#include <utility>
#include <vector>

namespace Xml {

namespace {

// A choice that has text as well stands in another order in the dialect. Empty for any other model, and where XML has
// no form for it.
std::string mixedModel(const ContentSpec& model) {
    if (!isExactlySpec<ChildrenSpec>(model)) return {};
    const auto& children = static_cast<const ChildrenSpec&>(model);
    const CpSpec& particle = SpecAccess::particle(children);
    if (SpecAccess::repetition(children) != REP_ZERO_OR_MORE || !isExactlySpec<ChoiceSpec>(particle)) return {};
    const auto& choice = static_cast<const ChoiceSpec&>(particle);
    if (!SpecAccess::charData(choice)) return {};
    std::string text = "(#PCDATA";
    for (const auto& member : SpecAccess::members(choice)) {
        const CpSpec& name = SpecAccess::particle(*member);
        if (!isExactlySpec<NameSpec>(name) || SpecAccess::repetition(*member) != REP_ONCE) return {};
        text += " | " + SpecAccess::name(static_cast<const NameSpec&>(name));
    }
    return text + ")*";
}

// The particles of a model, with a stack of its own: groups may be nested deeply. What is no group and no name, a
// class of a caller's, writes itself.
class Particles {
public:
    std::string textOf(const ChildrenSpec& model) {
        const CpSpec& outermost = SpecAccess::particle(model);
        const bool isGroup = SpecAccess::asGroup(outermost) != nullptr;
        if (!isGroup) text += '(';
        begin(outermost, isGroup ? SpecAccess::repetition(model) : REP_ONCE);
        while (!open.empty()) step();
        if (!isGroup) text += ')' + markOf(SpecAccess::repetition(model));
        return std::move(text);
    }

private:
    struct Open {
        const GroupSpec* group;
        bool isChoice;
        std::size_t next;
        RepType repetition;
    };

    static std::string markOf(RepType repetition) {
        switch (repetition) {
        case REP_ONCE: break;
        case REP_OPTIONAL: return "?";
        case REP_ZERO_OR_MORE: return "*";
        case REP_ONE_OR_MORE: return "+";
        }
        return {};
    }

    void begin(const CpSpec& particle, RepType repetition) {
        if (const GroupSpec* const group = SpecAccess::asGroup(particle)) {
            text += '(';
            open.push_back({group, isExactlySpec<ChoiceSpec>(particle), 0, repetition});
        } else {
            text += ownText([&](OutStream& out) { particle.toStream(out, false); }) + markOf(repetition);
        }
    }

    void step() {
        Open& here = open.back();
        const SpecAccess::Members& members = SpecAccess::members(*here.group);
        if (here.next < members.size()) {
            if (here.next > 0) text += here.isChoice ? " | " : ", ";
            const ChildrenSpec& member = *members[here.next++];
            return begin(SpecAccess::particle(member), SpecAccess::repetition(member));
        }
        if (here.isChoice && SpecAccess::charData(static_cast<const ChoiceSpec&>(*here.group))) text += " | #PCDATA";
        text += ')' + markOf(here.repetition);
        open.pop_back();
    }

    std::string text;
    std::vector<Open> open;
};

}  // namespace

std::string modelText(const ContentSpec& model) {
    const std::string mixed = mixedModel(model);
    if (!mixed.empty()) return mixed;
    if (isExactlySpec<ChildrenSpec>(model)) return Particles().textOf(static_cast<const ChildrenSpec&>(model));
    return ownText([&](OutStream& out) { model.toStream(out); });
}

}  // namespace Xml
