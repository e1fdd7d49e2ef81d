#include "xml/standard/internal/Markup.h"

#include "xml/dtd/Dtd.h"
#include "xml/dtd/internal/DtdAccess.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/References.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/stream/internal/Scan.h"
#include "xml/text/internal/Escape.h"
#include "xml/text/internal/StandardNames.h"
#include "xml/text/internal/Utf8.h"
#include <algorithm>
#include <utility>

namespace Xml {

namespace {

using PlainRuns::Beyond;
using PlainRuns::Kind;

std::string_view viewOf(const char* from, const char* to) { return {from, static_cast<std::size_t>(to - from)}; }

std::string hexadecimal(unsigned value, int digits) {
    std::string result;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) result += "0123456789ABCDEF"[value >> shift & 0xF];
    return result;
}

std::string numberOf(char32_t c) { return "U+" + hexadecimal(c, c > 0xFFFF ? 6 : 4); }

// Where references may stand in text that is checked: at the first byte that has to be one.
template <Kind Of>
const char* nextSpecial(const char* from, const char* to) {
    if constexpr (Of == Kind::Value) return Scan::findNear<'&', '<', '"', '\t', '\n', '\r'>(from, to);
    if constexpr (Of == Kind::Lines) return Scan::findNear<'&', '<', '>', '\r', '\n'>(from, to);
    return Scan::findNear<'&', '<', '>', '\r'>(from, to);
}

bool mayBeSpecial(char c) { return Utf8::isAscii(c) && (static_cast<unsigned char>(c) >= 0x20 || Syntax::isWhite(c)); }

std::string subjectOf(const std::string_view* attribute) {
    return attribute != nullptr ? "the attribute " + messageLine(*attribute) : "the text";
}

}  // namespace

bool Markup::fail(std::string text, const char* rule, Problem::Kind kind) {
    failed = WriteFault{kind, std::move(text), rule};
    return false;
}

// `what` gives the name of what has the text.
template <class What>
bool Markup::checkCharacters(std::string_view text, What what) {
    const char* const end = text.data() + text.size();
    const Utf8::Checked checked = Utf8::check(text.data(), end);
    if (checked.ending == Utf8::Ending::Whole && checked.onlyChars) return true;
    const char* const bad = StandardNames::charsEnd(text.data(), checked.end);
    if (bad != checked.end)
        return fail(std::string(what()) + " has a character that XML does not allow: " + numberOf(Utf8::at(bad).value),
                    StandardRules::kChar);
    const std::ptrdiff_t count = checked.ending == Utf8::Ending::Incomplete ? end - checked.end : checked.badSize;
    std::string bytes;
    for (std::ptrdiff_t i = 0; i < count; ++i)
        bytes += (i > 0 ? " " : "") + hexadecimal(static_cast<unsigned char>(checked.end[i]), 2);
    return fail(std::string(what()) + " has bytes that are not UTF-8: " + bytes,
                StandardRules::kCharacterEncodingInEntities);
}

// --- Texts and values ---

bool Markup::putText(std::string_view text) {
    return isLineFeed ? putEscaped<Kind::Text>(text, Form::Meant, nullptr, nullptr)
                      : putEscaped<Kind::Lines>(text, Form::Meant, nullptr, nullptr);
}

bool Markup::putHeld(std::string_view held, const Dtd* dtd) {
    return isLineFeed ? putEscaped<Kind::Text>(held, Form::Held, nullptr, dtd)
                      : putEscaped<Kind::Lines>(held, Form::Held, nullptr, dtd);
}

bool Markup::putValue(std::string_view attribute, std::string_view value) {
    return putEscaped<Kind::Value>(value, Form::Meant, &attribute, nullptr);
}

