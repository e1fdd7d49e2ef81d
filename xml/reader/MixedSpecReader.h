#pragma once

#include "xml/reader/Reader.h"
#include <memory>

namespace Xml {

class Dtd;
class MixedSpec;

// Reads a mixed content model: (#PCDATA), (#PCDATA)* or (#PCDATA | name ...)*.
class ORVXML_API MixedSpecReader : public Reader {
public:
    // The Dtd is not owned.
    explicit MixedSpecReader(Dtd* dtd);
    ~MixedSpecReader() override;

    bool parse(InStream& in);

    // Hands the model over; null when there is none.
    MixedSpec* extractMixedSpec();

private:
    Dtd* dtd;
    std::unique_ptr<MixedSpec> model;
};

}  // namespace Xml
