#include "xml/dom/CharData.h"

#include "xml/dom/Entity.h"
#include "xml/dom/internal/Arena.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/stream/internal/OutStreamAccess.h"
#include "xml/text/Entities.h"
#include "xml/text/internal/Expansion.h"
#include <utility>

namespace Xml {

CharData::CharData() = default;

CharData::CharData(const DataHolder& text) : CharData() {
    DataHolder& own = NodeAccess::ownText(*this);
    own = text;
    insertStdEntities(own);
}

CharData::CharData(const Entity& entity) : CharData() { NodeAccess::ownText(*this) = entity.toString(); }

CharData::CharData(const CharData& other) : CharData() {
    NodeAccess::setOwnDtd(*this, NodeAccess::dtd(other));
    NodeAccess::ownText(*this) = NodeAccess::text(other);
}

CharData::~CharData() { held.dispose(NodeAccess::marks(*this)); }

void CharData::setData(const DataHolder& text) {
    DataHolder escaped = text;
    insertStdEntities(escaped);
    NodeAccess::setText(*this, std::move(escaped));
    touch();
}

void CharData::setData(const Entity& entity) {
    NodeAccess::setText(*this, entity.toString());
    touch();
}

const DataHolder& CharData::getData() const {
    if (!decoded) {
        decoded = std::make_unique<DataHolder>();
        Arena::noteChange(*this);
    }
    getData(decoded.get());
    return *decoded;
}

void CharData::getData(DataHolder* text) const {
    const std::string_view bytes = NodeAccess::text(*this);
    if (bytes.find('&') == std::string_view::npos) {
        text->assign(bytes);
    } else {
        *text = decodedText(bytes, NodeAccess::dtd(*this));
    }
}

DataHolder& CharData::data() {
    Arena::noteChange(*this);
    return held.string(*this, NodeAccess::marks(*this));
}

const DataHolder& CharData::data() const { return held.string(*this, NodeAccess::marks(*this)); }

Object* CharData::clone() const { return NodeAccess::exactly(NodeClass::CharData, new CharData(*this)).release(); }

const std::string& CharData::toString() const { return getData().toString(); }

bool CharData::isCharData() const { return true; }

void CharData::write(OutStream& out) const { OutStreamAccess::putAsIs(out, NodeAccess::text(*this)); }

}  // namespace Xml
