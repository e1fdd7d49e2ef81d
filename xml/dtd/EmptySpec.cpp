#include "xml/dtd/EmptySpec.h"

#include "xml/dtd/internal/PlainModels.h"
#include "xml/stream/OutStream.h"

namespace Xml {

EmptySpec::EmptySpec(Dtd* itsDtd) : ContentSpec(itsDtd) {}

bool EmptySpec::validate(const std::vector<Object*>& children) const {
    return isEmptyContent({children.data(), children.data() + children.size()});
}

void EmptySpec::toStream(OutStream& out) const { out << "EMPTY"; }

ContentSpec* EmptySpec::clone(Dtd* newDtd) const { return new EmptySpec(newDtd); }

}  // namespace Xml
