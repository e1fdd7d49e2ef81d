#include "xml/dtd/AttStringType.h"

#include "xml/stream/OutStream.h"

namespace Xml {

AttStringType::AttStringType(AttType itsRule, const DataHolder& itsDefault) : AttDef(itsRule, itsDefault) {}

void AttStringType::typeToStream(OutStream& out) const { out << "CDATA"; }

bool AttStringType::validate(const DataHolder&) const { return true; }

AttDef* AttStringType::clone() const { return new AttStringType(*this); }

}  // namespace Xml
