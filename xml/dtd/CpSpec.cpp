#include "xml/dtd/CpSpec.h"

namespace Xml {

CpSpec::CpSpec(Dtd* itsDtd) : dtd(itsDtd) {}

CpSpec::~CpSpec() = default;

}  // namespace Xml
