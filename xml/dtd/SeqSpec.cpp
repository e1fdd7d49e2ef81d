#include "xml/dtd/SeqSpec.h"

#include "xml/dtd/internal/Matcher.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/dtd/internal/SpecTree.h"
#include "xml/dtd/internal/SpecWriter.h"
#include <memory>

namespace Xml {

SeqSpec::SeqSpec(Dtd* itsDtd) : GroupSpec(itsDtd) {}

SeqSpec::SeqSpec(const SeqSpec& other) : SeqSpec(SpecAccess::dtd(other)) {
    SpecTree::copyMembers(other, *this, SpecAccess::dtd(other));
}

SeqSpec::~SeqSpec() = default;

void SeqSpec::add(ChildrenSpec* member) { append(member); }

void SeqSpec::add(const std::string& name, RepType repetition) { append(name, repetition); }

void SeqSpec::add(CpSpec* particle, RepType repetition) { append(particle, repetition); }

bool SeqSpec::validate(ChildQueue& children) const { return Matcher().matchParticle(*this, children); }

void SeqSpec::toStream(OutStream& out, bool outermost) const { SpecWriter::write(*this, outermost, out); }

CpSpec* SeqSpec::clone(Dtd* newDtd) const {
    auto copy = std::make_unique<SeqSpec>(newDtd);
    SpecTree::copyMembers(*this, *copy, newDtd);
    return copy.release();
}

}  // namespace Xml
