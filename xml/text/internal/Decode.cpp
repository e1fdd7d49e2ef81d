#include "xml/text/internal/Decode.h"

#include "xml/text/internal/ClassicNumbers.h"
#include "xml/text/internal/Escape.h"

namespace Xml {

namespace {

struct StandardEntity {
    std::string_view name;
    char value;
};

constexpr StandardEntity entityOf(char value) { return {standardNameFor(value), value}; }

constexpr StandardEntity kStandardEntities[] = {entityOf('&'), entityOf('<'), entityOf('>'), entityOf('"'),
                                                entityOf('\'')};

}  // namespace

char standardValue(std::string_view name) {
    if (isCharReference(name)) {
        const bool hexadecimal = name[1] == 'x';
        const unsigned code = Classic::extractUnsigned(name.substr(hexadecimal ? 2 : 1), hexadecimal ? 16 : 10);
        return static_cast<char>(static_cast<unsigned char>(code));
    }
    for (const auto& entity : kStandardEntities) {
        if (entity.name == name) return entity.value;
    }
    return 0;
}

}  // namespace Xml
