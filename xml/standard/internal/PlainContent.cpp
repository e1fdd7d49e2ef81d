#include "xml/standard/internal/PlainContent.h"

#include "xml/dom/internal/ExpectedAttributes.h"
#include "xml/standard/internal/OrdinaryText.h"
#include "xml/standard/internal/Runs.h"
#include "xml/standard/internal/Syntax.h"
#include "xml/stream/internal/Scan.h"

namespace Xml {

using Syntax::isWhite;
using Syntax::viewOf;

namespace {

// The end of a value, or the first byte that is not just a part of it.
[[gnu::always_inline]] inline const char* plainValueEnd(const char* from, const char* to, char quote) {
    return quote == '"' ? Runs::findInLine<'"', '<', '&', Runs::kRare>(from, to)
                        : Runs::findInLine<'\'', '<', '&', Runs::kRare>(from, to);
}

// The quote after an equal sign that white space may be around; null without one.
const char* quoteAfterEqual(const char* at, const char* to) {
    at = Syntax::whiteEnd(at, to);
    if (at == to || *at != '=') return nullptr;
    at = Syntax::whiteEnd(at + 1, to);
    return at != to && (*at == '"' || *at == '\'') ? at : nullptr;
}

}  // namespace

PlainContent::PlainContent(Lexer& itsLexer, const ReadOptions& itsOptions, TreeBuilder& builder, WhiteSpace& whiteSpace,
                           NodePlaces* itsPlaces)
    : lexer(itsLexer),
      tree(builder),
      white(whiteSpace),
      places(itsPlaces),
      keepsComments(itsOptions.keepComments),
      keepsEach(itsOptions.keepComments && itsOptions.keepInstructions && itsOptions.keepCData),
      dropsWhite(itsOptions.space == Space::Dropped),
      keepsWhite(itsOptions.space == Space::All),
      names(itsLexer.declarations(), itsLexer.namespaces(), itsOptions.namespaces) {}

void PlainContent::take() {
    const std::string_view ahead = lexer.plainAhead();
    begin = ahead.data();
    end = begin + ahead.size();
    offset = lexer.nextOffset();
    const char* const at = places != nullptr ? takePieces<true>() : takePieces<false>();
    if (at != begin) lexer.passTo(at);
}

// All of them in one function, but what is rare: most pieces are short.
template <bool KeepsPlaces>
const char* PlainContent::takePieces() {
    const char* at = begin;
    while (end - at >= 2) {
        const char* next = nullptr;
        if (*at != '<') {
            next = takeText<KeepsPlaces>(at);
        } else if (at[1] == '/') {
            next = takeEnd(at);
        } else if (at[1] == '!') {
            next = takeComment(at);
        } else if (at[1] != '?') {
            next = takeStart<KeepsPlaces>(at);
        }
        if (next == nullptr) break;
        at = next;
    }
    return at;
}

// --- Tags ---

template <bool KeepsPlaces>
[[gnu::always_inline]] inline const char* PlainContent::takeStart(const char* from) {
    const char* at = from + 1;
    const SharedName* const name = readElementName(at);
    if (name == nullptr || !names.isElement(*name) || lexer.isFull()) return nullptr;
    if (!attributes.empty()) attributes.clear();
    const char* content = at + 1;
    if (*at != '>') content = readAttributes<KeepsPlaces>(at);
    if (content == nullptr) return nullptr;
    std::int64_t here = Marks::kNoOffset;
    if constexpr (KeepsPlaces) {
        here = noteNode(from);
        if (!attributes.empty()) {
            for (const char* const nameBegin : nameBegins) attributes.addOffset(noteNode(nameBegin));
        }
    }
    if (content[-2] == '/') {
        addElement(*name, here);
        return content;
    }

    // What follows may be a text alone, with the end tag.
    const char* to = content;
    if (content != end && *content != '<') to = readText(content);
    if (to != nullptr && isEndOf(*name, to)) {
        if (to == content || (isTextWhite && dropsWhite)) {
            addElement(*name, here);
        } else {
            addLeaf<KeepsPlaces>(*name, here, content);
        }
        return to + 3 + name->text.size();
    }
    lexer.beginPlain(viewOf(from + 1, at));
    tree.begin(*name, here);
    tree.setAttributes(attributes);
    white.begin(attributes.empty() ? std::string_view() : space);
    if (to == nullptr || to == content || !mayEndText(to)) return content;
    addText<KeepsPlaces>(content, false);
    return to;
}

// The end of a tag after the end of its name; null where it is not ordinary.
template <bool KeepsPlaces>
[[gnu::always_inline]] inline const char* PlainContent::readAttributes(const char* from) {
    areDecoded = false;
    spaceNumber = 0;
    if constexpr (KeepsPlaces) nameBegins.clear();
    bool hasReturn = false;
    for (const char* at = from;;) {
        at = readExpected<KeepsPlaces>(at);
        if (at == end) return nullptr;
        if (*at == '>') {
            from = at + 1;
            break;
        }
        if (*at == ' ') {
            ++at;
            if (at == end) return nullptr;
            if (isWhite(*at)) at = Scan::endOfWhite(at, end, hasReturn);
        } else if (isWhite(*at)) {
            at = Scan::endOfWhite(at, end, hasReturn);
        } else if (*at != '/') {
            return nullptr;
        }
        if (at == end) return nullptr;
        if (*at == '>') continue;
        if (*at == '/') {
            if (end - at < 2 || at[1] != '>') return nullptr;
            from = at + 2;
            break;
        }
        if constexpr (KeepsPlaces) nameBegins.push_back(at);
        const SharedName* const name = readName(at);
        if (name == nullptr) return nullptr;
        const bool isPlain = OrdinaryNames::isPlain(*name);
        if (!isPlain && !names.isAttribute(*name)) return nullptr;
        char quote = '"';
        if (end - at >= 2 && at[0] == '=' && at[1] == '"') {
            at += 2;
        } else {
            at = quoteAfterEqual(at, end);
            if (at == nullptr) return nullptr;
            quote = *at++;
        }
        const char* valueEnd = plainValueEnd(at, end, quote);
        if (valueEnd == end) return nullptr;
        if (*valueEnd != quote) {
            valueEnd = readRareValue(at, quote);
            if (valueEnd == nullptr) return nullptr;
        }
        attributes.add(*name, viewOf(at, valueEnd));
        if (!isPlain && OrdinaryNames::isSpace(*name)) spaceNumber = attributes.size();
        at = valueEnd + 1;
    }
    if (!attributes.empty() && !finishAttributes(from)) return nullptr;
    return from;
}

// As most of them are written.
template <bool KeepsPlaces>
[[gnu::always_inline]] inline const char* PlainContent::readExpected(const char* from) {
    const auto plainEnd = [](const char* value, const char* to) { return plainValueEnd(value, to, '"'); };
    const auto note = [&]([[maybe_unused]] const char* name) {
        if constexpr (KeepsPlaces) nameBegins.push_back(name);
    };
    return addExpected(from, end, tree, attributes, OrdinaryNames::isPlain, plainEnd, note);
}

// Whether they are ordinary, of a tag that ends there.
[[gnu::always_inline]] inline bool PlainContent::finishAttributes(const char* to) {
    if (areDecoded) {
        takeDecoded();
    } else if (isPadded(to)) {
        attributes.setPadded();
    }
    space = spaceNumber > 0 ? attributes[spaceNumber - 1].value() : std::string_view();
    return attributes.sort();
}

// Where it ends; null where it is not ordinary.
const char* PlainContent::readRareValue(const char* from, char quote) {
    if (!areDecoded) {
        values.clear();
        decoded.clear();
    }
    areDecoded = true;
    const std::size_t before = values.size();
    const char* const to = OrdinaryText::appendValue(values, from, end, quote);
    decoded.push_back({attributes.size(), before, values.size() - before});
    return to;
}

// The bytes do not move any more.
void PlainContent::takeDecoded() {
    for (const Decoded& value : decoded) {
        attributes.setValue(value.attribute, std::string_view(values).substr(value.from, value.size));
    }
}

[[gnu::always_inline]] inline void PlainContent::addElement(const SharedName& name, std::int64_t at) {
    white.noteElement();
    tree.addElement(name, attributes, at);
}

// With the text at hand, which begins there.
template <bool KeepsPlaces>
[[gnu::always_inline]] inline void PlainContent::addLeaf(const SharedName& name, std::int64_t at,
                                                         const char* textBegin) {
    white.noteElement();
    tree.addLeaf(name, attributes, text, isTextPadded, at, KeepsPlaces ? noteNode(textBegin) : Marks::kNoOffset);
}

// Whether the end tag of such an element stands there, from "</" on.
[[gnu::always_inline]] inline bool PlainContent::isEndOf(const SharedName& name, const char* from) const {
    const auto size = static_cast<std::ptrdiff_t>(name.text.size());
    return end - from >= size + 3 && from[1] == '/' && from[size + 2] == '>' && name.begins(from + 2, end);
}

[[gnu::always_inline]] inline const char* PlainContent::takeEnd(const char* from) {
    if (tree.depth() == 1) return nullptr;
    const char* const to = tree.afterInnermostName(from + 2, end);
    if (to == nullptr || to == end || *to != '>') return nullptr;
    white.end();
    tree.end();
    lexer.endPlain();
    return to + 1;
}

// --- Texts ---

// A text goes on after what makes no node.
[[gnu::always_inline]] inline bool PlainContent::mayEndText(const char* markup) const {
    return end - markup >= 2 && (keepsEach || (markup[1] != '!' && markup[1] != '?'));
}

template <bool KeepsPlaces>
[[gnu::always_inline]] inline const char* PlainContent::takeText(const char* from) {
    const char* const again = white.endOfAgain(from, end);
    if (again != nullptr && mayEndText(again)) {
        white.addAgain(KeepsPlaces ? noteNode(from) : Marks::kNoOffset);
        return again;
    }
    const char* const to = readText(from);
    if (to == nullptr || !mayEndText(to)) return nullptr;
    addText<KeepsPlaces>(from, to[1] == '/');
    return to;
}

// The '<' that ends it; null where it is not ordinary. It is at hand then.
[[gnu::always_inline]] inline const char* PlainContent::readText(const char* from) {
    isTextWhite = isWhite(*from);
    if (isTextWhite) {
        bool hasReturn = false;
        const char* const to = Scan::endOfWhite(from, end, hasReturn);
        if (to == end) return nullptr;
        isTextWhite = *to == '<';
        if (isTextWhite) {
            if (hasReturn) return readRareWhite(from, to);
            text = viewOf(from, to);
            isTextPadded = isPadded(to);
            return to;
        }
    }
    const char* const to = Runs::find<'<', '>', '&', ']'>(from, end);
    if (to == end) return nullptr;
    if (*to != '<') return readRareText(from);
    text = viewOf(from, to);
    isTextPadded = isPadded(to);
    return to;
}

const char* PlainContent::readRareText(const char* from) {
    buffer.clear();
    const char* const to = OrdinaryText::appendText(buffer, from, end);
    text = buffer;
    isTextPadded = false;
    return to;
}

const char* PlainContent::readRareWhite(const char* from, const char* to) {
    buffer.clear();
    Syntax::appendLines(buffer, viewOf(from, to));
    text = buffer;
    isTextPadded = false;
    return to;
}

// The one at hand, which begins there.
template <bool KeepsPlaces>
[[gnu::always_inline]] inline void PlainContent::addText(const char* from, bool isLast) {
    const std::int64_t at = KeepsPlaces ? noteNode(from) : Marks::kNoOffset;
    if (!isTextWhite) {
        white.addOther(text, at, isTextPadded);
    } else if (!keepsWhite) {
        white.addWhite(text, at, isLast);
    } else {
        tree.addText(text, isTextPadded, at);
    }
}

// From "<!" on.
const char* PlainContent::takeComment(const char* from) {
    if (!Scan::startsWith(from, end, "<!--")) return nullptr;
    const char* const begins = from + 4;
    for (const char* at = begins;;) {
        const Runs::Run run = Runs::of<'-'>(at, end);
        if (run.hasReturn || end - run.end < 3 || *run.end != '-') return nullptr;
        at = run.end + 1;
        if (*at != '-') continue;
        if (at[1] != '>') return nullptr;
        if (!keepsComments) return at + 2;
        tree.addComment(viewOf(begins, run.end), places != nullptr ? noteNode(from) : Marks::kNoOffset);
        return at + 2;
    }
}

}  // namespace Xml
