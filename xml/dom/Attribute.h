#pragma once

#include "xml/Export.h"
#include "xml/dom/Name.h"
#include "xml/dom/Object.h"
#include "xml/dom/Text.h"
#include "xml/text/DataHolder.h"
#include <string>

namespace Xml {

// An attribute: a name and a value, which is held unescaped.
class ORVXML_API Attribute : public Object {
public:
    Attribute();

    // A name that is no name is reported ("<Attribute::Attribute> not a valid name") and kept.
    Attribute(const std::string& name, const DataHolder& value);
    Attribute(const Attribute& other);
    ~Attribute() override;

    const std::string& getName() const;

    // Of an attribute that was read the string is made when it is first asked for, which needs memory.
    const DataHolder& getValue() const;

    // Does not mark anything as changed.
    void setValue(const DataHolder& value);

    // Whether the name is not empty.
    bool isOk() const;

    Object* clone() const override;

    // name="value", the value escaped.
    const std::string& toString() const override;
    bool isAttribute() const override;
    void write(OutStream& out) const override;

private:
    friend struct NodeAccess;
    friend struct EditingAccess;

    // In line: what makes an attribute knows where its text is.
    [[gnu::always_inline]] Attribute(const std::string* sharedName, const internal::GivenText& text, Object* itsParent)
        : Object(internal::NodeClass::Attribute, text.place, itsParent), name(sharedName), value(text) {}

    internal::Name name;
    internal::Text value;
};

}  // namespace Xml
