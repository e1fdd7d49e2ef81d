#pragma once

#include "xml/stream/InStream.h"

namespace Xml {

// Reads without tokens, straight from the lent window, what nearly every document has before its root element.
//
// This is cost control and nothing else, as FastContent, which switches it off too: DocumentReader reads everything
// without this. What is taken leaves what its tokens would leave: the place, the line breaks, the parse buffer.
struct FastProlog {
    // Takes an XML declaration that stands right at the place, says version 1.0 and perhaps the encoding UTF-8, and has
    // no white space but one blank before each. False where something else follows: nothing is read then.
    static bool takeDeclaration(InStream& in);

    // Whether an element follows right at the place, as a look at the next token finds. False also where that does not
    // show in the window.
    static bool isBeforeElement(InStream& in);
};

}  // namespace Xml
