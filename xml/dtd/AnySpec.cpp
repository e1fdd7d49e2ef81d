#include "xml/dtd/AnySpec.h"

#include "xml/stream/OutStream.h"

namespace Xml {

AnySpec::AnySpec(Dtd* itsDtd) : ContentSpec(itsDtd) {}

bool AnySpec::validate(const std::vector<Object*>&) const { return true; }

void AnySpec::toStream(OutStream& out) const { out << "ANY"; }

ContentSpec* AnySpec::clone(Dtd* newDtd) const { return new AnySpec(newDtd); }

}  // namespace Xml
