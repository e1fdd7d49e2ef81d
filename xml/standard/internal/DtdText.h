#pragma once

#include <string>

namespace Xml {

class Dtd;

// The declarations of a document type as XML 1.0 has them, a line each. Whether they are well formed depends on what a
// program put there: names, models.
std::string declarationsOf(const Dtd& dtd);

}  // namespace Xml
