#include "xml/dom/CharData.h"

#include "xml/dom/Entity.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/stream/OutStream.h"
#include "xml/text/Entities.h"
#include <utility>

namespace Xml {

CharData::CharData() = default;

CharData::CharData(const DataHolder& text) : data_(text) { insertStdEntities(data_); }

CharData::CharData(const Entity& entity) : data_(entity.toString()) {}

CharData::CharData(const CharData& other) : Object(other), data_(other.data_) {}

CharData::~CharData() = default;

void CharData::setData(const DataHolder& text) {
    DataHolder escaped = text;
    insertStdEntities(escaped);
    data_ = std::move(escaped);
    touch();
}

void CharData::setData(const Entity& entity) {
    data_ = entity.toString();
    touch();
}

const DataHolder& CharData::getData() const {
    if (!decoded) decoded = std::make_unique<DataHolder>();
    *decoded = data_;
    return replaceEntities(*decoded, NodeAccess::dtd(*this));
}

void CharData::getData(DataHolder* text) const {
    DataHolder own = data_;
    *text = std::move(replaceEntities(own, NodeAccess::dtd(*this)));
}

DataHolder& CharData::data() { return data_; }

const DataHolder& CharData::data() const { return data_; }

Object* CharData::clone() const { return NodeAccess::exactly(NodeClass::CharData, new CharData(*this)).release(); }

const std::string& CharData::toString() const { return getData().toString(); }

bool CharData::isCharData() const { return true; }

void CharData::write(OutStream& out) const { out.writeDataHolder(data_); }

}  // namespace Xml
