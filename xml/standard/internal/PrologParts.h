#pragma once

#include "xml/dom/Prolog.h"
#include "xml/standard/internal/Lexer.h"

// What a lexer knows of a document, for its Prolog.
namespace Xml::PrologParts {

inline void takeDeclaration(Prolog& prolog, const Lexer& lexer) {
    const XmlDeclaration& declaration = lexer.declaration();
    prolog.hasDeclaration = declaration.isPresent;
    prolog.encoding = declaration.encoding;
    prolog.standalone = declaration.standalone;
}

// Of the Doctype at hand.
inline void takeDoctype(Prolog& prolog, const Lexer& lexer) {
    const Lexer::Doctype& doctype = lexer.doctype();
    prolog.doctype = lexer.name();
    prolog.publicId = doctype.publicId;
    prolog.systemId = doctype.systemId;
    prolog.internalSubset = doctype.subset;
}

}  // namespace Xml::PrologParts
