#include "xml/dtd/GroupSpec.h"

#include "xml/dtd/internal/SpecAccess.h"
#include "xml/dtd/internal/SpecTree.h"

namespace Xml {

GroupSpec::GroupSpec(Dtd* itsDtd) : CpSpec(itsDtd) {}

GroupSpec::~GroupSpec() { SpecTree::deleteMembers(*this); }

void GroupSpec::append(ChildrenSpec* member) {
    if (members.size() == members.capacity()) members.reserve(members.empty() ? 2 : 2 * members.size());
    noteMember(*member);
    members.emplace_back(member);  // has room: nothing can fail once the member is noted
}

void GroupSpec::append(const std::string& name, RepType repetition) {
    auto member = std::make_unique<ChildrenSpec>(SpecAccess::dtd(*this), name, repetition);
    append(member.get());
    member.release();
}

void GroupSpec::append(CpSpec* particle, RepType repetition) {
    // A wrapper that cannot be appended must not take the particle with it.
    struct Letting {
        void operator()(ChildrenSpec* member) const {
            SpecAccess::releaseParticle(*member);
            delete member;
        }
    };
    std::unique_ptr<ChildrenSpec, Letting> member(new ChildrenSpec(SpecAccess::dtd(*this), particle, repetition));
    append(member.get());
    member.release();
}

void GroupSpec::noteMember(const ChildrenSpec&) {}

}  // namespace Xml
