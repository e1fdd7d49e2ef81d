#pragma once

#include "xml/dtd/CpSpec.h"
#include <string>

namespace Xml {

// One element of a name. A name that is no name is silently replaced by the empty one, which matches nothing.
class ORVXML_API NameSpec : public CpSpec {
public:
    NameSpec(Dtd* dtd, const std::string& name);
    NameSpec(const NameSpec&) = delete;

    bool validate(ChildQueue& children) const override;
    void toStream(OutStream& out, bool outermost) const override;
    CpSpec* clone(Dtd* dtd) const override;

private:
    friend struct SpecAccess;

    std::string name;
};

}  // namespace Xml
