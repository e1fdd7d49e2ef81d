#pragma once

#include "xml/reader/Reader.h"

namespace Xml {

// Reads the XML declaration: version 1.0, then perhaps an encoding. An encoding other than UTF-8 is not enforced: parse
// returns true and the error message says "Unsupported encoding: " and the value with its quotes.
class ORVXML_API VersionInfoReader : public Reader {
public:
    bool parse(InStream& in);
};

}  // namespace Xml
