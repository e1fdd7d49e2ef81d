#include "xml/dtd/internal/SpecTree.h"

#include "xml/dtd/internal/SpecAccess.h"
#include <cstddef>
#include <memory>
#include <vector>

namespace Xml {

namespace {

// An empty group of the same class, with the same settings.
std::unique_ptr<GroupSpec> makeAlike(const GroupSpec& group, Dtd* dtd) {
    if (isExactlySpec<SeqSpec>(group)) return std::make_unique<SeqSpec>(dtd);
    auto choice = std::make_unique<ChoiceSpec>(dtd);
    choice->addCharDataAsChoice(SpecAccess::charData(static_cast<const ChoiceSpec&>(group)));
    return choice;
}

}  // namespace

GroupSpec* SpecTree::groupOf(const ChildrenSpec& member) {
    CpSpec* const particle = member.particle.get();  // null where a caller gave none
    const bool isGroup = particle != nullptr && SpecAccess::asGroup(*particle) != nullptr;
    return isGroup ? static_cast<GroupSpec*>(particle) : nullptr;
}

// Goes down into the last member as long as that is a group with members, and comes back up by the `outer` links, which
// only this uses.
void SpecTree::deleteMembers(GroupSpec& top) {
    GroupSpec* here = &top;
    for (;;) {
        if (here->members.empty()) {
            if (here == &top) return;
            here = here->outer;
        }
        ChildrenSpec& last = *here->members.back();
        GroupSpec* const inner = isExactlySpec<ChildrenSpec>(last) ? groupOf(last) : nullptr;
        if (inner != nullptr && !inner->members.empty()) {
            inner->outer = here;
            here = inner;
        } else {
            here->members.pop_back();
        }
    }
}

void SpecTree::copyMembers(const GroupSpec& from, GroupSpec& to, Dtd* dtd) {
    struct Place {
        const GroupSpec* from;
        GroupSpec* to;
        std::size_t member;
    };
    std::vector<Place> open{{&from, &to, 0}};
    while (!open.empty()) {
        Place& here = open.back();
        if (here.member == here.from->members.size()) {
            open.pop_back();
            continue;
        }
        const ChildrenSpec& member = *here.from->members[here.member++];
        GroupSpec& target = *here.to;
        if (!isExactlySpec<ChildrenSpec>(member)) {
            std::unique_ptr<ContentSpec> copy(member.clone(dtd));
            target.append(static_cast<ChildrenSpec*>(copy.get()));
            copy.release();
            continue;
        }
        const RepType repetition = SpecAccess::repetition(member);
        if (const GroupSpec* const group = groupOf(member)) {
            std::unique_ptr<GroupSpec> copy = makeAlike(*group, dtd);
            target.append(copy.get(), repetition);
            open.push_back({group, copy.release(), 0});
        } else {
            std::unique_ptr<CpSpec> copy(SpecAccess::particle(member).clone(dtd));
            target.append(copy.get(), repetition);
            copy.release();
        }
    }
}

}  // namespace Xml
