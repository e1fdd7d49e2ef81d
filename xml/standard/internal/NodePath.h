#pragma once

#include <string>

namespace Xml {

class Object;

// The element in question, counted among its namesakes from the topmost one on: /order[1]/item[2]. Of an attribute or a
// leaf that is its parent; empty without one.
std::string pathOf(const Object& node);

}  // namespace Xml
