#pragma once

#include "xml/text/DataHolder.h"

namespace Xml {

// The one permanently empty value: what operations return that promise a reference and have no value to refer to.
const DataHolder& emptyData();

}  // namespace Xml
