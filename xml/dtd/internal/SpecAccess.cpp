#include "xml/dtd/internal/SpecAccess.h"

#include "xml/stream/internal/OutStreamAccess.h"
#include "xml/text/Message.h"
#include <memory>
#include <string>
#include <string_view>

namespace Xml {

namespace {

// An empty group of the same class, with the same settings.
GroupSpec* makeAlike(const GroupSpec& group, Dtd* dtd) {
    if (isExactlySpec<SeqSpec>(group)) return new SeqSpec(dtd);
    auto* const choice = new ChoiceSpec(dtd);
    choice->addCharDataAsChoice(SpecAccess::charData(static_cast<const ChoiceSpec&>(group)));
    return choice;
}

}  // namespace

// Goes down into the last member as long as that is a group with members, and comes back up by the `outer` links, which only
// this uses: nothing is allocated.
void SpecAccess::deleteMembers(GroupSpec& top) {
    GroupSpec* here = &top;
    for (;;) {
        if (here->members.empty()) {
            if (here == &top) return;
            here = here->outer;
        }
        ChildrenSpec* const last = here->members.back();
        const GroupSpec* const group = last->particle != nullptr ? asGroup(*last->particle) : nullptr;
        if (isExactlySpec<ChildrenSpec>(*last) && group != nullptr && !group->members.empty()) {
            auto* const inner = static_cast<GroupSpec*>(last->particle);
            inner->outer = here;
            here = inner;
        } else {
            here->members.pop_back();
            delete last;
        }
    }
}

void SpecAccess::copyMembers(const GroupSpec& from, GroupSpec& to, Dtd* dtd) {
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
        GroupSpec* const target = here.to;
        if (!isExactlySpec<ChildrenSpec>(member)) {
            std::unique_ptr<ContentSpec> copy(member.clone(dtd));
            target->append(static_cast<ChildrenSpec*>(copy.get()));
            copy.release();
            continue;
        }
        const GroupSpec* const group = asGroup(*member.particle);
        std::unique_ptr<CpSpec> particle(group != nullptr ? makeAlike(*group, dtd) : member.particle->clone(dtd));
        target->append(particle.get(), member.repetition);
        auto* const copy = particle.release();
        if (group != nullptr) open.push_back({group, static_cast<GroupSpec*>(copy), 0});
    }
}

void SpecAccess::writeMark(RepType repetition, OutStream& out) {
    switch (repetition) {
    case REP_ONCE: break;
    case REP_OPTIONAL: out << '?'; break;
    case REP_ZERO_OR_MORE: out << '*'; break;
    case REP_ONE_OR_MORE: out << '+'; break;
    }
}

namespace {

class SpecWriter {
public:
    explicit SpecWriter(OutStream& stream) : out(stream) {}

    void run(const GroupSpec& top, bool isChoice, bool outermost) {
        beginGroup(top, isChoice, outermost, REP_ONCE);
        while (!open.empty()) step();
    }

private:
    struct Open {
        const GroupSpec* group;
        std::size_t member;
        bool isChoice;
        bool closed;   // in parentheses
        RepType mark;  // of the member that the group is
    };

    void put(std::string_view text) { OutStreamAccess::put(out, text); }

    // Write a particle and its mark, or begin to.
    void begin(const CpSpec& particle, RepType mark) {
        if (const GroupSpec* group = SpecAccess::asGroup(particle)) {
            beginGroup(*group, isExactlySpec<ChoiceSpec>(particle), false, mark);
        } else {
            particle.toStream(out, false);
            SpecAccess::writeMark(mark, out);
        }
    }

    void beginGroup(const GroupSpec& group, bool isChoice, bool outermost, RepType mark) {
        const std::size_t count = SpecAccess::members(group).size();
        if (count < (isChoice ? 2U : 1U)) {
            Message(std::string(isChoice ? "<ChoiceSpec::toStream> need at least 2 items"
                                         : "<SeqSpec::toStream> need at least 1 element"));
            SpecAccess::writeMark(mark, out);
            return;
        }
        const bool closed = isChoice || outermost || count > 1;
        open.push_back({&group, 0, isChoice, closed, mark});
        if (closed) put("(");
    }

    void step() {
        Open& here = open.back();
        const auto& members = SpecAccess::members(*here.group);
        if (here.member < members.size()) {
            if (here.member > 0) put(here.isChoice ? " | " : ", ");
            const ChildrenSpec& member = *members[here.member++];
            begin(SpecAccess::particle(member), SpecAccess::repetition(member));
            return;
        }
        if (here.isChoice && SpecAccess::charData(static_cast<const ChoiceSpec&>(*here.group))) put(" | #PCDATA");
        if (here.closed) put(")");
        const RepType mark = here.mark;
        open.pop_back();
        SpecAccess::writeMark(mark, out);
    }

    OutStream& out;
    std::vector<Open> open;
};

}  // namespace

void SpecAccess::writeGroup(const GroupSpec& group, bool isChoice, bool outermost, OutStream& out) {
    SpecWriter(out).run(group, isChoice, outermost);
}

}  // namespace Xml
