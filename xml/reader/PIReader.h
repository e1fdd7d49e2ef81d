#pragma once

#include "xml/reader/Reader.h"

namespace Xml {

// Reads a processing instruction and drops it.
class ORVXML_API PIReader : public Reader {
public:
    bool parse(InStream& in);
};

}  // namespace Xml
