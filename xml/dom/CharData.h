#pragma once

#include "xml/Export.h"
#include "xml/dom/Object.h"
#include "xml/dom/Text.h"
#include "xml/text/DataHolder.h"
#include <memory>
#include <string>

namespace Xml {

class Entity;

// A run of text among the children of an element. It is held as it is written: the five special characters as
// references, or a reference to an entity.
class ORVXML_API CharData : public Object {
public:
    CharData();

    // Escapes the text.
    explicit CharData(const DataHolder& text);

    // Holds the reference.
    explicit CharData(const Entity& entity);
    CharData(const CharData& other);
    ~CharData() override;

    // As the constructors; they mark the node and its ancestors as changed.
    void setData(const DataHolder& text);
    void setData(const Entity& entity);

    // The decoded text: references replaced by the entities of the Dtd that the node links to, where it links to one.
    // Decoded anew at every call; the reference is to a text in the node, good until the next call.
    const DataHolder& getData() const;
    void getData(DataHolder* text) const;

    // The text as it is held. Changing it marks nothing as changed. Of a text that was read the string is made when it
    // is first asked for, which needs memory.
    DataHolder& data();
    const DataHolder& data() const;

    Object* clone() const override;

    // The decoded text.
    const std::string& toString() const override;
    bool isCharData() const override;
    void write(OutStream& out) const override;

private:
    friend class CDataSection;
    friend struct NodeAccess;

    // In line: what makes a node knows where its text is.
    [[gnu::always_inline]] CharData(const internal::GivenText& text, Object* itsParent)
        : CharData(internal::NodeClass::CharData, text, itsParent) {}
    [[gnu::always_inline]] CharData(internal::NodeClass made, const internal::GivenText& text, Object* itsParent)
        : Object(made, text.place, itsParent), held(text) {}

    internal::Text held;
    mutable std::unique_ptr<DataHolder> decoded;  // made when first asked for
};

}  // namespace Xml
