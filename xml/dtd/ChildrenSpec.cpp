#include "xml/dtd/ChildrenSpec.h"

#include "xml/dtd/internal/Matcher.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/dtd/internal/SpecWriter.h"

namespace Xml {

ChildrenSpec::ChildrenSpec(Dtd* itsDtd, CpSpec* itsParticle, RepType itsRepetition)
    : ContentSpec(itsDtd), repetition(itsRepetition), particle(itsParticle) {}

ChildrenSpec::ChildrenSpec(Dtd* itsDtd, const std::string& name, RepType itsRepetition)
    : ContentSpec(itsDtd), repetition(itsRepetition), particle(std::make_unique<NameSpec>(itsDtd, name)) {}

ChildrenSpec::ChildrenSpec(const ChildrenSpec& other)
    : ContentSpec(other), repetition(other.repetition), particle(other.particle->clone(SpecAccess::dtd(other))) {}

ChildrenSpec::~ChildrenSpec() = default;

bool ChildrenSpec::validate(const std::vector<Object*>& children) const {
    return Matcher().matchModel(*this, children);
}

bool ChildrenSpec::validate(ChildQueue& children) const { return Matcher().matchRepeated(*this, children); }

void ChildrenSpec::toStream(OutStream& out) const { toStream(out, true); }

void ChildrenSpec::toStream(OutStream& out, bool outermost) const {
    particle->toStream(out, outermost);
    SpecWriter::writeMark(repetition, out);
}

ContentSpec* ChildrenSpec::clone(Dtd* newDtd) const {
    std::unique_ptr<CpSpec> copy(particle->clone(newDtd));
    auto* const made = new ChildrenSpec(newDtd, copy.get(), repetition);
    copy.release();
    return made;
}

}  // namespace Xml
