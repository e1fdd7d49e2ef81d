#include "xml/reader/internal/FastContent.h"

#include "xml/dom/internal/TreeBuilder.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/MarkupScan.h"
#include "xml/stream/internal/ReturnsAhead.h"
#include "xml/stream/internal/Scan.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/internal/ByteClasses.h"
#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

// What the tokens of a piece leave follows from which bytes they consume, in which order. A piece is looked at first
// and then read, and a word ends with a byte that is read, looked at and read again. Bytes that are read again make the
// same line breaks again, but for one case: where the last byte before was a CR, and the first that is read again is a
// CR or LF, that one ends a line too. Only two things can be read again after a CR: what follows a name in a tag, and a
// text whose first token a CR ends. Everything else is noted once.

namespace Xml {

namespace {

using namespace MarkupScan;

std::string_view viewOf(const char* from, const char* to) { return {from, static_cast<std::size_t>(to - from)}; }

// The window of a stream, and what is read from it.
class Pieces {
public:
    Pieces(InStream& stream, TreeBuilder& builder, Dtd* entities, EntityBudget& text, int& endOfReferences)
        : in(stream),
          tree(builder),
          dtd(entities),
          budget(text),
          referenceEnd(endOfReferences),
          end(StreamAccess::window(stream).end),
          begin(StreamAccess::window(stream).cursor),
          returns(begin) {}

    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;

    bool isBeforeStartTag() const {
        const char* const first = whiteEnd(begin, end);
        return end - first >= 2 && *first == '<' && isNameStart(first[1]);
    }

    // Whether the window ends before the next piece does, as far as one look tells.
    bool isCutOff() const {
        const char* const first = whiteEnd(begin, end);
        return first == end || Scan::find(first, end, *first == '<' ? '>' : '<') == nullptr;
    }

    // False when there is none, or it is not ordinary.
    bool takeOne() {
        const char* const first = takeWhite();
        if (first == nullptr) return false;
        if (*first != '<') return takeText(first);
        const char* const next = first + 1;
        if (isNameStart(*next)) return takeStartTag(next);
        if (*next == '/') return takeEndTag(next + 1);
        return *next == '!' && takeComment(next + 1);
    }

private:
    // The piece ends there: the next one begins.
    void goOnAt(const char* to) {
        StreamAccess::moveTo(in, to);
        begin = to;
    }

    // The first byte of the piece that is not white space, after which one more stands; null without them. Tokens read
    // white space first, whatever follows: its line breaks are noted before it is clear whether the piece is ordinary.
    const char* takeWhite() {
        const char* const first = whiteEnd(begin, end);
        if (end - first < 2) return nullptr;
        if (returns.in(begin, first, end)) noteReturns(first);
        return first;
    }

    // Notes bytes that have a CR among them, up to `to`, where a byte that is none is read: a step from one CR to the
    // next.
    [[gnu::noinline]] void noteReturns(const char* to) {
        const char* at = nullptr;
        do {
            at = StreamAccess::noteAfterReturn(in, returns.first() + 1, to);
        } while (returns.in(at, to, end));
        StreamAccess::noteOther(in);
    }

    const SharedName* readName(const char*& at) { return tree.readName<ByteClass::kNameChar>(at, end); }

    // Whether texts up to there are padded: as many bytes as a short text may have can be read from each of them on.
    bool isPadded(const char* to) const { return end - to >= static_cast<std::ptrdiff_t>(internal::kShortText); }

    // What is rare is out of line, so that the rest stays in registers.
    bool takeStartTag(const char* name);
    const char* collectAttributes(const char* from);
    bool takeLeaf(const SharedName& name);
    [[gnu::noinline]] bool decodeValues();
    [[gnu::noinline]] void noteStartTag(const char* name, const char* to);
    bool takeEndTag(const char* name);
    [[gnu::noinline]] bool takeComment(const char* dashes);
    bool takeText(const char* first);
    [[gnu::noinline]] void noteText(const char* tried, const char* to);
    const char* through(const char* from, char last) const;
    const char* referenceTriedFrom(const char* first) const;
    static const char* plainTriedFrom(const char* first);

    // The quote after an equal sign; null without one.
    const char* afterEqual(const char* at) const {
        if (end - at >= 2 && *at == '=' && isQuote(at[1])) return at + 1;
        at = whiteEnd(at, end);
        if (at == end || *at != '=') return nullptr;
        at = whiteEnd(at + 1, end);
        return at != end && isQuote(*at) ? at : nullptr;
    }

