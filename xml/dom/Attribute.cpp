#include "xml/dom/Attribute.h"

#include "xml/stream/OutStream.h"
#include "xml/text/Entities.h"
#include "xml/text/Message.h"
#include "xml/text/Names.h"

namespace Xml {

Attribute::Attribute() = default;

Attribute::Attribute(const std::string& itsName, const DataHolder& itsValue) : name(itsName), value(itsValue) {
    if (!isName(name)) Message(std::string("<Attribute::Attribute> not a valid name"));
}

Attribute::Attribute(const Attribute& other) : Object(other), name(other.name), value(other.value) {}

Attribute::~Attribute() = default;

const std::string& Attribute::getName() const { return name; }

const DataHolder& Attribute::getValue() const { return value; }

void Attribute::setValue(const DataHolder& newValue) { value = newValue; }

bool Attribute::isOk() const { return !name.empty(); }

Object* Attribute::clone() const { return new Attribute(*this); }

const std::string& Attribute::toString() const {
    if (!text) text = std::make_unique<std::string>();
    *text = name + "=" + toXmlString(value);
    return *text;
}

bool Attribute::isAttribute() const { return true; }

void Attribute::write(OutStream& out) const { out << toString(); }

}  // namespace Xml
