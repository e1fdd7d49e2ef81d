#pragma once

#include "xml/standard/Problem.h"
#include "xml/standard/WriteOptions.h"
#include <string>

namespace Xml {

class Object;

// Makes the bytes that a node is written as. False where it cannot be, and `problem` says why; it does not have the
// name of a source.
bool makeText(const Object& node, const WriteOptions& options, std::string& to, Problem& problem);

}  // namespace Xml
