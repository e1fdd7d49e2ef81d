#pragma once

#include "xml/Export.h"
#include <memory>
#include <string>

namespace Xml {

// A reference to an entity, for character data that consists of it. Not a node.
class ORVXML_API Entity {
public:
    // A name that is no name is reported ("<Xml::Entity::Entity> not a valid name: ", the name) and kept.
    explicit Entity(const std::string& name);
    Entity(const Entity& other);
    Entity& operator=(const Entity&) = delete;
    ~Entity();

    // The reference: "&name;". Kept in the object until the next call.
    const std::string& toString() const;

private:
    std::string name;
    mutable std::unique_ptr<std::string> text;
};

}  // namespace Xml
