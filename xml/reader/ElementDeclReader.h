#pragma once

#include "xml/reader/Reader.h"

namespace Xml {

class Dtd;

// Reads one element declaration into a Dtd. An element that is declared already keeps its first declaration.
class ORVXML_API ElementDeclReader : public Reader {
public:
    // The Dtd is not owned.
    explicit ElementDeclReader(Dtd* dtd);

    bool parse(InStream& in);

private:
    Dtd* dtd;
};

}  // namespace Xml
