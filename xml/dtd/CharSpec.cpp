#include "xml/dtd/CharSpec.h"

#include "xml/dom/Object.h"
#include "xml/dtd/internal/SpecAccess.h"
#include "xml/stream/OutStream.h"

namespace Xml {

CharSpec::CharSpec(Dtd* itsDtd) : ContentSpec(itsDtd) {}

bool CharSpec::validate(const std::vector<Object*>& children) const {
    for (Object* child : children) {
        if (child->isElement() || !child->isCharData()) return false;
        child->setDtd(SpecAccess::dtd(*this));
    }
    return true;
}

void CharSpec::toStream(OutStream& out) const { out << "(#PCDATA)"; }

ContentSpec* CharSpec::clone(Dtd* newDtd) const { return new CharSpec(newDtd); }

}  // namespace Xml
