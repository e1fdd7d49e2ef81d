#pragma once

#include "xml/reader/Reader.h"

namespace Xml {

class Dtd;

// Reads the declaration of a general entity into a Dtd. References in the value are replaced, by the standard entities
// and those declared so far; a later declaration of a name replaces the earlier one. Text made from references is
// bounded (Dtd::setEntityGrowthLimit): "entity text too large".
class ORVXML_API EntityReader : public Reader {
public:
    // The Dtd is not owned.
    explicit EntityReader(Dtd* dtd);

    bool parse(InStream& in);

private:
    Dtd* dtd;
};

}  // namespace Xml
