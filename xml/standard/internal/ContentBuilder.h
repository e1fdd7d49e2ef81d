#pragma once

#include "xml/dom/internal/TagAttributes.h"
#include "xml/dom/internal/TreeBuilder.h"
#include "xml/standard/ReadOptions.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/NodePlaces.h"
#include "xml/standard/internal/PlaceSource.h"
#include "xml/standard/internal/PlainContent.h"
#include "xml/standard/internal/WhiteSpace.h"
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Xml {

// What the options of a reading say to its lexer.
Lexer::Options lexerOptions(const ReadOptions& options);

// Makes a tree of the events of a lexer: an element with all that is in it. Each operation takes the event at hand.
//
// A text is one node, however it was written: with references, and with what is not kept between its parts, which are
// comments, instructions, and the ends of sections. What is kept parts it.
class ContentBuilder {
public:
    // What they are made of must stay. Without places nodes have none. Around the element white space may be preserved.
    ContentBuilder(Lexer& itsLexer, const ReadOptions& itsOptions, PlaceSource* itsPlaces, bool isPreserved = false);

    // The first one is the outermost element; all others are in that.
    void begin();
    void end();
    void addText();
    void addSection();
    void addComment();
    void addInstruction();

    bool isOpen() const { return tree.isOpen(); }

    // The outermost element.
    std::unique_ptr<Element> take() { return std::move(root); }

    // Takes what comes next without events, as far as it is ordinary. Between any two events.
    void takePlain();

    // Of the innermost element, or of one that is about to begin in it.
    std::string path(std::string_view beginning) const;

private:
    void beginOutermost();
    std::string_view takeAttributes(std::int64_t ofTag);
    void addEmpty(const SharedName& name, std::int64_t offset);
    void addPart(std::string_view text, bool isOther);
    void flush();
    std::string_view escaped(std::string_view text);
    std::int64_t noteNode() { return noteNode(lexer.offset()); }
    std::int64_t noteNode(std::int64_t offset);

    Lexer& lexer;
    const ReadOptions& options;
    PlaceSource* const source;  // of places; null where they are not kept
    const bool keepsEach;

    std::unique_ptr<Element> root;
    TreeBuilder tree;
    WhiteSpace white;
    std::optional<NodePlaces> places;
    PlainContent plain;
    TagAttributes attributes;
    bool hasEnded = false;  // the element whose end comes next: it is in the tree

    std::string pending;                            // parts of a text that may go on, escaped
    std::int64_t pendingOffset = Marks::kNoOffset;  // of the first of them
    bool isOther = false;                           // some of it is not white space, or came by a reference
    std::string buffer;
};

}  // namespace Xml
