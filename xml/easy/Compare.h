#pragma once

#include "xml/Export.h"
#include "xml/dom/Object.h"
#include <string>

// Trees beside each other. Comparing only looks: several threads may do so at the same time.
//
// Two trees are the same where their kinds, names, attributes, texts and the order of their children are. The order of
// attributes does not count, nor where a value came from. Texts side by side count as one, and empty ones as none; so
// do sections, which are not the same as texts. Texts are the same where they mean the same, and where they are held
// the same: a copy that links to no Dtd is the same as the tree that it was made of. Of documents the roots are
// compared, and the comments and instructions before and after them; the document type is not. Document types, and
// nodes of a caller's class, are the same where what they write is.
namespace Xml {

ORVXML_API bool sameTree(const Object& a, const Object& b);

// Empty when they are the same. Else one line, with a path in `a` to where they first differ, and what is there in
// both:
//
//     /order[1]/item[2]: attribute id="1" and attribute id="2"
ORVXML_API std::string firstDifference(const Object& a, const Object& b);

}  // namespace Xml
