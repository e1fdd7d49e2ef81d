#include "xml/dtd/CharSpec.h"

#include "xml/dtd/internal/PlainModels.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/stream/OutStream.h"

namespace Xml {

CharSpec::CharSpec(Dtd* itsDtd) : ContentSpec(itsDtd) {}

bool CharSpec::validate(const std::vector<Object*>& children) const {
    return matchCharData({children.data(), children.data() + children.size()}, SpecAccess::dtd(*this));
}

void CharSpec::toStream(OutStream& out) const { out << "(#PCDATA)"; }

ContentSpec* CharSpec::clone(Dtd* newDtd) const { return new CharSpec(newDtd); }

}  // namespace Xml
