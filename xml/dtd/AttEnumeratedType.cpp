#include "xml/dtd/AttEnumeratedType.h"

#include "xml/stream/OutStream.h"
#include <algorithm>

namespace Xml {

AttEnumeratedType::AttEnumeratedType(Kind itsKind, const std::vector<std::string>& itsValues, AttType itsRule,
                                     const DataHolder& itsDefault)
    : AttDef(itsRule, itsDefault), kind(itsKind), values(itsValues) {}

AttEnumeratedType::~AttEnumeratedType() = default;

void AttEnumeratedType::typeToStream(OutStream& out) const {
    if (kind == Kind::Notations) out << "NOTATION ";
    const char* before = "(";
    for (const std::string& value : values) {
        out << before << value;
        before = " | ";
    }
    out << ')';
}

bool AttEnumeratedType::validate(const DataHolder& value) const {
    return std::find(values.begin(), values.end(), value) != values.end();
}

AttDef* AttEnumeratedType::clone() const { return new AttEnumeratedType(*this); }

}  // namespace Xml
