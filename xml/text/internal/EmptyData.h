#pragma once

#include "xml/text/DataHolder.h"

namespace Xml {

// The one empty value, never destroyed: for operations that promise a reference and have no value to refer to.
const DataHolder& emptyData();

}  // namespace Xml
