#include "xml/standard/internal/TreeReader.h"

#include "xml/dom/Document.h"
#include "xml/dom/Prolog.h"
#include "xml/dom/internal/TagAttributes.h"
#include "xml/dom/internal/TreeBuilder.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/Names.h"
#include "xml/standard/internal/Rules.h"
#include "xml/standard/internal/SourcePlaces.h"
#include "xml/standard/internal/WhiteSpace.h"
#include "xml/stream/internal/Scan.h"
#include "xml/text/internal/Escape.h"
#include <algorithm>
#include <string>
#include <utility>

namespace Xml {

namespace {

Lexer::Options lexerOptions(const ReadOptions& options) {
    Lexer::Options result;
    result.namespaces = options.namespaces;
    result.maxDepth = options.maxDepth;
    result.entityGrowth = options.entityGrowth;
    return result;
}

// The first line end; LF without one.
std::string newlineOf(std::string_view text) {
    const char* const end = text.data() + text.size();
    const char* const at = Scan::findNear<'\n', '\r'>(text.data(), end);
    if (at == end || *at == '\n') return "\n";
    return end - at > 1 && at[1] == '\n' ? "\r\n" : "\r";
}

// Reads a text into a document: the lexer's events into nodes.
//
// A text is one node, however it was written: with references, and with what is not kept between its parts, which are
// comments, instructions, and the ends of sections. What is kept parts it.
class TreeReader {
public:
    TreeReader(SourceText& itsSource, const ReadOptions& itsOptions);

    // Null when something is wrong with it, which `problem` is then.
    std::unique_ptr<Document> read(Problem& problem);

private:
    void begin();
    void end();
    void noteDoctype();
    std::unique_ptr<Document> finish();

    // Leaves, in the element or around the root.
    void addComment();
    void addInstruction();
    void addSection();
    template <class Node>
    void addAround(std::unique_ptr<Node> node, const Place* place);

    // Texts.
    void addText();
    void addPart(std::string_view text, bool isOther);
    void flush();
    std::string_view escaped(std::string_view text);

    // The place of an offset, null where places are not kept. Good until the next one; asked in rising order.
    const Place* placeAt(std::int64_t offset);

    void report(Problem& problem);
    void report(const DecodingFailure& failure, Problem& problem);
    std::string_view cutTag();

    const ReadOptions& options;
    SourceText& source;
    SourcePlaces places;
    Lexer lexer;
    const bool keepsAll;

    std::unique_ptr<Element> root;
    TreeBuilder tree;
    std::unique_ptr<Prolog> prolog;
    std::vector<std::unique_ptr<Object>>* around;  // of the prolog: where the next node around the root belongs
    WhiteSpace white;
    TagAttributes attributes;
    Place here;

