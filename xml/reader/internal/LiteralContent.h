#pragma once

#include "xml/stream/InStream.h"
#include <cstddef>
#include <string>

namespace Xml {

class Dtd;
class ElementReader;
class EntityBudget;
class TreeBuilder;

// Reads an element with its whole subtree by tokens: every rule of content, every message.
//
// By the rules a reader runs another one for each child element. Here that is one loop, with the open elements on the
// stack of the builder. The readers that it stands for show in two ways: a nested element that fails reports under the
// name of the plain element reader, whichever class reads the outer one, and an element becomes a child when it is
// complete.
class LiteralContent {
public:
    // `outermost` reads the outermost element and gets the message. The Dtd may be null.
    LiteralContent(ElementReader& outermost, InStream& stream, TreeBuilder& builder, Dtd* entities, EntityBudget& text)
        : reader(outermost), in(stream), tree(builder), dtd(entities), budget(text) {}

    LiteralContent(const LiteralContent&) = delete;
    LiteralContent& operator=(const LiteralContent&) = delete;

    bool read();

private:
    bool failWith(const std::string& text);
    bool fail();
    bool failSilently();

    bool beginElement();
    enum class Attributes { Read, NotRead, TooLarge };
    Attributes readAttributes();
    bool readEndTag();
    void endElement();
    bool readPiece();

    ElementReader& reader;
    InStream& in;
    TreeBuilder& tree;
    Dtd* dtd;
    EntityBudget& budget;
    std::size_t depth = 0;  // of the element that would have its reader at work
    int referenceEnd = 0;   // after the last reference that was read
};

}  // namespace Xml
