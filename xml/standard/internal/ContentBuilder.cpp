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
      source(itsPlaces),
      keepsEach(options.keepComments && options.keepInstructions && options.keepCData),
      tree(root),
      white(tree, itsOptions.space, isPreserved),
      places(itsPlaces != nullptr ? std::optional<NodePlaces>(*itsPlaces) : std::nullopt),
      plain(lexer, itsOptions, tree, white, places ? &*places : nullptr) {}

// A text that waits goes on, but for a tag.
void ContentBuilder::takePlain() {
    if (!tree.isOpen() || (!pending.empty() && !lexer.isBeforeTag())) return;
    flush();
    plain.take();
}

void ContentBuilder::begin() {
    flush();
    if (!tree.isOpen()) return beginOutermost();
    const SharedName& name = tree.elementName(lexer.name());
    const std::int64_t offset = noteNode();
    const std::string_view space = takeAttributes(offset);
    if (lexer.isEmptyTag()) return addEmpty(name, offset);
    tree.begin(name, offset);
    tree.setAttributes(attributes);
    white.begin(space);
}

void ContentBuilder::beginOutermost() {
    tree.begin(lexer.name());
    if (source != nullptr) NodeAccess::keepPlace(*root, source->of(lexer.offset()));
    const std::string_view space = takeAttributes(noteNode());
    tree.setAttributes(attributes);
    white.begin(space);
}

// Those of the tag, which has that offset. Returns the value of xml:space.
std::string_view ContentBuilder::takeAttributes(std::int64_t ofTag) {
    attributes.clear();
    std::string_view space;
    for (const TagAttribute& attribute : lexer.attributes()) {
        const SharedName& name = tree.name(attribute.name);
        if (attribute.isDefault) {
            attributes.addDefault(name, attribute.value, ofTag);
        } else {
            attributes.add(name, attribute.value, noteNode(lexer.offsetOf(attribute)));
        }
        if (attribute.name == "xml:space") space = attribute.value;
    }
    return space;
}

// An element without content is not open until its end.
void ContentBuilder::addEmpty(const SharedName& name, std::int64_t offset) {
    white.noteElement();
    tree.addElement(name, attributes, offset);
    hasEnded = true;
}

void ContentBuilder::end() {
    flush();
    if (std::exchange(hasEnded, false)) return;
    white.end();
    if (places && tree.depth() == 1) tree.keepPlaces(places->take());
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
    tree.addComment(lexer.text(), noteNode());
}

void ContentBuilder::addInstruction() {
    if (!options.keepInstructions) return;
    flush();
    tree.addInstruction(lexer.name(), lexer.text(), noteNode());
}

void ContentBuilder::addSection() {
    if (!options.keepCData) return addPart(lexer.text(), true);
    flush();
    if (!lexer.text().empty()) white.noteOther();
    tree.addSection(escaped(lexer.text()), noteNode());
}

// --- Texts ---

// Mostly a text goes on until a tag: then there is nothing to wait for.
void ContentBuilder::addText() {
    const std::string_view text = lexer.text();
    const bool isOtherText = lexer.hasReference() || !WhiteSpace::isWhite(text);
    if (!pending.empty() || !(keepsEach || lexer.isBeforeTag())) return addPart(text, isOtherText);
    if (isOtherText) {
        white.addOther(escaped(text), noteNode());
    } else {
        white.addWhite(text, noteNode());
    }
}

void ContentBuilder::addPart(std::string_view text, bool isOtherText) {
    if (text.empty()) return;
    if (pending.empty()) pendingOffset = noteNode();
    pending += escaped(text);
    isOther |= isOtherText;
}

void ContentBuilder::flush() {
    if (pending.empty()) return;
    if (isOther) {
        white.addOther(pending, pendingOffset);
    } else {
        white.addWhite(pending, pendingOffset);
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

// A node begins there; its offset in the source, where that is kept.
std::int64_t ContentBuilder::noteNode(std::int64_t offset) { return places ? places->note(offset) : Marks::kNoOffset; }

}  // namespace Xml
