#include "xml/standard/internal/TreeReader.h"

#include "xml/dom/Document.h"
#include "xml/dtd/Dtd.h"
#include "xml/standard/internal/ContentBuilder.h"
#include "xml/standard/internal/DtdBuilder.h"
#include "xml/standard/internal/Excerpt.h"
#include "xml/standard/internal/FirstLineEnd.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/OptionProblems.h"
#include "xml/standard/internal/PrologParts.h"
#include "xml/standard/internal/SourcePlaces.h"
#include <algorithm>
#include <string>
#include <utility>

namespace Xml {

namespace {

// Reads a text into a document: the lexer's events into nodes.
class TreeReader {
public:
    TreeReader(SourceText& itsSource, const ReadOptions& itsOptions);

    // Null when something is wrong with it, which `problem` is then.
    std::unique_ptr<Document> read(Problem& problem);

private:
    void end();
    void noteDoctype();
    std::unique_ptr<Document> finish();

    // In the element or around the root.
    void addComment();
    void addInstruction();
    template <class Node>
    void addAround(std::unique_ptr<Node> node);

    void report(Problem& problem);
    void report(const DecodingFailure& failure, Problem& problem);

    const ReadOptions& options;
    SourceText& source;
    SourcePlaces places;
    Lexer lexer;
    ContentBuilder content;
    std::unique_ptr<Prolog> prolog;
    Place doctypePlace;
    std::vector<std::unique_ptr<Object>>* around;  // of the prolog: where the next node around the root belongs
};

TreeReader::TreeReader(SourceText& itsSource, const ReadOptions& itsOptions)
    : options(itsOptions),
      source(itsSource),
      places(itsSource),
      lexer(lexerOptions(itsOptions)),
      content(lexer, options, options.keepPlaces ? &places : nullptr),
      prolog(std::make_unique<Prolog>()),
      around(&prolog->beforeDoctype) {
    lexer.setWindow(source.text(), !source.decoder().failure());
}

std::unique_ptr<Document> TreeReader::read(Problem& problem) {
    for (;;) {
        content.takePlain();
        switch (lexer.next()) {
        case Lexer::Event::Start: content.begin(); break;
        case Lexer::Event::End: end(); break;
        case Lexer::Event::Text: content.addText(); break;
        case Lexer::Event::CData: content.addSection(); break;
        case Lexer::Event::Comment: addComment(); break;
        case Lexer::Event::Instruction: addInstruction(); break;
        case Lexer::Event::Doctype: noteDoctype(); break;
        case Lexer::Event::Finished: return finish();
        case Lexer::Event::Failed: report(problem); return nullptr;
        case Lexer::Event::More: report(*source.decoder().failure(), problem); return nullptr;
        }
    }
}

// --- The document ---

void TreeReader::end() {
    content.end();
    if (!content.isOpen()) around = &prolog->afterRoot;
}

void TreeReader::noteDoctype() {
    PrologParts::takeDoctype(*prolog, lexer);
    around = &prolog->beforeRoot;
    if (options.keepPlaces) doctypePlace = places.of(lexer.offset());
}

std::unique_ptr<Document> TreeReader::finish() {
    if (prolog->doctype.empty()) prolog->beforeRoot.swap(prolog->beforeDoctype);
    PrologParts::takeDeclaration(*prolog, lexer);
    prolog->hasMark = source.decoder().hasMark();
    prolog->readAs = source.decoder().encodingName();
    FirstLineEnd lineEnd;
    lineEnd.look(source.text());
    prolog->newline = lineEnd.text();
    std::unique_ptr<Document> document = NodeAccess::makeDocument(content.take(), makeDtd(lexer.declarations()));
    NodeAccess::prolog(*document) = std::move(prolog);
    if (options.keepPlaces) {
        NodeAccess::keepPlace(*document, places.of(0));
        if (Dtd* const dtd = document->getDtd()) NodeAccess::keepPlace(*dtd, doctypePlace);
    }
    return document;
}

// --- Around the root ---

void TreeReader::addComment() {
    if (content.isOpen()) return content.addComment();
    if (options.keepComments) addAround(std::make_unique<Comment>(lexer.text()));
}

void TreeReader::addInstruction() {
    if (content.isOpen()) return content.addInstruction();
    if (options.keepInstructions) addAround(std::make_unique<Instruction>(lexer.name(), lexer.text()));
}

template <class Node>
void TreeReader::addAround(std::unique_ptr<Node> node) {
    if (options.keepPlaces) NodeAccess::keepPlace(*node, places.of(lexer.offset()));
    around->push_back(std::move(node));
}

// --- What is wrong ---

// What is wrong with the encoding may come before it: what the declaration names.
void TreeReader::report(Problem& problem) {
    const Fault& fault = lexer.fault();
    const auto& failure = source.decoder().failure();
    if (failure && failure->textOffset < fault.offset) return report(*failure, problem);
    problem.kind = fault.kind;
    problem.place = places.of(fault.offset);
    problem.text = fault.text;
    problem.rule = fault.rule;
    problem.path = content.path(fault.element);
    problem.excerpt = excerptOf(source.text(), static_cast<std::size_t>(fault.offset));
}

// The bytes are no text from some place on.
void TreeReader::report(const DecodingFailure& failure, Problem& problem) {
    const std::string_view text = source.text();
    const auto offset = std::min(static_cast<std::size_t>(failure.textOffset), text.size());
    problem = undecodable(failure, {});
    problem.place = places.of(static_cast<std::int64_t>(offset));
    problem.place.offset = failure.offset;
    problem.path = content.path(lexer.cutTag());
    problem.excerpt = excerptOf(text, offset);
}

}  // namespace

std::unique_ptr<Document> readTree(SourceText& source, const ReadOptions& options, Problem& problem) {
    return TreeReader(source, options).read(problem);
}

}  // namespace Xml
