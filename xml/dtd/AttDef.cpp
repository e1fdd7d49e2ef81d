#include "xml/dtd/AttDef.h"

#include "xml/stream/OutStream.h"
#include "xml/text/Entities.h"
#include "xml/text/Message.h"

namespace Xml {

AttDef::AttDef(AttType itsRule, const DataHolder& itsDefault) : rule(itsRule), defaultValue(itsDefault) {
    if (defaultValue.empty() || (rule != REQUIRED && rule != IMPLIED)) return;
    Message(std::string("<AttDef::AttDef> no default value for REQUIRED or IMPLIED"));
    defaultValue.clear();
}

AttDef::~AttDef() = default;

bool AttDef::isRequired() const { return rule == REQUIRED; }

bool AttDef::hasDefault() const { return rule == DEFAULT || rule == FIXED; }

const DataHolder& AttDef::getDefault() const { return defaultValue; }

void AttDef::toStream(OutStream& out) const {
    typeToStream(out);
    out << ' ';
    // Nothing stands between the keyword and the value of FIXED; the reader takes it so.
    if (rule == FIXED) out << "#FIXED";
    if (rule == IMPLIED) out << "#IMPLIED";
    if (rule == REQUIRED) out << "#REQUIRED";
    if (hasDefault()) out << toXmlString(defaultValue);
}

}  // namespace Xml
