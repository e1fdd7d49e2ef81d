#pragma once

#include "xml/standard/EventAtHand.h"
#include "xml/standard/ReadOptions.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/PlainNames.h"
#include "xml/standard/internal/Runs.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/standard/internal/WhiteSpace.h"
#include "xml/text/internal/Words.h"
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace Xml {

using internal::EventAtHand;

// Reads ordinary pieces of content as events of a stream, straight from the window of the lexer: start tags with their
// attributes, end tags, texts that are one event.
//
// This is cost control and nothing else: the events of the lexer are the same, and every message. A piece is taken only
// where it lies in the window as a whole, is well formed, and its names are of ASCII and have no prefix. What is not
// taken is untouched from its first byte on.
//
// A header: each event is read in one function, together with what asks for it.
class PlainEvents {
public:
    PlainEvents(Lexer& itsLexer, const ReadOptions& options)
        : lexer(itsLexer),
          limit(options.maxDepth > 0 ? static_cast<std::size_t>(options.maxDepth) : kNoLimit),
          keepsEach(options.keepComments && options.keepInstructions && options.keepCData),
          dropsWhite(options.space == Space::Dropped) {}

    // After an event of the lexer: whether events may be taken now, until one is not ordinary. No event is at hand
    // then. With as many open elements, or fewer, the innermost one does not end so.
    bool goOn(std::size_t outer) {
        if (!lexer.mayBePlain()) return false;
        lexer.forgetEnded();
        const std::string_view window = lexer.window();
        begin = window.data();
        end = begin + window.size();
        beginOffset = lexer.windowBegin();
        takesTags = !lexer.hasAttributeRules();
        depth = lexer.depth();
        floor = std::max(lexer.plainFloor(), outer);
        return true;
    }

    // What comes next: a Text or an End is taken, for a Start has to be asked. More: it is less usual. Nothing is
    // called here, so that little has to be saved.
    [[gnu::always_inline]] Lexer::Event take(EventAtHand& event) {
        if (lexer.isInEmptyTag()) return takeEndOfEmpty(event);
        const char* const at = lexer.ahead().data();
        if (end - at < kRoom) return Lexer::Event::More;
        if (*at != '<') return dropsWhite ? Lexer::Event::More : takeText(at, event);
        return at[1] == '/' ? takeEnd(at, event) : Lexer::Event::Start;
    }

    // The same where that was More. Again More: it is not ordinary, and the lexer has it.
    Lexer::Event takeLessUsual(EventAtHand& event) {
        const char* const at = lexer.ahead().data();
        if (lexer.isInEmptyTag()) return takeEndOfEmpty(event);
        if (end - at < kLeast) return Lexer::Event::More;
        if (*at != '<') return takeRareText(at, event);
        return at[1] == '/' ? takeCloseEnd(at, event) : Lexer::Event::Start;
    }

    // Where a Start may come next: whether it was taken.
    [[gnu::always_inline]] bool takeStart(EventAtHand& event) {
        const char* const from = lexer.ahead().data();
        const char* const name = from + 1;
        if (!takesTags || depth >= limit || !PlainNames::is(*name, PlainNames::kStart)) return false;
        const char* const nameEnd = PlainNames::endAfterStart(name, end);
        if (nameEnd == end) return false;
        lexer.attributesToFill().clear();
        if (*nameEnd != '>') return takeStartWithMore(from, nameEnd, event);
        event.attributeCount = 0;
        finishStart(event, from, nameEnd, nameEnd + 1, false);
        return true;
    }

private:
    static constexpr std::ptrdiff_t kLeast = 3;  // bytes that show what it is
    static constexpr std::ptrdiff_t kRoom = 64;  // for what is looked at in take(), and kLeast after that
    static constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

    [[gnu::always_inline]] void finish(EventAtHand& event, const char* from, const char* to) const {
        event.offset = offsetOf(from);
        lexer.passTo(to);
    }
    std::int64_t offsetOf(const char* where) const { return where - begin + beginOffset; }

    // --- Texts ---

    // A short one; there is room.
    [[gnu::always_inline]] Lexer::Event takeText(const char* from, EventAtHand& event) const {
        const char* const to = Runs::findShort<'<', '&', ']'>(from);
        const bool isPlain = *to == '<' && endsText(to);
        return isPlain ? finishText(event, Syntax::viewOf(from, to), from, to) : Lexer::Event::More;
    }

    [[gnu::always_inline]] Lexer::Event finishText(EventAtHand& event, std::string_view text, const char* from,
                                                   const char* to) const {
        event.name = {};
        event.text = text;
        event.attributeCount = 0;
        event.depth = depth;
        finish(event, from, to);
        return Lexer::Event::Text;
    }

    // Not where the text may go on after it.
    bool endsText(const char* markup) const { return keepsEach || (markup[1] != '!' && markup[1] != '?'); }

    // One of characters that stand for themselves, but for line ends.
    Lexer::Event takeRareText(const char* from, EventAtHand& event) {
        bool hasReturn = false;
        const char* const to = rareTextEnd(from, hasReturn);
        if (to == nullptr || !endsText(to)) return Lexer::Event::More;
        std::string_view text = Syntax::viewOf(from, to);
        if (dropsWhite && WhiteSpace::isWhite(text)) {
            lexer.passTo(to);
            return to[1] == '/' ? takeCloseEnd(to, event) : Lexer::Event::Start;
        }
        if (hasReturn) {
            lines.clear();
            Syntax::appendLines(lines, text);
            text = lines;
        }
        return finishText(event, text, from, to);
    }

    // The '<' that ends it; null elsewhere.
    const char* rareTextEnd(const char* from, bool& hasReturn) const {
        for (;;) {
            const Runs::Run run = Runs::of<'<', '&', ']'>(from, end);
            hasReturn |= run.hasReturn;
            if (end - run.end < kLeast) return nullptr;
            if (*run.end == '<') return run.end;
            if (*run.end != ']' || (run.end[1] == ']' && run.end[2] == '>')) return nullptr;
            from = run.end + 1;
        }
    }

    // --- Tags ---

    [[gnu::always_inline]] Lexer::Event takeEndOfEmpty(EventAtHand& event) {
        if (depth <= floor) return Lexer::Event::More;
        lexer.leaveEmptyTag();
        return endInnermost(event);
    }

    [[gnu::always_inline]] Lexer::Event takeEnd(const char* from, EventAtHand& event) {
        const std::string_view name = lexer.innermostName();
        const char* const at = from + 2;
        const auto size = static_cast<std::ptrdiff_t>(name.size());
        const bool isPlain = depth > floor && end - at > size + Words::kWordSize && at[size] == '>' && isSame(name, at);
        return isPlain ? finishEnd(event, from, at + size + 1) : Lexer::Event::More;
    }

    // Close to the end of the window.
    Lexer::Event takeCloseEnd(const char* from, EventAtHand& event) {
        const std::string_view name = lexer.innermostName();
        const char* const at = from + 2;
        if (depth <= floor || !Scan::startsWith(at, end, name)) return Lexer::Event::More;
        const char* const to = at + name.size();
        return to != end && *to == '>' ? finishEnd(event, from, to + 1) : Lexer::Event::More;
    }

    // Whether the name stands there too, in the window before that. So much is left of the window after it.
    [[gnu::always_inline]] static bool isSame(std::string_view name, const char* at) {
        using Words::wordAt;
        const char* const other = name.data();
        const std::size_t size = name.size();
        if (size <= sizeof(Words::Word)) return (wordAt(at) ^ wordAt(other)) << 8 * (sizeof(Words::Word) - size) == 0;
        const std::size_t last = size - sizeof(Words::Word);
        if (wordAt(at + last) != wordAt(other + last)) return false;
        for (std::size_t i = 0; i < last; i += sizeof(Words::Word)) {
            if (wordAt(at + i) != wordAt(other + i)) return false;
        }
        return true;
    }

    [[gnu::always_inline]] Lexer::Event finishEnd(EventAtHand& event, const char* from, const char* to) {
        finish(event, from, to);
        return endInnermost(event);
    }

    [[gnu::always_inline]] Lexer::Event endInnermost(EventAtHand& event) {
        event.name = lexer.innermostName();
        event.text = {};
        event.attributeCount = 0;
        event.depth = depth--;
        lexer.endShown();
        return Lexer::Event::End;
    }

    [[gnu::noinline]] bool takeStartWithMore(const char* from, const char* nameEnd, EventAtHand& event) {
        TagAttributeList& attributes = lexer.attributesToFill();
        const char* const to = readAttributes(nameEnd, attributes);
        if (to == nullptr) return false;
        event.attributes = attributes.begin();
        event.attributeCount = attributes.size();
        finishStart(event, from, nameEnd, to, to[-2] == '/');
        return true;
    }

    [[gnu::always_inline]] void finishStart(EventAtHand& event, const char* from, const char* nameEnd, const char* to,
                                            bool isEmptyTag) {
        event.name = Syntax::viewOf(from + 1, nameEnd);
        event.text = {};
        event.depth = ++depth;
        finish(event, from, to);
        lexer.beginShown(event.name, event.offset, isEmptyTag);
    }

    // From after the name of the tag on. Its end; null where it is not ordinary.
    [[gnu::always_inline]] const char* readAttributes(const char* at, TagAttributeList& attributes) const {
        for (;;) {
            if (end - at < kLeast) return nullptr;
            if (*at == ' ' && PlainNames::is(at[1], PlainNames::kStart)) {
                ++at;
            } else if (*at == '>') {
                break;
            } else {
                at = afterWhite(at);
                if (at == nullptr) return nullptr;
                if (*at == '>') break;
            }
            const char* const nameEnd = PlainNames::endAfterStart(at, end);
            if (end - nameEnd < kLeast || *nameEnd != '=') return nullptr;
            const char* const value = nameEnd + 2;
            const char* const to = valueEnd(value, nameEnd[1]);
            if (to == nullptr) return nullptr;
            const std::string_view name = Syntax::viewOf(at, nameEnd);
            if (name == "xmlns") return nullptr;
            attributes.add(name, Syntax::viewOf(value, to), false);
            at = to + 1;
        }
        return attributes.size() < 2 || areUnique(attributes) ? at + 1 : nullptr;
    }

    // What follows white space, or '/': the beginning of a name or the last '>' of the tag. Null where it is neither.
    [[gnu::noinline]] const char* afterWhite(const char* from) const {
        const char* const at = Syntax::whiteEnd(from, end);
        if (end - at < kLeast) return nullptr;
        if (*at == '/') return at[1] == '>' ? at + 1 : nullptr;
        return *at == '>' || (at != from && PlainNames::is(*at, PlainNames::kStart)) ? at : nullptr;
    }

    [[gnu::always_inline]] const char* valueEnd(const char* from, char quote) const {
        const char* to = end;
        if (quote == '"') {
            to = Runs::findNearInLine<'"', '<', '&', Runs::kRare>(from, end);
        } else if (quote == '\'') {
            to = Runs::findNearInLine<'\'', '<', '&', Runs::kRare>(from, end);
        }
        return to != end && *to == quote ? to : nullptr;
    }

    // False: perhaps they are not.
    static bool areUnique(const TagAttributeList& attributes) {
        if (attributes.size() == 2) return attributes.begin()[0].name != attributes.begin()[1].name;
        PlainNames::Seen seen;
        for (const TagAttribute& attribute : attributes) seen.add(attribute.name);
        return !seen.maybeTwice() || (attributes.size() <= Tags::kFew && Tags::findTwice(attributes) == nullptr);
    }

    Lexer& lexer;
    const std::size_t limit;  // of open elements
    const bool keepsEach;     // whatever stands after a text ends it
    const bool dropsWhite;

    const char* begin = nullptr;  // of the window
    const char* end = nullptr;
    std::int64_t beginOffset = 0;
    bool takesTags = false;
    std::string lines;      // of a text that has other line ends
    std::size_t depth = 0;  // open elements
    std::size_t floor = 0;  // as many elements, or fewer: more than the innermost one ends with that
};

}  // namespace Xml
