#pragma once

#include "xml/reader/Reader.h"
#include <memory>

namespace Xml {

class Dtd;
class DTDReader;

// Reads a document type declaration: its internal subset, or the external one in the file named after SYSTEM (relative
// to the working directory of the process; regular files only).
class ORVXML_API DoctypeReader : public Reader {
public:
    DoctypeReader();
    ~DoctypeReader() override;

    bool parse(InStream& in);

    // Hands the Dtd over; null when there is none.
    Dtd* extractDtd();

    // Whether external subsets are refused, without looking for the file: "external subset refused: " and the name.
    // False at first; for the whole process. Returns what was set before.
    static bool refuseExternalSubsets(bool refuse);

private:
    ORVXML_LOCAL bool readExternalSubset(InStream& in, DTDReader& reader);

    std::unique_ptr<Dtd> dtd;
};

}  // namespace Xml
