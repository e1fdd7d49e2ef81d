#include "xml/dtd/AttTokenType.h"

#include "xml/stream/OutStream.h"
#include "xml/text/internal/StandardNames.h"
#include "xml/text/internal/Utf8.h"
#include <string_view>

namespace Xml {

namespace {

struct TokenKind {
    const char* keyword;
    bool areNames;
    bool areSeveral;
};

// In the order of AttTokenType::Kind.
constexpr TokenKind kKinds[] = {
    {"ID", true, false},      {"IDREF", true, false},    {"IDREFS", true, true},    {"ENTITY", true, false},
    {"ENTITIES", true, true}, {"NMTOKEN", false, false}, {"NMTOKENS", false, true},
};

const TokenKind& entryOf(AttTokenType::Kind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

// The name classes need characters that are whole.
bool isUtf8(std::string_view text) {
    return Utf8::check(text.data(), text.data() + text.size()).ending == Utf8::Ending::Whole;
}

}  // namespace

AttTokenType::AttTokenType(Kind itsKind, AttType itsRule, const DataHolder& itsDefault)
    : AttDef(itsRule, itsDefault), kind(itsKind) {}

void AttTokenType::typeToStream(OutStream& out) const { out << entryOf(kind).keyword; }

bool AttTokenType::validate(const DataHolder& value) const {
    if (!isUtf8(value)) return false;
    const auto fits = entryOf(kind).areNames ? StandardNames::isName : StandardNames::isNmtoken;
    std::string_view rest = value;
    if (entryOf(kind).areSeveral) {
        for (std::size_t space = rest.find(' '); space != std::string_view::npos; space = rest.find(' ')) {
            if (!fits(rest.substr(0, space))) return false;
            rest.remove_prefix(space + 1);
        }
    }
    return fits(rest);
}

AttDef* AttTokenType::clone() const { return new AttTokenType(*this); }

}  // namespace Xml
