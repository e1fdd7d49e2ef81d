#pragma once

#include "xml/dom/Prolog.h"
#include "xml/standard/StreamReader.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/PlaceSource.h"
#include "xml/standard/internal/PlainEvents.h"
#include "xml/standard/internal/TextWindows.h"
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

class StreamEvents;

// What the library asks of a reader beside its public operations.
struct StreamReaderAccess {
    static const StreamEvents& events(const StreamReader& reader) { return *reader.events; }
};

// What a StreamReader does: the events of a lexer as those of the reader, with windows for the lexer.
//
// They differ in texts. A run of text is one event, and what is not kept within it does not part it. Mostly it is one
// event of the lexer, and what follows shows that it ends there; then it stays where it is. Otherwise the parts are put
// together, until the lexer has an event that is kept: that one waits. Most events are ordinary, and taken without the
// lexer (see PlainEvents).
class StreamEvents final : private PlaceSource {
public:
    using Event = StreamReader::Event;

    StreamEvents(std::istream& in, const ReadOptions& itsOptions);
    StreamEvents(std::string_view text, const ReadOptions& itsOptions);
    StreamEvents(const StreamEvents&) = delete;
    StreamEvents& operator=(const StreamEvents&) = delete;

    // As StreamReader has them.
    Event next();
    std::optional<Event> event() const { return now; }   // the one at hand; none before the first
    const EventAtHand& atHand() const { return shown; }  // it stays where it is
    std::string_view localName() const;
    std::string_view namespaceUri() const;
    std::optional<std::string_view> attribute(std::string_view name);
    Place place();
    std::unique_ptr<Element> readElement();
    void skipElement();
    const Prolog& prolog();
    const std::vector<Problem>& problems() const { return found; }

private:
    // The value of xml:space, of an element that is open.
    struct Preservation {
        std::size_t depth;
        bool isPreserved;
    };

    Event readStart();
    Event readNext();
    Event readByLexer();
    bool goOnPlain();
    Event read();
    Event readAfterText();
    Event readRun(Lexer::Event event);
    Lexer::Event pull();
    Event show(Lexer::Event event);

    bool isPart(Lexer::Event event) const;
    bool isPassedOver(Lexer::Event event) const;
    bool isBeforeKept() const;
    bool addPart(Lexer::Event event);
    bool isDropped() const { return options.space == Space::Dropped && !isOther; }

    bool skipPlain(std::size_t outer);

    void noteStart();
    void noteEnd();
    void noteDoctype();

    Place find(std::int64_t offset) override;
    void keepPlace();
    std::size_t prefixSize() const;
    const TagAttribute* findSorted(std::string_view name);

    void fail(Lexer::Event event);
    void failByFault();
    void fail(const DecodingFailure& failure);
    void failAtLimit();
    std::int64_t windowEnd() const;
    void locate(Problem& problem, std::int64_t offset);

    const ReadOptions options;
    const std::unique_ptr<TextWindows> windows;
    Lexer lexer;
    PlainEvents plain;
    std::optional<Event> now;
    bool isPlain = false;                 // the next event may be taken without the lexer
    std::optional<Lexer::Event> waiting;  // of the lexer, after a text that turned out to end before it

    EventAtHand shown;
    std::string run;       // a text of several parts
    bool isOther = false;  // some of it is not white space, or came by a reference

    std::vector<std::uint32_t> sorted;  // attributes by their names, once one of many is asked for
    std::vector<Preservation> preservations;
    std::int64_t keptOffset = -1;  // of a place that was found before the window moved on
    Place kept;

    Prolog itsProlog;
    std::vector<Problem> found;
};

}  // namespace Xml
