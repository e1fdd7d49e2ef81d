#pragma once

#include "xml/stream/InStream.h"
#include "xml/text/DataHolder.h"
#include <deque>
#include <string>

namespace Xml {

class Dtd;
class ElementReader;
class EntityBudget;
class GivenAttributes;
class TreeBuilder;

// Reads an element with its whole subtree by tokens: every rule of content, every message.
//
// By the rules a reader runs another one for each child element. Here that is one loop, with the open elements on the
// stack of the builder. The readers that it stands for show in two ways: a nested element that fails reports under the
// name of the plain element reader, whichever class reads the outer one, and an element becomes a child when it is
// complete.
class LiteralContent {
public:
    // `outermost` reads the outermost element and gets the message. The Dtd may be null. `endOfReferences` is the
    // position after the last reference at the beginning of a text, 0 at first.
    LiteralContent(ElementReader& outermost, InStream& stream, TreeBuilder& builder, Dtd* entities, EntityBudget& text,
                   int& endOfReferences)
        : reader(outermost), in(stream), tree(builder), dtd(entities), budget(text), referenceEnd(endOfReferences) {}

    LiteralContent(const LiteralContent&) = delete;
    LiteralContent& operator=(const LiteralContent&) = delete;

    // The start tag of the outermost element, with its end when it has no content.
    bool begin() { return beginElement(); }

    // The next piece of the innermost element's content, or its end tag.
    bool readPiece();

private:
    bool isNested() const;
    bool failWith(const std::string& text);
    bool fail();
    bool failSilently();

    bool beginElement();
    enum class Attributes { Read, NotRead, TooLarge };
    Attributes readAttributes(GivenAttributes& attributes, std::deque<DataHolder>& values);
    bool readEndTag();

    ElementReader& reader;
    InStream& in;
    TreeBuilder& tree;
    Dtd* dtd;
    EntityBudget& budget;
    int& referenceEnd;
    bool isBeginning = false;  // in a start tag, before the builder knows of the element
};

}  // namespace Xml
