#pragma once

#include "xml/dtd/ContentSpec.h"

namespace Xml {

// Character data only. The readers make a MixedSpec for (#PCDATA); this one is for callers that build models.
class ORVXML_API CharSpec : public ContentSpec {
public:
    explicit CharSpec(Dtd* dtd);
    CharSpec(const CharSpec&) = delete;

    bool validate(const std::vector<Object*>& children) const override;
    void toStream(OutStream& out) const override;
    ContentSpec* clone(Dtd* dtd) const override;
};

}  // namespace Xml
