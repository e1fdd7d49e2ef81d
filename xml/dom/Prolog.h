#pragma once

#include "xml/Export.h"
#include "xml/dom/Object.h"
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Xml {

class Document;

// What stands around the root of a document, as it was read or as it is to be written. A document has one, which is
// copied with it; readers of the dialect leave it as it is at first.
struct ORVXML_API Prolog {
    Prolog();
    Prolog(const Prolog& other);  // copies the nodes too
    Prolog(Prolog&& other) noexcept;
    Prolog& operator=(const Prolog& other);
    Prolog& operator=(Prolog&& other) noexcept;
    ~Prolog();

    std::string encoding;            // as declared; empty without
    std::optional<bool> standalone;  // as declared
    bool hasDeclaration = false;     // an XML declaration
    bool hasMark = false;            // a byte order mark
    std::string newline = "\n";      // the first line end
    std::string readAs;              // the encoding that it was read in, with its order of bytes: UTF-16LE

    // Of the document type declaration, as written; empty without. Line ends of the identifiers are LF.
    std::string doctype, publicId, systemId, internalSubset;

    // Comments and instructions, which have no parent. None is null.
    std::vector<std::unique_ptr<Object>> beforeDoctype, beforeRoot, afterRoot;
};

// Good as long as the document. The one that may be changed is made when it is first asked for, and marks the document
// as changed.
ORVXML_API Prolog& prologOf(Document& document);
ORVXML_API const Prolog& prologOf(const Document& document);

}  // namespace Xml
