#include "xml/dtd/SeqSpec.h"

#include "xml/dtd/internal/Matcher.h"
#include "xml/dtd/internal/SpecAccess.h"
#include <memory>

namespace Xml {

SeqSpec::SeqSpec(Dtd* itsDtd) : GroupSpec(itsDtd) {}

SeqSpec::SeqSpec(const SeqSpec& other) : SeqSpec(SpecAccess::dtd(other)) {
    SpecAccess::copyMembers(other, *this, SpecAccess::dtd(other));
}

SeqSpec::~SeqSpec() = default;

void SeqSpec::add(ChildrenSpec* member) { append(member); }

void SeqSpec::add(const std::string& name, RepType repetition) { append(name, repetition); }

void SeqSpec::add(CpSpec* particle, RepType repetition) { append(particle, repetition); }

bool SeqSpec::validate(ChildQueue& children) const { return Matcher().matchParticle(*this, children); }

void SeqSpec::toStream(OutStream& out, bool outermost) const { SpecAccess::writeGroup(*this, false, outermost, out); }

CpSpec* SeqSpec::clone(Dtd* newDtd) const {
    auto copy = std::make_unique<SeqSpec>(newDtd);
    SpecAccess::copyMembers(*this, *copy, newDtd);
    return copy.release();
}

}  // namespace Xml
