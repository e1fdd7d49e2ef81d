#include "xml/reader/internal/FastContent.h"

#include "xml/dom/internal/ExpectedAttributes.h"
#include "xml/dom/internal/TreeBuilder.h"
#include "xml/reader/internal/EntityBudget.h"
#include "xml/reader/internal/MarkupScan.h"
#include "xml/reader/internal/PieceBreaks.h"
#include "xml/stream/internal/Scan.h"
#include "xml/stream/internal/StreamAccess.h"
#include "xml/text/internal/ByteClasses.h"
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

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
          begin(StreamAccess::window(stream).cursor) {}

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
        const bool isAtLineEnd = end - begin >= 2 && begin[0] == '\r' && begin[1] == '\n';
        const char* const from = isAtLineEnd ? begin + 2 : begin;
        bool hasReturn = false;
        const char* const first = whiteEnd(from, end, hasReturn);
        if (end - first < 2) return nullptr;
        if (isAtLineEnd) StreamAccess::noteLineEnd(in, from);
        if (hasReturn) PieceBreaks::note(in, from, first);
        return first;
    }

    const SharedName* readName(const char*& at) { return tree.readName<ByteClass::kNameChar>(at, end); }

    // Whether texts up to there are padded: as many bytes as a short text may have can be read from each of them on.
    bool isPadded(const char* to) const { return end - to >= static_cast<std::ptrdiff_t>(internal::kShortText); }

    // What is rare is out of line, so that the rest stays in registers.
    bool takeStartTag(const char* name);
    const char* collectAttributes(const char* from);
    const char* collectExpected(const char* from);
    [[gnu::noinline]] const char* rareValueEnd(const char* met, char quote);
    bool takeLeaf(const SharedName& name);
    [[gnu::noinline]] bool decodeValues();
    bool takeEndTag(const char* name);
    [[gnu::noinline]] bool takeComment(const char* dashes);
    bool takeText(const char* first);
    const char* through(const char* from, char last) const;
    const char* referenceTriedFrom(const char* first) const;

    static bool containsReturn(const char* from, const char* to) { return Scan::find(from, to, '\r') != nullptr; }

    // The quote after an equal sign; null without one.
    const char* afterEqual(const char* at) {
        if (end - at >= 2 && *at == '=' && isQuote(at[1])) return at + 1;
        at = whiteEnd(at, end, tagHasReturn);
        if (at == end || *at != '=') return nullptr;
        at = whiteEnd(at + 1, end, tagHasReturn);
        return at != end && isQuote(*at) ? at : nullptr;
    }

    InStream& in;
    TreeBuilder& tree;
    Dtd* const dtd;
    EntityBudget& budget;
    int& referenceEnd;

    const char* const end;  // of the window
    const char* begin;      // of the piece at hand

    // Of the tag at hand.
    bool tagHasReturn = false;  // whether there is a CR in it
    GivenAttributes attributes;
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
        shared = tree.readElementName<ByteClass::kNameChar>(at, end);
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

    if (tagHasReturn) PieceBreaks::noteStartTag(in, name, to);
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
    const char* const to = Scan::findNear<'<', '\r'>(text, end);
    if (end - to < 2 || *to != '<' || to[1] != '/' || !name.begins(to + 2, end)) return false;
    const char* const itsEnd = to + 2 + name.text.size();
    if (itsEnd == end || *itsEnd != '>') return false;
    goOnAt(itsEnd + 1);
    tree.addLeaf(name, attributes, viewOf(text, to), isPadded(to));
    return true;
}

// Those from the end of the element's name on. Returns the end of the tag, null when it is not ordinary.
const char* Pieces::collectAttributes(const char* from) {
    attributes.clear();
    referring.clear();
    tagHasReturn = false;
    for (;;) {
        from = collectExpected(from);
        const char* at = from != end && *from == ' ' ? from + 1 : from;
        if (at == end) return nullptr;
        if (*at == '>') return at + 1;
        if (!isNameStart(*at)) {
            at = whiteEnd(at, end, tagHasReturn);
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
        if (*valueEnd != quote) {
            valueEnd = rareValueEnd(valueEnd, quote);
            if (valueEnd == nullptr) return nullptr;
        }
        attributes.add(*name, viewOf(value, valueEnd));
        from = valueEnd + 1;
    }
}

// As most of them are written.
[[gnu::always_inline]] inline const char* Pieces::collectExpected(const char* from) {
    const auto isOrdinary = [](const SharedName&) { return true; };
    const auto plainEnd = [](const char* value, const char* to) { return Scan::findNear<'"', '&', '\r'>(value, to); };
    return addExpected(from, end, tree, attributes, isOrdinary, plainEnd, [](const char*) {});
}

// The end of a value in which an '&' or a CR was met, null without one.
const char* Pieces::rareValueEnd(const char* met, char quote) {
    const char* const valueEnd = Scan::find(met, end, quote);
    if (valueEnd == nullptr) return nullptr;
    if (Scan::find(met, valueEnd, '&') != nullptr) referring.push_back(attributes.size());
    tagHasReturn |= containsReturn(met, valueEnd);
    return valueEnd;
}

// Before the element begins: where the bound is passed nothing of the tag has been taken. The bytes of the tag, which
// raise the bound, are not counted: what needs them is left to the tokens.
bool Pieces::decodeValues() {
    const EntityBudget before = budget;
    decoded.clear();
    decoded.reserve(referring.size());  // they stay where they are
    for (const std::size_t place : referring) {
        decoded.emplace_back(attributes[place].value());
        if (!budget.expand(in, decoded.back(), dtd)) {
            budget = before;
            return false;
        }
        attributes.setValue(place, decoded.back());
    }
    return true;
}

bool Pieces::takeEndTag(const char* name) {
    const char* const itsEnd = tree.afterInnermostName(name, end);
    if (itsEnd == nullptr || itsEnd == end || *itsEnd != '>') return false;
    goOnAt(itsEnd + 1);
    tree.end();
    if (tree.isOpen()) return true;
    StreamAccess::setToken(in, '>');  // which shows: nothing more is read
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
    if (containsReturn(dashes, to)) PieceBreaks::note(in, dashes, to);
    goOnAt(to);
    StreamAccess::setLastingError(in, "\"[\" expected");  // a comment is found by trials, and this is of the one before
    return true;
}

bool Pieces::takeText(const char* first) {
    const char* to = Scan::findNear<'<', '\r'>(first, end);
    if (to == end) return false;
    bool textHasReturn = *to != '<';
    if (textHasReturn) {
        to = Scan::find(to, end, '<');
        if (to == nullptr) return false;
    }
    const char* tried = nullptr;  // the end of the first token, with the byte after a word
    if (isQuote(*first)) {
        tried = through(first + 1, *first);
        if (tried == nullptr) return false;
    } else if (*first == '&') {
        tried = referenceTriedFrom(first);
        if (tried == nullptr) return false;
    }

    if (textHasReturn || (tried != nullptr && tried > to && containsReturn(to, tried)))
        PieceBreaks::noteText(in, begin, first, tried, to);
    const std::string_view text = viewOf(begin, to);
    goOnAt(to);
    tree.addText(text, isPadded(to));
    return true;
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
