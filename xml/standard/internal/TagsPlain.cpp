// Ordinary start tags in one pass. What is left to Tags::read costs what was looked at here, which is no more than what
// that looks at.
#include "xml/standard/internal/Tags.h"

#include "xml/standard/internal/PlainNames.h"
#include "xml/standard/internal/Runs.h"
#include "xml/standard/internal/Syntax.h"

namespace Xml {

using Syntax::viewOf;
using Syntax::whiteEnd;

namespace {

const char* plainValueEnd(char quote, const char* from, const char* to) {
    return quote == '"' ? Runs::findInLine<'"', '<', '&', Runs::kRare>(from, to)
                        : Runs::findInLine<'\'', '<', '&', Runs::kRare>(from, to);
}

}  // namespace

bool Tags::readPlain() {
    if (!declared.elements.empty()) return false;
    const char* const end = in.end;
    const char* const name = in.at + 1;
    const char* at = PlainNames::endOf(name, end);
    if (at == name) return false;
    const std::string_view element = viewOf(name, at);
    all.clear();
    PlainNames::Seen seen;
    bool isEmptyTag = false;
    for (;;) {
        const char* const next = whiteEnd(at, end);
        if (end - next < 2) return false;
        if (*next == '>') {
            at = next + 1;
            break;
        }
        if (*next == '/') {
            if (next[1] != '>') return false;
            isEmptyTag = true;
            at = next + 2;
            break;
        }
        const char* const to = PlainNames::endOf(next, end);
        if (to == next || next == at || end - to < 2 || to[0] != '=' || (to[1] != '"' && to[1] != '\'')) return false;
        const char* const value = to + 2;
        const char* const valueEnd = plainValueEnd(to[1], value, end);
        if (valueEnd == end || *valueEnd != to[1]) return false;
        const std::string_view attribute = viewOf(next, to);
        if (attribute == "xmlns") return false;
        seen.add(attribute);
        all.emplace_back(attribute, viewOf(value, valueEnd), false);
        at = valueEnd + 1;
    }
    if (seen.maybeTwice() && (all.size() > kFew || findTwice() != nullptr)) return false;
    itsName = element;
    nameColon = std::string_view::npos;
    empty = isEmptyTag;
    in.at = at;
    return true;
}

const TagAttribute* Tags::findTwice() const {
    for (std::size_t i = 1; i < all.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (all[i].name == all[j].name) return &all[i];
        }
    }
    return nullptr;
}

}  // namespace Xml
