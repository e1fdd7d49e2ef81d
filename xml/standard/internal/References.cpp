#include "xml/standard/internal/References.h"

#include "xml/text/internal/StandardNames.h"
#include <cstddef>

namespace Xml::References {

std::string_view first(std::string_view text) {
    const char* const end = text.data() + text.size();
    const char* const name = text.data() + (isToCharacter(text) ? 2 : 1);
    const char* const to = StandardNames::nmtokenEnd(name, end);
    const bool isWhole = to != name && to != end && *to == ';';
    return text.substr(0, isWhole ? static_cast<std::size_t>(to + 1 - text.data()) : 1);
}

char32_t characterOf(std::string_view reference) {
    return StandardNames::referencedChar(reference.substr(1, reference.size() - 2));
}

}  // namespace Xml::References