    std::string pending;   // parts of a text that may go on, escaped
    Place pendingPlace;    // of the first of them
    bool isOther = false;  // some of it is not white space, or came by a reference
    std::string buffer;
};

TreeReader::TreeReader(SourceText& itsSource, const ReadOptions& itsOptions)
    : options(itsOptions),
      source(itsSource),
      places(itsSource),
      lexer(lexerOptions(itsOptions)),
      keepsAll(options.keepComments && options.keepInstructions && options.keepCData),
      tree(root),
      prolog(std::make_unique<Prolog>()),
      around(&prolog->beforeDoctype),
      white(tree, itsOptions.space) {
    lexer.setWindow(source.text(), !source.decoder().failure());
}

std::unique_ptr<Document> TreeReader::read(Problem& problem) {
    for (;;) {
        switch (lexer.next()) {
        case Lexer::Event::Start: begin(); break;
        case Lexer::Event::End: end(); break;
        case Lexer::Event::Text: addText(); break;
        case Lexer::Event::CData: addSection(); break;
        case Lexer::Event::Comment: addComment(); break;
        case Lexer::Event::Instruction: addInstruction(); break;
        case Lexer::Event::Doctype: noteDoctype(); break;
        case Lexer::Event::Finished: return finish();
        case Lexer::Event::Failed: report(problem); return nullptr;
        case Lexer::Event::More: report(*source.decoder().failure(), problem); return nullptr;
        }
    }
}

// --- Elements ---

void TreeReader::begin() {
    flush();
    const Place* const place = placeAt(lexer.offset());
    if (place != nullptr) {
        tree.begin(lexer.name(), place);
    } else {
        tree.begin(lexer.name());
    }
    attributes.clear();
    const Place ofTag = here;
    std::string_view space;
    for (const TagAttribute& attribute : lexer.attributes()) {
        const SharedName& name = tree.name(attribute.name);
        if (attribute.isDefault) {
            attributes.addDefault(name, attribute.value, place != nullptr ? &ofTag : nullptr);
        } else {
            attributes.add(name, attribute.value, placeAt(lexer.offsetOf(attribute)));
        }
        if (attribute.name == "xml:space") space = attribute.value;
    }
    tree.setAttributes(attributes);
    white.begin(space);
}

void TreeReader::end() {
    flush();
    white.end();
    tree.end();
    if (!tree.isOpen()) around = &prolog->afterRoot;
}

// --- The document ---

void TreeReader::noteDoctype() {
    const Lexer::Doctype& doctype = lexer.doctype();
    prolog->doctype = lexer.name();
    prolog->publicId = doctype.publicId;
    prolog->systemId = doctype.systemId;
    prolog->internalSubset = doctype.subset;
    around = &prolog->beforeRoot;
}

std::unique_ptr<Document> TreeReader::finish() {
    if (prolog->doctype.empty()) prolog->beforeRoot.swap(prolog->beforeDoctype);
    prolog->encoding = lexer.declaration().encoding;
    prolog->standalone = lexer.declaration().standalone;
    prolog->hasDeclaration = lexer.declaration().isPresent;
    prolog->hasMark = source.decoder().hasMark();
    prolog->newline = newlineOf(source.text());
    std::unique_ptr<Document> document = NodeAccess::makeDocument(std::move(root));
    NodeAccess::prolog(*document) = std::move(prolog);
    if (options.keepPlaces) NodeAccess::keepPlace(*document, places.of(0));
    return document;
}

// --- Leaves ---

void TreeReader::addComment() {
    if (!options.keepComments) return;
    if (!tree.isOpen()) return addAround(std::make_unique<Comment>(lexer.text()), placeAt(lexer.offset()));
    flush();
    tree.addComment(lexer.text(), placeAt(lexer.offset()));
}

void TreeReader::addInstruction() {
    if (!options.keepInstructions) return;
    if (!tree.isOpen())
        return addAround(std::make_unique<Instruction>(lexer.name(), lexer.text()), placeAt(lexer.offset()));
    flush();
    tree.addInstruction(lexer.name(), lexer.text(), placeAt(lexer.offset()));
}

void TreeReader::addSection() {
    if (!options.keepCData) return addPart(lexer.text(), true);
    flush();
    if (!lexer.text().empty()) white.noteOther();
    tree.addSection(escaped(lexer.text()), placeAt(lexer.offset()));
}

template <class Node>
void TreeReader::addAround(std::unique_ptr<Node> node, const Place* place) {
    if (place != nullptr) NodeAccess::keepPlace(*node, *place);
    around->push_back(std::move(node));
}

// --- Texts ---

// Mostly a text goes on until a tag: then there is nothing to wait for.
void TreeReader::addText() {
    const std::string_view text = lexer.text();
    const bool isOtherText = lexer.hasReference() || !WhiteSpace::isWhite(text);
    if (!pending.empty() || !(keepsAll || lexer.isBeforeTag())) return addPart(text, isOtherText);
    if (isOtherText) {
        white.addOther(escaped(text), placeAt(lexer.offset()));
    } else {
        white.addWhite(text, placeAt(lexer.offset()));
    }
}

void TreeReader::addPart(std::string_view text, bool isOtherText) {
    if (text.empty()) return;
    if (const Place* const place = pending.empty() ? placeAt(lexer.offset()) : nullptr) pendingPlace = *place;
    pending += escaped(text);
    isOther |= isOtherText;
}

void TreeReader::flush() {
    if (pending.empty()) return;
    const Place* const place = options.keepPlaces ? &pendingPlace : nullptr;
    if (isOther) {
        white.addOther(pending, place);
    } else {
        white.addWhite(pending, place);
    }
    pending.clear();
    isOther = false;
}

// '&', '<' and '>' are references in a tree; nothing else is.
std::string_view TreeReader::escaped(std::string_view text) {
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

// --- Places, and what is wrong ---

const Place* TreeReader::placeAt(std::int64_t offset) {
    if (!options.keepPlaces) return nullptr;
    here = places.of(offset);
    return &here;
}

// What is wrong with the encoding may come before it: what the declaration names.
void TreeReader::report(Problem& problem) {
    const Fault& fault = lexer.fault();
    const auto& failure = source.decoder().failure();
    if (failure && failure->textOffset < fault.offset) return report(*failure, problem);
    problem.kind = fault.kind;
    problem.place = places.of(fault.offset);
    problem.text = fault.text;
    problem.rule = fault.rule;
    problem.path = tree.path(fault.element);
    problem.excerpt = excerptOf(source.text(), static_cast<std::size_t>(fault.offset));
}

// The bytes are no text from some place on.
void TreeReader::report(const DecodingFailure& failure, Problem& problem) {
    const bool isUnknown = failure.kind == DecodingFailure::Kind::UnknownEncoding;
    const std::string_view text = source.text();
    const auto offset = std::min(static_cast<std::size_t>(failure.textOffset), text.size());
    problem.kind = isUnknown ? Problem::Kind::Unsupported : Problem::Kind::Malformed;
    problem.place = places.of(static_cast<std::int64_t>(offset));
    problem.place.offset = failure.offset;
    problem.text = messageLine(failure.text);
    problem.rule = StandardRules::kCharacterEncodingInEntities;
    problem.path = tree.path(cutTag());
    problem.excerpt = excerptOf(text, offset);
}

// The name in the start tag that the text ends within; empty where it ends elsewhere.
std::string_view TreeReader::cutTag() {
    lexer.release();
    const std::string_view rest = lexer.window();
    if (rest.empty() || rest.front() != '<') return {};
    const char* const from = rest.data() + 1;
    const char* const end = rest.data() + rest.size();
    const char* const to = StandardNames::nameEnd(from, end);
    return to != end ? std::string_view(from, static_cast<std::size_t>(to - from)) : std::string_view();
}

}  // namespace

std::unique_ptr<Document> readTree(SourceText& source, const ReadOptions& options, Problem& problem) {
    return TreeReader(source, options).read(problem);
}

}  // namespace Xml
