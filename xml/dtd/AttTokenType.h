#pragma once

#include "xml/dtd/AttDef.h"
#include <cstdint>

namespace Xml {

// An attribute that holds names or name tokens, as XML 1.0 has them: one, or several with one space between each two.
class ORVXML_API AttTokenType : public AttDef {
public:
    enum class Kind : std::uint8_t { Id, IdRef, IdRefs, EntityName, EntityNames, NmToken, NmTokens };

    AttTokenType(Kind kind, AttType rule, const DataHolder& defaultValue = DataHolder());

    Kind getKind() const { return kind; }

    // ID, IDREF, IDREFS, ENTITY, ENTITIES, NMTOKEN or NMTOKENS.
    void typeToStream(OutStream& out) const override;

    // Whether the value consists of names or name tokens. What it refers to is not looked for.
    bool validate(const DataHolder& value) const override;
    AttDef* clone() const override;

protected:
    AttTokenType(const AttTokenType&) = default;

private:
    Kind kind;
};

}  // namespace Xml
