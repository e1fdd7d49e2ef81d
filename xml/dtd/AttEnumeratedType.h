#pragma once

#include "xml/dtd/AttDef.h"
#include <cstdint>
#include <string>
#include <vector>

namespace Xml {

// An attribute that has one of some values: name tokens, or names of notations.
class ORVXML_API AttEnumeratedType : public AttDef {
public:
    enum class Kind : std::uint8_t { Tokens, Notations };

    // The values are not checked.
    AttEnumeratedType(Kind kind, const std::vector<std::string>& values, AttType rule,
                      const DataHolder& defaultValue = DataHolder());
    ~AttEnumeratedType() override;

    Kind getKind() const { return kind; }

    // In the order of the declaration.
    const std::vector<std::string>& getValues() const { return values; }

    // "(a | b)" or "NOTATION (a | b)".
    void typeToStream(OutStream& out) const override;

    // Whether the value is one of them.
    bool validate(const DataHolder& value) const override;
    AttDef* clone() const override;

protected:
    AttEnumeratedType(const AttEnumeratedType&) = default;

private:
    Kind kind;
    std::vector<std::string> values;
};

}  // namespace Xml
