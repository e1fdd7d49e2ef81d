#pragma once

#include "xml/standard/internal/Declarations.h"
#include <memory>

namespace Xml {

class Dtd;

// The document type as a Dtd: all that was declared and counts, in the classes of the tree. Null without one. Linear in
// the declarations, and nothing recurses.
//
// - Of an element the first declaration counts. A name in a mixed model counts once.
// - A group of one particle is that particle: (b, (a?)+) is (b, a*). Whether a model is deterministic is not looked at.
// - Default values are normalised by type.
// - The value of an internal entity is the text that a reference to it stands for (see entityValues).
std::unique_ptr<Dtd> makeDtd(const Declarations& declared);

}  // namespace Xml
