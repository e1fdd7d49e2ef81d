#pragma once

#include "xml/reader/Reader.h"

namespace Xml {

// Reads a comment and drops it.
class ORVXML_API CommentReader : public Reader {
public:
    bool parse(InStream& in);
};

}  // namespace Xml
