#pragma once

#include "xml/Export.h"
#include <vector>

namespace Xml {

class Dtd;
class Object;
class OutStream;

// A content model: which children an element may have. Held by a Dtd, which owns it and to which it points back.
class ORVXML_API ContentSpec {
public:
    explicit ContentSpec(Dtd* dtd);
    ContentSpec& operator=(const ContentSpec&) = delete;
    virtual ~ContentSpec();

    // Whether the children of an element fit. Children that are looked at are validated themselves, and those that fit
    // get links to the Dtd, also when the whole does not fit in the end. Reports nothing. A model of your own may
    // validate what it is given, and must not change the tree meanwhile.
    virtual bool validate(const std::vector<Object*>& children) const = 0;

    // Writes the model as it stands in a declaration.
    virtual void toStream(OutStream& out) const = 0;

    // A deep copy that belongs to `dtd`; the caller owns it.
    virtual ContentSpec* clone(Dtd* dtd) const = 0;

protected:
    ContentSpec(const ContentSpec&) = default;

private:
    friend struct SpecAccess;

    Dtd* dtd;
};

}  // namespace Xml
