#pragma once

#include "xml/dom/internal/TreeBuilder.h"
#include <string>
#include <utility>
#include <vector>

namespace Xml::test {

// Gives the innermost element of a tree that is being built these attributes, in this order.
inline void giveAttributes(TreeBuilder& tree, const std::vector<std::pair<std::string, std::string>>& all) {
    GivenAttributes attributes;
    for (const auto& [name, value] : all) attributes.add(tree.name(name), value);
    tree.setAttributes(attributes);
}

}  // namespace Xml::test
