#pragma once

#include "xml/dom/internal/TagAttributes.h"
#include "xml/dom/internal/TreeBuilder.h"
#include "xml/standard/ReadOptions.h"
#include "xml/standard/internal/Lexer.h"
#include "xml/standard/internal/NodePlaces.h"
#include "xml/standard/internal/OrdinaryNames.h"
#include "xml/standard/internal/WhiteSpace.h"
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Xml {

// Reads ordinary pieces of content into a tree without events, straight from the window of the lexer: start tags with
// their attributes, texts, end tags, comments, elements that are empty or hold a text alone.
//
// This is cost control and nothing else: the events of the lexer give the same tree, and every message. A piece is
// taken only where it lies in the window as a whole, is well formed, and its names are ordinary (see OrdinaryNames).
// What is not taken is untouched from its first byte on: what has a reference to an entity that is declared, declares
// prefixes, or is cut off; sections and instructions.
class PlainContent {
public:
    // All of them must stay. Without places nodes have none.
    PlainContent(Lexer& itsLexer, const ReadOptions& itsOptions, TreeBuilder& builder, WhiteSpace& whiteSpace,
                 NodePlaces* itsPlaces);
    PlainContent(const PlainContent&) = delete;
    PlainContent& operator=(const PlainContent&) = delete;

    // Takes pieces as long as they are ordinary, within the outermost element of the tree; not the end of that. The
    // innermost element is the same in the tree and in the lexer, and no text waits to go on.
    void take();

private:
    template <bool KeepsPlaces>
    const char* takePieces();
    template <bool KeepsPlaces>
    const char* takeStart(const char* from);
    const char* takeEnd(const char* from);
    template <bool KeepsPlaces>
    const char* takeText(const char* from);
    [[gnu::noinline]] const char* takeComment(const char* from);

    template <bool KeepsPlaces>
    const char* readAttributes(const char* from);
    template <bool KeepsPlaces>
    const char* readExpected(const char* from);
    bool finishAttributes(const char* to);
    [[gnu::noinline]] const char* readRareValue(const char* from, char quote);
    [[gnu::noinline]] void takeDecoded();
    void addElement(const SharedName& name, std::int64_t at);
    template <bool KeepsPlaces>
    void addLeaf(const SharedName& name, std::int64_t at, const char* textBegin);

    const char* readText(const char* from);
    [[gnu::noinline]] const char* readRareText(const char* from);
    [[gnu::noinline]] const char* readRareWhite(const char* from, const char* to);
    template <bool KeepsPlaces>
    void addText(const char* from, bool isLast);

    static constexpr std::uint8_t kInName = ByteClass::kNameChar | ByteClass::kBeyondAscii;
    [[gnu::always_inline]] const SharedName* readName(const char*& at) { return tree.readName<kInName>(at, end); }
    [[gnu::always_inline]] const SharedName* readElementName(const char*& at) {
        return tree.readElementName<kInName>(at, end);
    }
    bool isEndOf(const SharedName& name, const char* from) const;
    bool mayEndText(const char* markup) const;
    bool isPadded(const char* to) const { return end - to >= static_cast<std::ptrdiff_t>(internal::kShortText); }
    // The offset in the source of a node that begins there.
    std::int64_t noteNode(const char* where) const { return places->note(offset + (where - begin)); }

    Lexer& lexer;
    TreeBuilder& tree;
    WhiteSpace& white;
    NodePlaces* const places;
    const bool keepsComments;
    const bool keepsEach;  // whatever ends a text makes a node
    const bool dropsWhite;
    const bool keepsWhite;
    OrdinaryNames names;

    // The window from the first piece on, and the offset of that.
    const char* begin = nullptr;
    const char* end = nullptr;
    std::int64_t offset = 0;

    // Of the tag at hand.
    struct Decoded {
        std::size_t attribute, from, size;
    };
    TagAttributes attributes;
    std::vector<const char*> nameBegins;  // of those, where places are kept
    bool areDecoded = false;              // some of their values, which do not stand in the window:
    std::vector<Decoded> decoded;
    std::string values;
    std::size_t spaceNumber = 0;  // of xml:space, counted from 1
    std::string_view space;       // its value, where there are attributes

    // The text at hand.
    std::string_view text;
    std::string buffer;
    bool isTextWhite = false;
    bool isTextPadded = false;
};

}  // namespace Xml
