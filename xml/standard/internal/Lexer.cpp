#include "xml/standard/internal/Lexer.h"

#include "xml/standard/internal/DtdParser.h"
#include "xml/standard/internal/ElementPath.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/text/internal/StandardNames.h"
#include <algorithm>
#include <utility>

namespace Xml {

using Syntax::startsWith;
using Syntax::viewOf;

bool Lexer::isPlainEnabled = true;

bool Lexer::setPlainEnabled(bool on) { return std::exchange(isPlainEnabled, on); }

std::string_view Lexer::plainAhead() {
    forgetEnded();
    return mayBePlain() && !isEnding ? ahead() : std::string_view();
}

std::size_t Lexer::plainFloor() const {
    const std::size_t ended = hasEnded ? 1 : 0;
    const std::size_t scopes = ended > 0 ? open.back().scopes : tags.scopes().mark();
    const auto* const firstWithout =
        std::partition_point(open.begin(), open.end() - ended, [&](const Open& one) { return one.scopes < scopes; });
    const auto declaring = static_cast<std::size_t>(firstWithout - open.begin());
    return std::max({std::size_t{1}, kept.size(), declaring});
}

// A construct that is cut off is read again, but for texts: what is in the buffer stays there.
Lexer::Event Lexer::next() {
    if (part == Part::Finished) return Event::Finished;
    if (part == Part::Failed) return Event::Failed;
    forgetEnded();
    in.goOn();
    Event event = Event::Failed;
    if (read(event)) return event;
    if (in.state() == EntityStack::State::Cut) return Event::More;
    part = Part::Failed;
    return Event::Failed;
}

// The elements whose start tags are in the window are the last ones.
std::size_t Lexer::release() {
    for (std::size_t i = kept.size(); i < open.size(); ++i) {
        kept.push_back(std::make_unique<const Kept>(Kept{std::string(open[i].name), in.placeOf(open[i].offset)}));
        open[i].name = kept.back()->name;
    }
    return in.release();
}

bool Lexer::read(Event& event) {
    if (part == Part::Content) return readContent(event);
    if (part == Part::Beginning) {
        const char* const from = in.at;
        if (!readXmlDeclaration(in, itsDeclaration)) {
            if (in.state() == EntityStack::State::Cut) in.at = from;
            return false;
        }
        declared.isStandalone = itsDeclaration.standalone.value_or(false);
        part = Part::BeforeDoctype;
    }
    return readMisc(event);
}

// What stands before and after the root.
bool Lexer::readMisc(Event& event) {
    Syntax::skipWhite(in);
    itsOffset = in.offsetOf(in.at);
    const bool isAfter = part == Part::AfterRoot;
    if (in.at == in.end) {
        if (isAfter && !in.isGrowing()) {
            part = Part::Finished;
            event = Event::Finished;
            return true;
        }
        return in.endsEarly(in.at, StandardRules::kDocument, "an element expected, found the end of the document");
    }
    if (startsWith(in, "<!--")) return readComment(event);
    if (startsWith(in, "<?")) return readInstruction(event);
    const auto found = [this] { return startsWith(in, "</") ? std::string("an end tag") : in.describe(in.at); };
    if (isAfter) {
        return in.unexpected(in.at, StandardRules::kDocument,
                             "nothing may follow the root but comments and instructions, found " + found());
    }
    if (startsWith(in, "<!DOCTYPE")) {
        if (part == Part::BeforeDoctype) return readDoctype(event);
        return in.fail(in.at, StandardRules::kProlog, "a document has one document type");
    }
    if (startsWith(in, "<!")) {
        return in.failUnlessKeyword(in.at, StandardRules::kProlog,
                                    "\"<!\" begins neither a comment nor <!DOCTYPE, in capitals");
    }
    if (*in.at != '<' || startsWith(in, "</"))
        return in.unexpected(in.at, StandardRules::kProlog, "an element expected, found " + found());
    return readStart(event);
}

bool Lexer::readContent(Event& event) {
    if (isEnding) return endElement(event);
    if (isInText || in.at == in.end || *in.at != '<') {
        if (!readText()) return false;
        if (!itsText.empty()) {
            event = Event::Text;
            return true;
        }
        if (in.at == in.end) return failAtEnd(in.at);
    }
    itsOffset = in.offsetOf(in.at);
    if (in.end - in.at < 2) return in.endsEarly(in.at, StandardRules::kName, "\"<\" begins nothing");
    switch (in.at[1]) {
    case '/': return readEnd(event);
    case '?': return readInstruction(event);
    case '!':
        if (startsWith(in, "<!--")) return readComment(event);
        if (startsWith(in, "<![CDATA[")) return readSection(event);
        return in.failUnlessKeyword(in.at, startsWith(in, "<![") ? StandardRules::kCDStart : StandardRules::kContent,
                                    "\"<!\" begins neither a comment nor <![CDATA[, in capitals");
    default: return readStart(event);
    }
}

// --- Comments, instructions, sections ---

// What entities make is bounded, also where it is little text and many nodes.
bool Lexer::growByNode(const char* where) { return !in.isInEntity() || in.grow(EntityStack::kNodeCost, where); }

// In an entity a CR is no line end: it came there by a reference.
void Lexer::takeText(std::string_view text, bool hasReturn) {
    itsText = text;
    if (!hasReturn || in.isInEntity()) return;
    buffer.clear();
    Syntax::appendLines(buffer, text);
    itsText = buffer;
}

bool Lexer::readComment(Event& event) {
    const char* const from = in.at;
    bool hasReturn = false;
    if (!Syntax::readComment(in, itsText, hasReturn) || !growByNode(from)) return false;
    takeText(itsText, hasReturn);
    event = Event::Comment;
    return true;
}

bool Lexer::readInstruction(Event& event) {
    const char* const from = in.at;
    bool hasReturn = false;
    if (!Syntax::readInstruction(in, itsName, itsText, hasReturn, options.namespaces) || !growByNode(from))
        return false;
    takeText(itsText, hasReturn);
    event = Event::Instruction;
    return true;
}

bool Lexer::readSection(Event& event) {
    const char* const from = in.at;
    bool hasReturn = false;
    if (!Syntax::readSection(in, itsText, hasReturn) || !growByNode(from)) return false;
    takeText(itsText, hasReturn);
    event = Event::CData;
    return true;
}

// --- Tags ---

std::string Lexer::path(std::string_view last) const {
    ElementPath result(open.size() + (last.empty() ? 0 : 1));
    for (const Open& element : open) result.add(element.name);
    if (!last.empty()) result.add(last);
    return result.text();
}

std::string Lexer::beganAtInnermost() const {
    const Open& element = open.back();
    const Place place = kept.size() == open.size() ? kept.back()->place : in.placeOf(element.offset);
    return "(<" + std::string(element.name) + "> began at " + std::to_string(place.line) + ":" +
           std::to_string(place.column) + ")";
}

bool Lexer::readStart(Event& event) {
    const char* const from = in.at;
    const std::size_t scopes = tags.scopes().mark();
    const std::int64_t growth = in.growth();
    if (!tags.read()) {
        if (in.state() == EntityStack::State::Cut) {
            in.at = from;
            in.setGrowth(growth);
            tags.scopes().goBack(scopes);
        }
        return false;
    }
    itsName = tags.name();
    if (isFull()) {
        return in.fail(from, StandardRules::kMaxDepth,
                       "more than " + std::to_string(options.maxDepth) + " elements are open", Problem::Kind::Limit);
    }
    if (in.isInEntity() &&
        !in.grow(EntityStack::kElementCost + tags.attributes().size() * EntityStack::kNodeCost, from))
        return false;
    beginElement(itsName, scopes, itsOffset);
    part = Part::Content;
    event = Event::Start;
    return true;
}

bool Lexer::readEnd(Event& event) {
    const char* const from = in.at;
    const char* const nameBegin = from + 2;
    const std::string_view expected = open.back().name;
    const bool isInside = open.size() > in.openBefore();
    const char* to = nameBegin;
    if (viewOf(nameBegin, in.end).substr(0, expected.size()) == expected) to += expected.size();
    // What ends the name is mostly what ends the tag.
    if (to == in.end || (*to != '>' && !Syntax::isWhite(*to))) to = StandardNames::nameEnd(nameBegin, in.end);
    const char* const tagEnd = Syntax::whiteEnd(to, in.end);
    if (tagEnd == in.end) return in.endsEarly(from, StandardRules::kETag, "the tag that begins here does not end");
    if (to == nameBegin) return in.expected(to, StandardRules::kName, "the name of an element");
    const std::string_view name = viewOf(nameBegin, to);
    if (!isInside) {
        return in.fail(from, StandardRules::kWellFormedParsedEntities,
                       "</" + std::string(name) + "> has no start tag in the entity");
    }
    if (name != expected) {
        return in.fail(
            from, StandardRules::kElementTypeMatch,
            "</" + std::string(expected) + "> expected, found </" + std::string(name) + "> " + beganAtInnermost());
    }
    if (*tagEnd != '>') return in.expected(tagEnd, StandardRules::kETag, "\">\"");
    in.at = tagEnd + 1;
    return endElement(event);
}

bool Lexer::failAtEnd(const char* where) {
    const char* const rule = in.isInEntity() ? StandardRules::kWellFormedParsedEntities : StandardRules::kElement;
    return in.endsEarly(
        where, rule,
        "</" + std::string(open.back().name) + "> expected, found " + in.describe(where) + " " + beganAtInnermost());
}

// --- The document type ---

// Where it is cut off all of it is read again.
bool Lexer::readDoctype(Event& event) {
    const char* const from = in.at;
    const std::int64_t growth = in.growth();
    if (!readDoctypeParts()) {
        if (in.state() == EntityStack::State::Cut) {
            in.at = from;
            in.setGrowth(growth);
            const bool isStandalone = declared.isStandalone;
            declared = Declarations();
            declared.isStandalone = isStandalone;
        }
        return false;
    }
    declared.isPresent = true;
    declared.name = itsName;
    part = Part::BeforeRoot;
    event = Event::Doctype;
    return true;
}

bool Lexer::readDoctypeParts() {
    in.at += std::string_view("<!DOCTYPE").size();
    if (!Syntax::readWhite(in, StandardRules::kDoctypedecl)) return false;
    if (!Syntax::readQName(in, itsName, "the name of the document type", options.namespaces)) return false;
    Syntax::skipWhite(in);  // a keyword right after the name would be part of it
    Syntax::ExternalId id;
    if (!Syntax::readExternalId(in, id, false)) return false;
    declared.hasExternalSubset = id.isPresent;
    Syntax::skipWhite(in);
    itsDoctype = {std::move(id.publicId), std::move(id.systemId), {}};
    if (in.at != in.end && *in.at == '[') {
        const char* const from = ++in.at;
        if (!DtdParser(in, declared, options.namespaces).readSubset()) return false;
        itsDoctype.subset = viewOf(from, in.at - 1);
        Syntax::skipWhite(in);
    }
    const char* const what = itsDoctype.subset.data() != nullptr ? "\">\""
                             : id.isPresent                      ? "\"[\" or \">\""
                                                                 : "SYSTEM, PUBLIC, \"[\" or \">\"";
    return Syntax::readByte(in, '>', StandardRules::kDoctypedecl, what);
}

std::string_view Lexer::cutTag() const {
    const std::string_view rest = ahead();
    if (rest.empty() || rest.front() != '<') return {};
    const char* const from = rest.data() + 1;
    const char* const end = rest.data() + rest.size();
    const char* const to = StandardNames::nameEnd(from, end);
    return to != end ? Syntax::viewOf(from, to) : std::string_view();
}

}  // namespace Xml
