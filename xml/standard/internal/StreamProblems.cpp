// Where an event of a stream is, what is known of the document, and what is wrong with it.
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/OptionProblems.h"
#include "xml/standard/internal/PrologParts.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/StreamEvents.h"
#include <algorithm>
#include <utility>

namespace Xml {

// --- Places ---

Place StreamEvents::find(std::int64_t offset) {
    if (offset == keptOffset) return kept;
    const TextPosition& before = lexer.positionOf(offset);
    return placeAt(windows->decoder().sourceOffset(before), before);
}

// The window moves on: that of a text that has begun is found while its bytes are there.
void StreamEvents::keepPlace() {
    const std::int64_t offset = shown.text.empty() ? lexer.offset() : shown.offset;
    if (offset == keptOffset || offset < lexer.windowBegin() || lexer.window().empty()) return;
    kept = of(offset);
    keptOffset = offset;
}

Place StreamEvents::place() {
    if (now == Event::Failed) return found.empty() ? Place() : found.front().place;
    return shown.offset >= 0 ? of(shown.offset) : Place();
}

// --- The document ---

const Prolog& StreamEvents::prolog() {
    if (lexer.window().data() == nullptr) return itsProlog;  // nothing was read
    PrologParts::takeDeclaration(itsProlog, lexer);
    itsProlog.hasMark = windows->decoder().hasMark();
    itsProlog.readAs = windows->decoder().encodingName();
    itsProlog.newline = windows->newline();
    return itsProlog;
}

// --- What is wrong ---

// The lexer has failed, or wants more where there is no more. What is wrong with the encoding may come before what the
// lexer has found: what the declaration names.
void StreamEvents::fail(Lexer::Event event) {
    using Ending = TextWindows::Ending;
    if (windows->ending() == Ending::Undecodable) {
        const DecodingFailure& failure = *windows->decoder().failure();
        if (event == Lexer::Event::More || failure.textOffset < lexer.fault().offset) return fail(failure);
    }
    if (event == Lexer::Event::Failed) return failByFault();
    if (windows->ending() == Ending::TooLong) {
        failAtLimit();
    } else {
        found.push_back(unreadable(options.source, windows->reason()));
    }
}

// A text that is too long was not read at all, a stream up to the limit.
void StreamEvents::failAtLimit() {
    if (lexer.window().data() == nullptr) {
        found.push_back(tooLong(options, options.source, windows->withinLimit()));
        return;
    }
    Problem problem = tooLong(options, options.source);
    problem.path = lexer.path(lexer.cutTag());
    locate(problem, windowEnd());
    found.push_back(std::move(problem));
}

void StreamEvents::failByFault() {
    const Fault& fault = lexer.fault();
    Problem problem = problemOf(options.source, fault.kind, fault.text, fault.rule);
    problem.path = lexer.path(fault.element);
    locate(problem, fault.offset);
    found.push_back(std::move(problem));
}

void StreamEvents::fail(const DecodingFailure& failure) {
    Problem problem = undecodable(failure, options.source);
    problem.path = lexer.path(lexer.cutTag());
    locate(problem, std::clamp(failure.textOffset, lexer.windowBegin(), windowEnd()));
    found.push_back(std::move(problem));
}

std::int64_t StreamEvents::windowEnd() const {
    return lexer.windowBegin() + static_cast<std::int64_t>(lexer.window().size());
}

// An offset in the source that is known already stays. The window is the end of what is held.
void StreamEvents::locate(Problem& problem, std::int64_t offset) {
    const std::string_view held = windows->held();
    const std::size_t begin = held.size() - lexer.window().size();
    const std::int64_t known = problem.place.offset;
    problem.place = of(offset);
    if (known >= 0) problem.place.offset = known;
    problem.excerpt = excerptOf(held, begin + static_cast<std::size_t>(offset - lexer.windowBegin()));
}

}  // namespace Xml
