#pragma once

#include <string>

namespace Xml {

class Object;

// The texts that toString of elements and attributes gives out by reference. Few nodes are ever asked for one, so it is
// not kept in the node but here, until the node goes.
//
// Any thread may ask for the text of nodes of its own.
struct AsideTexts {
    // The text of the node, empty at first; stays where it is.
    static std::string& of(const Object& node);

    // The node goes.
    static void drop(const Object& node) noexcept;
};

}  // namespace Xml
