#pragma once

#include "xml/dtd/AttDef.h"

namespace Xml {

// An attribute of character data (CDATA): every value fits.
class ORVXML_API AttStringType : public AttDef {
public:
    explicit AttStringType(AttType rule, const DataHolder& defaultValue = DataHolder());

    void typeToStream(OutStream& out) const override;
    bool validate(const DataHolder& value) const override;
    AttDef* clone() const override;

protected:
    AttStringType(const AttStringType&) = default;
};

}  // namespace Xml
