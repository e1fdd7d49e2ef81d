#include "xml/standard/internal/TreeReader.h"

#include "xml/dom/Document.h"
#include "xml/dom/internal/GivenAttributes.h"
#include "xml/dom/internal/TreeBuilder.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/WhiteSpace.h"
#include "xml/stream/internal/Scan.h"
#include "xml/text/internal/Escape.h"
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

// Reads a text into a document: the lexer's events into nodes.
//
// A text is one node, however it was written: with references, sections, and comments and instructions between its
// parts, which are not kept.
class TreeReader {
public:
    TreeReader(std::string_view text, bool isWhole, const ReadOptions& itsOptions);

    // Null when something is wrong with it, which `problem` is then.
    std::unique_ptr<Document> read(Problem& problem);

private:
    void begin();
    void addText();
    void addPart(std::string_view text, bool isOther);
    void flush();
    std::string_view escaped(std::string_view text);
    void report(Problem& problem) const;

    const ReadOptions& options;
    const std::string_view all;
    Lexer lexer;
    std::unique_ptr<Element> root;
    TreeBuilder tree;
    WhiteSpace white;
    GivenAttributes attributes;

    std::string pending;   // parts of a text that may go on, escaped
    bool isOther = false;  // some of it is not white space, or came by a reference
    std::string buffer;
};

TreeReader::TreeReader(std::string_view text, bool isWhole, const ReadOptions& itsOptions)
    : options(itsOptions), all(text), lexer(lexerOptions(itsOptions)), tree(root), white(tree, itsOptions.space) {
    lexer.setWindow(all, isWhole);
}

std::unique_ptr<Document> TreeReader::read(Problem& problem) {
    for (;;) {
        switch (lexer.next()) {
        case Lexer::Event::Start:
            flush();
            begin();
            break;
        case Lexer::Event::End:
            flush();
            white.end();
            tree.end();
            break;
        case Lexer::Event::Text: addText(); break;
        case Lexer::Event::CData: addPart(lexer.text(), true); break;
        // Nodes for comments and instructions go in here.
        case Lexer::Event::Comment:
        case Lexer::Event::Instruction:
        case Lexer::Event::Doctype: break;
        case Lexer::Event::Finished: return NodeAccess::makeDocument(std::move(root));
        case Lexer::Event::Failed: report(problem); return nullptr;
        case Lexer::Event::More: return nullptr;
        }
    }
}

void TreeReader::begin() {
    tree.begin(lexer.name());
    attributes.clear();
    std::string_view space;
    for (const TagAttribute& attribute : lexer.attributes()) {
        attributes.add(tree.name(attribute.name), attribute.value);
        if (attribute.name == "xml:space") space = attribute.value;
    }
    tree.setAttributes(attributes);
    white.begin(space);
}

// --- Texts ---

// Mostly a text goes on until a tag: then there is nothing to wait for.
void TreeReader::addText() {
    const std::string_view text = lexer.text();
    const bool isOtherText = lexer.hasReference() || !WhiteSpace::isWhite(text);
    if (!pending.empty() || isOther || !lexer.isBeforeTag()) return addPart(text, isOtherText);
    if (isOtherText) {
        white.addOther(escaped(text), false);
    } else {
        white.addWhite(text);
    }
}

void TreeReader::addPart(std::string_view text, bool isOtherText) {
    pending += escaped(text);
    isOther |= isOtherText && !text.empty();
}

void TreeReader::flush() {
    if (!pending.empty()) {
        if (isOther) {
            white.addOther(pending, false);
        } else {
            white.addWhite(pending);
        }
        pending.clear();
    }
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

// --- What is wrong ---

void TreeReader::report(Problem& problem) const {
    const Fault& fault = lexer.fault();
    problem.kind = fault.kind;
    problem.place = lexer.placeOf(fault.offset);
    problem.text = fault.text;
    problem.rule = fault.rule;
    problem.path = tree.path(fault.element);
    problem.excerpt = excerptOf(all, static_cast<std::size_t>(fault.offset));
}

}  // namespace

std::unique_ptr<Document> readTree(std::string_view text, bool isWhole, const ReadOptions& options, Problem& problem) {
    return TreeReader(text, isWhole, options).read(problem);
}

}  // namespace Xml
