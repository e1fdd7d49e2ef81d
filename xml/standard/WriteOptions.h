#pragma once

#include "xml/Export.h"
#include <string>

namespace Xml {

class Document;

struct WriteOptions {
    // Blanks and tabs: lines begin with so many of them as elements are open, up to 64, beside the child elements of an
    // element without text. Within text, or where xml:space preserves white space, nothing is added; empty: nothing at
    // all.
    std::string indent = "\t";
    std::string newline = "\n";      // each line end: LF, CR LF or CR
    std::string encoding = "UTF-8";  // empty: UTF-8 too, and the declaration does not name it
    bool declaration = true;         // of a document; where there is none readers take what has no mark for UTF-8
    bool doctype = true;             // of a document
    bool mark = false;               // a byte order mark; UTF-16 and UTF-32 by these names have one anyway
    bool shortEmptyTags = true;      // <a/>
    bool defaults = false;           // also attributes that isDefault and that the document type, as written, supplies
};

// How the document was read: without indentation, and declaration, encoding, mark and line ends as they were. An
// encoding that ReadOptions gave stays too; the declaration names it then, or a mark shows it.
ORVXML_API WriteOptions asRead(const Document& document);

}  // namespace Xml
