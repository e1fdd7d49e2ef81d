#pragma once

#include "xml/dtd/ContentSpec.h"

namespace Xml {

// The model ANY: everything is valid. What stands below is not looked at.
class ORVXML_API AnySpec : public ContentSpec {
public:
    explicit AnySpec(Dtd* dtd);
    AnySpec(const AnySpec&) = delete;

    bool validate(const std::vector<Object*>& children) const override;
    void toStream(OutStream& out) const override;
    ContentSpec* clone(Dtd* dtd) const override;
};

}  // namespace Xml
