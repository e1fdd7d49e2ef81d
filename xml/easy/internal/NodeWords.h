#pragma once

#include "xml/dom/Object.h"
#include <cstddef>
#include <string>
#include <string_view>

// A node in words, for a message: what it is, its name, and what it says beside that.
namespace Xml {

// What a node says beside its name: the text of a comment, the content of an instruction, the value of an attribute;
// what a document type, or a node of a caller's class, writes. Empty for an element and for a document. Texts and
// sections are not asked.
std::string sayingOf(const Object& node);

// Words for the node with what it says, of which a longer one is shown from a little before `from` on. "nothing" for
// null.
std::string wordsFor(const Object* node, std::string_view saying, std::size_t from);

}  // namespace Xml
