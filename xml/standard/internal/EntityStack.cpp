#include "xml/standard/internal/EntityStack.h"

#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/Rules.h"
#include "xml/text/internal/StandardNames.h"
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace Xml {

namespace {

// Whether it is clear between quotes what it is. Of what is not ASCII that is what begins a name: among the rest are
// white space, what has no shape, and what joins the character before it.
bool isClear(char32_t c) {
    constexpr char32_t kNonJoiner = 0x200C;
    constexpr char32_t kJoiner = 0x200D;
    return c <= U'~' || (StandardNames::isNameStart(c) && c != kNonJoiner && c != kJoiner);
}

// What is looked for as a whole, wherever that is. A parameter entity is one by its '%' and one character of its name.
constexpr std::string_view kKeywords[] = {"<!--",     "<![CDATA[",  "<!DOCTYPE", "<!ELEMENT", "<!ATTLIST",
                                          "<!ENTITY", "<!NOTATION", "?>",        "/>",        "%p"};

// Whether the text is the beginning of a keyword, and more of it may follow.
bool mayBeKeyword(std::string_view text) {
    return std::any_of(std::begin(kKeywords), std::end(kKeywords), [text](std::string_view keyword) {
        return text.size() < keyword.size() && keyword.substr(0, text.size()) == text;
    });
}

}  // namespace

std::size_t EntityStack::release() {
    const auto read = static_cast<std::size_t>(at - positions.text().data());
    positions.release(read);
    return read;
}

void EntityStack::setWindow(std::string_view text, bool isLast) {
    positions.setWindow(text);
    isWindowLast = isLast;
    at = text.data();
    end = at + text.size();
}

bool EntityStack::enter(std::string_view name, DeclaredEntity& entity, const char* reference, std::size_t open) {
    const std::string sign = entity.isParameter ? "%" : "&";
    if (entity.isOpen) {
        return fail(reference, StandardRules::kNoRecursion, sign + std::string(name) + "; refers to itself");
    }
    if (!grow(entity.text.size(), reference)) return false;
    frames.push_back({at, end, name, &entity, offsetOf(reference), open});
    entity.isOpen = true;
    at = entity.text.data();
    end = at + entity.text.size();
    return true;
}

void EntityStack::leave() {
    const Frame& frame = frames.back();
    frame.entity->isOpen = false;
    at = frame.at;
    end = frame.end;
    frames.pop_back();
}

bool EntityStack::grow(std::size_t byteCount, const char* where) {
    constexpr std::int64_t kTimes = 100;
    grown += static_cast<std::int64_t>(byteCount);
    if (limit == 0 || grown <= limit || grown / kTimes <= offsetOf(where)) return true;
    return fail(where, StandardRules::kEntityGrowth,
                "entities and defaults make more than " + std::to_string(limit) + " bytes", Problem::Kind::Limit);
}

std::string EntityStack::describe(const char* where) const {
    if (where == end) return isInEntity() ? "the end of the entity" : "the end of the document";
    const Utf8::Character c = Utf8::at(where);
    if (c.value == '\n' || c.value == '\r') return "the end of the line";
    char code[16];
    std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(c.value));
    if (isControl(c.value) || !StandardNames::isChar(c.value)) return code;
    const char* const quote = *where == '"' ? "'" : "\"";
    const std::string shown = quote + std::string(where, where + c.size) + quote;
    return isClear(c.value) ? shown : shown + " (" + code + ")";
}

bool EntityStack::failUnlessKeyword(const char* where, const char* rule, std::string text) {
    if (isGrowing() && mayBeKeyword(std::string_view(where, static_cast<std::size_t>(end - where)))) {
        now = State::Cut;
        return false;
    }
    return fail(where, rule, std::move(text));
}

// What a parameter entity contains is declarations, whole.
bool EntityStack::endsEarly(const char* where, const char* rule, std::string text) {
    const bool isInDeclarations = !frames.empty() && frames.back().entity->isParameter;
    return isCutOff(where, isInDeclarations ? StandardRules::kPEBetweenDeclarations : rule, std::move(text));
}

bool EntityStack::isCutOff(const char* where, const char* rule, std::string text) {
    if (!isGrowing()) return fail(where, rule, std::move(text));
    now = State::Cut;
    return false;
}

bool EntityStack::expected(const char* where, const char* rule, const std::string& what) {
    const std::string text = what + " expected, found " + describe(where);
    return where == end ? endsEarly(where, rule, text) : unexpected(where, rule, text);
}

bool EntityStack::unexpected(const char* where, const char* rule, std::string text) {
    const bool isCharacter = StandardNames::isChar(Utf8::at(where).value);
    return failUnlessKeyword(where, isCharacter ? rule : StandardRules::kChar, std::move(text));
}

bool EntityStack::fail(const char* where, const char* rule, std::string text, Problem::Kind kind) {
    now = State::Failed;
    if (!frames.empty()) {
        const Frame& inner = frames.back();
        const Place& place = inner.entity->declaredAt;
        text += " (in the entity \"" + std::string(inner.name) + "\", declared at " + std::to_string(place.line) + ":" +
                std::to_string(place.column) + ")";
    }
    found = {kind, rule, offsetOf(where), messageLine(text), {}};
    return false;
}

}  // namespace Xml
