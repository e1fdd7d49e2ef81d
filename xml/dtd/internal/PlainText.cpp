#include "xml/dtd/internal/PlainText.h"

#include "xml/dom/CharData.h"
#include "xml/dom/internal/NodeAccess.h"
#include "xml/dtd/Dtd.h"
#include "xml/text/internal/Expansion.h"
#include "xml/text/internal/StandardNames.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>

namespace Xml {

namespace {

// Appends what a reference with that name stands for; false where that is nothing.
bool appendReferenced(std::string& to, std::string_view name, const Dtd* dtd) {
    if (name.empty()) return false;
    if (name[0] == '#') {
        const char32_t character = StandardNames::referencedChar(name);
        if (character != 0) Utf8::append(to, character);
        return character != 0;
    }
    if (const char byte = standardValue(name)) {
        to += byte;
        return true;
    }
    if (dtd == nullptr) return false;
    const std::string entity(name);
    if (!dtd->isEntityName(entity)) return false;
    to += dtd->getEntityValue(entity);
    return true;
}

}  // namespace

void appendPlain(std::string& to, std::string_view held, const Dtd* dtd) {
    for (;;) {
        const std::size_t start = held.find('&');
        to += held.substr(0, start);
        if (start == std::string_view::npos) return;
        held.remove_prefix(start);
        // Up to the next of both, so that bytes are looked at once, however many references have no end.
        const std::size_t end = held.find_first_of("&;", 1);
        const bool isReference = end != std::string_view::npos && held[end] == ';';
        if (isReference && appendReferenced(to, held.substr(1, end - 1), dtd)) {
            held.remove_prefix(end + 1);
        } else {
            to += held.substr(0, end);
            held.remove_prefix(std::min(end, held.size()));
        }
    }
}

void appendPlain(std::string& to, const CharData& node) {
    appendPlain(to, NodeAccess::text(node), NodeAccess::dtd(node));
}

}  // namespace Xml
