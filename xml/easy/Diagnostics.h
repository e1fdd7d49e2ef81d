#pragma once

#include "xml/Export.h"
#include <functional>
#include <string_view>

namespace Xml {

// Sets what gets the diagnostics of the whole process (see Message); with an empty function nothing does. Returns what
// was there, so that it can be put back:
//
//     const auto before = Xml::onDiagnostic({});
//     ...                          // quiet
//     Xml::onDiagnostic(before);
//
// A setting like others: while no thread works on a tree.
ORVXML_API std::function<void(std::string_view)> onDiagnostic(std::function<void(std::string_view)> handler);

}  // namespace Xml
