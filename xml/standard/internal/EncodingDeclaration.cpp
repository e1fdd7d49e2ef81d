#include "xml/standard/internal/EncodingDeclaration.h"

#include "xml/text/internal/ByteClasses.h"

namespace Xml {

namespace {

bool isWhite(char c) { return ByteClass::is(c, ByteClass::kWhite); }
bool isDigit(char c) { return ByteClass::is(c, ByteClass::kDigit); }
bool isLetter(char c) { return ByteClass::is(c, ByteClass::kLetter); }

}  // namespace

std::size_t EncodingDeclaration::take(std::string_view characters) {
    const std::size_t before = taken;
    for (const char c : characters) {
        if (isDecided()) break;
        step = stepAfter(c);
        if (step != Step::None) ++taken;
    }
    return taken - before;
}

EncodingDeclaration::Step EncodingDeclaration::stepAfter(char c) {
    switch (step) {
    case Step::Word:
        if (c != word.front()) return Step::None;
        word.remove_prefix(1);
        return word.empty() ? afterWord : Step::Word;
    case Step::White: return isWhite(c) ? Step::Attribute : Step::None;
    case Step::Attribute: return isWhite(c) ? step : attributeAfter(c);
    case Step::Equals:
        if (isWhite(c)) return step;
        return c == '=' ? Step::Quote : Step::None;
    case Step::Quote:
        if (isWhite(c)) return step;
        if (c != '"' && c != '\'') return Step::None;
        quote = c;
        valueBegin = taken + 1;
        return value;
    case Step::Version: return versionAfter(c);
    case Step::Name: return nameAfter(c);
    case Step::Found:
    case Step::None: break;
    }
    return step;
}

EncodingDeclaration::Step EncodingDeclaration::attributeAfter(char c) {
    if (c == 'v' && !hasVersion) {
        word = "ersion";
        value = Step::Version;
    } else if (c == 'e') {
        word = "ncoding";
        value = Step::Name;
    } else {
        return Step::None;
    }
    afterWord = Step::Equals;
    return Step::Word;
}

// VersionNum: 1. and digits.
EncodingDeclaration::Step EncodingDeclaration::versionAfter(char c) {
    const std::size_t place = taken - valueBegin;
    if (c == quote && place > 2) {
        hasVersion = true;
        return Step::White;
    }
    const bool fits = place == 0 ? c == '1' : place == 1 ? c == '.' : isDigit(c);
    return fits ? step : Step::None;
}

// EncName: a letter, then letters, digits, '.', '_', '-'.
EncodingDeclaration::Step EncodingDeclaration::nameAfter(char c) {
    if (c == quote && !encoding.empty()) return Step::Found;
    const bool fits = isLetter(c) || (!encoding.empty() && (isDigit(c) || c == '.' || c == '_' || c == '-'));
    if (!fits) return Step::None;
    encoding += c;
    return step;
}

}  // namespace Xml
