#pragma once

#include "xml/dtd/ContentSpec.h"
#include <memory>
#include <string_view>

namespace Xml {

// A content model from its text, as Declarations has it: correct, and without white space. A group of one particle
// becomes that particle, repeated as both together are.
std::unique_ptr<ContentSpec> makeModel(std::string_view text, Dtd& dtd);

}  // namespace Xml
