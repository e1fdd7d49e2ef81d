#pragma once

#include "xml/stream/InStream.h"

namespace Xml {

class Dtd;
class EntityBudget;
class TreeBuilder;

// Reads the ordinary pieces of content without tokens, straight from the lent window: start tags with their
// attributes, texts, end tags, comments, and the white space before them.
//
// This is cost control and nothing else: LiteralContent has the rules and the messages, and reads everything without
// this. A piece is taken only when it lies in the window as a whole and is ordinary: its tokens would be read without a
// failure, and what they leave is known. Then it leaves the tree, the line breaks, the message and the budget that the
// tokens would leave; the parse buffer after the last piece, before which it does not show. What is not taken (at the
// end of the window, something unusual, an error) is untouched from its first byte on.
class FastContent {
public:
    // `endOfReferences` is LiteralContent's: the position after the last reference at the beginning of a text.
    FastContent(InStream& stream, TreeBuilder& builder, Dtd* entities, EntityBudget& text, int& endOfReferences)
        : in(stream), tree(builder), dtd(entities), budget(text), referenceEnd(endOfReferences) {}

    FastContent(const FastContent&) = delete;
    FastContent& operator=(const FastContent&) = delete;

    // Takes pieces as long as they are ordinary; where no element is open the first is the start tag of the outermost
    // one, when that has content. The last one is the end tag of that.
    void read();

    // Switches it off, or on again, for all readings that begin; returns what it was. For tests.
    static bool setEnabled(bool on);
    static bool isEnabled() { return enabled; }

private:
    InStream& in;
    TreeBuilder& tree;
    Dtd* dtd;
    EntityBudget& budget;
    int& referenceEnd;

    static bool enabled;
};

}  // namespace Xml
