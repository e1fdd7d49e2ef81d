#pragma once

#include "xml/xpath/internal/Expression.h"
#include "xml/xpath/internal/PathError.h"
#include "xml/xpath/internal/PathText.h"
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Xml {

// What is wrong, and where in the path it begins.
struct SyntaxFault {
    std::size_t place;
    XPath::ErrorCode code;  // NONE where only strict reading finds it, which says what
    std::string text;
};

// A path in UTF-8 as ByteUnits, if its literals and brackets are closed, what is not ASCII is in literals or belongs to
// names, and no word would be an operator elsewhere. In literals a quote that is written twice is one.
std::optional<SyntaxFault> toByteUnits(std::string_view path, OrvSys::Uni16String& units);

// What checkSyntax finds wrong, and beside that: text after a literal, names that XML does not have, predicates that
// ask for nothing of the node. The text has byte units.
std::optional<SyntaxFault> checkStrictly(Expression& query, Expressions& expressions);

}  // namespace Xml
