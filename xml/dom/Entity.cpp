#include "xml/dom/Entity.h"

#include "xml/text/Message.h"
#include "xml/text/Names.h"

namespace Xml {

Entity::Entity(const std::string& itsName) : name(itsName) {
    if (!isName(name)) Message("<Xml::Entity::Entity> not a valid name: " + name);
}

Entity::Entity(const Entity& other) : name(other.name) {}

Entity::~Entity() = default;

const std::string& Entity::toString() const {
    if (!text) text = std::make_unique<std::string>();
    *text = "&" + name + ";";
    return *text;
}

}  // namespace Xml
