#include "xml/standard/internal/ContentBuilder.h"

#include "xml/standard/internal/ElementPath.h"
#include "xml/stream/internal/Scan.h"
#include "xml/text/internal/Escape.h"
#include <utility>

namespace Xml {

Lexer::Options lexerOptions(const ReadOptions& options) {
    Lexer::Options result;
    result.namespaces = options.namespaces;
    result.maxDepth = options.maxDepth;
    result.entityGrowth = options.entityGrowth;
    return result;
}

ContentBuilder::ContentBuilder(Lexer& itsLexer, const ReadOptions& itsOptions, PlaceSource* itsPlaces, bool isPreserved)
    : lexer(itsLexer),
      options(itsOptions),
      places(itsPlaces),
      keepsEach(options.keepComments && options.keepInstructions && options.keepCData),
      tree(root),
      white(tree, itsOptions.space, isPreserved),
      plain(lexer, itsOptions, tree, white, itsPlaces) {}

// A text that waits goes on, but for a tag.
void ContentBuilder::takePlain() {
    if (!tree.isOpen() || (!pending.empty() && !lexer.isBeforeTag())) return;
    flush();
    plain.take();
}

void ContentBuilder::begin() {
    flush();
    if (!tree.isOpen()) return beginOutermost();
    const SharedName& name = tree.name(lexer.name());
    Place ofTag;
    const Place* place = nullptr;
    if (placeAt(lexer.offset()) != nullptr) {
        ofTag = here;
        place = &ofTag;
    }
    const std::string_view space = takeAttributes();
    if (lexer.isEmptyTag()) return addEmpty(name, place);
    if (place != nullptr) {
        tree.begin(name, place);
    } else {
        tree.begin(name);
    }
    tree.setAttributes(attributes);
    white.begin(space);
}

void ContentBuilder::beginOutermost() {
    const Place* const place = placeAt(lexer.offset());
    if (place != nullptr) {
        tree.begin(lexer.name(), place);
    } else {
        tree.begin(lexer.name());
    }
    const std::string_view space = takeAttributes();
    tree.setAttributes(attributes);
    white.begin(space);
}

// Those of the tag, the place of which was found last. Returns the value of xml:space.
std::string_view ContentBuilder::takeAttributes() {
    attributes.clear();
    const Place ofTag = here;
    std::string_view space;
    for (const TagAttribute& attribute : lexer.attributes()) {
        const SharedName& name = tree.name(attribute.name);
        if (attribute.isDefault) {
            attributes.addDefault(name, attribute.value, places != nullptr ? &ofTag : nullptr);
        } else {
            attributes.add(name, attribute.value, placeAt(lexer.offsetOf(attribute)));
        }
        if (attribute.name == "xml:space") space = attribute.value;
    }
    return space;
}

// An element without content is not open until its end.
void ContentBuilder::addEmpty(const SharedName& name, const Place* place) {
    white.noteElement();
    if (place != nullptr) {
        tree.addElement(name, attributes, place);
    } else {
        tree.addElement(name, attributes);
    }
    hasEnded = true;
}

void ContentBuilder::end() {
    flush();
    if (std::exchange(hasEnded, false)) return;
    white.end();
    tree.end();
}

std::string ContentBuilder::path(std::string_view beginning) const {
    ElementPath result(tree.depth() + (beginning.empty() ? 0 : 1));
    tree.forEachStep(beginning, [&](std::string_view name, std::size_t number) { result.add(name, number); });
    return result.text();
}

// --- Leaves ---

void ContentBuilder::addComment() {
    if (!options.keepComments) return;
    flush();
    tree.addComment(lexer.text(), place());
}

void ContentBuilder::addInstruction() {
    if (!options.keepInstructions) return;
    flush();
    tree.addInstruction(lexer.name(), lexer.text(), place());
}

void ContentBuilder::addSection() {
    if (!options.keepCData) return addPart(lexer.text(), true);
    flush();
    if (!lexer.text().empty()) white.noteOther();
    tree.addSection(escaped(lexer.text()), placeAt(lexer.offset()));
}

// --- Texts ---

// Mostly a text goes on until a tag: then there is nothing to wait for.
void ContentBuilder::addText() {
    const std::string_view text = lexer.text();
    const bool isOtherText = lexer.hasReference() || !WhiteSpace::isWhite(text);
    if (!pending.empty() || !(keepsEach || lexer.isBeforeTag())) return addPart(text, isOtherText);
    if (isOtherText) {
        white.addOther(escaped(text), placeAt(lexer.offset()));
    } else {
        white.addWhite(text, placeAt(lexer.offset()));
    }
}

void ContentBuilder::addPart(std::string_view text, bool isOtherText) {
    if (text.empty()) return;
    if (const Place* const place = pending.empty() ? placeAt(lexer.offset()) : nullptr) pendingPlace = *place;
    pending += escaped(text);
    isOther |= isOtherText;
}

void ContentBuilder::flush() {
    if (pending.empty()) return;
    const Place* const place = places != nullptr ? &pendingPlace : nullptr;
    if (isOther) {
        white.addOther(pending, place);
    } else {
        white.addWhite(pending, place);
    }
    pending.clear();
    isOther = false;
}

// '&', '<' and '>' are references in a tree; nothing else is.
std::string_view ContentBuilder::escaped(std::string_view text) {
    const char* from = text.data();
    const char* const end = from + text.size();
    const char* at = Scan::findNear<'&', '<', '>'>(from, end);
    if (at == end) return text;
    buffer.clear();
    for (; at != end; at = Scan::findNear<'&', '<', '>'>(from, end)) {
        buffer.append(from, at);
        buffer += referenceFor(*at);
        from = at + 1;
    }
    buffer.append(from, end);
    return buffer;
}

const Place* ContentBuilder::placeAt(std::int64_t offset) {
    if (places == nullptr) return nullptr;
    here = places->of(offset);
    return &here;
}

}  // namespace Xml
