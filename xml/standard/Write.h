#pragma once

#include "xml/Export.h"
#include "xml/standard/WriteOptions.h"
#include "xml/standard/WriteResult.h"
#include <iosfwd>

namespace Xml {

class Object;

// Write a node as XML 1.0: a document with what stands around its root; an element, or what may stand in one, alone; of
// a Dtd its declarations. The tree may have been read by any reader, or built.
//
// What XML cannot say is a problem, and then nothing is written: a name that is none, a control character, "--" in a
// comment. Nothing throws but std::bad_alloc.

ORVXML_API WriteResult writeText(const Object& node, const WriteOptions& options = {});

// Puts the text together in memory first. A stream that fails is a problem too; then some of it may be written.
ORVXML_API WriteResult writeStream(const Object& node, std::ostream& out, const WriteOptions& options = {});

}  // namespace Xml
