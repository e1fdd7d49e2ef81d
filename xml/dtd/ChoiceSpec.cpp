#include "xml/dtd/ChoiceSpec.h"

#include "xml/dtd/internal/Matcher.h"
#include "xml/dtd/internal/NameIndex.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/dtd/internal/SpecTree.h"
#include "xml/dtd/internal/SpecWriter.h"

namespace Xml {

ChoiceSpec::ChoiceSpec(Dtd* itsDtd) : GroupSpec(itsDtd) {}

ChoiceSpec::ChoiceSpec(const ChoiceSpec& other) : ChoiceSpec(SpecAccess::dtd(other)) {
    charData = other.charData;
    SpecTree::copyMembers(other, *this, SpecAccess::dtd(other));
}

ChoiceSpec::~ChoiceSpec() = default;

void ChoiceSpec::addChoice(ChildrenSpec* alternative) { append(alternative); }

void ChoiceSpec::addChoice(const std::string& name, RepType repetition) { append(name, repetition); }

void ChoiceSpec::addChoice(CpSpec* particle, RepType repetition) { append(particle, repetition); }

void ChoiceSpec::addCharDataAsChoice(bool allowed) { charData = allowed; }

// A name that must occur fails without a trace unless the next child has that name, and then no other alternative of
// the same name and Dtd does better: only the first needs to be tried.
void ChoiceSpec::noteMember(const ChildrenSpec& member) {
    const std::size_t place = SpecAccess::members(*this).size();
    const RepType repetition = SpecAccess::repetition(member);
    const CpSpec& particle = SpecAccess::particle(member);
    const bool mustOccur = repetition == REP_ONCE || repetition == REP_ONE_OR_MORE;
    if (place != leadingCount || !mustOccur || !isExactlySpec<NameSpec>(particle)) return;
    if (SpecAccess::dtd(particle) != SpecAccess::dtd(*this)) return;
    const std::string& name = SpecAccess::name(static_cast<const NameSpec&>(particle));
    if (!name.empty()) {  // an empty one matches nothing
        if (leadingNames == nullptr) leadingNames = std::make_unique<NameIndex>();
        leadingNames->add(name, place);
    }
    ++leadingCount;
}

bool ChoiceSpec::validate(ChildQueue& children) const { return Matcher().matchParticle(*this, children); }

void ChoiceSpec::toStream(OutStream& out, bool) const { SpecWriter::write(*this, out); }

CpSpec* ChoiceSpec::clone(Dtd* newDtd) const {
    auto copy = std::make_unique<ChoiceSpec>(newDtd);
    copy->charData = charData;
    SpecTree::copyMembers(*this, *copy, newDtd);
    return copy.release();
}

}  // namespace Xml