// Where what is put is checked as a whole, nothing may begin within a character, which would go on with what stands
// before it. Otherwise, at the first byte that is not plain, all that follows is checked, where it is more than a mark;
// after that only what has to be a reference is looked for.
template <Kind Of>
bool Markup::putEscaped(std::string_view text, Form form, const std::string_view* attribute, const Dtd* dtd) {
    const char* done = text.data();
    const char* const end = done + text.size();
    if (isTrusting && done != end && Utf8::goesOn(*done))
        return fail("the text begins within a character", StandardRules::kCharacterEncodingInEntities);
    bool isChecked = false;
    const auto check = [&](const char* from) {
        isChecked = isChecked || checkCharacters(viewOf(from, end), [&] { return subjectOf(attribute); });
        return isChecked;
    };
    for (const char* at = done;;) {
        if (isChecked) {
            at = nextSpecial<Of>(at, end);
        } else if (isTrusting) {
            at = PlainRuns::end<Of, Beyond::Trusted>(at, end);
        } else {
            at = PlainRuns::end<Of, Beyond::LookedAt>(at, end);
        }
        if (at == end) break;
        if (!mayBeSpecial(*at)) {
            if (!check(at)) return false;
            continue;
        }
        if (*at == '&' && form == Form::Held) {
            if (Scan::startsWith(at, end, "&lt;") || Scan::startsWith(at, end, "&gt;")) {
                at += 4;
                continue;
            }
            if (Scan::startsWith(at, end, "&amp;")) {
                at += 5;
                continue;
            }
            if (!check(at)) return false;
            putRun(done, at);
            std::string_view rest = viewOf(at, end);
            if (!putReference<Of>(rest, attribute, dtd)) return false;
            at = end - rest.size();
            done = at;
            continue;
        }
        putRun(done, at);
        if (*at == '\n' && Of != Kind::Value) {
            out.put(newline);
        } else if (Syntax::isWhite(*at)) {
            putCharacterReference(static_cast<unsigned char>(*at));
        } else {
            out.put(referenceFor(*at));
        }
        done = ++at;
    }
    putRun(done, end);
    return true;
}

// What the text that is left begins with: a '&', which the rest of the text is checked after. Takes it away.
template <Kind Of>
bool Markup::putReference(std::string_view& rest, const std::string_view* attribute, const Dtd* dtd) {
    const std::string_view reference = References::first(rest);
    if (References::isToCharacter(reference)) {
        if (const char32_t c = References::characterOf(reference)) {
            char bytes[4];
            rest.remove_prefix(reference.size());
            return putEscaped<Of>(viewOf(bytes, Utf8::put(bytes, c)), Form::Meant, attribute, nullptr);
        }
    } else {
        const std::string_view name = reference.substr(1, reference.size() - 2);
        if (const char c = Syntax::predefined(name)) {
            rest.remove_prefix(reference.size());
            return putEscaped<Of>({&c, 1}, Form::Meant, attribute, nullptr);
        }
        if (const std::string entity(name); dtd != nullptr && dtd->isEntityName(entity)) {
            const std::string& value = dtd->getEntityValue(entity);
            heldWithReferences += static_cast<std::int64_t>(reference.size());
            rest.remove_prefix(reference.size());
            return grow(value.size()) && putEscaped<Of>(value, Form::Meant, attribute, nullptr);
        }
    }
    out.put("&amp;");
    rest.remove_prefix(1);
    return true;
}

// As readers bound what references make.
bool Markup::grow(std::size_t size) {
    constexpr std::int64_t kTimes = 100;
    made += static_cast<std::int64_t>(size);
    const std::int64_t limit = DtdAccess::entityGrowthLimit();
    if (limit == 0 || made <= limit || made <= kTimes * heldWithReferences) return true;
    return fail("the entities that texts refer to make more than " + std::to_string(limit) + " bytes",
                StandardRules::kEntityGrowth, Problem::Kind::Limit);
}

// Of characters that are checked; those that the encoding lacks are references.
void Markup::putRun(const char* from, const char* to) {
    while (encoder != nullptr) {
        const char* const end = encoder->sayableEnd(from, to);
        out.put(viewOf(from, end));
        if (end == to) return;
        const auto [c, size] = Utf8::at(end);
        putCharacterReference(c);
        from = end + size;
    }
    out.put(viewOf(from, to));
}

void Markup::putCharacterReference(char32_t c) { out.put("&#" + std::to_string(static_cast<unsigned>(c)) + ";"); }

// --- What has no references ---

bool Markup::putComment(std::string_view text) {
    if (text.find("--") != std::string_view::npos) return fail("the comment has \"--\"", StandardRules::kComment);
    if (!text.empty() && text.back() == '-') return fail("the comment ends with \"-\"", StandardRules::kComment);
    out.put("<!--");
    if (!putAsIs(text, "the comment")) return false;
    out.put("-->");
    return true;
}

