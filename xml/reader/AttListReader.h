#pragma once

#include "xml/reader/Reader.h"

namespace Xml {

class Dtd;

// Reads one attribute list declaration into a Dtd. Only attributes of character data (CDATA) are known; default values
// are taken as they stand, references and all.
class ORVXML_API AttListReader : public Reader {
public:
    // The Dtd is not owned.
    explicit AttListReader(Dtd* dtd);

    bool parse(InStream& in);

private:
    Dtd* dtd;
};

}  // namespace Xml
