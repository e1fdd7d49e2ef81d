#pragma once

#include "xml/Export.h"
#include "xml/text/DataHolder.h"
#include <cstdint>

namespace Xml {

class OutStream;

// The default rule of an attribute definition.
enum AttType : std::uint32_t {
    DEFAULT = 0,   // has a default value
    REQUIRED = 1,  // must be present
    IMPLIED = 2,   // may be absent
    FIXED = 3,     // has a fixed value
};

// The definition of one attribute of an element type: its value type and its default rule. Held and owned by a Dtd.
class ORVXML_API AttDef {
public:
    // A default value given with REQUIRED or IMPLIED is reported ("<AttDef::AttDef> no default value for REQUIRED or
    // IMPLIED") and dropped.
    AttDef(AttType rule, const DataHolder& defaultValue);
    AttDef& operator=(const AttDef&) = delete;
    virtual ~AttDef();

    // Writes the keyword of the value type.
    virtual void typeToStream(OutStream& out) const = 0;

    // Whether a value fits the value type.
    virtual bool validate(const DataHolder& value) const = 0;

    // A copy; the caller owns it.
    virtual AttDef* clone() const = 0;

    bool isRequired() const;

    // True for DEFAULT and FIXED.
    bool hasDefault() const;

    // Empty for REQUIRED and IMPLIED.
    const DataHolder& getDefault() const;

    // Writes the definition as it stands after the attribute's name in a declaration.
    void toStream(OutStream& out) const;

protected:
    AttDef(const AttDef&) = default;

private:
    friend struct DtdAccess;

    AttType rule;
    DataHolder defaultValue;
};

}  // namespace Xml
