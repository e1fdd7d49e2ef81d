#include "xml/dtd/NameSpec.h"

#include "xml/dtd/internal/Matcher.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/stream/OutStream.h"
#include "xml/text/Names.h"

namespace Xml {

NameSpec::NameSpec(Dtd* itsDtd, const std::string& itsName)
    : CpSpec(itsDtd), name(isName(itsName) ? itsName : std::string()) {}

bool NameSpec::validate(ChildQueue& children) const { return Matcher().matchParticle(*this, children); }

void NameSpec::toStream(OutStream& out, bool outermost) const {
    if (outermost) out << '(';
    out << name;
    if (outermost) out << ')';
}

CpSpec* NameSpec::clone(Dtd* newDtd) const { return SpecAccess::makeName(newDtd, name).release(); }

}  // namespace Xml
