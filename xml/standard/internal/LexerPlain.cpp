// Ordinary pieces of content, each in one step: start tags, end tags and texts that lie in the window as a whole, with
// nothing unusual about them, where no entity is open.
//
// This is cost control and nothing else: read() reads everything without it. What is not taken here is untouched.
#include "xml/standard/internal/Lexer.h"

#include "xml/standard/internal/Runs.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/stream/internal/Scan.h"
#include <utility>

namespace Xml {

bool Lexer::isPlainEnabled = true;

bool Lexer::setPlainEnabled(bool on) { return std::exchange(isPlainEnabled, on); }

[[gnu::always_inline]] inline void Lexer::forgetEnded() {
    if (!hasEnded) return;
    hasEnded = false;
    closeInnermost();
    if (open.empty()) part = Part::AfterRoot;
}

// A construct that is cut off is read again, but for texts: what is in the buffer stays there.
Lexer::Event Lexer::next() {
    if (part == Part::Finished) return Event::Finished;
    if (part == Part::Failed) return Event::Failed;
    forgetEnded();
    Event event = Event::Failed;
    isPlainPiece = part == Part::Content && !isInText && isPlainEnabled && takePlain(event);
    if (isPlainPiece) return event;
    in.goOn();
    if (read(event)) return event;
    if (in.state() == EntityStack::State::Cut) return Event::More;
    part = Part::Failed;
    return Event::Failed;
}

[[gnu::always_inline]] inline bool Lexer::takePlain(Event& event) {
    if (isEnding) return endElement(event);
    if (in.isInEntity() || in.end - in.at < 2) return false;
    if (*in.at != '<') return takePlainText(event);
    if (in.at[1] == '/') return takePlainEnd(event);
    if (in.at[1] == '!' || in.at[1] == '?') return false;
    if (isFull()) return false;
    const char* const from = in.at;
    if (!tags.readPlain()) return false;
    beginElement(tags.name(), tags.scopes().mark(), in.offsetOf(from));
    event = Event::Start;
    return true;
}

[[gnu::always_inline]] inline bool Lexer::takePlainText(Event& event) {
    const char* const to = Runs::find<'<', '>', '&', ']'>(in.at, in.end);
    if (to == in.end || *to != '<') return false;
    itsText = Syntax::viewOf(in.at, to);
    itsOffset = in.offsetOf(in.at);
    textHasReference = false;
    in.at = to;
    event = Event::Text;
    return true;
}

[[gnu::always_inline]] inline bool Lexer::takePlainEnd(Event& event) {
    const char* const to = afterPlainEnd(in.at);
    if (to == nullptr) return false;
    itsOffset = in.offsetOf(in.at);
    in.at = to;
    return endElement(event);
}

// The end of the innermost element's end tag, which begins with "</" there; null where it is not ordinary.
[[gnu::always_inline]] inline const char* Lexer::afterPlainEnd(const char* from) const {
    const char* const name = from + 2;
    const std::string_view expected = open.back().name;
    if (!Scan::startsWith(name, in.end, expected)) return nullptr;
    const char* const to = name + expected.size();
    return to != in.end && *to == '>' ? to + 1 : nullptr;
}

std::string_view Lexer::plainAhead() {
    forgetEnded();
    const bool isPossible = part == Part::Content && !isEnding && !isInText && isPlainEnabled && !in.isInEntity();
    return isPossible ? ahead() : std::string_view();
}

}  // namespace Xml
