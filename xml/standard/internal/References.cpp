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
    const bool isHexadecimal = reference.substr(2, 1) == "x";
    reference.remove_prefix(isHexadecimal ? 3 : 2);
    char32_t code = 0;
    for (const char c : reference.substr(0, reference.size() - 1)) {
        char32_t digit = 0;
        if (c >= '0' && c <= '9') {
            digit = static_cast<char32_t>(c - '0');
        } else if (isHexadecimal && (c | 0x20) >= 'a' && (c | 0x20) <= 'f') {
            digit = static_cast<char32_t>((c | 0x20) - 'a' + 10);
        } else {
            return 0;
        }
        code = code * (isHexadecimal ? 16 : 10) + digit;
        if (code > 0x10FFFF) return 0;
    }
    return StandardNames::isChar(code) ? code : 0;
}

}  // namespace Xml::References
