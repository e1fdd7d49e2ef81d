#pragma once

#include "xml/reader/Reader.h"
#include <memory>
#include <string>

namespace Xml {

class Dtd;

// Reads a run of declarations (elements, attribute lists, entities) and comments into one Dtd. Used once.
class ORVXML_API DTDReader : public Reader {
public:
    // `name` is the document type name.
    explicit DTDReader(const std::string& name);
    ~DTDReader() override;

    // Whether the declarations are an internal subset, which ends with "]" (consumed) and holds at least one
    // declaration or comment; else they end with the data. False at first.
    void setInternal(bool internal);

    // After a failure the Dtd holds what was declared before it.
    bool parse(InStream& in);

    // Owned by the reader until it is extracted.
    Dtd* getDtd();
    const Dtd* getDtd() const;
    Dtd* extractDtd();

private:
    ORVXML_LOCAL bool readDeclaration(InStream& in, const std::string& token, EntityBudget& budget);
    ORVXML_LOCAL bool endOfData(InStream& in);

    std::unique_ptr<Dtd> dtd;
    bool internal = false;
};

}  // namespace Xml