bool Markup::putInstruction(std::string_view target, std::string_view content) {
    if (!checkName(target, "an instruction")) return false;
    const std::string what = "the instruction " + messageLine(target);
    const auto isLetter = [&](std::size_t i, char small) { return (target[i] | 0x20) == small; };
    if (target.size() == 3 && isLetter(0, 'x') && isLetter(1, 'm') && isLetter(2, 'l'))
        return fail("an instruction may not be named " + std::string(target), StandardRules::kPITarget);
    if (content.find("?>") != std::string_view::npos) return fail(what + " has \"?>\"", StandardRules::kPI);
    if (!content.empty() && Syntax::isWhite(content.front()))
        return fail(what + " has content that begins with white space", StandardRules::kPI);
    out.put("<?");
    out.put(target);
    if (!content.empty()) out.put(" ");
    if (!putAsIs(content, what)) return false;
    out.put("?>");
    return true;
}

// "]]>" ends a section, and a carriage return in it would be read as a line end.
bool Markup::putSection(std::string_view text) {
    constexpr std::string_view kEnd = "]]>";
    do {
        if (!text.empty() && text.front() == '\r') {
            putCharacterReference('\r');
            text.remove_prefix(1);
            continue;
        }
        const std::size_t end = std::min(text.find(kEnd), text.size());
        const std::size_t size = std::min(text.find('\r'), end < text.size() ? end + 2 : end);
        out.put("<![CDATA[");
        if (!putAsIs(text.substr(0, size), "the section")) return false;
        out.put(kEnd);
        text.remove_prefix(size);
    } while (!text.empty());
    return true;
}

bool Markup::putHeldSection(std::string_view held, const Dtd* dtd) {
    if (held.find('&') == std::string_view::npos) return putSection(held);
    std::string meant;
    return appendMeant(meant, held, dtd) && putSection(meant);
}

bool Markup::appendMeant(std::string& to, std::string_view held, const Dtd* dtd) {
    if (!checkCharacters(held, [] { return "the section"; })) return false;
    while (!held.empty()) {
        const std::size_t end = std::min(held.find('&'), held.size());
        to += held.substr(0, end);
        held.remove_prefix(end);
        if (held.empty()) break;
        const std::string_view reference = References::first(held);
        const std::string name(reference.substr(1, std::max<std::size_t>(reference.size(), 2) - 2));
        std::size_t size = reference.size();
        if (const char32_t c = References::isToCharacter(reference) ? References::characterOf(reference) : 0) {
            Utf8::append(to, c);
        } else if (const char standard = Syntax::predefined(name)) {
            to += standard;
        } else if (dtd != nullptr && dtd->isEntityName(name)) {
            const std::string& value = dtd->getEntityValue(name);
            heldWithReferences += static_cast<std::int64_t>(size);
            if (!grow(value.size())) return false;
            to += value;
        } else {
            to += '&';
            size = 1;
        }
        held.remove_prefix(size);
    }
    return true;
}

bool Markup::putAsIs(std::string_view text, const std::string& what) {
    if (hasAscii() && PlainRuns::end<Kind::Lines, Beyond::LookedAt>(text.data(), text.data() + text.size()) ==
                          text.data() + text.size()) {
        out.put(text);
        return true;
    }
    if (!checkCharacters(text, [&] { return what; }) || !checkSayable(text, what)) return false;
    if (text.find('\r') != std::string_view::npos)
        return fail(what + " has a carriage return, which would be read as a line end", StandardRules::kChar);
    putLines(text);
    return true;
}

void Markup::putLines(std::string_view text) {
    while (!isLineFeed) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        out.put(text.substr(0, end));
        if (end == text.size()) return;
        out.put(newline);
        text.remove_prefix(end + 1);
    }
    out.put(text);
}

// --- Checks ---

bool Markup::checkName(std::string_view name, const char* of) {
    const auto refuse = [&] {
        return fail('"' + messageLine(name) + "\" cannot be the name of " + of, StandardRules::kName);
    };
    if (!name.empty() && ByteClass::is(name.front(), ByteClass::kNameStart) &&
        ByteClass::endOf<ByteClass::kNameChar>(name.data(), name.data() + name.size()) == name.data() + name.size())
        return true;
    if (Utf8::check(name.data(), name.data() + name.size()).ending != Utf8::Ending::Whole) return refuse();
    if (!StandardNames::isName(name)) return refuse();
    return checkSayable(name, "the name " + messageLine(name));
}

bool Markup::checkSayable(std::string_view text, const std::string& what) {
    const char* const end = text.data() + text.size();
    const char* const at = encoder != nullptr ? encoder->sayableEnd(text.data(), end) : end;
    if (at == end) return true;
    return fail(what + " has a character that " + encodingName + " lacks: " + numberOf(Utf8::at(at).value),
                StandardRules::kCharacterEncodingInEntities);
}

}  // namespace Xml
