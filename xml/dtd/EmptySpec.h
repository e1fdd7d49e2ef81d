#pragma once

#include "xml/dtd/ContentSpec.h"

namespace Xml {

// The model EMPTY: no children at all, white space included.
class ORVXML_API EmptySpec : public ContentSpec {
public:
    explicit EmptySpec(Dtd* dtd);
    EmptySpec(const EmptySpec&) = delete;

    bool validate(const std::vector<Object*>& children) const override;
    void toStream(OutStream& out) const override;
    ContentSpec* clone(Dtd* dtd) const override;
};

}  // namespace Xml
