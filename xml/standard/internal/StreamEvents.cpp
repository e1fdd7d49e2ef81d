#include "xml/standard/internal/StreamEvents.h"

#include "xml/dom/Element.h"
#include "xml/standard/internal/ContentBuilder.h"
#include "xml/standard/internal/OptionProblems.h"
#include "xml/standard/internal/PrologParts.h"
#include <algorithm>

namespace Xml {

namespace {

template <StreamReader::Event Ours, Lexer::Event Theirs>
constexpr bool kSame = static_cast<int>(Ours) == static_cast<int>(Theirs);
static_assert(kSame<StreamReader::Event::Start, Lexer::Event::Start>);
static_assert(kSame<StreamReader::Event::Doctype, Lexer::Event::Doctype>);
static_assert(kSame<StreamReader::Event::Failed, Lexer::Event::Failed>);

}  // namespace

StreamEvents::StreamEvents(std::istream& in, const ReadOptions& itsOptions)
    : options(itsOptions),
      windows(std::make_unique<StreamText>(in, options.encoding, options.maxBytes)),
      lexer(lexerOptions(options)),
      plain(lexer, options) {}

StreamEvents::StreamEvents(std::string_view text, const ReadOptions& itsOptions)
    : options(itsOptions),
      windows(std::make_unique<WholeText>(text, options.encoding, options.maxBytes)),
      lexer(lexerOptions(options)),
      plain(lexer, options) {}

// --- Events ---

// Where memory runs out, Failed stays.
StreamEvents::Event StreamEvents::next() {
    if (!isPlain) return readNext();
    const Lexer::Event event = plain.take(shown);
    if (event == Lexer::Event::Start) return readStart();
    if (event == Lexer::Event::More) return readNext();
    now = static_cast<Event>(event);
    return static_cast<Event>(event);
}

StreamEvents::Event StreamEvents::readStart() {
    sorted.clear();
    try {
        isPlain = plain.takeStart(shown);
    } catch (...) {
        isPlain = false;
        now = Event::Failed;
        shown.clear();
        throw;
    }
    if (!isPlain) return readByLexer();
    now = Event::Start;
    return Event::Start;
}

StreamEvents::Event StreamEvents::readNext() {
    if (now == Event::Finished || now == Event::Failed) return *now;
    const bool isFirst = !now;
    const bool mayBePlain = isPlain || (!isFirst && !waiting && goOnPlain());
    now = Event::Failed;
    isPlain = false;
    shown.clear();
    if (isFirst) {
        found = unsupported(options, options.source);
        if (!found.empty()) return Event::Failed;
        lexer.setWindow({}, false);
    }
    const Lexer::Event event = mayBePlain ? plain.takeLessUsual(shown) : Lexer::Event::More;
    if (event == Lexer::Event::Start) return readStart();
    if (event == Lexer::Event::More) return readByLexer();
    isPlain = true;
    now = static_cast<Event>(event);
    return *now;
}

StreamEvents::Event StreamEvents::readByLexer() {
    now = Event::Failed;
    try {
        now = read();
    } catch (...) {
        shown.clear();  // what is at hand may have gone with a window
        throw;
    }
    return *now;
}

// An element with a value of xml:space ends as an event of the lexer.
bool StreamEvents::goOnPlain() { return plain.goOn(preservations.empty() ? 0 : preservations.back().depth); }

// Mostly an event of the lexer is one of the reader.
StreamEvents::Event StreamEvents::read() {
    shown.clear();
    if (waiting) return readAfterText();
    const Lexer::Event event = pull();
    if (event == Lexer::Event::Start || event == Lexer::Event::End) return show(event);
    if (event == Lexer::Event::Text && options.space != Space::Dropped && isBeforeKept()) return show(event);
    return readRun(event);
}

StreamEvents::Event StreamEvents::readAfterText() {
    const Lexer::Event event = *waiting;
    waiting.reset();
    return readRun(event);
}

StreamEvents::Event StreamEvents::readRun(Lexer::Event event) {
    run.clear();
    isOther = false;
    for (;; event = pull()) {
        if (isPart(event)) {
            if (!addPart(event)) continue;
            if (!isDropped()) return Event::Text;
            shown.clear();
        } else if (!isPassedOver(event)) {
            if (!shown.text.empty() && !isDropped()) {
                waiting = event;
                return Event::Text;
            }
            shown.text = {};
            return show(event);
        }
    }
}

// More: there is no more.
Lexer::Event StreamEvents::pull() {
    for (;;) {
        const Lexer::Event event = lexer.next();
        if (event != Lexer::Event::More) return event;
        keepPlace();
        if (!windows->advance(lexer)) return event;
    }
}

// Nothing is at hand before it.
StreamEvents::Event StreamEvents::show(Lexer::Event event) {
    shown.depth = lexer.depth();
    shown.offset = lexer.offset();
    switch (event) {
    case Lexer::Event::Start: noteStart(); break;
    case Lexer::Event::End: noteEnd(); break;
    case Lexer::Event::Doctype: noteDoctype(); break;
    case Lexer::Event::Instruction: shown.name = lexer.name(); [[fallthrough]];
    case Lexer::Event::Text:
    case Lexer::Event::CData:
    case Lexer::Event::Comment: shown.text = lexer.text(); break;
    case Lexer::Event::Finished: break;
    case Lexer::Event::Failed:
    case Lexer::Event::More: fail(event); return Event::Failed;
    }
    return static_cast<Event>(event);
}

void StreamEvents::noteStart() {
    shown.name = lexer.name();
    shown.attributes = lexer.attributes().begin();
    shown.attributeCount = lexer.attributes().size();
    sorted.clear();
    if (options.space != Space::Content) return;
    for (const TagAttribute& attribute : lexer.attributes()) {
        if (attribute.name != "xml:space") continue;
        if (attribute.value == "preserve" || attribute.value == "default")
            preservations.push_back({shown.depth, attribute.value == "preserve"});
    }
}

void StreamEvents::noteEnd() {
    shown.name = lexer.name();
    if (!preservations.empty() && preservations.back().depth == shown.depth) preservations.pop_back();
}

void StreamEvents::noteDoctype() {
    shown.name = lexer.name();
    PrologParts::takeDoctype(itsProlog, lexer);
}

// --- Texts ---

bool StreamEvents::isPart(Lexer::Event event) const {
    return event == Lexer::Event::Text || (event == Lexer::Event::CData && !options.keepCData);
}

bool StreamEvents::isPassedOver(Lexer::Event event) const {
    return (event == Lexer::Event::Comment && !options.keepComments) ||
           (event == Lexer::Event::Instruction && !options.keepInstructions);
}

// Whether what follows ends a text, as far as a look at it shows.
bool StreamEvents::isBeforeKept() const {
    const std::string_view next = lexer.ahead();
    if (next.size() < 3 || next[0] != '<') return false;
    if (next[1] == '?') return options.keepInstructions;
    if (next[1] == '!') return next[2] == '[' ? options.keepCData : options.keepComments;
    return true;
}

// Whether the text is known to end with it.
bool StreamEvents::addPart(Lexer::Event event) {
    const std::string_view part = lexer.text();
    if (part.empty()) return !shown.text.empty() && isBeforeKept();
    if (options.space == Space::Dropped) {
        isOther |= event == Lexer::Event::CData || lexer.hasReference() || !WhiteSpace::isWhite(part);
    }
    if (shown.text.empty()) {
        shown.offset = lexer.offset();
        shown.depth = lexer.depth();
    }
    const bool isEnd = isBeforeKept();
    if (isEnd && run.empty()) {
        shown.text = part;
    } else {
        run += part;
        shown.text = run;
    }
    return isEnd;
}

// --- Names and attributes ---

// Of the name at hand, with its colon.
std::size_t StreamEvents::prefixSize() const {
    if (!options.namespaces || (now != Event::Start && now != Event::End)) return 0;
    const std::size_t colon = shown.name.find(':');
    return colon == std::string_view::npos ? 0 : colon + 1;
}

std::string_view StreamEvents::localName() const {
    if (now != Event::Start && now != Event::End) return {};
    return shown.name.substr(prefixSize());
}

std::string_view StreamEvents::namespaceUri() const {
    if (!options.namespaces || (now != Event::Start && now != Event::End)) return {};
    const std::size_t size = prefixSize();
    const Namespaces& scopes = lexer.namespaces();
    return scopes.nameOf(scopes.find(shown.name.substr(0, size > 0 ? size - 1 : 0)));
}

std::optional<std::string_view> StreamEvents::attribute(std::string_view name) {
    constexpr std::size_t kFew = 16;
    const TagAttribute* const none = shown.attributes + shown.attributeCount;
    const TagAttribute* const one =
        shown.attributeCount > kFew
            ? findSorted(name)
            : std::find_if(shown.attributes, none, [&](auto& each) { return each.name == name; });
    return one != none ? std::optional(one->value) : std::nullopt;
}

// After the last one without it.
const TagAttribute* StreamEvents::findSorted(std::string_view name) {
    const TagAttribute* const all = shown.attributes;
    if (sorted.empty()) {
        sorted.reserve(shown.attributeCount);  // all or none of them
        for (std::size_t i = 0; i < shown.attributeCount; ++i) sorted.push_back(static_cast<std::uint32_t>(i));
        std::sort(sorted.begin(), sorted.end(),
                  [&](std::uint32_t a, std::uint32_t b) { return all[a].name < all[b].name; });
    }
    const auto place = std::lower_bound(sorted.begin(), sorted.end(), name,
                                        [&](std::uint32_t a, std::string_view b) { return all[a].name < b; });
    return place != sorted.end() && all[*place].name == name ? &all[*place] : all + shown.attributeCount;
}

// --- More than an event ---

std::unique_ptr<Element> StreamEvents::readElement() {
    if (now != Event::Start) return nullptr;
    now = Event::Failed;
    isPlain = false;
    const bool isPreserved = !preservations.empty() && preservations.back().isPreserved;
    shown.clear();
    ContentBuilder content(lexer, options, options.keepPlaces ? this : nullptr, isPreserved);
    content.begin();
    for (;;) {
        content.takePlain();
        const Lexer::Event event = pull();
        switch (event) {
        case Lexer::Event::Start: content.begin(); break;
        case Lexer::Event::End:
            content.end();
            if (content.isOpen()) break;
            now = show(event);
            return content.take();
        case Lexer::Event::Text: content.addText(); break;
        case Lexer::Event::CData: content.addSection(); break;
        case Lexer::Event::Comment: content.addComment(); break;
        case Lexer::Event::Instruction: content.addInstruction(); break;
        default: now = show(event); return nullptr;
        }
    }
}

void StreamEvents::skipElement() {
    if (now != Event::Start) return;
    now = Event::Failed;
    isPlain = false;
    const std::size_t outer = shown.depth;
    for (;;) {
        if (goOnPlain() && skipPlain(outer)) {
            now = Event::End;
            return;
        }
        shown.clear();
        const Lexer::Event event = pull();
        const bool isEnd = event == Lexer::Event::End && lexer.depth() == outer;
        if (!isEnd && event != Lexer::Event::Failed && event != Lexer::Event::More) continue;
        now = show(event);
        return;
    }
}

// What comes next as long as it is ordinary. Whether the element of that depth has ended: that is at hand then.
bool StreamEvents::skipPlain(std::size_t outer) {
    for (;;) {
        shown.clear();
        const Lexer::Event event = plain.takeLessUsual(shown);
        if (event == Lexer::Event::More || (event == Lexer::Event::Start && !plain.takeStart(shown))) return false;
        if (event == Lexer::Event::End && shown.depth == outer) return true;
    }
}

}  // namespace Xml
