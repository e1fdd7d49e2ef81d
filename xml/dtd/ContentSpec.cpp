#include "xml/dtd/ContentSpec.h"

namespace Xml {

ContentSpec::ContentSpec(Dtd* itsDtd) : dtd(itsDtd) {}

ContentSpec::~ContentSpec() = default;

}  // namespace Xml
