#include "xml/dom/Attribute.h"

#include "xml/dom/internal/AsideTexts.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/stream/OutStream.h"
#include "xml/text/Entities.h"
#include "xml/text/Message.h"
#include "xml/text/Names.h"
#include <utility>

namespace Xml {

Attribute::Attribute() = default;

Attribute::Attribute(const std::string& itsName, const DataHolder& itsValue) : Attribute() {
    name.set(itsName);
    NodeAccess::ownText(*this) = itsValue;
    if (!isName(itsName)) Message(std::string("<Attribute::Attribute> not a valid name"));
}

Attribute::Attribute(const Attribute& other) : Attribute() {
    NodeAccess::setOwnDtd(*this, NodeAccess::dtd(other));
    name.set(other.getName());
    NodeAccess::ownText(*this) = NodeAccess::text(other);
    NodeAccess::copyTag(other, *this);
}

Attribute::~Attribute() { value.dispose(NodeAccess::marks(*this)); }

const std::string& Attribute::getName() const { return name.text(); }

const DataHolder& Attribute::getValue() const { return value.string(*this, NodeAccess::marks(*this)); }

void Attribute::setValue(const DataHolder& newValue) {
    value.assign(*this, NodeAccess::marks(*this), DataHolder(newValue));
    NodeAccess::setSupplied(*this, false);
}

bool Attribute::isOk() const { return !getName().empty(); }

Object* Attribute::clone() const { return new Attribute(*this); }

const std::string& Attribute::toString() const {
    std::string made = getName() + "=" + toXmlString(getValue());
    return AsideTexts::of(*this) = std::move(made);
}

bool Attribute::isAttribute() const { return true; }

void Attribute::write(OutStream& out) const { out << toString(); }

}  // namespace Xml
