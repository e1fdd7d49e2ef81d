#pragma once

#include "xml/reader/Reader.h"
#include <memory>

namespace Xml {

class ChildrenSpec;
class Dtd;

// Reads a children content model: (a, b?), (a | b)+, ((a | b), c*) ... Missing separators between items are tolerated;
// "#PCDATA" may be an alternative of a choice, but not the first.
class ORVXML_API ChildrenSpecReader : public Reader {
public:
    // The Dtd is not owned.
    explicit ChildrenSpecReader(Dtd* dtd);
    ~ChildrenSpecReader() override;

    bool parse(InStream& in);

    // Hands the model over; null when there is none.
    ChildrenSpec* extractChildrenSpec();

private:
    Dtd* dtd;
    std::unique_ptr<ChildrenSpec> model;
};

}  // namespace Xml