    InStream& in;
    TreeBuilder& tree;
    Dtd* const dtd;
    EntityBudget& budget;
    int& referenceEnd;

    const char* const end;  // of the window
    const char* begin;      // of the piece at hand
    ReturnsAhead returns;

    // Of the tag at hand.
    GivenAttributes attributes{8};       // most tags have fewer
    std::vector<std::size_t> referring;  // the places of those whose values have references ...
    std::vector<DataHolder> decoded;     // ... and these values decoded
};

// --- Tags ---

bool Pieces::takeStartTag(const char* name) {
    const bool isOutermost = !tree.isOpen();
    const char* at = name;
    const SharedName* shared = nullptr;
    if (isOutermost) {
        at = nameEnd(name + 1, end);  // its name is its own
    } else {
        shared = readName(at);
        if (shared == nullptr) return false;
    }
    const std::string_view itsName = viewOf(name, at);
    const char* const to = collectAttributes(at);
    if (to == nullptr) return false;
    const bool isEmpty = to[-2] == '/';
    if (isEmpty && isOutermost) return false;
    if (!referring.empty()) {
        if (!decodeValues()) return false;
    } else if (isPadded(to)) {
        attributes.setPadded();
    }

    if (returns.in(name, to, end)) noteStartTag(name, to);
    goOnAt(to);
    if (isEmpty) {
        tree.addElement(*shared, attributes);
    } else if (isOutermost) {
        tree.begin(itsName);
        tree.setAttributes(attributes);
    } else if (!takeLeaf(*shared)) {
        tree.begin(*shared);
        tree.setAttributes(attributes);
    }
    return true;
}

// What is left of an element after its start tag, when it holds one plain text and nothing else: many do. The same as a
// text and an end tag one after the other.
bool Pieces::takeLeaf(const SharedName& name) {
    const char* const text = begin;
    if (text == end || isWhite(*text) || *text == '<' || *text == '&' || isQuote(*text)) return false;
    const char* const to = Scan::findNear<'<'>(text, end);
    if (end - to < 2 || to[1] != '/' || !name.begins(to + 2, end)) return false;
    const char* const itsEnd = to + 2 + name.text.size();
    if (itsEnd == end || *itsEnd != '>' || returns.in(text, itsEnd, end)) return false;
    goOnAt(itsEnd + 1);
    tree.addLeaf(name, attributes, viewOf(text, to), isPadded(to));
    return true;
}

// Those from the end of the element's name on. Returns the end of the tag, null when it is not ordinary.
const char* Pieces::collectAttributes(const char* from) {
    attributes.clear();
    referring.clear();
    for (;;) {
        const char* at = from != end && *from == ' ' ? from + 1 : from;
        if (at == end) return nullptr;
        if (*at == '>') return at + 1;
        if (!isNameStart(*at)) {
            at = whiteEnd(at, end);
            if (at == end) return nullptr;
            if (*at == '>') return at + 1;
            if (*at == '/') return end - at >= 2 && at[1] == '>' ? at + 2 : nullptr;
            if (!isNameStart(*at)) return nullptr;
        }
        const SharedName* const name = readName(at);
        if (name == nullptr) return nullptr;
        at = afterEqual(at);
        if (at == nullptr) return nullptr;
        const char quote = *at;
        const char* const value = at + 1;
        const char* valueEnd = plainValueEnd(value, end, quote);
        if (valueEnd == end) return nullptr;
        if (*valueEnd == '&') {
            valueEnd = Scan::find(valueEnd, end, quote);
            if (valueEnd == nullptr) return nullptr;
            referring.push_back(attributes.size());
        }
        attributes.add(*name, viewOf(value, valueEnd));
        from = valueEnd + 1;
    }
}

// Before the element begins: where the bound is passed nothing of the tag has been taken.
bool Pieces::decodeValues() {
    const EntityBudget before = budget;
    decoded.clear();
    decoded.reserve(referring.size());  // they stay where they are
    for (const std::size_t place : referring) {
        std::string_view& value = attributes[place].value;
        decoded.emplace_back(value);
        StreamAccess::moveTo(in, value.data() + value.size() + 1);
        if (!budget.expand(in, decoded.back(), dtd)) {
            budget = before;
            StreamAccess::moveTo(in, begin);
            return false;
        }
        value = decoded.back();
    }
    return true;
}

// What follows a name is read again.
void Pieces::noteStartTag(const char* name, const char* to) {
    const char* again = nameEnd(name + 1, to);
    StreamAccess::note(in, name, again + 1);
    for (const char* at = whiteEnd(again, to); isNameStart(*at); at = whiteEnd(at, to)) {
        at = nameEnd(at + 1, to);
        StreamAccess::note(in, again, at + 1);
        again = at;
        const char* const quote = whiteEnd(whiteEnd(at, to) + 1, to);  // after the '='
        at = Scan::find(quote + 1, to, *quote) + 1;
    }
    StreamAccess::note(in, again, to);
}

bool Pieces::takeEndTag(const char* name) {
    const std::string_view expected = tree.innermostName();
    if (!Scan::startsWith(name, end, expected)) return false;
    const char* const itsEnd = name + expected.size();
    if (itsEnd == end || *itsEnd != '>') return false;
    goOnAt(itsEnd + 1);
    tree.end();
    if (tree.isOpen()) return true;
    StreamAccess::setToken(in, ">");  // which shows: nothing more is read
    return false;
}

// From the byte after "<!" on.
bool Pieces::takeComment(const char* dashes) {
    if (!Scan::startsWith(dashes, end, "--")) return false;
    const char* to = dashes + 2;
    do {
        to = through(to, '>');
        if (to == nullptr) return false;
    } while (to[-2] != '-' || to[-3] != '-');
    if (returns.in(dashes, to, end)) noteReturns(to);
    goOnAt(to);
    StreamAccess::setError(in, "\"[\" expected");  // a comment is found by trials, and this is of the one before
    return true;
}

bool Pieces::takeText(const char* first) {
    const char* const to = Scan::findNear<'<'>(first, end);
    if (to == end) return false;
    const char* tried = nullptr;  // the end of the first token, with the byte after a word
    if (isQuote(*first)) {
        tried = through(first + 1, *first);
        if (tried == nullptr) return false;
    } else if (*first == '&') {
        tried = referenceTriedFrom(first);
        if (tried == nullptr) return false;
    }

    if (returns.in(first, std::max(tried, to + 1), end)) noteText(tried != nullptr ? tried : plainTriedFrom(first), to);
    const std::string_view text = viewOf(begin, to);
    goOnAt(to);
    tree.addText(text, isPadded(to));
    return true;
}

// All of a text is read again after its first token.
void Pieces::noteText(const char* tried, const char* to) {
    if (tried <= to + 1 && tried[-1] != '\r') return noteReturns(to);
    StreamAccess::note(in, begin, tried);
    StreamAccess::note(in, begin, to + 1);
}

// The end of the next `last`, null where there is none in the window.
const char* Pieces::through(const char* from, char last) const {
    const char* const found = Scan::find(from, end, last);
    return found != nullptr ? found + 1 : nullptr;
}

// A reference that begins before the end of the last one is "&" alone.
const char* Pieces::referenceTriedFrom(const char* first) const {
    const int position = StreamAccess::positionOf(in, first);
    if (isPlace(position) && position < referenceEnd) return first + 1;
    const char* const tried = through(first, ';');
    if (tried != nullptr) referenceEnd = StreamAccess::positionOf(in, tried);
    return tried;
}

// A '<' follows.
const char* Pieces::plainTriedFrom(const char* first) {
    if (*first == '/') return first + 2;
    if (ByteClass::is(*first, ByteClass::kPunctuation)) return first + 1;
    do {
        ++first;
    } while (!ByteClass::is(*first, ByteClass::kWordEnd));
    return first + 1;
}

}  // namespace

bool FastContent::enabled = true;

bool FastContent::setEnabled(bool on) { return std::exchange(enabled, on); }

// What a CR before the first byte makes of a line break is left to the tokens.
void FastContent::read() {
    const Window& window = StreamAccess::window(in);
    if (!enabled || window.cursor == window.end || StreamAccess::isAfterReturn(in)) return;
    do {
        Pieces pieces(in, tree, dtd, budget, referenceEnd);
        if (!tree.isOpen() && !pieces.isBeforeStartTag()) return;
        while (pieces.takeOne()) {}
        if (tree.isComplete() || !pieces.isCutOff()) return;
    } while (StreamAccess::lendMore(in));
}

}  // namespace Xml
